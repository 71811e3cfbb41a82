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

/// Computes how the tables of a query are joined. Called by `DBIF_Query::preprocessQuery`, with the
/// query's tables complete and its joins empty.
class DBIF_QueryJoinAlgorithm
{
    Q_DISABLE_COPY_MOVE(DBIF_QueryJoinAlgorithm)

public:
    virtual ~DBIF_QueryJoinAlgorithm() = default;

    /// Adds joins to the query by `addJoin`: one for each table that is not to stand by itself in
    /// the FROM.
    virtual void computeJoins(DBIF_Query& query) = 0;

protected:
    DBIF_QueryJoinAlgorithm() = default;
};

/// A query as data: result columns, condition, order, and how its tables are joined. Copies share
/// the data until one of them changes it. Making and changing a query asks no database; generating
/// its SQL may. It is run by `queryValues`.
///
/// A column is named by its table and name: a record table with one of its fixed columns ("device",
/// "name"), or a data table with the unique key of a dynamic column ("device_data",
/// "PHYSICAL|DOUBLE|W"). A `DBIF_VantoQuery` checks the names when its SQL is generated, and
/// any query when it is run.
class DBIF_Query
{
public:
    /// A result column.
    struct Column
    {
        QString table;
        QString column;
        /// Tells whether the column is named "<table>_<column>" in the result, as sub-selects of
        /// ids are.
        bool isNamedByTable = false;
    };

    /// A column to sort by.
    struct Order
    {
        QString table;
        QString column;
        /// "ASC" or "DESC".
        QString direction;
    };

    /// A table with the condition that joins it to those before.
    struct Join
    {
        QString table;
        /// The joining condition, in SQL.
        QString condition;
    };

    struct SharedData;

    /// A query without columns or condition, for all records, old ones too, in any order. Keeps the
    /// handle.
    explicit DBIF_Query(DBIF_Connection connection);
    virtual ~DBIF_Query();
    DBIF_Query(const DBIF_Query& other);
    DBIF_Query& operator=(const DBIF_Query& other);
    DBIF_Query(DBIF_Query&& other) noexcept;
    DBIF_Query& operator=(DBIF_Query&& other) noexcept;

    /// The SELECT statement; `isOrdered` adds order and limit. Completes the query by
    /// `preprocessQuery` first. Throws `DBIF_Exception` on a database error.
    [[nodiscard]] virtual QString generateSql(bool isOrdered);
    /// The statement that counts the rows of the query, up to its limit. Otherwise as
    /// `generateSql`.
    [[nodiscard]] virtual QString generateCountSql();
    /// "ORDER BY ..." and "LIMIT ...", each with a newline before it; empty when there is none.
    [[nodiscard]] virtual QString generateOrder();
    [[nodiscard]] virtual QString generateLimit();
    /// Brings the tables and joins of the query up to date: those of its columns and condition and
    /// those that were added by name, joined by its join algorithm. Joins that were added before
    /// are dropped.
    virtual void preprocessQuery();

    /// Appends a result column, and returns it.
    Column addColumn(QString table, QString column, bool isNamedByTable);
    /// Inserts a result column before the one at `position`, counted from 0; at most the number of
    /// columns. Returns it.
    Column addColumnAt(QString table, QString column, int position);

    /// The same for a fixed column of a record class.
    template <typename T>
    Column addColumnAt(const DBIF_FixedColumn<T>& column, int position)
    {
        return addColumnAt(T::MASTER_TABLE_NAME, column.getColumnName(), position);
    }

    /// Appends a column to sort by, behind those added before; it need not be a result column.
    void addOrder(QString table, QString column, bool isAscending);

    /// The same for a fixed column of a record class.
    template <typename T>
    void addOrder(const DBIF_FixedColumn<T>& column, bool isAscending)
    {
        addOrder(T::MASTER_TABLE_NAME, column.getColumnName(), isAscending);
    }

    /// Adds a table to the query that no column names.
    void addTable(QString table);
    /// Stores a copy; the caller keeps its argument. Null removes the condition.
    void setCondition(const DBIF_QueryCondition* condition);
    void setCondition(const DBIF_SingleColumnCondition& condition);
    void setCondition(const DBIF_CompoundQueryCondition& condition);
    /// Sets the algorithm that computes the joins; not null. It is not owned and has to outlive the
    /// query and its copies.
    void setJoinAlgorithm(DBIF_QueryJoinAlgorithm* algorithm);
    /// Appends a join. For join algorithms: `preprocessQuery` drops all others.
    void addJoin(const Join& join);
    /// Tells whether equal rows are returned once.
    void markDistinct();
    void markDistinct(bool isDistinct);
    /// Tells whether superseded measurements and setups, and what belongs to them, do not count.
    void markLatestOnly(bool isLatestOnly);
    /// The largest number of rows, 0 or more; -1 for all.
    void setLimit(int limit);

    /// The query's data, valid until the query changes or ends.
    [[nodiscard]] const SharedData& data() const;

private:
    QSharedDataPointer<SharedData> data_;
};

/// The data that copies of a query share. Copying it copies the condition.
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
    /// In the order of the result.
    QList<Column> columns;
    /// The tables that were added by name.
    QSet<QString> addedTables;
    /// All tables of the query, as `preprocessQuery` found them.
    QSet<QString> tables;
    /// Null when there is none.
    std::unique_ptr<DBIF_QueryCondition> condition;
    /// The first one counts most.
    QList<Order> orders;
    QList<Join> joins;
    /// -1: all rows.
    int limit = -1;
    /// Kept and not used.
    int offset = 0;
    /// Never null; not owned.
    DBIF_QueryJoinAlgorithm* joinAlgorithm;
};
