#include "benchmarks/stored_database.h"

#include "dbapi/dbapi.h"

#include <stdexcept>

namespace bench {
namespace {
void require(bool isDone, const std::string& errors)
{
    if (!isDone) {
        throw std::runtime_error(errors);
    }
}
} // namespace

StoredDatabase::StoredDatabase(
    DataStore store,
    std::string name,
    std::function<DatabasePair(const DataStore& store)> make)
    : store_(std::move(store)), name_(std::move(name)), make_(std::move(make))
{}

void StoredDatabase::open()
{
    if (peer_ != nullptr) {
        return;
    }
    const DatabasePair pair = make_(store_);
    const dbif::ConnectionParameters place = store_.engine().place(pair.library);
    std::string errors;
    require(
        dbapi::db_create_connection(
            // The stored record names the engine, not Qt's driver of it.
            place.driver.substr(1), name_, place.database, place.host, place.user, place.password,
            place.port == 0 ? "" : std::to_string(place.port), &errors),
        errors);
    peer_ = store_.engine().openPeer(pair.peer);
}

std::vector<std::string>
StoredDatabase::values(const std::string& keyword, const std::string& query) const
{
    std::vector<std::string> values;
    std::string errors;
    require(
        dbapi::db_get_values_for_keyword_as_text(name(), keyword, &values, query, &errors), errors);
    return values;
}

Values
StoredDatabase::values(const std::vector<std::string>& keywords, const std::string& query) const
{
    Values values;
    std::string errors;
    require(dbapi::db_get_values_for_keywords(name(), keywords, &values, query, &errors), errors);
    return values;
}

Numbers StoredDatabase::numbers(
    const std::vector<std::string>& keywords,
    dbapi::ColumnOptions::Order order) const
{
    dbapi::ColumnOptions options;
    options.order = order;
    dbapi::ColumnTable table;
    std::string errors;
    require(dbapi::db_get_columns(name(), keywords, &table, "", options, &errors), errors);
    Numbers numbers;
    for (dbapi::ValueColumn& column : table.columns) {
        numbers.push_back(std::move(column.numbers));
    }
    return numbers;
}

std::set<int> StoredDatabase::deviceIds(const std::string& query) const
{
    std::set<int> ids;
    std::string errors;
    require(dbapi::db_get_device_ids_from_query(name(), &ids, query, &errors), errors);
    return ids;
}

std::vector<std::string> StoredDatabase::deviceValues(int id, const std::string& keyword) const
{
    std::vector<std::string> values;
    std::string errors;
    require(
        dbapi::db_get_key_values_for_device_id_as_text(name(), id, keyword, &values, "", &errors),
        errors);
    return values;
}
} // namespace bench
