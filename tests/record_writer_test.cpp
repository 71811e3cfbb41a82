#include "dbif/connection/managed_connection.h"
#include "dbif/connection/newest_time.h"
#include "dbif/engine/read_trace.h"
#include "dbif/record/record_tables.h"

#include "tests/support/measurement_database.h"

#include <gmock/gmock.h>

#include <ctime>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

using namespace test_support; // NOLINT(google-build-using-namespace)
using dbif::RecordWriter;
using testing::HasSubstr;

namespace {
constexpr double kInfinity = std::numeric_limits<double>::infinity();

class Writer : public EngineTest
{
protected:
    /// A setup with all that it hangs on, by what makes it the one that it is.
    struct Sweep
    {
        std::string device = "a";
        std::optional<double> temperature = 25;
        std::vector<dbif::KeyValue> measurementKeys{text_key("DataOrigin", "MEASURED")};
        dbif::ConditionFields condition{.name = "c"};
        std::vector<dbif::KeyValue> conditionKeys{number_key("vd", 1)};
        std::vector<dbif::SetupFields> setups{{.name = "s"}};
    };

    static void add(RecordWriter& writer, const Sweep& sweepOf)
    {
        const int device = writer.findOrAddDevice(0, {.name = sweepOf.device});
        const int measurement =
            writer.addMeasurement({0, device, 0, sweepOf.temperature, sweepOf.measurementKeys});
        const int condition =
            writer.addCondition(measurement, sweepOf.condition, sweepOf.conditionKeys);
        for (const dbif::SetupFields& setup : sweepOf.setups) {
            writer.addSetup(condition, setup, {sweep("id", {1})}, "file");
        }
    }

    void import(const Sweep& sweepOf)
    {
        database.write([&sweepOf](RecordWriter& writer) { add(writer, sweepOf); });
    }

    /// Which setups, and which measurements, are superseded and by which.
    std::string superseded()
    {
        return database.rows(
                   "SELECT id, superseded_by FROM setup WHERE superseded_by IS NOT NULL ORDER BY id") +
               " " +
               database.rows(
                   "SELECT id, superseded_by FROM measurement WHERE superseded_by IS NOT NULL ORDER BY id");
    }

    QDateTime newest() { return dbif::newest_time(database.connection); }
};
} // namespace

TEST_P(Writer, FindsRecordsByWhatTheyAre)
{
    const std::vector<dbif::DieFields> dies{
        {},
        {.lot = "L"},
        {.lot = ""},
        {.lot = "L", .wafer = ""},
        {.wafer = "L"},
        {.lot = "L", .wafer = "1", .die = "2", .block = "3"}};
    for (int round = 0; round < 2; ++round) {
        database.write([&dies](RecordWriter& writer) {
            for (std::size_t i = 0; i < 2 * dies.size(); ++i) {
                EXPECT_EQ(writer.findOrAddDie(dies[i % dies.size()]), i % dies.size() + 1);
            }
            EXPECT_EQ(writer.findOrAddRoutine({.name = "r"}), 1);
            EXPECT_EQ(writer.findOrAddRoutine({}), 2);
            EXPECT_EQ(writer.findOrAddDevice(0, {.name = "a"}), 1);
            EXPECT_EQ(writer.findOrAddDevice(1, {.name = "a"}), 2);
            EXPECT_EQ(writer.findOrAddDevice(1, {.name = "a", .parent_subsite_name = "a"}), 3);
            EXPECT_EQ(writer.findOrAddDevice(1, {.name = "a", .position_within_subsite = "a"}), 4);
            EXPECT_EQ(
                writer.findOrAddDevice(
                    1, {.name = "a", .device_type = "n"}, {number_key("W", -0.0, "ID")}),
                2);
        });
    }
    // What a record lacks is added; what it has stays.
    EXPECT_EQ(
        database.rows("SELECT device_type, number FROM device JOIN device_data ON device_id = id"),
        "n|0;");
    const auto device =
        [this](const dbif::DeviceFields& fields, const std::vector<dbif::KeyValue>& keys) {
            return thrown_by(
                [&] { RecordWriter(database.connection).findOrAddDevice(1, fields, keys); });
        };
    EXPECT_THAT(
        device({.name = "a", .device_type = "p"}, {}),
        HasSubstr("The device \"a\" is stored with device_type \"n\", but here it has \"p\"."));
    EXPECT_THAT(
        device({.name = "a"}, {number_key("W", 2, "ID")}),
        HasSubstr("The device \"a\" is stored with W = 0, but here W = 2."));
    EXPECT_EQ(
        device({.name = "a"}, {number_key("W", 0, "ID"), number_key("W", 2, "NODE")}),
        "nothing thrown");
    EXPECT_THAT(
        device({.name = "b"}, {number_key("W", 1, "ID"), number_key("W", 2, "ID")}),
        HasSubstr("\"W\" is given twice, as \"1\" and as \"2\"."));
    EXPECT_EQ(database.rows("SELECT count(*) FROM device_data"), "1;");
    const auto routine = [this](const char* definition) {
        RecordWriter writer(database.connection);
        writer.findOrAddRoutine({.name = "r"});
        writer.findOrAddRoutine({.name = "r", .definition = "d"});
        return thrown_by([&] { writer.findOrAddRoutine({.name = "r", .definition = definition}); });
    };
    EXPECT_EQ(routine("d"), "nothing thrown");
    EXPECT_THAT(routine("e"), HasSubstr("is stored with definition \"d\", but here it has \"e\"."));
}

