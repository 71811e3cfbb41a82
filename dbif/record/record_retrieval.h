#pragma once

#include "dbif/query/dynamic_column.h"
#include "dbif/retrieval/vanto_query.h"

#include <QList>

namespace dbif {
/// The query for the values of one column (`table` and `column` as a query names them): those that
/// are there (`notNull`), under the condition, a copy of which is kept, or all when `condition` is
/// null.
DBIF_VantoQuery column_values_query(
    const DBIF_Connection& connection,
    const QString& table,
    const QString& column,
    const DBIF_SingleColumnCondition& notNull,
    SortOrder order,
    const DBIF_QueryCondition* condition,
    bool latestOnly,
    bool distinct);

/// The column object of a table class for a column of its table description.
template <typename Record>
DBIF_FixedColumn<Record> fixed_column(const FixedColumnInfo& column)
{
    const ColumnTraits traits;
    return {
        QString::fromUtf8(column.name.data(), static_cast<qsizetype>(column.name.size())),
        column.kind != FixedKind::Text, column.kind == FixedKind::Number, traits.tolerance,
        traits.epsilon};
}

/// The operations that all seven record classes share: reading the values of a fixed column.
template <typename Record, RecordTable table>
class RecordClass
{
public:
    static constexpr RecordTable kTable = table;

    /// The table's fixed columns in the order of the schema, the id first.
    static QList<DBIF_FixedColumn<Record>> fixedColumns()
    {
        QList<DBIF_FixedColumn<Record>> columns;
        for (const FixedColumnInfo& column : table_info(table).fixedColumns) {
            columns.append(fixed_column<Record>(column));
        }
        return columns;
    }

    /// The query that `retrieveValues` runs. Asks no database.
    static DBIF_VantoQuery valuesQuery(
        DBIF_Connection& connection,
        const DBIF_FixedColumn<Record>& column,
        SortOrder order,
        const DBIF_QueryCondition* condition,
        bool latestOnly,
        bool distinct)
    {
        return column_values_query(
            connection, Record::MASTER_TABLE_NAME, column.getColumnName(), column.notNull(), order,
            condition, latestOnly, distinct);
    }

    /// The values of a fixed column as text objects, which the caller owns: every record's that has
    /// one and satisfies the condition (null: all), as often as records have it, or once each where
    /// `distinct`. `latestOnly` leaves superseded measurements and setups out. Runs in one read
    /// transaction, its own unless one is open. Throws `DBIF_Exception` on a database error;
    /// nothing is left to delete then.
    static QList<DBIF_DataType*> retrieveValues(
        DBIF_Connection& connection,
        const DBIF_FixedColumn<Record>& column,
        SortOrder order,
        const DBIF_QueryCondition* condition,
        bool latestOnly,
        bool distinct)
    {
        DBIF_VantoQuery query =
            valuesQuery(connection, column, order, condition, latestOnly, distinct);
        return queryValues(connection, &query, TEXT_DATATYPE);
    }

protected:
    /// The fixed column of this name; a default-made one when the table has none.
    static DBIF_FixedColumn<Record> column(std::string_view name)
    {
        for (const FixedColumnInfo& candidate : table_info(table).fixedColumns) {
            if (candidate.name == name) {
                return fixed_column<Record>(candidate);
            }
        }
        return {};
    }

    /// The column by which companion tables refer to a record; it is not a column of the table
    /// itself.
    static DBIF_FixedColumn<Record> link()
    {
        return fixed_column<Record>({table_info(table).linkColumn(), FixedKind::Id, Indexed::No});
    }
};

/// The operations that the five record classes with keys share: reading the values of a key.
template <typename Record, typename Column>
class KeyedRecordClass : public RecordClass<Record, Column::kTable>
{
public:
    using KeyColumn = Column;

    using RecordClass<Record, Column::kTable>::retrieveValues;
    using RecordClass<Record, Column::kTable>::valuesQuery;

    /// The query that `retrieveValues` runs, on the connection of the column.
    static DBIF_VantoQuery valuesQuery(
        const Column& column,
        SortOrder order,
        const DBIF_QueryCondition* condition,
        bool latestOnly,
        bool distinct)
    {
        return column_values_query(
            column.getConnection(), Record::DATA_TABLE_NAME, column.getKey(), column.notNull(),
            order, condition, latestOnly, distinct);
    }

    /// The values of a key as objects of its data type, which the caller owns; otherwise as for a
    /// fixed column. A key of setups yields the values of all points that satisfy the condition.
    static QList<DBIF_DataType*> retrieveValues(
        const Column& column,
        SortOrder order,
        const DBIF_QueryCondition* condition,
        bool latestOnly,
        bool distinct)
    {
        DBIF_VantoQuery query = valuesQuery(column, order, condition, latestOnly, distinct);
        return queryValues(column.getConnection(), &query, column.getDataType());
    }
};
} // namespace dbif
