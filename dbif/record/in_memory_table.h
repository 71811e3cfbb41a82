#pragma once

#include "dbif/connection/connection.h"
#include "dbif/host/host_string.h"
#include "dbif/sweep/sweep_reader.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QVariant>

/// The points of one setup in memory: columns of equal length, with a handle to the connection that
/// they were read from. What it holds is a copy, read once; nothing here reads the database.
template <typename Column>
class DBIF_InMemoryTable
{
public:
    /// `arrays` has `rows` values in each array, by the unique key of one of `columns`.
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

    /// The keys that the setup has, in the order of their definitions.
    [[nodiscard]] QList<Column> getColumns() const { return columns_; }

    [[nodiscard]] DBIF_Connection getConnection() const { return connection_; }

    /// The rows, each a map from the unique key of a column to its value: a `double`, or a text for
    /// every other data type. A row without a value of a column does not have its key. Makes an
    /// object per value: for many points, `arrays` costs less.
    [[nodiscard]] QList<QMap<QString, QVariant>> getAllData() const
    {
        QList<QMap<QString, QVariant>> rows;
        rows.resize(static_cast<qsizetype>(rows_));
        for (const auto& [key, array] : arrays_) {
            add_values(dbif::to_qt(key), array, &rows);
        }
        return rows;
    }

    /// The number of points, including those without any value.
    [[nodiscard]] std::size_t rowCount() const { return rows_; }

    /// The columns' values by unique key, valid as long as this table; a column without points is
    /// not among them.
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
