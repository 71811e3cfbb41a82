#include "dbif/condition/constant_condition.h"
#include "dbif/condition/id_list.h"
#include "dbif/connection/managed_connection.h"
#include "dbif/connection/transaction_guard.h"
#include "dbif/engine/read_trace.h"
#include "dbif/record/record_tables.h"
#include "dbif/retrieval/query_run.h"

#include "tests/support/measurement_database.h"

#include <gmock/gmock.h>

#include <numeric>

using namespace test_support; // NOLINT(google-build-using-namespace)
using testing::HasSubstr;

namespace {
constexpr int kDevices = 1100;

/// Devices d1 to d1100, the i-th with W = i and a setup with vg 0, 1, 2 and id i, 2i, 3i.
class ManyRecords : public EngineTest
{
protected:
    void SetUp() override
    {
        database.write([](dbif::RecordWriter& writer) {
            for (int i = 1; i <= kDevices; ++i) {
                const double w = i;
                const int device = writer.findOrAddDevice(
                    0, {.name = "d" + std::to_string(i)}, {number_key("W", w, "ID")});
                const int measurement = writer.addMeasurement({0, device, 0, 25, {}});
                writer.addSetup(
                    writer.addCondition(measurement, {}), {},
                    {sweep("vg", {0, 1, 2}), sweep("id", {w, 2 * w, 3 * w})}, "");
            }
        });
    }

    DBIF_SingleColumnCondition point(const char* key, Comparator comparator, int value)
    {
        return DBIF_SetupColumn::get(
                   database.connection, QStringLiteral("OUT|DOUBLE|") + QLatin1String(key))
            ->singleColumnCondition(comparator, QString::number(value));
    }

    /// The rows of columns ("table column"), sorted by the first, as "cell|cell;".
    std::string rows(
        const std::vector<std::pair<const char*, const char*>>& columns,
        const DBIF_QueryCondition& condition,
        bool isDistinct = false)
    {
        DBIF_VantoQuery query(database.connection);
        for (const auto& [table, column] : columns) {
            query.addColumn(QLatin1String(table), QLatin1String(column), false);
        }
        query.addOrder(
            QLatin1String(columns.front().first), QLatin1String(columns.front().second), true);
        query.setCondition(&condition);
        query.markDistinct(isDistinct);
        const dbif::QueryResult result = dbif::run_query(query);
        std::string text;
        for (std::size_t row = 0; row < result.rows; ++row) {
            for (const dbif::ResultColumn& column : result.columns) {
                text += column.text(row) + (&column == &result.columns.back() ? ";" : "|");
            }
        }
        return text;
    }
};
} // namespace

TEST_P(ManyRecords, GiveSeveralKeysOfAllDevices)
{
    database.write([](dbif::RecordWriter& writer) {
        writer.findOrAddDevice(0, {.name = "bare"});
        writer.findOrAddDevice(0, {.name = "named"}, {text_key("model", "n", "ID")});
        writer.findOrAddDevice(
            0, {.name = "last"}, {text_key("model", "m", "ID"), number_key("W", 5000, "ID")});
    });
    database.execute("DELETE FROM device_data WHERE device_id = 7");
    std::string expected = "|n;";
    for (int i = 1; i <= kDevices; ++i) {
        expected += i == 7 ? "" : std::to_string(i) + "|;";
    }
    EXPECT_EQ(
        rows(
            {{"device_data", "ID|DOUBLE|W"}, {"device_data", "ID|TEXT|model"}},
            DBIF_TrueCondition()),
        expected + "5000|m;");
}

TEST_P(ManyRecords, AreFoundByTheirPoints)
{
    std::string expected;
    std::string points;
    for (int i = 184; i <= kDevices; ++i) { // 3i > 550
        const std::string number = std::to_string(i);
        expected += number + "|d" + number + "|25;";
        points += std::to_string(3 * i) + "|2|d" + number + ";";
    }
    const auto above = point("id", GREATER, 550);
    const auto last = point("vg", EQUAL, 2);
    const DBIF_CompoundQueryCondition both(&above, AND, &last);
    EXPECT_EQ(
        rows(
            {{"device_data", "ID|DOUBLE|W"}, {"device", "name"}, {"measurement", "temperature"}},
            both),
        expected);
    EXPECT_EQ(
        rows(
            {{"setup_data", "OUT|DOUBLE|id"}, {"setup_data", "OUT|DOUBLE|vg"}, {"device", "name"}},
            both),
        points);
    EXPECT_EQ(rows({{"measurement", "temperature"}}, both, true), "25;");
    EXPECT_FALSE(database.connection.isInTransaction());
}

// Whoever holds a transaction open sees one state of the database, whatever is asked in between.
TEST_P(ManyRecords, LeaveNoListBehindThatIsStillRead)
{
    std::vector<int> ids(600);
    std::iota(ids.begin(), ids.end(), 1);
    QSqlQuery reading;
    for (int round = 0; round < 3; ++round) {
        const dbif::IdList list(database.connection, dbif::RecordTable::Device, ids);
        const dbif::TreeCondition picked(list.condition());
        DBIF_VantoQuery query(database.connection);
        query.addColumn(QStringLiteral("device"), QStringLiteral("name"), false);
        query.setCondition(&picked);
        reading = database.connection.query(query.generateSql(false), 0, __FILE__, __LINE__);
        EXPECT_TRUE(reading.next());
    }
    reading.clear();
    database.connection.beginTransaction();
    database.connection.endTransaction();
    if (GetParam() == Engine::Sqlite) {
        EXPECT_EQ(database.rows("SELECT count(*) FROM sqlite_temp_master"), "0;");
    }
}

