#include "dbapi/wall/catalogue_reader.h"

#include "dbapi/key/catalogue_sql.h"
#include "dbapi/key/key_catalogue.h"
#include "dbapi/key/record_selection.h"
#include "dbapi/wall/keyword_map.h"
#include "dbapi/words/database_fault.h"
#include "dbapi/words/vocabulary.h"
#include "dbif/connection/transaction_guard.h"
#include "dbif/host/error_text.h"

namespace {
/// The category of a row in short form; empty for tables whose keys have none.
std::string row_category(const std::string& tablename, const QSqlQuery& row)
{
    if (tablename == "setup") {
        return dbapi::convert_setup_is_input_to_short_category_name(row.value(2).toInt() != 0);
    }
    return tablename == "device" ? dbif::to_utf8(row.value(2).toString()) : std::string();
}
} // namespace

bool dbapi_get_keynames_for_table_as_query_results(
    DBIF_Connection& connection,
    QSqlQuery* query,
    const std::set<dbapiKeyTermC>& keyTerms,
    const DBIF_QueryCondition* condition,
    const std::string& tablename,
    bool flag,
    std::string* error)
{
    dbif::clear_error(error);
    try {
        const dbif::ReadTransaction transaction(connection);
        const dbapi::RecordSelection selection =
            dbapi::select_records(connection, tablename, condition, flag);
        *query = connection.query(
            dbapi::catalogue_statement(tablename, keyTerms, selection.sql), 0, __FILE__, __LINE__);
        return true;
    } catch (const DBIF_Exception& exception) {
        dbif::deliver_error(error, dbapi::database_fault(exception).text);
        return false;
    }
}

void dbapi_update_map_of_keynames_from_query_results(
    const std::string& tablename,
    QSqlQuery& query,
    std::map<std::string, std::set<std::string>>* map)
{
    while (query.next()) {
        const std::string attributes =
            row_category(tablename, query) + "|" + dbif::to_utf8(query.value(1).toString());
        add_keyword_to_map2(dbif::to_utf8(query.value(0).toString()), tablename, attributes, map);
    }
}

void dbapi_get_set_of_keynames_from_query_results(
    const std::string& tablename,
    const std::string& keyFormat,
    QSqlQuery& query,
    std::set<std::string>* set)
{
    while (query.next()) {
        set->insert(dbapi::listed_key(tablename, query, keyFormat == "SHORT"));
    }
}

bool dbapi_get_keynames_for_table_and_update_map(
    DBIF_Connection& connection,
    const DBIF_QueryCondition* condition,
    const std::string& tablename,
    std::map<std::string, std::set<std::string>>* map,
    bool flag,
    std::string* error)
{
    QSqlQuery query;
    if (!dbapi_get_keynames_for_table_as_query_results(
            connection, &query, {}, condition, tablename, flag, error)) {
        return false;
    }
    dbapi_update_map_of_keynames_from_query_results(tablename, query, map);
    return true;
}

bool dbapi_get_keynames_for_table_as_set(
    DBIF_Connection& connection,
    std::set<std::string>* set,
    const DBIF_QueryCondition* condition,
    const std::string& tablename,
    const std::string& keyFormat,
    bool flag,
    std::string* error)
{
    QSqlQuery query;
    if (!dbapi_get_keynames_for_table_as_query_results(
            connection, &query, {}, condition, tablename, flag, error)) {
        return false;
    }
    dbapi_get_set_of_keynames_from_query_results(tablename, keyFormat, query, set);
    return true;
}
