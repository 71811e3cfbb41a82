#include "dbapi/db_values.h"

#include "dbapi/call/public_call.h"
#include "dbapi/keyword_query.h"
#include "dbapi/wall/value_retrieval.h"
#include "dbif/engine/read_trace.h"
#include "dbif/host/error_text.h"
#include "dbif/retrieval/query_run.h"
#include "dbif/retrieval/vanto_query.h"

namespace {
bool get_values_for_keyword(
    bool distinct,
    const std::string& connectionName,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors)
{
    values->clear();
    const dbapi::PublicCall call(connectionName, query, errors);
    if (!call.hasBegun()) {
        return false;
    }
    std::vector<std::string> found;
    std::string reason;
    if (!dbapi_get_text_values_for_unresolved_keyword(
            distinct, connectionName, keyword, &found, query, &reason)) {
        dbif::deliver_error(errors, reason);
        return false;
    }
    *values = std::move(found);
    return true;
}

std::vector<std::vector<std::string>> read_rows(const dbapi::KeywordQuery& given, bool distinct)
{
    DBIF_VantoQuery query = given.query();
    for (const dbapi::QueryColumn& column : given.columns) {
        query.addOrder(column.table, column.column, true);
    }
    query.markDistinct(distinct);
    dbif::QueryResult result = dbif::run_query(query);
    const dbif::TraceStep step(given.connection.trace(), "write the values as text");
    std::vector<std::vector<std::string>> texts;
    for (dbif::ResultColumn& column : result.columns) {
        texts.push_back(dbif::take_texts(&column));
    }
    return texts;
}
} // namespace

bool dbapi_get_values_for_keywords(
    bool distinct,
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    std::vector<std::vector<std::string>>* values,
    const std::string& givenQuery,
    std::string* errors)
{
    values->clear();
    dbif::clear_error(errors);
    const dbapi::PublicCall call(connectionName, givenQuery, errors);
    if (!call.hasBegun()) {
        return false;
    }
    std::string reason;
    const bool isRead = dbapi::with_keyword_query(
        connectionName, keywords, givenQuery, &reason,
        [&](const dbapi::KeywordQuery& query) { *values = read_rows(query, distinct); });
    if (!isRead) {
        dbif::deliver_error(errors, reason);
    }
    return isRead;
}

namespace dbapi {
bool db_get_values_for_keyword_as_text(
    const std::string& connectionName,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors)
{
    return get_values_for_keyword(false, connectionName, keyword, values, query, errors);
}

bool db_get_distinct_values_for_keyword_as_text(
    const std::string& connectionName,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors)
{
    return get_values_for_keyword(true, connectionName, keyword, values, query, errors);
}

bool db_get_values_for_keywords(
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    std::vector<std::vector<std::string>>* values,
    const std::string& query,
    std::string* errors)
{
    return dbapi_get_values_for_keywords(false, connectionName, keywords, values, query, errors);
}

bool db_get_distinct_values_for_keywords(
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    std::vector<std::vector<std::string>>* values,
    const std::string& query,
    std::string* errors)
{
    return dbapi_get_values_for_keywords(true, connectionName, keywords, values, query, errors);
}
} // namespace dbapi
