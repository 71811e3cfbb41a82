#include "dbapi/call/cache_refresh.h"
#include "dbapi/dbapi.h"
#include "dbif/connection/bulk_cursor.h"
#include "dbif/connection/managed_connection.h"
#include "dbif/connection/newest_time.h"
#include "dbif/connection/traced_connection.h"

#include "tests/support/case_table.h"
#include "tests/support/device_series.h"
#include "tests/support/lab_database.h"
#include "tests/support/sqlite_file.h"

#include <cctype>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

using namespace test_support; // NOLINT(google-build-using-namespace)

// The statements of typical calls and the plans by which the engines run them: none passes over a
// large table, or over all that has a key, unless the case says that it needs to.
namespace {
using Words = std::vector<std::string>;

/// More rows of one table than a step of a plan may pass over unnoticed.
constexpr std::size_t kManyRows = 10'000;
constexpr const char* kName = "plans";

/// One call: what it is asked for, its query, and what it returns.
struct Call
{
    Words words;
    std::string query;
    std::string errors;
    std::size_t found = 0;
};

bool count(bool isDone, std::size_t found, Call* call)
{
    call->found = found;
    return isDone;
}

bool read_values(Call* call)
{
    std::vector<Words> rows(1);
    const bool isDone =
        call->words.size() == 1
            ? dbapi::db_get_values_for_keyword_as_text(
                  kName, call->words.front(), rows.data(), call->query, &call->errors)
            : dbapi::db_get_values_for_keywords(
                  kName, call->words, &rows, call->query, &call->errors);
    return count(isDone, isDone ? rows.front().size() : 0, call);
}

bool read_distinct(Call* call)
{
    std::vector<Words> rows;
    const bool isDone = dbapi::db_get_distinct_values_for_keywords(
        kName, call->words, &rows, call->query, &call->errors);
    return count(isDone, isDone ? rows.front().size() : 0, call);
}

bool read_ids(Call* call)
{
    std::set<int> ids;
    const bool isDone = dbapi_get_table_ids_from_query_for_tablename(
        kName, call->words.at(0), &ids, call->query, &call->errors);
    return count(isDone, ids.size(), call);
}

bool read_record(Call* call)
{
    Words values;
    const bool isDone = dbapi_get_text_key_values_for_table_id_for_tablename(
        kName, call->words.at(0), std::stoi(call->words.at(1)), call->words.at(2), &values,
        call->query, &call->errors);
    return count(isDone, values.size(), call);
}

bool read_keys(Call* call)
{
    std::set<std::string> keys;
    const bool isDone = dbapi::db_get_keynames_in_table(
        kName, call->words.at(0), &keys, call->query, "SHORT", &call->errors);
    return count(isDone, keys.size(), call);
}

bool read_statistics(Call* call)
{
    std::vector<dbapi::KeyStatistics> keys;
    const bool isDone =
        dbapi::db_get_key_statistics(kName, call->words.at(0), &keys, call->query, &call->errors);
    return count(isDone, keys.size(), call);
}

bool read_curves(Call* call)
{
    dbapi::CurveSet curves;
    const bool isDone =
        dbapi::db_get_curves(kName, call->words, &curves, call->query, &call->errors);
    return count(isDone, curves.curves.size(), call);
}

bool read_sample(Call* call)
{
    dbapi::ValueSample sample;
    const bool isDone =
        dbapi::db_get_value_sample(kName, call->words.at(0), &sample, call->query, &call->errors);
    return count(isDone, sample.values.size(), call);
}

bool read_setup(Call* call)
{
    Words keys;
    std::vector<Words> values;
    const bool isDone = dbapi::db_get_setup_keys_values_for_setup_id_as_text(
        kName, std::stoi(call->words.at(0)), &keys, &values, &call->errors);
    return count(isDone, keys.size(), call);
}

bool read_newest_time(Call* call)
{
    return count(dbif::newest_time(*dbapi_get_cached_connection()).isValid(), 1, call);
}

const std::map<std::string, bool (*)(Call*)> kCalls{
    {"values", read_values},         {"distinct", read_distinct}, {"ids", read_ids},
    {"record", read_record},         {"keys", read_keys},         {"curves", read_curves},
    {"statistics", read_statistics}, {"sample", read_sample},     {"setup", read_setup},
    {"newest", read_newest_time}};

/// Finds the steps of plans that pass over many rows.
class PlanReader
{
public:
    explicit PlanReader(DBIF_Connection connection)
    {
        dbif::BulkCursor names(connection, connection.inner().dialect().listTables());
        while (names.next()) {
            rows_[std::string(names.text(0))] = 0;
        }
        for (auto& [table, rows] : rows_) {
            dbif::SqlText sql;
            dbif::BulkCursor counted(
                connection, sql << "SELECT count(*) FROM " << dbif::SqlName(table));
            rows = counted.next() ? static_cast<std::size_t>(counted.integer(0)) : 0;
        }
    }