TEST_P(Writer, KnowsManyRecordsAsWellAsFew)
{
    constexpr int kDevices = 500;
    const auto write = [this](const std::string& type, const char* key) {
        database.write([&](RecordWriter& writer) {
            for (int i = 0; i < 2 * kDevices; ++i) {
                const int place = i % kDevices;
                const int die = writer.findOrAddDie({.lot = std::to_string(place / 5)});
                EXPECT_EQ(
                    writer.findOrAddDevice(
                        die, {.name = std::to_string(place), .device_type = type},
                        {number_key(key, place, "ID")}),
                    place + 1);
            }
        });
    };
    write("n", "W");
    write("n", "L");
    EXPECT_EQ(
        database.rows("SELECT count(*) FROM device WHERE device_type = 'n'"),
        std::to_string(kDevices) + ";");
    EXPECT_EQ(
        database.rows(
            "SELECT device_column_id, count(*), sum(number) FROM device_data GROUP BY device_column_id"),
        "1|500|124750;2|500|124750;");
    EXPECT_THAT(
        thrown_by([this] {
            RecordWriter writer(database.connection);
            for (int i = 0; i < kDevices; ++i) {
                writer.findOrAddDevice(
                    i / 5 + 1, {.name = std::to_string(i)},
                    {number_key("W", i == 400 ? 0 : i, "ID")});
            }
        }),
        HasSubstr("The device \"400\" is stored with W = 400, but here W = 0."));
}

