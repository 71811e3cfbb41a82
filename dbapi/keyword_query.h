#pragma once

#include "dbif/condition/condition.h"
#include "dbif/connection/connection.h"
#include "dbif/retrieval/vanto_query.h"

#include <QString>

#include <functional>
#include <string>
#include <vector>

namespace dbapi {
/// The result column of one keyword.
struct QueryColumn
{
    /// Of the keyword.
    unsigned int position;
    /// As `DBIF_Query::Column` names it.
    QString table;
    QString column;
};

/// Several keywords under a query string, found and ready to be read.
struct KeywordQuery
{
    DBIF_Connection& connection;
    /// In the order of the keywords.
    std::vector<QueryColumn> columns;
    const DBIF_QueryCondition* condition;
    bool latestOnly;

    /// The query for the columns under the condition, without an order.
    [[nodiscard]] DBIF_VantoQuery query() const;
};

/// Finds the columns of the keywords and the condition of the query string, inside a public call,
/// and gives them to `use`, for as long as that runs. False, with the text in `reason`, when there
/// is no keyword, or one of them or the query string means nothing.
bool with_keyword_query(
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    const std::string& queryString,
    std::string* reason,
    const std::function<void(const KeywordQuery&)>& use);
} // namespace dbapi
