#pragma once

#include "dbif/query/join_algorithm.h"
#include "dbif/query/query.h"
#include "dbif/retrieval/result_column.h"
#include "dbif/value/data_type.h"

#include <QList>

/// A query for record data. Its tables are joined along the links of their records; a condition on
/// a table below those of the result selects the records that have something below which satisfies
/// it; keys are looked up in their companion tables.
///
/// The SQL is complete but for points: where a key of setups is a column or is compared, it yields
/// setups (at least those wanted), and running the query decides point by point. A sub-select of
/// ids (one column, named by its table) that would select every record is the empty text.
///
/// Generating throws `DBIF_Exception` when a column does not exist or a key is not defined, when
/// the condition has more than 30,000 comparisons, and on a database error. Nothing in the query is
/// changed by that but its tables and joins.
class DBIF_VantoQuery : public DBIF_Query
{
public:
    /// A query without columns or condition, joined by `DBIF_VantoJoinAlgorithm`. Keeps the handle.
    explicit DBIF_VantoQuery(DBIF_Connection connection);

    [[nodiscard]] QString generateSql(bool isOrdered) override;
    [[nodiscard]] QString generateCountSql() override;
    [[nodiscard]] QString generateOrder() override;
    void preprocessQuery() override;

    /// Does nothing; published for hosts that call it.
    void markAbstract() {}
};

/// Runs the query and returns the values of its first column as objects of a data type (a published
/// name; another reads as text), which the caller owns. Empty when the query has no column. The
/// query's own connection is used. Throws `DBIF_Exception` when a column does not exist, on damaged
/// data and on a database error; nothing is left to delete then.
// NOLINTNEXTLINE(readability-identifier-naming): a published name
QList<DBIF_DataType*> queryValues(DBIF_Connection connection, DBIF_Query* query, QString datatype);

namespace dbif {
/// The values of a result column, row by row, as objects of a data type, which the caller owns.
QList<DBIF_DataType*> value_objects(const ResultColumn& column, const QString& datatype);
} // namespace dbif
