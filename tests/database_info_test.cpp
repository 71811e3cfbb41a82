#include "dbapi/words/fault.h"
#include "dbinfo/database_info.h"

#include "tests/support/lab_database.h"

#include <gtest/gtest.h>

namespace {
using namespace test_support;

class DatabaseInfo : public testing::TestWithParam<Engine>
{};

/// "A 2;B 1;": the groups with their records.
std::string told(const std::vector<dbapi::DatabaseInfo::Group>& groups)
{
    std::string text;
    for (const auto& group : groups) {
        text += group.text.value_or("none") + " " + std::to_string(group.records) + ";";
    }
    return text;
}

/// What plain SQL on the fixture's records says.
TEST_P(DatabaseInfo, CountsWhatThereIs)
{
    LabDatabase lab(GetParam());
    lab.supersedeFirstSetup();
    const dbapi::DatabaseInfo info = dbapi::database_info("lab");
    ASSERT_EQ(info.tables.size(), dbif::kRecordTables.size());
    for (const auto& table : info.tables) {
        EXPECT_EQ(
            std::to_string(table.records) + ";", lab.rows("SELECT COUNT(*) FROM " + table.name));
        const bool hasLatest = table.name == "measurement" || table.name == "setup";
        EXPECT_EQ(table.superseded, hasLatest ? std::optional(1LL) : std::nullopt) << table.name;
    }
    // The superseded setup has the smallest ID, the one in its place the largest VG.
    const std::vector<dbapi::KeyStatistics>& keys = info.tables.back().keys;
    ASSERT_EQ(keys.size(), 2U);
    EXPECT_EQ(keys[0].name, "ID");
    EXPECT_EQ(keys[0].minimum, 2e-09);
    EXPECT_EQ(keys[1].maximum, 7);
    EXPECT_EQ(info.points, 3);
    EXPECT_EQ(told(info.lots), "A 2;B 2;");
    EXPECT_EQ(told(info.deviceTypes), "none 4;");
    ASSERT_EQ(info.temperatures.size(), 2U);
    EXPECT_EQ(info.temperatures[0].celsius, 25);
    EXPECT_EQ(info.temperatures[0].measurements, 2);
    EXPECT_EQ(info.temperatures[1].celsius, 125);
    EXPECT_EQ(info.schemaVersion, dbif::kSchemaVersion);
    EXPECT_GT(info.bytes.value_or(0), 1000);
    EXPECT_EQ(info.engineVersion.empty(), false);
    EXPECT_EQ(info.host.empty(), GetParam() == Engine::Sqlite);
    ASSERT_TRUE(info.lastImport.has_value());
    EXPECT_EQ(info.lastImport->time, info.lastTime);
    EXPECT_LT(info.firstTime, info.lastTime);
    EXPECT_EQ(info.lastImport->setups, 1);
    EXPECT_THROW(dbapi::database_info("nolab"), dbapi::FaultError);
}

TEST_P(DatabaseInfo, IsEmptyWithoutRecords)
{
    const MeasurementDatabase database(GetParam());
    store_connection(database, "lab");
    const dbapi::DatabaseInfo info = dbapi::database_info("lab");
    EXPECT_EQ(info.points, 0);
    EXPECT_EQ(info.lots.size() + info.temperatures.size(), 0U);
    EXPECT_EQ(info.firstTime, "");
    EXPECT_FALSE(info.lastImport.has_value());
}

INSTANTIATE_ON_ENGINES(DatabaseInfo);
} // namespace
