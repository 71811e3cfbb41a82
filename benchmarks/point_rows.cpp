#include "benchmarks/point_rows.h"

#include "benchmarks/stored_database.h"

namespace bench {
namespace {
using Database = std::shared_ptr<StoredDatabase>;

/// A row in which the library reads the keywords under the query and the peer runs the statement.
Comparison read_row(
    Comparison row,
    const Database& database,
    const std::vector<std::string>& keywords,
    const std::string& query,
    const char* sql)
{
    return timed<Values>(
        std::move(row), 1,
        [=](Values* values) {
            if (keywords.size() == 1) {
                values->push_back(database->values(keywords.front(), query));
            } else {
                *values = database->values(keywords, query);
            }
        },
        [=](Values* values) { *values = database->peer().texts(sql); });
}

/// The same as columns of numbers.
Comparison read_numbers(
    Comparison row,
    const Database& database,
    const std::vector<std::string>& keywords,
    dbapi::ColumnOptions::Order order,
    const char* sql)
{
    return timed<Numbers>(
        std::move(row), 1, [=](Numbers* numbers) { *numbers = database->numbers(keywords, order); },
        [=](Numbers* numbers) { *numbers = database->peer().numbers(sql); });
}

/// The same beside a number of values a second.
Comparison read_rate(
    Comparison row,
    const Database& database,
    const std::vector<std::string>& keywords,
    double valuesPerSecond)
{
    const auto values = std::make_shared<double>(0);
    const auto read = [=] {
        const double start = seconds_now();
        const Numbers numbers = database->numbers(keywords, dbapi::ColumnOptions::Order::Stored);
        const double seconds = seconds_now() - start;
        *values = static_cast<double>(numbers.size() * numbers.front().size());
        return seconds;
    };
    row.ours = read;
    row.peer = [=] {
        if (*values == 0) {
            read();
        }
        return *values / valuesPerSecond;
    };
    return row;
}
} // namespace

std::vector<Comparison> point_rows(const DataStore& store, std::size_t points)
{
    const std::string size = std::to_string(points);
    const auto database = std::make_shared<StoredDatabase>(
        store, "points" + size, [points](const DataStore& made) { return made.sweeps(points); });
    const auto row = [&](const char* id, const char* title, const Targets& targets) {
        Comparison comparison;
        comparison.id = std::string(id) + "/" + size;
        comparison.title = title;
        comparison.size = size + " points";
        comparison.target = targets.of(store.engine());
        comparison.prepare = [database] {
            database->open();
        };
        return comparison;
    };
    const auto shown = [&row](const char* id, const char* title) {
        Comparison comparison = row(id, title, {});
        comparison.target.reset();
        return comparison;
    };
    const auto rated = [&](const char* id, const char* title) {
        Comparison comparison = shown(id, title);
        if (!store.engine().isServer()) {
            comparison.target = 1.0;
        }
        return comparison;
    };
    return {
        read_row(
            row("setup_key", "one setup key, all values (49 % of the points), sorted, as text",
                {0.3, 1.2}),
            database, {"IB"}, "", "SELECT i_b FROM point WHERE i_b IS NOT NULL ORDER BY i_b"),
        read_row(
            row("three_setup_keys", "three setup keys side by side, sorted, as text", {0.35, 1.2}),
            database, {"VG", "VD", "ID"}, "", "SELECT vg, vd, i_d FROM point ORDER BY vg, vd, i_d"),
        read_numbers(
            shown("setup_key_numbers", "one setup key, all values, as stored, as numbers"),
            database, {"IB"}, dbapi::ColumnOptions::Order::Stored,
            "SELECT i_b FROM point WHERE i_b IS NOT NULL"),
        read_numbers(
            row("setup_key_numbers_sorted", "one setup key, all values, sorted, as numbers",
                {0.15, 1.2}),
            database, {"IB"}, dbapi::ColumnOptions::Order::Sorted,
            "SELECT i_b FROM point WHERE i_b IS NOT NULL ORDER BY i_b"),
        read_numbers(
            shown(
                "three_setup_keys_numbers", "three setup keys side by side, as stored, as numbers"),
            database, {"VG", "VD", "ID"}, dbapi::ColumnOptions::Order::Stored,
            "SELECT vg, vd, i_d FROM point"),
        read_rate(
            rated(
                "setup_key_rate",
                "one setup key, as stored, as numbers, beside 50 million values a second"),
            database, {"IB"}, 50e6),
        read_rate(
            rated(
                "three_setup_keys_rate",
                "three setup keys, as stored, as numbers, beside 60 million values a second"),
            database, {"VG", "VD", "ID"}, 60e6),
        read_row(
            row("setup_key_where", "one setup key where another key = v, all setups", {0.2, 1.2}),
            database, {"ID"}, "VG=0.6", "SELECT i_d FROM point WHERE vg = 0.6 ORDER BY i_d"),
        read_row(
            row("keys_of_lot", "three keys of the setups of one lot", {1.0, 1.2}), database,
            {"VG", "VD", "ID"}, "$LOT=L107", R"(
SELECT vg, vd, i_d
FROM die JOIN device ON die_id = die.id
JOIN measurement ON device_id = device.id
JOIN measurement_condition ON measurement_id = measurement.id
JOIN setup ON measurement_condition_id = measurement_condition.id
JOIN point ON setup_id = setup.id
WHERE lot = 'L107'
ORDER BY vg, vd, i_d)")};
}
} // namespace bench
