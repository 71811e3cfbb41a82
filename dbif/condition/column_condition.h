#pragma once

#include "dbif/condition/condition.h"
#include "dbif/condition/query_enums.h"

#include <limits>
#include <memory>
#include <string>

namespace dbif {
struct ColumnComparison;
class TableColumn;

/// How the values of a column compare: what a column object hands on to its conditions.
struct ColumnTraits
{
    /// Tells whether the values are numbers; texts compare by their characters otherwise.
    bool holdsNumbers = false;
    /// Tells whether numbers within `tolerance` are equal; they compare exactly otherwise.
    bool isApproximate = false;
    /// The relative distance within which numbers are equal.
    double tolerance = 1e-10;
    /// Kept for the published constructors, and not used.
    double epsilon = std::numeric_limits<double>::epsilon();
};
} // namespace dbif

/// A comparison of one column with a value, or with the values of a list ("a', 'b" for `IN` and
/// `NOT_IN`). Blanks may stand around the comma. Blanks or commas left behind the last value, as in
/// "'a', 'b', ", are taken off together with the outer quotes. `NOT_NULL` and `IS_NULL` do not use
/// the value. Numbers are written in engineering notation (`enot_to_dbl`).
///
/// The constructors throw `DBIF_Exception` naming column and value when a column of numbers is
/// given a value that is none, or is not finite; when a list of texts has a comma or quote to which
/// no text belongs; and when complex numbers or matrices, which have no order, are compared by one.
/// No database is asked: whether a key is defined shows when the condition is used.
class DBIF_SingleColumnCondition : public DBIF_QueryCondition
{
public:
    /// Compares a column that is known; its type says whether the value is a number. Numbers are
    /// equal within a relative 1e-10, ids exactly.
    DBIF_SingleColumnCondition(
        const dbif::TableColumn& column,
        Comparator comparator,
        const std::string& value);
    /// Compares the column that two texts name: a record table and its fixed column ("device",
    /// "name"), or a data table and the unique key of a dynamic column ("device_data",
    /// "PHYSICAL|DOUBLE|W"). `holdsNumbers` says that the value is a number, `isApproximate` that
    /// numbers within `tolerance` (relative) are equal; `epsilon` is not used. Throws
    /// `DBIF_Exception` also when the texts name no column.
    DBIF_SingleColumnCondition(
        QString table,
        QString column,
        Comparator comparator,
        QString value,
        bool holdsNumbers,
        bool isApproximate,
        double tolerance,
        double epsilon);
    /// The same with a whole number as value, in decimal; `NOT_NULL` is published with 0.
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
