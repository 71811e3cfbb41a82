#pragma once

#include "dbif/condition/compound_condition.h"
#include "dbif/connection/connection.h"
#include "dbif/query/fixed_column.h"

#include <QList>
#include <QSet>
#include <QSharedDataPointer>
#include <QString>

#include <memory>

class DBIF_Query;

/// Computes how the tables of a query are joined.
class DBIF_QueryJoinAlgorithm
{
    Q_DISABLE_COPY_MOVE(DBIF_QueryJoinAlgorithm)

public:
    virtual ~DBIF_QueryJoinAlgorithm() = default;

    /// Adds joins to the query, one for each table behind the first.
    virtual void computeJoins(DBIF_Query& query) = 0;

protected:
    DBIF_QueryJoinAlgorithm() = default;
};

/// A query as data: result columns, condition, order, and how its tables are joined. Copies share
/// the data until one of them changes it.
///
/// A column is named by its table and name: a record table with one of its fixed columns ("device",
/// "name"), or a data table with the unique key of a dynamic column ("device_data",
/// "PHYSICAL|DOUBLE|W").
class DBIF_Query
{
public:
    struct Column
    {
        QString table;
        QString column;
        /// Whether the column is named "<table>_<column>" in the result, as sub-selects of ids are.
        bool isNamedByTable = false;
    };

    struct Order
    {
        QString table;
        QString column;
        /// "ASC" or "DESC".
        QString direction;
    };

    struct Join
    {
        QString table;
        /// The joining condition.
        QString condition;
    };

    struct SharedData;

    explicit DBIF_Query(DBIF_Connection connection);
    virtual ~DBIF_Query();
    DBIF_Query(const DBIF_Query& other);
    DBIF_Query& operator=(const DBIF_Query& other);
    DBIF_Query(DBIF_Query&& other) noexcept;
    DBIF_Query& operator=(DBIF_Query&& other) noexcept;

    /// The SELECT statement; `isOrdered` adds order and limit.
    [[nodiscard]] virtual QString generateSql(bool isOrdered);
    /// A statement that counts the rows of the query.
    [[nodiscard]] virtual QString generateCountSql();
    /// "ORDER BY ..." and "LIMIT ..."; empty when there is none.
    [[nodiscard]] virtual QString generateOrder();
    [[nodiscard]] virtual QString generateLimit();
    /// Completes the query's tables and joins before its SQL is generated.
    virtual void preprocessQuery();

    Column addColumn(QString table, QString column, bool isNamedByTable);
    Column addColumnAt(QString table, QString column, int position);

    template <typename T>
    Column addColumnAt(const DBIF_FixedColumn<T>& column, int position)
    {
        return addColumnAt(T::MASTER_TABLE_NAME, column.getColumnName(), position);
    }

    void addOrder(QString table, QString column, bool isAscending);

    template <typename T>
    void addOrder(const DBIF_FixedColumn<T>& column, bool isAscending)
    {
        addOrder(T::MASTER_TABLE_NAME, column.getColumnName(), isAscending);
    }

    void addTable(QString table);
    /// Stores a clone; the caller keeps its argument. None removes the condition.
    void setCondition(const DBIF_QueryCondition* condition);
    void setCondition(const DBIF_SingleColumnCondition& condition);
    void setCondition(const DBIF_CompoundQueryCondition& condition);
    /// Not owned; lives as long as the query.
    void setJoinAlgorithm(DBIF_QueryJoinAlgorithm* algorithm);
    void addJoin(const Join& join);
    void markDistinct();
    void markDistinct(bool isDistinct);
    void markLatestOnly(bool isLatestOnly);
    /// The largest number of rows; -1 for all.
    void setLimit(int limit);

    [[nodiscard]] const SharedData& data() const;

private:
    QSharedDataPointer<SharedData> data_;
};

struct DBIF_Query::SharedData : public QSharedData
{
    explicit SharedData(DBIF_Connection given);
    SharedData(const SharedData& other);
    SharedData& operator=(const SharedData&) = delete;
    SharedData(SharedData&&) = delete;
    SharedData& operator=(SharedData&&) = delete;
    ~SharedData();

    /// The algorithm that computes no joins, shared by all queries that were given none.
    static DBIF_QueryJoinAlgorithm* getNullQueryJoinAlgorithm();

    DBIF_Connection connection;
    bool distinct = false;
    bool latestOnly = false;
    QList<Column> columns;
    /// The tables that were added by name, and those that the query needs in all.
    QSet<QString> addedTables;
    QSet<QString> tables;
    std::unique_ptr<DBIF_QueryCondition> condition;
    QList<Order> orders;
    QList<Join> joins;
    int limit = -1;
    int offset = 0;
    DBIF_QueryJoinAlgorithm* joinAlgorithm;
};