TEST_P(Writer, SupersedesWhatIsTheSame)
{
    using Change = std::function<void(Sweep&)>;
    const std::vector<Change> others{
        [](Sweep& s) { s.device = "b"; },
        [](Sweep& s) { s.temperature = 26; },
        [](Sweep& s) { s.temperature.reset(); },
        [](Sweep& s) { s.measurementKeys.clear(); },
        [](Sweep& s) { s.measurementKeys[0].text = "SIMULATED"; },
        [](Sweep& s) { s.condition = {}; },
        [](Sweep& s) { s.condition.name = ""; },
        [](Sweep& s) { s.conditionKeys[0].number = 2; },
        [](Sweep& s) { s.conditionKeys.clear(); },
        [](Sweep& s) { s.conditionKeys.push_back(text_key("vg", "1")); },
        [](Sweep& s) { s.setups[0] = {}; },
        [](Sweep& s) {
            s.setups[0].path = "p";
        }};
    import({});
    for (const Change& change : others) {
        Sweep other;
        change(other);
        import(other);
    }
    EXPECT_EQ(superseded(), " ");
    const int count = static_cast<int>(others.size()) + 1;
    const std::vector<Change> same{
        [](Sweep& s) { s.measurementKeys.push_back(number_key("gain", 1)); },
        [](Sweep& s) { s.setups[0].run_type = "r"; },
        // Stored alike, so alike.
        [](Sweep& s) { s.conditionKeys.push_back(number_key("vg", std::nan(""))); },
        [](Sweep& s) {
            s.conditionKeys.push_back(s.conditionKeys[0]);
        }};
    std::string chain;
    int newest = 1;
    for (const Change& change : same) {
        Sweep again;
        change(again);
        import(again);
        const int next = newest == 1 ? count + 1 : newest + 1;
        chain += std::to_string(newest) + "|" + std::to_string(next) + ";";
        EXPECT_EQ(superseded(), chain + " " + chain);
        newest = next;
    }
}

TEST_P(Writer, SupersedesMeasurementsWithTheirLastSetup)
{
    Sweep two;
    two.setups = {{.name = "s"}, {.name = "t"}};
    import(two);
    import({});
    EXPECT_EQ(superseded(), "1|3; ");
    Sweep other;
    other.setups = {{.name = "t"}};
    import(other);
    EXPECT_EQ(superseded(), "1|3;2|4; 1|3;");

    // Without setups, measurements supersede each other.
    Sweep none;
    none.setups.clear();
    import(none);
    none.temperature = 26;
    import(none);
    import(none);
    EXPECT_EQ(superseded(), "1|3;2|4; 1|3;5|6;");
    import(two);
    EXPECT_EQ(superseded(), "1|3;2|4;3|5;4|6; 1|3;2|7;3|7;5|6;");
    EXPECT_EQ(database.rows("SELECT id FROM latest_measurement ORDER BY id"), "4;6;7;");
    EXPECT_EQ(database.rows("SELECT id FROM latest_setup ORDER BY id"), "5;6;");
}

TEST_P(Writer, RefusesOneSweepTwiceInAnImport)
{
    RecordWriter writer(database.connection);
    const int condition = writer.addCondition(writer.addMeasurement({}), {});
    writer.addSetup(condition, {.name = "a"}, {}, "first.csv");
    writer.addSetup(condition, {.name = "b"}, {}, "second.csv");
    const int equal = writer.addCondition(writer.addMeasurement({}), {});
    EXPECT_THAT(
        thrown_by([&] { writer.addSetup(equal, {.name = "a"}, {}, "third.csv"); }),
        HasSubstr("\"first.csv\" and \"third.csv\" hold the same sweep"));
}

