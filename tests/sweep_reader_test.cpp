#include "dbif/connection/column_store.h"
#include "dbif/sweep/key_presence.h"
#include "dbif/sweep/sweep_reader.h"

#include "tests/support/measurement_database.h"

#include <gmock/gmock.h>

#include <cmath>
#include <map>
#include <numeric>

using namespace test_support; // NOLINT(google-build-using-namespace)
using testing::HasSubstr;

namespace {
/// As many setups as are read with the keys that their index tells.
constexpr int kSetups = 1500;

/// The number of points of a setup: a few, or as many as fill one, two and more chunks.
std::size_t points_of(int setup)
{
    const std::map<int, std::size_t> large{
        {10, 248}, {11, 249}, {12, 496}, {13, 500}, {700, 300'000}};
    const auto found = large.find(setup);
    return found == large.end() ? static_cast<std::size_t>(setup % 5) : found->second;
}

class SweepReaders : public EngineTest
{
protected:
    SweepReaders()
    {
        database.write([](dbif::RecordWriter& writer) {
            const int device = writer.findOrAddDevice(0, {.name = "d"});
            const int measurement = writer.addMeasurement({0, device, 0, 25, {}});
            const int condition = writer.addCondition(measurement, {});
            for (int setup = 1; setup <= kSetups; ++setup) {
                // They do not compress.
                std::vector<double> numbers;
                for (std::size_t point = 0; point < points_of(setup); ++point) {
                    numbers.push_back(std::sin(setup + 7.0 * static_cast<double>(point)));
                }
                std::vector<dbif::SetupColumn> columns;
                if (setup % 3 != 0) {
                    columns.push_back(sweep("x", numbers));
                }
                if (setup % 4 == 0) {
                    columns.push_back(text_sweep(
                        "t", std::vector<std::optional<std::string>>(numbers.size(), "text")));
                }
                if (setup % 5 == 0) {
                    columns.push_back(sweep("z", numbers));
                }
                writer.addSetup(condition, {.name = std::to_string(setup)}, columns, "");
            }
        });
    }

    /// The setups with their points, read together or some hundred at a time.
    std::vector<std::string> read(const std::vector<int>& setups, std::size_t atATime)
    {
        std::vector<dbif::KeyDefinition> columns;
        for (const char* key : {"x", "t", "z"}) {
            columns.push_back(definition(key));
        }
        std::vector<std::string> found;
        for (std::size_t first = 0; first < setups.size(); first += atATime) {
            const std::vector<int> part(
                setups.begin() + static_cast<std::ptrdiff_t>(first),
                setups.begin() +
                    static_cast<std::ptrdiff_t>(std::min(first + atATime, setups.size())));
            dbif::read_sweeps(
                database.connection, part, columns, dbif::SetupsWithoutColumns::Empty,
                [&](const dbif::SweepPoints& points) {
                    found.push_back(
                        std::to_string(part[points.place]) + ":" + std::to_string(points.count) +
                        text_of(points));
                });
        }
        return found;
    }

    dbif::KeyDefinition definition(const std::string& name)
    {
        const auto& keys = dbif::ColumnStore::of(database.connection)
                               .all(database.connection, dbif::RecordTable::Setup);
        return *std::find_if(
            keys.begin(), keys.end(), [&](const auto& key) { return key.name == name; });
    }

    static std::string text_of(const dbif::SweepPoints& points)
    {
        std::string text;
        for (const dbif::SweepSlice& column : points.columns) {
            text += column.isPresent() ? " " + std::to_string(column.size) : " -";
            if (column.isPresent() && column.size > 0) {
                text += "/" + column.text(0) + "/" + column.text(column.size - 1);
            }
        }
        return text;
    }
};

TEST_P(SweepReaders, GiveTheSameWithTheIndexOfKeysAndSetupBySetup)
{
    std::vector<int> all(kSetups);
    std::iota(all.begin(), all.end(), 1);
    std::vector<int> some;
    std::copy_if(
        all.begin(), all.end(), std::back_inserter(some), [](int setup) { return setup % 7 != 0; });
    for (const std::vector<int>& setups : {all, some}) {
        ASSERT_TRUE(dbif::KeyPresence::isWorthwhile(database.connection, setups));
        const std::vector<std::string> together = read(setups, setups.size());
        EXPECT_EQ(together.size(), setups.size());
        EXPECT_EQ(together, read(setups, 400));
    }
}

TEST_P(SweepReaders, MissWhatIsLost)
{
    std::vector<int> all(kSetups);
    std::iota(all.begin(), all.end(), 1);

    struct Loss
    {
        const char* rows;
        const char* message;
    };

    const std::vector<Loss> losses{
        {"setup_id = 11 AND chunk = 1",
         "The key \"x\" of setup 11 is damaged (it has 248 of 249 points)"},
        {"setup_id = 1", "The key \"x\" of setup 1 is damaged (it has 0 of 1 points)"},
        {"setup_id = 13 AND chunk = 0",
         "The key \"x\" of setup 13 is damaged (it has 252 of 500 points)"},
        {"setup_id = 8 AND payload IS NOT NULL AND setup_column_id = (SELECT id FROM setup_column "
         "WHERE name = 't')",
         "The key \"t\" of setup 8 is damaged (it has 0 of 3 points)"}};
    for (const Loss& loss : losses) {
        database.execute(
            std::string("CREATE TABLE kept AS SELECT * FROM setup_data WHERE ") + loss.rows);
        database.execute(std::string("DELETE FROM setup_data WHERE ") + loss.rows);
        EXPECT_THAT(thrown_by([&] { read(all, all.size()); }), HasSubstr(loss.message))
            << loss.rows;
        database.execute("INSERT INTO setup_data SELECT * FROM kept");
        database.execute("DROP TABLE kept");
    }
    EXPECT_EQ(read(all, all.size()).size(), all.size());
}

INSTANTIATE_ON_ENGINES(SweepReaders);
} // namespace
