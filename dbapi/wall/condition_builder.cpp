#include "dbapi/wall/condition_builder.h"

#include "dbapi/call/call_cache.h"
#include "dbapi/wall/alldata_command.h"
#include "dbapi/wall/keyword_resolution.h"
#include "dbapi/wall/query_parser.h"
#include "dbif/condition/constant_condition.h"
#include "dbif/engine/read_trace.h"
#include "dbif/host/error_text.h"

namespace {
bool resolve_terms(
    DBIF_Connection& connection,
    const std::set<std::string>& terms,
    bool latestOnly,
    std::map<std::string, std::set<std::string>>* resolved,
    KTString* errors)
{
    const dbif::TraceStep step(connection.trace(), "resolve the keywords");
    std::string reason;
    if (!dbapi::resolve_set_of_keywords_by_definition(
            connection, terms, resolved, nullptr, latestOnly, &reason)) {
        *errors = reason;
        return false;
    }
    return true;
}

/// The condition of a query without command; null on failure, with the reason in `errors`.
DBIF_QueryCondition* build_condition(
    DBIF_Connection& connection,
    const std::string& query,
    bool latestOnly,
    KTString* errors)
{
    const dbif::TraceStep step(connection.trace(), "parse the query");
    std::set<std::string> terms;
    if (!dbapi_extract_query_terms_impl(connection, query, &terms, errors, false)) {
        return nullptr;
    }
    try {
        std::map<std::string, std::set<std::string>> resolved;
        if (!resolve_terms(connection, terms, latestOnly, &resolved, errors)) {
            return nullptr;
        }
        const dbif::TraceStep building(connection.trace(), "build the condition");
        return dbapi_parse_query(connection, query, resolved, latestOnly, errors, false);
    } catch (DBIF_Exception& exception) {
        *errors = convert_DBIF_Exception_to_string(&exception);
        return nullptr;
    }
}
} // namespace

bool dbapi_get_query_str_dbif_query_condition_ptr(
    DBIF_Connection& connection,
    const std::string& query,
    DBIF_QueryCondition** condition,
    bool* latestOnly,
    std::string* errors)
{
    if (dbapi_cache_is_valid() && !dbapi_cache_updating_self() &&
        *dbapi_get_cached_connection() == connection && dbapi_get_cached_query_str() == query) {
        *condition = dbapi_get_cached_query_condition(latestOnly);
        return true;
    }
    std::string rest = dbif::trimmed(query);
    std::string afterCommand;
    std::string commandErrors;
    const bool isAllData = dbapi_found_and_removed_alldata_condition_from_query_str(
        rest, &afterCommand, nullptr, &commandErrors);
    if (!commandErrors.empty()) {
        dbif::deliver_error(errors, commandErrors);
        return false;
    }
    if (isAllData) {
        rest = afterCommand;
    }
    KTString reason;
    DBIF_QueryCondition* built = rest.empty()
                                     ? new DBIF_TrueCondition()
                                     : build_condition(connection, rest, !isAllData, &reason);
    if (built == nullptr) {
        std::string message =
            "Error: Invalid query condition string encountered: \"" + query + "\".\n";
        dbif::deliver_error(
            errors, reason.isEmpty() ? message : message + "Error(s) reported: \n" + reason.str());
        return false;
    }
    *condition = built;
    *latestOnly = !isAllData;
    return true;
}
