#include "dbapi/db_values.h"

#include "dbapi/call/public_call.h"
#include "dbapi/read/keyword_read.h"
#include "dbif/connection/managed_connection.h"
#include "dbif/engine/read_trace.h"
#include "dbif/host/error_text.h"

namespace {
/// Runs a read, and writes its columns as texts.
std::vector<std::vector<std::string>> read_texts(dbif::ColumnRead read)
{
    const DBIF_Connection connection = read.connection;
    dbif::QueryResult result = dbif::read_columns(std::move(read));
    const dbif::TraceStep step(connection.inner().trace(), "write the values as text");
    std::vector<std::vector<std::string>> texts;
    for (dbif::ResultColumn& column : result.columns) {
        texts.push_back(dbif::take_texts(&column));
    }
    return texts;
}

bool get_values_of_keyword(
    bool distinct,
    const std::string& connectionName,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors)
{
    values->clear();
    return dbapi::run_call(connectionName, query, errors, [&] {
        const dbapi::Selection selection = dbapi::select_records_of_call(connectionName, query);
        *values =
            std::move(read_texts(dbapi::read_of_keyword(selection, keyword, distinct)).front());
    });
}
} // namespace

bool dbapi_get_values_for_keywords(
    bool distinct,
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    std::vector<std::vector<std::string>>* values,
    const std::string& query,
    std::string* errors)
{
    values->clear();
    dbif::clear_error(errors);
    return dbapi::run_call(connectionName, query, errors, [&] {
        dbif::ColumnRead read = dbapi::read_of_keywords(connectionName, keywords, query);
        for (std::size_t place = 0; place < read.columns.size(); ++place) {
            read.order.push_back({place, true});
        }
        read.distinct = distinct;
        *values = read_texts(std::move(read));
    });
}

namespace dbapi {
bool db_get_values_for_keyword_as_text(
    const std::string& connectionName,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors)
{
    return get_values_of_keyword(false, connectionName, keyword, values, query, errors);
}

bool db_get_distinct_values_for_keyword_as_text(
    const std::string& connectionName,
    const std::string& keyword,
    std::vector<std::string>* values,
    const std::string& query,
    std::string* errors)
{
    return get_values_of_keyword(true, connectionName, keyword, values, query, errors);
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
