#include "dbif/retrieval/vanto_query.h"

#include "dbif/connection/column_store.h"
#include "dbif/engine/read_trace.h"
#include "dbif/host/host_string.h"
#include "dbif/query/record_query.h"
#include "dbif/retrieval/query_run.h"
#include "dbif/value/complex_values.h"

#include <functional>
#include <utility>

namespace {
DBIF_VantoJoinAlgorithm& join_algorithm()
{
    static DBIF_VantoJoinAlgorithm algorithm;
    return algorithm;
}

/// What a column reads in plain SQL: a key is looked up for its record; of a key of setups, the
/// setup.
dbif::SqlText expression_of(const dbif::TableColumn& source)
{
    const dbif::TableInfo& f = dbif::table_info(source.table());
    dbif::SqlText id = dbif::qualified(f.name, "id");
    if (!source.isKey()) {
        return dbif::qualified(f.name, source.fixed().name);
    }
    if (source.isOnPoints()) {
        return id;
    }
    dbif::SqlText sql;
    return sql << "(SELECT "
               << (source.key().kind == dbif::ValueKind::Double ? dbif::SqlText("number")
                                                                : dbif::SqlText("text"))
               << " FROM " << dbif::SqlName(f.dataTable()) << " WHERE "
               << dbif::SqlName(f.linkColumn()) << " = " << id << " AND "
               << dbif::SqlName(f.columnLink()) << " = " << source.key().id << ")";
}
} // namespace

DBIF_VantoQuery::DBIF_VantoQuery(DBIF_Connection connection) : DBIF_Query(std::move(connection))
{
    setJoinAlgorithm(&join_algorithm());
}

void DBIF_VantoQuery::preprocessQuery()
{
    DBIF_Query::preprocessQuery();
}

namespace {
using NameOf = std::function<std::string(const DBIF_Query::Column&)>;

/// The SELECT statement without order and limit; `nameOf` gives a column its name in the result,
/// none when it is empty. Empty for a sub-select of ids that would select every record, where
/// `mayBeEmpty`.
dbif::SqlText select_of(const DBIF_Query::SharedData& data, const NameOf& nameOf, bool mayBeEmpty)
{
    DBIF_Connection connection = data.connection;
    std::vector<dbif::SqlText> expressions;
    std::vector<dbif::TableColumn> sources;
    for (const DBIF_Query::Column& column : data.columns) {
        sources.push_back(dbif::existing_column(
            connection, dbif::to_utf8(column.table), dbif::to_utf8(column.column)));
        dbif::SqlText expression = expression_of(sources.back());
        const std::string name = nameOf(column);
        if (!name.empty()) {
            expression << " AS " << dbif::SqlName(name);
        }
        expressions.push_back(std::move(expression));
    }
    dbif::TableSet tables = dbif::tables_of(sources);
    for (const QString& added : data.addedTables) {
        if (const dbif::TableInfo* found = dbif::find_table(dbif::to_utf8(added))) {
            tables.add(found->table);
        }
    }
    const dbif::ConditionTree condition = data.condition == nullptr
                                              ? dbif::ConditionTree::constant(true)
                                              : data.condition->tree(false);
    const dbif::RecordQuery query(connection, tables, condition, data.latestOnly);
    return mayBeEmpty && query.selectsAll() ? dbif::SqlText()
                                            : query.select(expressions, data.distinct);
}
} // namespace

QString DBIF_VantoQuery::generateSql(bool isOrdered)
{
    preprocessQuery();
    const QList<Column>& columns = data().columns;
    const bool isSubSelect = columns.size() == 1 && columns.front().isNamedByTable;
    const auto nameOf = [](const Column& column) {
        return column.isNamedByTable
                   ? dbif::to_utf8(column.table) + "_" + dbif::to_utf8(column.column)
                   : std::string();
    };
    const QString sql = select_of(data(), nameOf, isSubSelect).toQt();
    return isOrdered && !sql.isEmpty() ? sql + generateOrder() + generateLimit() : sql;
}

QString DBIF_VantoQuery::generateCountSql()
{
    preprocessQuery();
    const auto nameOf = [place = 0](const Column& /*column*/) mutable {
        return "column_" + std::to_string(++place);
    };
    return QStringLiteral("SELECT count(*) FROM (") + select_of(data(), nameOf, false).toQt() +
           generateLimit() + QStringLiteral(") AS counted");
}

QString DBIF_VantoQuery::generateOrder()
{
    DBIF_Connection connection = data().connection;
    dbif::SqlText order;
    for (const Order& by : data().orders) {
        order << (order.isEmpty() ? dbif::SqlText("\nORDER BY ") : dbif::SqlText(", "))
              << expression_of(dbif::existing_column(
                     connection, dbif::to_utf8(by.table), dbif::to_utf8(by.column)))
              << (by.direction == QStringLiteral("ASC") ? dbif::SqlText(" ASC")
                                                        : dbif::SqlText(" DESC"));
    }
    return order.toQt();
}

// NOLINTBEGIN(performance-unnecessary-value-param): a published signature
QList<DBIF_DataType*>
queryValues(DBIF_Connection /*connection*/, DBIF_Query* query, QString datatype)
// NOLINTEND(performance-unnecessary-value-param)
{
    const dbif::QueryResult result = dbif::run_query(*query);
    return result.columns.empty() ? QList<DBIF_DataType*>()
                                  : dbif::value_objects(result.columns.front(), datatype);
}

namespace dbif {
QList<DBIF_DataType*> value_objects(const ResultColumn& column, const QString& datatype)
{
    using Kind = ResultColumn::Kind;
    QList<DBIF_DataType*> objects;
    for (std::size_t row = 0; row < column.size(); ++row) {
        if (column.kind == Kind::Double && datatype == DOUBLE_DATATYPE) {
            objects.append(new DBIF_Double(column.numbers[row]));
        } else if (column.kind == Kind::Complex && datatype == COMPLEX_NUMBER_DATATYPE) {
            objects.append(new DBIF_ComplexNumber(column.complexNumbers[row]));
        } else {
            objects.append(DBIF_DataType::toDataType(to_qt(column.text(row)), datatype));
        }
    }
    return objects;
}
} // namespace dbif
