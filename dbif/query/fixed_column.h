#pragma once

#include "dbif/condition/column_condition.h"

#include <QString>

/// A column that every record of the table class `T` has. A default-made one has an empty name.
template <typename T>
class DBIF_FixedColumn
{
public:
    DBIF_FixedColumn() = default;

    DBIF_FixedColumn(
        QString name,
        bool holdsNumbers,
        bool isApproximate,
        double tolerance,
        double epsilon)
        : name_(std::move(name)), traits_{holdsNumbers, isApproximate, tolerance, epsilon}
    {}

    [[nodiscard]] QString getColumnName() const { return name_; }

    /// The condition that the record has a value in this column.
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

    /// Throws `DBIF_Exception` when the column holds numbers and the value is none.
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
