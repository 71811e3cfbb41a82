#pragma once

#include "dbif/data_type.h"
#include "dbif/join_algorithm.h"
#include "dbif/query.h"

#include <QList>

/// A query for record data: its tables are joined along the links of their records, conditions on
/// tables below the result's select records that have something below which satisfies them, and
/// keys are found in their companion tables.
///
/// The SQL is complete but for points: where a key of setups is a column or is compared, it yields
/// setups (at least those wanted). A sub-select of ids (one column, named by its table) that would
/// select every record is the empty text.
class DBIF_VantoQuery : public DBIF_Query
{
public:
    explicit DBIF_VantoQuery(DBIF_Connection connection);

    [[nodiscard]] QString generateSql(bool isOrdered) override;
    [[nodiscard]] QString generateCountSql() override;
    [[nodiscard]] QString generateOrder() override;
    void preprocessQuery() override;

    void markAbstract() {}
};

/// The values of the query's first column as objects of a data type, which the caller owns. Throws
/// `DBIF_Exception` as running a query does.
// NOLINTNEXTLINE(readability-identifier-naming): a published name
QList<DBIF_DataType*> queryValues(DBIF_Connection connection, DBIF_Query* query, QString datatype);

namespace dbif {
/// The same values as text, without an object for each.
std::vector<std::string> query_texts(const DBIF_Query& query);
} // namespace dbif