TEST_P(ManyRecords, AreCountedAndOrderedBySqlToo)
{
    const auto key = DBIF_DeviceColumn::get(database.connection, QStringLiteral("ID|DOUBLE|W"));
    const auto fewW = key->singleColumnCondition(LESS, QStringLiteral("4"));
    DBIF_VantoQuery query(database.connection);
    query.addColumn(QStringLiteral("device"), QStringLiteral("id"), true);
    const auto counted = [this](DBIF_Query& of) {
        return database.rows(dbif::to_utf8(of.generateCountSql()));
    };
    EXPECT_EQ(query.generateSql(false), QString());
    EXPECT_EQ(counted(query), "1100;");
    query.addColumn(QStringLiteral("setup"), QStringLiteral("id"), false);
    query.setCondition(fewW);
    EXPECT_EQ(counted(query), "3;");
    query.setLimit(2);
    EXPECT_EQ(counted(query), "2;");
    query.addOrder(QStringLiteral("device_data"), QStringLiteral("ID|DOUBLE|W"), false);
    EXPECT_EQ(
        database.rows(dbif::to_utf8(
            query.generateSql(false) + query.generateOrder() + query.generateLimit())),
        "3|3;2|2;");

    DBIF_Query plain(database.connection);
    plain.addColumn(QStringLiteral("device"), QStringLiteral("id"), false);
    plain.setCondition(fewW);
    EXPECT_EQ(database.rows(dbif::to_utf8(plain.generateSql(false))), "1;2;3;");
    EXPECT_EQ(counted(plain), "3;");
}

TEST_P(ManyRecords, AreReadFromOneState)
{
    database.connection.beginTransaction();
    DConHelper transaction(database.connection);
    transaction.arm();
    const auto all = point("id", GREATER, 0);
    const std::string before = rows({{"device", "id"}}, all);
    DBIF_Connection other = database.open();
    dbif::RecordWriter writer(other);
    writer.findOrAddDevice(0, {.name = "later"});
    writer.commit();
    EXPECT_EQ(rows({{"device", "id"}}, DBIF_TrueCondition()), before);
}

TEST_P(ManyRecords, DoNotTrustTheNumberOfTheirPoints)
{
    database.write([](dbif::RecordWriter& writer) {
        const int device = writer.findOrAddDevice(0, {.name = "other"});
        const int measurement = writer.addMeasurement({0, device, 0, 25, {}});
        writer.addSetup(writer.addCondition(measurement, {}), {}, {sweep("x", {1})}, "");
    });
    const auto isFirst = DBIF_Device::NAME.singleColumnCondition(EQUAL, QStringLiteral("d1"));
    const auto hasX = point("x", EQUAL, 1);
    const DBIF_CompoundQueryCondition either(&hasX, OR, &isFirst);
    const auto found = [&] {
        return dbif::matching_ids(database.connection, dbif::RecordTable::Device, &either, false);
    };
    // The setup has no point of the key, and all its points are alike.
    database.execute("UPDATE setup_association SET points = 2000000000 WHERE setup_id = 1");
    dbif::ReadTrace trace(dbif::ReadTrace::Plans::Leave);
    database.connection.inner().setTrace(&trace);
    EXPECT_EQ(found(), (std::vector<int>{1, kDevices + 1}));
    database.connection.inner().setTrace(nullptr);
    EXPECT_LT(trace.points().points, 10'000U);
    database.execute("UPDATE setup_association SET points = -1 WHERE setup_id = 1");
    EXPECT_THAT(thrown_by(found), HasSubstr("Setup 1 is damaged (it has -1 points)."));
}

TEST_P(ManyRecords, SayWhichKeyIsDamaged)
{
    if (GetParam() == Engine::Sqlite) {
        database.execute("UPDATE device_data SET number = 'abc' WHERE device_id = 9");
        EXPECT_THAT(
            thrown_by([this] {
                return rows({{"device_data", "ID|DOUBLE|W"}}, DBIF_TrueCondition());
            }),
            HasSubstr("its column \"number\" holds \"abc\" where a number belongs."));
    }
    database.execute(
        "UPDATE setup_data SET payload = X'00' WHERE setup_id = 7 AND setup_column_id = 2");
    EXPECT_THAT(
        thrown_by([this] {
            return rows({{"device", "id"}}, point("id", GREATER, 0));
        }),
        HasSubstr("The key \"id\" of setup 7 is damaged (it is too short)."));
    database.execute("DELETE FROM setup_data WHERE setup_id = 7");
    EXPECT_THAT(
        thrown_by([this] { DBIF_Setup::get(database.connection, 7); }),
        HasSubstr("The key \"vg\" of setup 7 is damaged (it has 0 of 3 points)."));
    EXPECT_EQ(DBIF_Setup::get(database.connection, 8)->getAllData().size(), 3);
    EXPECT_TRUE(DBIF_Setup::get(database.connection, kDevices + 1).isNull());
}

INSTANTIATE_ON_ENGINES(ManyRecords);
