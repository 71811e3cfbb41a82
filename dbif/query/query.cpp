#include "dbif/query/query.h"

#include "dbif/engine/sql_text.h"
#include "dbif/host/host_string.h"
#include "dbif/schema/schema_names.h"

#include <QStringList>

#include <utility>

DBIF_Query::SharedData::SharedData(DBIF_Connection given)
    : connection(std::move(given)), joinAlgorithm(getNullQueryJoinAlgorithm())
{}

DBIF_Query::SharedData::SharedData(const SharedData& other)
    : QSharedData(other),
      connection(other.connection),
      distinct(other.distinct),
      latestOnly(other.latestOnly),
      columns(other.columns),
      addedTables(other.addedTables),
      tables(other.tables),
      condition(other.condition == nullptr ? nullptr : other.condition->clone()),
      orders(other.orders),
      joins(other.joins),
      limit(other.limit),
      offset(other.offset),
      joinAlgorithm(other.joinAlgorithm)
{}

DBIF_Query::SharedData::~SharedData() = default;

DBIF_Query::DBIF_Query(DBIF_Connection connection) : data_(new SharedData(std::move(connection))) {}

DBIF_Query::~DBIF_Query() = default;
DBIF_Query::DBIF_Query(const DBIF_Query& other) = default;
DBIF_Query& DBIF_Query::operator=(const DBIF_Query& other) = default;
DBIF_Query::DBIF_Query(DBIF_Query&& other) noexcept = default;
DBIF_Query& DBIF_Query::operator=(DBIF_Query&& other) noexcept = default;

const DBIF_Query::SharedData& DBIF_Query::data() const
{
    return *data_;
}

DBIF_Query::Column DBIF_Query::addColumn(QString table, QString column, bool isNamedByTable)
{
    Column added{std::move(table), std::move(column), isNamedByTable};
    data_->columns.append(added);
    return added;
}

DBIF_Query::Column DBIF_Query::addColumnAt(QString table, QString column, int position)
{
    Column added{std::move(table), std::move(column), false};
    data_->columns.insert(position, added);
    return added;
}

void DBIF_Query::addOrder(QString table, QString column, bool isAscending)
{
    data_->orders.append(
        {std::move(table), std::move(column),
         isAscending ? QStringLiteral("ASC") : QStringLiteral("DESC")});
}

void DBIF_Query::addTable(QString table)
{
    data_->addedTables.insert(std::move(table));
}

void DBIF_Query::setCondition(const DBIF_QueryCondition* condition)
{
    data_->condition.reset(condition == nullptr ? nullptr : condition->clone());
}

void DBIF_Query::setCondition(const DBIF_SingleColumnCondition& condition)
{
    setCondition(&condition);
}

void DBIF_Query::setCondition(const DBIF_CompoundQueryCondition& condition)
{
    setCondition(&condition);
}

void DBIF_Query::setJoinAlgorithm(DBIF_QueryJoinAlgorithm* algorithm)
{
    data_->joinAlgorithm = algorithm;
}

void DBIF_Query::addJoin(const Join& join)
{
    data_->joins.append(join);
}

void DBIF_Query::markDistinct()
{
    markDistinct(true);
}

void DBIF_Query::markDistinct(bool isDistinct)
{
    data_->distinct = isDistinct;
}

void DBIF_Query::markLatestOnly(bool isLatestOnly)
{
    data_->latestOnly = isLatestOnly;
}

void DBIF_Query::setLimit(int limit)
{
    data_->limit = limit;
}

namespace {
QString quoted_column(const QString& table, const QString& column)
{
    return dbif::qualified(dbif::to_utf8(table), dbif::to_utf8(column)).toQt();
}
} // namespace

void DBIF_Query::preprocessQuery()
{
    QSet<QString> tables = data_->addedTables;
    for (const Column& column : std::as_const(data_->columns)) {
        tables.insert(column.table);
    }
    QSet<QString> compared;
    if (data_->condition != nullptr) {
        data_->condition->addTableToSet(compared);
    }
    for (const QString& table : std::as_const(compared)) {
        // A comparison of a key looks the key up for the record, whose own table has to be there.
        const dbif::TableInfo* keyed = dbif::find_data_table(dbif::to_utf8(table));
        tables.insert(keyed == nullptr ? table : dbif::to_qt(keyed->name));
    }
    data_->tables = tables;
    data_->joins.clear();
    data_->joinAlgorithm->computeJoins(*this);
}

namespace {
/// The SELECT statement without order and limit. `areCounted` gives each column a name of its own.
QString select_of(const DBIF_Query::SharedData& data, bool areCounted)
{
    QStringList columns;
    for (const DBIF_Query::Column& column : data.columns) {
        columns << quoted_column(column.table, column.column);
        if (areCounted) {
            columns.back() += QStringLiteral(" AS column_%1").arg(columns.size());
        }
    }
    QSet<QString> unjoined = data.tables;
    QString joins;
    for (const DBIF_Query::Join& join : data.joins) {
        unjoined.remove(join.table);
        joins +=
            QStringLiteral("\nLEFT JOIN ") + join.table + QStringLiteral(" ON ") + join.condition;
    }
    QStringList tables(unjoined.cbegin(), unjoined.cend());
    tables.sort();
    QString sql = (data.distinct ? QStringLiteral("SELECT DISTINCT ") : QStringLiteral("SELECT ")) +
                  columns.join(QStringLiteral(", ")) + QStringLiteral("\nFROM ") +
                  tables.join(QStringLiteral(", ")) + joins;
    if (data.condition != nullptr) {
        sql +=
            QStringLiteral("\nWHERE ") + data.condition->generateSelectionCriteria(data.connection);
    }
    return sql;
}
} // namespace

QString DBIF_Query::generateSql(bool isOrdered)
{
    preprocessQuery();
    const QString sql = select_of(*data_, false);
    return isOrdered ? sql + generateOrder() + generateLimit() : sql;
}

QString DBIF_Query::generateCountSql()
{
    preprocessQuery();
    return QStringLiteral("SELECT count(*) FROM (") + select_of(*data_, true) + generateLimit() +
           QStringLiteral(") AS counted");
}

QString DBIF_Query::generateOrder()
{
    QStringList orders;
    for (const Order& order : std::as_const(data_->orders)) {
        orders << quoted_column(order.table, order.column) + QStringLiteral(" ") + order.direction;
    }
    return orders.isEmpty() ? QString()
                            : QStringLiteral("\nORDER BY ") + orders.join(QStringLiteral(", "));
}

QString DBIF_Query::generateLimit()
{
    return data_->limit < 0 ? QString()
                            : QStringLiteral("\nLIMIT ") + QString::number(data_->limit);
}