TEST_P(Writer, RefusesWhatCannotBeStoredAndStoresNothing)
{
    using Work = std::function<void(RecordWriter&)>;
    const auto named = [](const std::string& name) {
        return [name](RecordWriter& writer) {
            writer.addCatalogEntry({}, {number_key(name, 1)});
        };
    };
    const auto key = [](const dbif::KeyValue& value) {
        return [value](RecordWriter& writer) {
            writer.findOrAddDevice(0, {}, {value});
        };
    };
    const auto swept = [](const std::vector<dbif::SetupColumn>& columns) {
        return [columns](RecordWriter& writer) {
            static int count = 0;
            writer.addSetup(
                writer.addCondition(writer.addMeasurement({}), {}),
                {.name = std::to_string(++count)}, columns, "file");
        };
    };
    const auto application = [](const std::string& text) {
        return [=](RecordWriter& writer) {
            writer.addCatalogEntry({.application = text});
        };
    };
    dbif::SetupColumn headed = sweep("id", {1});
    headed.header = "\xFF";
    dbif::SetupColumn complex{"y", false, "", {}};
    complex.values.kind = dbif::ValueKind::Complex;
    complex.values.complexNumbers = {{1, kInfinity}};
    const std::string zero("a\0b", 3);
    using enum dbif::ValueKind;
    const auto measured = [](const dbif::MeasurementRecord& record) {
        return [record](RecordWriter& writer) {
            writer.addMeasurement(record);
        };
    };
    const std::pair<Work, const char*> refused[] = {
        {named(""), "A key has an empty name. Give it one."},
        {named(" \t"), "A key has an empty name."},
        {named(" a"), "The key name \" a\" begins or ends with a blank."},
        {named("a\n"), "begins or ends with a blank."},
        {named("a,b"), "holds a comma or \"KEY(\", which no keyword could name."},
        {named("xKey(y"), "holds a comma or \"KEY(\""},
        {named("$LOT"), "begins with \"$\", as only builtin keynames such as $LOT do"},
        {named("a\xC3"), "is not UTF-8 text."},
        {named(zero), "holds a zero byte"},
        {application("\xED\xA0\x80"), "\"catalog_entry.application\" is not UTF-8"},
        {application(zero), "holds a zero byte"},
        {key(number_key("W", kInfinity, "ID")), "The value of the key \"W\" is infinite."},
        {key(number_key("W", 1, "")), "key \"W\" has the category \"\". Give it one of ID,"},
        {key(number_key("W", 1, "physical")), "has the category \"physical\"."},
        {key(text_key("T", "\x80", "ID")), "The value of the key \"T\" is not UTF-8 text."},
        {key(text_key("z", "1+", "ID", Complex)), "is no complex number. Write it like 1.5-2j."},
        {key(text_key("m", "[[1], [1, 2]]", "ID", Matrix)), "is no matrix."},
        {measured({0, 0, 0, {}, {number_key("gain", 1, "ID")}}), "have no category"},
        {measured({0, 0, 0, kInfinity, {}}), "The temperature is not a finite number."},
        {measured({0, 777, 0, {}, {}}), "There is no device 777 to add to."},
        {swept({sweep("id", {1, -kInfinity})}), "The key \"id\" has an infinite value."},
        {swept({complex}), "The key \"y\" has an infinite value."},
        {swept({sweep("id", {1}), sweep("vg", {})}), "columns of a setup have different lengths."},
        {swept({sweep("id", {1}), sweep("id", {2})}), "\"id\" is given twice"},
        {swept({headed}), "The header of the key \"id\" is not UTF-8 text."},
        {swept({text_sweep("flag", {zero})}), "holds a zero byte"},
        {swept({text_sweep("flag", {"\xC0\x80"})}), "is not UTF-8 text."},
        {[](RecordWriter& writer) { writer.addCondition(777, {}); }, "no measurement 777"},
        {[](RecordWriter& writer) { writer.addSetup(777, {}, {}, ""); }, "condition 777 to add"}};
    {
        RecordWriter all(database.connection);
        for (const auto& [work, message] : refused) {
            EXPECT_THAT(thrown_by([&work = work, &all] { work(all); }), HasSubstr(message));
            // The writer goes on, so that an import can name all that is wrong.
            EXPECT_EQ(
                thrown_by([&] { all.findOrAddDevice(0, {.name = "good"}); }), "nothing thrown")
                << message;
        }
        EXPECT_EQ(
            thrown_by([&] {
                swept({sweep("id", {1})})(all);
                swept({sweep("id", {1})});
            }),
            "nothing thrown");
    }
    for (const char* table :
         {"catalog_entry", "device", "measurement", "measurement_condition", "setup",
          "device_column", "setup_column", "setup_association", "setup_data",
          "multi_table_column"}) {
        EXPECT_EQ(database.rows(std::string("SELECT count(*) FROM ") + table), "0;") << table;
    }
    EXPECT_FALSE(DBIF_SetupColumn::hasColumn(database.connection, QStringLiteral("OUT|DOUBLE|id")));
    import({});
    EXPECT_TRUE(DBIF_SetupColumn::hasColumn(database.connection, QStringLiteral("OUT|DOUBLE|id")));
}

