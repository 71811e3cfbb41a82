#include "dbapi/wall/query_parser.h"

#include "dbapi/query/query_condition.h"
#include "dbapi/wall/keyword_resolution.h"
#include "dbapi/wall/map_resolution.h"
#include "dbif/host/error_text.h"

#include <iostream>

bool dbapi_extract_query_terms_impl(
    DBIF_Connection& /*connection*/,
    const KTString& query,
    std::set<std::string>* terms,
    KTString* errors,
    bool allowBareTerm)
{
    errors->clear();
    const dbapi::QueryTree tree = dbapi::parse_query_syntax(query.str(), allowBareTerm);
    if (const dbapi::Fault* fault = dbapi::find_syntax_fault(*tree.root)) {
        *errors = fault->text;
        return false;
    }
    terms->merge(dbapi::keywords_of(*tree.root));
    return true;
}

bool dbapi_extract_and_resolve_query_term_keywords(
    DBIF_Connection& connection,
    const std::string& query,
    std::map<std::string, std::set<std::string>>* resolved,
    bool latestOnly,
    KTString* errors)
{
    errors->clear();
    std::set<std::string> terms;
    if (!dbapi_extract_query_terms_impl(connection, query, &terms, errors, false)) {
        return false;
    }
    std::string reason;
    if (!dbapi_resolve_set_of_keywords(connection, terms, resolved, nullptr, latestOnly, &reason)) {
        *errors = reason;
        return false;
    }
    return true;
}

DBIF_QueryCondition* dbapi_parse_query(
    DBIF_Connection& connection,
    const KTString& query,
    const std::map<std::string, std::set<std::string>>& resolved,
    bool /*latestOnly*/,
    KTString* errors,
    bool allowBareTerm)
{
    KTString message;
    try {
        const dbapi::QueryTree tree = dbapi::parse_query_syntax(query.str(), allowBareTerm);
        const dbapi::Resolutions resolutions =
            dbapi::resolve_terms_by_map(connection, *tree.root, resolved);
        auto condition = dbapi::condition_of(tree, *tree.root, resolutions);
        if (errors != nullptr) {
            errors->clear();
        }
        return condition.release();
    } catch (const dbapi::FaultError& error) {
        message = error.fault().text;
    } catch (DBIF_Exception& exception) {
        message = convert_DBIF_Exception_to_string(&exception);
    }
    if (errors != nullptr) {
        *errors = message;
    } else {
        std::cerr << message.str();
    }
    return nullptr;
}
