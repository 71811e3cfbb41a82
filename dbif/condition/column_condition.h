#pragma once

#include "dbif/condition/condition.h"
#include "dbif/condition/query_enums.h"

#include <limits>
#include <memory>
#include <string>

namespace dbif {
struct ColumnComparison;
class TableColumn;

/// The flags and numbers that a column hands on to its conditions.
struct ColumnTraits
{
    bool holdsNumbers = false;
    bool isApproximate = false;
    /// The relative distance within which numbers are equal.
    double tolerance = 1e-10;
    /// Kept and not used.
    double epsilon = std::numeric_limits<double>::epsilon();
};
} // namespace dbif

/// A comparison of one column with a value, or with the values of a list ("a', 'b" for `IN` and
/// `NOT_IN`). Blanks may stand around the comma. Blanks or commas left behind the last value, as in
/// "'a', 'b', ", are taken off together with the outer quotes.
///
/// `table` and `column` are a record table and its fixed column, or a data table ("device_data")
/// and the unique key of a dynamic column. `holdsNumbers` says that the value is a number,
/// `isApproximate` that numbers within `tolerance` (relative) are equal; the second number is kept
/// and not used.
///
/// Throws `DBIF_Exception` naming column and value when a column of numbers is given a value that
/// is none, when a list of texts has a comma or quote to which no text belongs, and when complex
/// numbers or matrices, which have no order, are compared by one.
class DBIF_SingleColumnCondition : public DBIF_QueryCondition
{
public:
    /// What the column is says whether the value is a number and how close numbers are equal.
    DBIF_SingleColumnCondition(
        const dbif::TableColumn& column,
        Comparator comparator,
        const std::string& value);
    DBIF_SingleColumnCondition(
        QString table,
        QString column,
        Comparator comparator,
        QString value,
        bool holdsNumbers,
        bool isApproximate,
        double tolerance,
        double epsilon);
    /// The same with a whole number as value; `NOT_NULL` comes with 0.
    DBIF_SingleColumnCondition(
        QString table,
        QString column,
        Comparator comparator,
        int value,
        bool holdsNumbers,
        bool isApproximate,
        double tolerance,
        double epsilon);

    [[nodiscard]] DBIF_SingleColumnCondition* clone() const override;
    [[nodiscard]] dbif::ConditionTree tree(bool negated) const override;

private:
    std::shared_ptr<const dbif::ColumnComparison> comparison_;
};
