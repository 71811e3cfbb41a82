#include "dbapi/key/key_catalogue.h"

#include "dbapi/key/catalogue_sql.h"
#include "dbapi/key/record_selection.h"
#include "dbapi/words/vocabulary.h"
#include "dbif/connection/column_store.h"
#include "dbif/connection/transaction_guard.h"
#include "dbif/host/host_string.h"

#include <QSqlQuery>
#include <QVariant>

#include <algorithm>
#include <optional>
#include <set>

namespace dbapi {
namespace {
/// SQLite refuses expressions of more than a thousand levels, and a term is one.
constexpr std::size_t kMostTerms = 200;

using KeyTerms = std::set<dbapiKeyTermC>;

/// The terms that ask one table, some in each statement.
std::vector<KeyTerms> terms_for(const std::string& table, const std::vector<WantedKey>& wanted)
{
    std::vector<KeyTerms> parts;
    for (const WantedKey& key : wanted) {
        if (!key.table.empty() && key.table != table) {
            continue;
        }
        if (parts.empty() || parts.back().size() >= kMostTerms) {
            parts.emplace_back();
        }
        parts.back().emplace(key.name, table, key.category, key.datatype);
    }
    return parts;
}

/// The definition that a row of the catalogue describes.
std::optional<KeyCandidate>
read_row(DBIF_Connection& connection, const dbif::TableInfo& table, const QSqlQuery& row)
{
    const auto kind = dbif::value_kind(row.value(1).toString());
    std::string category;
    if (table.keys == dbif::KeyKind::Direction) {
        category = row.value(2).toInt() != 0 ? "IN" : "OUT";
    } else {
        category = dbif::to_utf8(row.value(2).toString());
    }
    const std::string key = dbif::column_key(
        category, kind.value_or(dbif::ValueKind::Text), dbif::to_utf8(row.value(0).toString()));
    const dbif::KeyDefinition* definition =
        dbif::ColumnStore::of(connection).find(connection, table.table, key);
    return definition == nullptr ? std::nullopt
                                 : std::optional(candidate_of(table.table, *definition));
}
} // namespace

std::vector<KeyCandidate> held_keys(
    DBIF_Connection& connection,
    const std::vector<WantedKey>& wanted,
    const DBIF_QueryCondition* condition,
    bool latestOnly)
{
    const dbif::ReadTransaction transaction(connection);
    std::vector<KeyCandidate> held;
    for (const dbif::RecordTable recordTable : dbif::kRecordTables) {
        const dbif::TableInfo& table = dbif::table_info(recordTable);
        const std::string name(table.name);
        const std::vector<KeyTerms> parts =
            table.keys == dbif::KeyKind::None ? std::vector<KeyTerms>() : terms_for(name, wanted);
        if (parts.empty()) {
            continue;
        }
        const RecordSelection selection = select_records(connection, name, condition, latestOnly);
        for (const KeyTerms& terms : parts) {
            QSqlQuery rows = connection.query(
                catalogue_statement(name, terms, selection.sql), 0, __FILE__, __LINE__);
            while (rows.next()) {
                if (auto candidate = read_row(connection, table, rows)) {
                    held.push_back(std::move(*candidate));
                }
            }
        }
    }
    return held;
}

std::set<std::string> held_key_names(
    DBIF_Connection connection,
    const std::string& tablename,
    const DBIF_QueryCondition* condition,
    bool latestOnly,
    bool isShort)
{
    const dbif::ReadTransaction transaction(connection);
    const RecordSelection selection = select_records(connection, tablename, condition, latestOnly);
    QSqlQuery rows =
        connection.query(catalogue_statement(tablename, {}, selection.sql), 0, __FILE__, __LINE__);
    std::set<std::string> names;
    while (rows.next()) {
        names.insert(listed_key(tablename, rows, isShort));
    }
    return names;
}

std::string listed_key(const std::string& tablename, const QSqlQuery& row, bool isShort)
{
    const std::string name = dbif::to_utf8(row.value(0).toString());
    if (isShort) {
        return name;
    }
    const std::string datatype = dbif::trimmed(dbif::to_utf8(row.value(1).toString()));
    const std::string category =
        tablename == "setup"
            ? convert_setup_is_input_to_full_category_name(row.value(2).toInt() != 0)
            : dbif::trimmed(dbif::to_utf8(row.value(2).toString()));
    std::string entry = "Key(" + name;
    entry += "," + tablename;
    if (!datatype.empty()) {
        entry += "," + convert_to_full_datatype_name(datatype);
    }
    if (!category.empty()) {
        // The blank stands in for the data type.
        entry += datatype.empty() ? ", ," : ",";
        entry += category;
    }
    return entry + ")";
}
} // namespace dbapi