TEST_P(Writer, ReadsTheStoredKeysOnceHoweverManyAreNew)
{
    dbif::ReadTrace trace(dbif::ReadTrace::Plans::Leave);
    database.connection.inner().setTrace(&trace);
    database.write([](RecordWriter& writer) {
        std::vector<dbif::SetupColumn> columns;
        for (int i = 0; i < 40; ++i) {
            columns.push_back(sweep("k" + std::to_string(i), {1}));
        }
        writer.addSetup(writer.addCondition(writer.addMeasurement({}), {}), {}, columns, "file");
    });
    database.connection.inner().setTrace(nullptr);
    std::size_t reads = 0;
    for (const dbif::TracedStatement& statement : trace.statements()) {
        const bool readsKeys =
            statement.sql.find("column_key FROM setup_column") != std::string::npos;
        reads += readsKeys ? statement.runs : 0;
    }
    EXPECT_EQ(reads, 1U);
    EXPECT_EQ(database.rows("SELECT count(*) FROM setup_column"), "40;");
}

TEST_P(Writer, RefusesRecordsBeyondTheLastId)
{
    database.execute("INSERT INTO die (id, lot) VALUES (2147483646, 'A')");
    RecordWriter writer(database.connection);
    EXPECT_EQ(writer.findOrAddDie({.lot = "B"}), 2147483647);
    EXPECT_THAT(
        thrown_by([&writer] { writer.findOrAddDie({.lot = "C"}); }),
        HasSubstr("The table \"die\" has given out its last id, 2147483647."));
}

TEST_P(Writer, MovesTheNewestTimeAlways)
{
    // Local time makes no difference, not even one that a clock change leaves out.
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
    import({});
    QDateTime before = newest();
    EXPECT_LT(std::abs(before.secsTo(QDateTime::currentDateTimeUtc())), 3600);
    const auto expectMove = [&](const std::function<void(RecordWriter&)>& work) {
        database.write(work);
        EXPECT_GT(newest(), before);
        before = newest();
    };
    for (int i = 0; i < 20; ++i) {
        expectMove(
            [i](RecordWriter& writer) { writer.findOrAddRoutine({.name = std::to_string(i)}); });
    }
    expectMove([](RecordWriter& writer) {
        writer.findOrAddDevice(0, {.name = "a"}, {number_key("W", 1, "ID")});
    });
    expectMove(
        [](RecordWriter& writer) { writer.findOrAddDevice(0, {.name = "a", .device_type = "n"}); });
    database.execute("UPDATE device SET modified_time = '2931-03-25T02:30:00.999'");
    expectMove([](RecordWriter& writer) { writer.addCatalogEntry({}); });
    EXPECT_EQ(database.rows("SELECT modified_time FROM catalog_entry"), "2931-03-25T02:30:01.000;");
    unsetenv("TZ");
    tzset();
}

TEST_P(Writer, MakesNoDoublesBesideAnother)
{
    constexpr int kDies = 15;
    const auto work = [this] {
        DBIF_Connection own = database.open();
        const std::string fault = thrown_by([&own] {
            for (int i = 0; i < kDies; ++i) {
                RecordWriter writer(own);
                const int die = writer.findOrAddDie({.lot = std::to_string(i)});
                writer.findOrAddDevice(
                    die, {.name = "a"}, {number_key("k" + std::to_string(i), 1, "ID")});
                writer.commit();
            }
        });
        return fault == "nothing thrown";
    };
    pid_t children[2];
    for (pid_t& child : children) {
        child = fork();
        if (child == 0) {
            _exit(work() ? 0 : 1);
        }
    }
    for (const pid_t child : children) {
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    const std::string count = std::to_string(kDies) + ";";
    for (const char* table : {"die", "device", "device_column", "device_data"}) {
        EXPECT_EQ(database.rows(std::string("SELECT count(*) FROM ") + table), count) << table;
    }
}

INSTANTIATE_ON_ENGINES(Writer);
