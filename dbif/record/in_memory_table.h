#pragma once

#include "dbif/connection/connection.h"
#include "dbif/host/host_string.h"
#include "dbif/sweep/sweep_reader.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QVariant>

/// A table of columns of equal length in memory.
template <typename Column>
class DBIF_InMemoryTable
{
public:
    DBIF_InMemoryTable(
        DBIF_Connection connection,
        QList<Column> columns,
        std::size_t rows,
        dbif::SweepArrays arrays)
        : connection_(std::move(connection)),
          columns_(std::move(columns)),
          rows_(rows),
          arrays_(std::move(arrays))
    {}

    [[nodiscard]] QList<Column> getColumns() const { return columns_; }

    [[nodiscard]] DBIF_Connection getConnection() const { return connection_; }

    /// The rows, each a map from the unique key of a column to its value; a row without a value of
    /// a column does not have its key. Makes an object per value: for many points, `arrays` costs
    /// less.
    [[nodiscard]] QList<QMap<QString, QVariant>> getAllData() const
    {
        QList<QMap<QString, QVariant>> rows;
        rows.resize(static_cast<qsizetype>(rows_));
        for (const auto& [key, array] : arrays_) {
            add_values(dbif::to_qt(key), array, &rows);
        }
        return rows;
    }

    [[nodiscard]] std::size_t rowCount() const { return rows_; }

    /// The columns' values by unique key; a column without points is not among them.
    [[nodiscard]] const dbif::SweepArrays& arrays() const { return arrays_; }

private:
    static void add_values(
        const QString& key,
        const dbif::SweepArray& array,
        QList<QMap<QString, QVariant>>* rows)
    {
        for (std::size_t row = 0; row < array.size(); ++row) {
            if (array.hasValue(row)) {
                (*rows)[static_cast<qsizetype>(row)].insert(key, value_of(array, row));
            }
        }
    }

    static QVariant value_of(const dbif::SweepArray& array, std::size_t row)
    {
        return array.kind == dbif::ValueKind::Double ? QVariant(array.numbers[row])
                                                     : QVariant(dbif::to_qt(array.text(row)));
    }

    DBIF_Connection connection_;
    QList<Column> columns_;
    std::size_t rows_;
    dbif::SweepArrays arrays_;
};
