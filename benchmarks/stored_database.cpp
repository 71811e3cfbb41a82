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

StoredDatabase::StoredDatabase(std::string name, std::function<DatabasePair()> paths)
    : name_(std::move(name)), paths_(std::move(paths))
{}

void StoredDatabase::open()
{
    if (peer_ == nullptr) {
        const DatabasePair pair = paths_();
        std::string errors;
        require(dbapi::db_create_sqlite_connection(name_, pair.library, &errors), errors);
        peer_ = std::make_unique<PeerDatabase>(pair.peer);
    }
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

Values read_texts(PeerStatement& statement)
{
    const int columns = statement.columns();
    Values values(static_cast<std::size_t>(columns));
    while (statement.step()) {
        for (int column = 0; column < columns; ++column) {
            values[static_cast<std::size_t>(column)].push_back(statement.text(column));
        }
    }
    return values;
}

std::set<int> read_ids(PeerStatement& statement)
{
    std::set<int> ids;
    while (statement.step()) {
        ids.insert(ids.end(), statement.integer(0));
    }
    return ids;
}

void read_newest_time(PeerDatabase& database)
{
    PeerStatement(database, R"(
SELECT max(latest) FROM (SELECT max(modified_time) AS latest FROM catalog_entry
    UNION ALL SELECT max(modified_time) FROM routine
    UNION ALL SELECT max(modified_time) FROM die
    UNION ALL SELECT max(modified_time) FROM device
    UNION ALL SELECT max(modified_time) FROM measurement
    UNION ALL SELECT max(modified_time) FROM measurement_condition
    UNION ALL SELECT max(modified_time) FROM setup))")
        .run();
}
} // namespace bench
