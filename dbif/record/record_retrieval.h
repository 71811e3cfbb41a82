#pragma once

#include "dbif/query/dynamic_column.h"
#include "dbif/retrieval/vanto_query.h"

#include <QList>

namespace dbif {
/// The query for the values of one column (`table` and `column` as a query names them): those that
/// are there, under the condition when one is given.
DBIF_VantoQuery column_values_query(
    const DBIF_Connection& connection,
    const QString& table,
    const QString& column,
    const DBIF_SingleColumnCondition& notNull,
    SortOrder order,
    const DBIF_QueryCondition* condition,
    bool latestOnly,
    bool distinct);

/// A fixed column of a table class by the description of the column.
template <typename Record>
DBIF_FixedColumn<Record> fixed_column(const FixedColumnInfo& column)
{
    const ColumnTraits traits;
    return {
        QString::fromUtf8(column.name.data(), static_cast<qsizetype>(column.name.size())),
        column.kind != FixedKind::Text, column.kind == FixedKind::Number, traits.tolerance,
        traits.epsilon};
}

/// What all seven record classes share: reading the values of a fixed column.
template <typename Record, RecordTable table>
class RecordClass
{
public:
    static constexpr RecordTable kTable = table;

    /// The table's fixed columns, the id first.
    static QList<DBIF_FixedColumn<Record>> fixedColumns()
    {
        QList<DBIF_FixedColumn<Record>> columns;
        for (const FixedColumnInfo& column : table_info(table).fixedColumns) {
            columns.append(fixed_column<Record>(column));
        }
        return columns;
    }

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
    /// one and satisfies the condition (none: all). Throws `DBIF_Exception` on a database error.
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
    static DBIF_FixedColumn<Record> column(std::string_view name)
    {
        for (const FixedColumnInfo& candidate : table_info(table).fixedColumns) {
            if (candidate.name == name) {
                return fixed_column<Record>(candidate);
            }
        }
        return {};
    }

    /// The column of companion tables that links to a record; it is not a column of the table.
    static DBIF_FixedColumn<Record> link()
    {
        return fixed_column<Record>({table_info(table).linkColumn(), FixedKind::Id, Indexed::No});
    }
};

/// What the five record classes with keys share: reading the values of a key.
template <typename Record, typename Column>
class KeyedRecordClass : public RecordClass<Record, Column::kTable>
{
public:
    using KeyColumn = Column;

    using RecordClass<Record, Column::kTable>::retrieveValues;
    using RecordClass<Record, Column::kTable>::valuesQuery;

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

    /// The values of a key as objects of its data type, which the caller owns.
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
