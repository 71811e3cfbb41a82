#pragma once

#include "dbif/condition/column_condition.h"

#include <QString>

/// A column that every record of the table class `T` has. A plain value; it needs no connection. A
/// default-made one has an empty name, and its conditions throw `DBIF_Exception`.
template <typename T>
class DBIF_FixedColumn
{
public:
    DBIF_FixedColumn() = default;

    /// The column `name` of `T::MASTER_TABLE_NAME`; the rest says how its values compare, as in
    /// `dbif::ColumnTraits`. Whether the table has the column is not checked here.
    DBIF_FixedColumn(
        QString name,
        bool holdsNumbers,
        bool isApproximate,
        double tolerance,
        double epsilon)
        : name_(std::move(name)), traits_{holdsNumbers, isApproximate, tolerance, epsilon}
    {}

    /// The name of the column in the table, such as "name".
    [[nodiscard]] QString getColumnName() const { return name_; }

    /// The condition that the record has a value in this column. Throws `DBIF_Exception` when the
    /// table has no such column.
    [[nodiscard]] DBIF_SingleColumnCondition notNull() const
    {
        return {T::MASTER_TABLE_NAME,
                name_,
                NOT_NULL,
                0,
                traits_.holdsNumbers,
                traits_.isApproximate,
                traits_.tolerance,
                traits_.epsilon};
    }

    /// The comparison of this column with a value, as `DBIF_SingleColumnCondition` reads it. Throws
    /// `DBIF_Exception` when the column holds numbers and the value is none, when a list of texts
    /// is malformed, and when the table has no such column.
    [[nodiscard]] DBIF_SingleColumnCondition
    singleColumnCondition(Comparator comparator, QString value) const
    {
        return {T::MASTER_TABLE_NAME, name_,
                comparator,           std::move(value),
                traits_.holdsNumbers, traits_.isApproximate,
                traits_.tolerance,    traits_.epsilon};
    }

private:
    QString name_;
    dbif::ColumnTraits traits_;
};