    /// "all of T" where a statement passes over every row of the large table T or of an index of
    /// it, "much of T" where it passes over many, such as all that have a key.
    [[nodiscard]] std::set<std::string> passes(const dbif::TracedStatement& statement) const
    {
        std::set<std::string> derived;
        std::set<std::string> found;
        for (const dbif::PlanStep& step : statement.plan) {
            for (const std::string word : {"MATERIALIZE ", "CO-ROUTINE "}) {
                if (step.text.starts_with(word)) {
                    derived.insert(step.text.substr(word.size()));
                }
            }
            if (step.table.empty() || derived.contains(step.table)) {
                continue;
            }
            const bool isAll = step.isWholeTable;
            if (!isAll && !looksAtMany(statement, step)) {
                continue;
            }
            const std::string table = storedTable(statement.sql, step.table);
            const auto known = rows_.find(table);
            // What is no table of the database has to be a temporary list of ids.
            const bool isLarge =
                known == rows_.end() ? !table.starts_with("selected_") : known->second > kManyRows;
            if (isLarge) {
                found.insert((isAll ? "all of " : "much of ") + table);
            }
        }
        return found;
    }

private:
    /// On a server by its estimate; in the words of SQLite, where an index serves no more than to
    /// find a key, or all that have a value of it.
    static bool looksAtMany(const dbif::TracedStatement& statement, const dbif::PlanStep& step)
    {
        constexpr std::string_view kRows = "rows about ";
        const std::string& text = step.text;
        const std::size_t rows = text.find(kRows);
        if (rows != std::string::npos) {
            return std::stoul(text.substr(rows + kRows.size())) > kManyRows;
        }
        const std::size_t begin = text.find('(') + 1;
        const std::string terms = text.substr(begin, text.find(')', begin) - begin);
        const bool isOfKey = terms.ends_with("_column_id=?") && terms.find(' ') == terms.npos;
        const bool isOfAnyValue = statement.sql.find(" IS NOT NULL") != std::string::npos &&
                                  (terms.ends_with("_column_id=? AND number>?") ||
                                   terms.ends_with("_column_id=? AND text>?"));
        return isOfKey || isOfAnyValue;
    }

    /// The table that a statement calls so; the name itself when there is none.
    [[nodiscard]] std::string storedTable(const std::string& sql, const std::string& name) const
    {
        if (rows_.contains(name)) {
            return name;
        }
        for (const auto& [table, rows] : rows_) {
            for (const char* between : {" ", " AS "}) {
                const std::string introduced = " " + table + between + name;
                const std::size_t at = sql.find(introduced);
                if (at != std::string::npos &&
                    std::isspace(static_cast<unsigned char>(sql[at + introduced.size()])) != 0) {
                    return table;
                }
            }
        }
        return name;
    }

    std::map<std::string, std::size_t> rows_;
};

class QueryPlans : public EngineTest
{
protected:
    void SetUp() override
    {
        write_device_series(database.connection);
        store_connection(database, kName);
    }

    /// What the statements of a call pass over, with one of them for each and its plan.
    std::map<std::string, std::string> passes(const Case& one)
    {
        Call call;
        EXPECT_TRUE(dbapi_initialize_global_cache(kName, "", &call.errors)) << call.errors;
        dbif::ReadTrace trace(dbif::ReadTrace::Plans::Read);
        const dbif::TracedConnection traced(*dbapi_get_cached_connection(), &trace);
        std::istringstream words(one.fields[1]);
        call.words.assign(std::istream_iterator<std::string>(words), {});
        call.query = one.fields[2];
        EXPECT_TRUE(kCalls.at(one.fields[0])(&call)) << call.errors;
        EXPECT_GT(call.found, 0U) << one.place;

        std::map<std::string, std::string> found;
        EXPECT_FALSE(trace.statements().empty()) << one.place;
        for (const dbif::TracedStatement& statement : trace.statements()) {
            EXPECT_FALSE(statement.plan.empty()) << statement.sql;
            std::string text = statement.sql;
            for (const dbif::PlanStep& step : statement.plan) {
                text += "\n" + std::string(2 + 2 * static_cast<std::size_t>(step.depth), ' ') +
                        step.text;
            }
            for (const std::string& pass : reader_->passes(statement)) {
                found.emplace(pass, text);
            }
        }
        return found;
    }

    void checkAll(const std::string& state)
    {
        reader_ = std::make_unique<PlanReader>(database.connection);
        for (const Case& one : read_cases("query_plans.case", "calls", 4)) {
            const std::string allowed = ", " + one.fields[3] + ",";
            for (const auto& [pass, statement] : passes(one)) {
                EXPECT_NE(allowed.find(", " + pass + ","), std::string::npos)
                    << one.place << ", " << state << ", passes over " << pass << ":\n"
                    << statement;
            }
        }
    }

    std::unique_ptr<PlanReader> reader_;
};

TEST_P(QueryPlans, PassOverNoLargeTable)
{
    checkAll("as imported");
    if (GetParam() == Engine::Sqlite) {
        // As after many small imports, none of which is worth an analysis.
        run_on_file(database.path(), "DELETE FROM sqlite_stat1");
        dbapi::cache()->clearDataConnection();
        checkAll("without statistics");
    }

    // A check that finds nothing has to be one that would.
    const Case byName{"by name", {"values", "W", "$DEVNAME=dev500", ""}};
    EXPECT_FALSE(passes(byName).contains("all of device"));
    const std::string server = GetParam() == Engine::Sqlite ? "" : " ON device";
    database.execute("DROP INDEX device_by_name" + server);
    EXPECT_TRUE(passes(byName).contains("all of device"));
}

INSTANTIATE_ON_ENGINES(QueryPlans);
} // namespace
