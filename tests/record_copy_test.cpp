#include "dbapi/condition_builder.h"
#include "dbif/constant_condition.h"
#include "dbif/copy_verification.h"
#include "dbif/newest_time.h"
#include "dbif/record_copy.h"
#include "dbif/transaction_guard.h"

#include "tests/support/measurement_database.h"

#include <gmock/gmock.h>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {
using dbif::RecordWriter;
using test_support::Engine;
using test_support::MeasurementDatabase;
using test_support::number_key;
using test_support::sweep;
using test_support::text_key;
using testing::HasSubstr;

struct Pair
{
    Engine from;
    Engine to;
};

std::string pair_name(const testing::TestParamInfo<Pair>& info)
{
    const auto name = [](Engine engine) {
        return engine == Engine::Sqlite ? "Sqlite" : "MariaDb";
    };
    return std::string(name(info.param.from)) + "To" + name(info.param.to);
}

/// All that a database holds, whatever its ids.
std::string dump(MeasurementDatabase& database)
{
    const char* statements[] = {
        "SELECT lot, coalesce(wafer, '~'), coalesce(die, '~'), modified_time, coalesce(\"user\", '~'), hex(identity) "
        "FROM die ORDER BY 6",
        "SELECT coalesce(device.name, '~'), device_type, device.modified_time, device.\"user\", "
        "hex(device.identity), hex(die.identity) FROM device LEFT JOIN die ON die.id = die_id ORDER BY 5",
        "SELECT name, definition, modified_time, hex(identity) FROM routine ORDER BY 4",
        "SELECT hex(device.identity), column_key, number, text FROM device JOIN device_data ON device_id = device.id JOIN "
        "device_column ON device_column.id = device_column_id ORDER BY 1, 2",
        "SELECT application, catalog_entry.modified_time, column_key, number, text FROM catalog_entry LEFT JOIN "
        "catalog_entry_data ON catalog_entry_id = catalog_entry.id LEFT JOIN catalog_entry_column ON "
        "catalog_entry_column.id = catalog_entry_column_id WHERE catalog_entry.identity IS NULL ORDER BY 2, 1, 3",
        "SELECT hex(m.identity), m.temperature, m.modified_time, m.\"user\", hex(d.identity), hex(r.identity), "
        "c.application, c.modified_time, n.modified_time FROM measurement m LEFT JOIN device d ON d.id = m.device_id "
        "LEFT JOIN routine r ON r.id = m.routine_id LEFT JOIN catalog_entry c ON c.id = m.catalog_entry_id LEFT JOIN "
        "measurement n ON n.id = m.superseded_by ORDER BY 1, 3, 9",
        "SELECT measurement.modified_time, column_key, number, text FROM measurement JOIN measurement_data ON "
        "measurement_id = measurement.id JOIN measurement_column ON measurement_column.id = measurement_column_id "
        "ORDER BY 1, 2, 3, 4",
        "SELECT hex(s.identity), s.name, coalesce(s.path, '~'), s.modified_time, s.\"user\", n.modified_time, "
        "c.name, c.modified_time, hex(m.identity), m.modified_time FROM setup s LEFT JOIN setup n ON n.id = "
        "s.superseded_by JOIN measurement_condition c ON c.id = s.measurement_condition_id JOIN measurement m ON "
        "m.id = measurement_id ORDER BY 1, 4",
        "SELECT c.name, column_key, number, text FROM measurement_condition c JOIN measurement_condition_data ON "
        "measurement_condition_id = c.id JOIN measurement_condition_column ON measurement_condition_column.id = "
        "measurement_condition_column_id ORDER BY 1, 2, 3, 4",
        "SELECT hex(s.identity), s.modified_time, column_key, coalesce(vanto_header, '~'), points, minimum, maximum, "
        "chunk, hex(payload) FROM setup s JOIN setup_association a ON a.setup_id = s.id JOIN setup_column c ON c.id "
        "= a.setup_column_id LEFT JOIN setup_data d ON d.setup_id = s.id AND d.setup_column_id = c.id "
        "ORDER BY 1, 2, 3, 8"};
    std::string text;
    for (const char* statement : statements) {
        text += database.rows(statement) + "\n";
    }
    return text;
}

std::vector<dbif::SetupColumn> all_kinds(double value)
{
    dbif::SetupColumn complex{"gamma", false, "head \"er\"", {}};
    complex.values.kind = dbif::ValueKind::Complex;
    complex.values.complexNumbers = {{1, -2}, {std::nan(""), 0}};
    dbif::SetupColumn matrix{"y", true, "", {}};
    matrix.values.kind = dbif::ValueKind::Matrix;
    matrix.values.matrices.resize(2);
    return {
        sweep("id", {value, 5e-324}), test_support::text_sweep("note", {"\\'\xF0\x9F\x98\x80", {}}),
        complex, matrix};
}

/// A measurement of a device at a temperature with a setup of that name; none without name.
void add_measurement(
    RecordWriter& writer,
    const std::string& device,
    double temperature,
    const std::string& setup,
    double value)
{
    const int entry =
        writer.addCatalogEntry({.application = "test"}, {text_key("operator", "Zo\xC3\xAB ")});
    const int die = writer.findOrAddDie({.lot = "A", .wafer = ""});
    const int deviceId = writer.findOrAddDevice(
        die, {.name = device, .device_type = "n"},
        {number_key("W", 1.3000000000000003e-07, "PHYSICAL"),
         text_key("process", "it's; \"x\" \\", "TECHNOLOGY"),
         text_key("s11", "1.5-2j", "NODE", dbif::ValueKind::Complex)});
    const int routine = writer.findOrAddRoutine({.name = "r", .definition = ""});
    const int measurement = writer.addMeasurement(
        {entry, deviceId, routine, temperature, {text_key("DataOrigin", "MEASURED")}});
    const int condition =
        writer.addCondition(measurement, {.name = "dc"}, {number_key("VS", -1e300)});
    if (!setup.empty()) {
        writer.addSetup(condition, {.name = setup}, all_kinds(value), "file");
    }
}

class RecordCopy : public testing::TestWithParam<Pair>
{
protected:
    void fill()
    {
        // Three versions of one sweep, another of the same device, one without setup, and records
        // that nothing was measured on.
        for (const double value : {1.0, 2.0, 3.0}) {
            from.write([value](RecordWriter& writer) {
                add_measurement(writer, "a", 25, "IDVG", value);
                add_measurement(writer, "b", 25 + value, "IDVG", value);
                add_measurement(writer, "c", 25, "", value);
                writer.findOrAddDevice(0, {.name = "lonely" + std::to_string(value)});
            });
        }
        from.execute("UPDATE measurement SET \"user\" = NULL WHERE id = 1");
        from.execute("UPDATE routine SET \"user\" = ''");
    }

    /// Copies what the query selects, and expects both sides to be equal then.
    static dbif::CopyOutcome copy(
        const MeasurementDatabase& source,
        MeasurementDatabase& target,
        const std::string& query = "ALLDATA:",
        const dbif::CopyProgress& progress = nullptr)
    {
        DBIF_Connection connection = source.open();
        DConHelper reading(connection);
        connection.beginTransaction();
        reading.arm();
        DBIF_QueryCondition* condition = nullptr;
        bool latestOnly = true;
        EXPECT_TRUE(dbapi_get_query_str_dbif_query_condition_ptr(
            connection, query, &condition, &latestOnly, nullptr));
        const std::unique_ptr<DBIF_QueryCondition> owned(condition);
        const dbif::CopySelection selection =
            dbif::select_for_copy(connection, condition, latestOnly);
        dbif::CopyOutcome outcome =
            dbif::copy_records(connection, target.connection, selection, progress);
        for (const dbif::CopiedTable& table :
             dbif::compare_copies(connection, target.connection, selection, outcome.places)) {
            EXPECT_TRUE(table.isEqual()) << table.name << " " << table.sourceRows << " rows";
        }
        return outcome;
    }

    MeasurementDatabase from{GetParam().from};
    MeasurementDatabase to{GetParam().to};
};
} // namespace

TEST_P(RecordCopy, GivesTheSameRecordsThereAndBack)
{
    fill();
    const std::string records = dump(from);
    EXPECT_EQ(copy(from, to).copied, 9);
    EXPECT_EQ(dump(to), records);
    MeasurementDatabase back(GetParam().from);
    EXPECT_EQ(copy(to, back).copied, 9);
    EXPECT_EQ(dump(back), records);
    EXPECT_EQ(dump(from), records);

    // Again, it finds everything there; what is new since is added, and supersedes.
    dbif::CopyOutcome again = copy(from, back);
    EXPECT_EQ(again.copied, 0);
    EXPECT_EQ(again.present, 9);
    from.write([](RecordWriter& writer) { add_measurement(writer, "a", 25, "IDVG", 4); });
    again = copy(from, back);
    EXPECT_EQ(again.copied, 1);
    EXPECT_EQ(again.present, 9);
    EXPECT_EQ(dump(back), dump(from));
}

TEST_P(RecordCopy, IsCompletedAfterAKill)
{
    fill();
    for (const std::size_t killedAt : {1U, 4U, 8U}) {
        MeasurementDatabase target(GetParam().to);
        const pid_t child = fork();
        if (child == 0) {
            MeasurementDatabase& source = from;
            DBIF_Connection own = target.open();
            const DBIF_TrueCondition all;
            DBIF_Connection read = source.open();
            dbif::copy_records(
                read, own, dbif::select_for_copy(read, &all, false), [killedAt](std::size_t done) {
                    if (done == killedAt) {
                        kill(getpid(), SIGKILL);
                    }
                });
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status));
        const dbif::CopyOutcome outcome = copy(from, target);
        EXPECT_EQ(outcome.present, killedAt);
        EXPECT_EQ(outcome.copied, 9 - killedAt);
        EXPECT_EQ(dump(target), dump(from));
    }
}

TEST_P(RecordCopy, MakesNoDoublesBesideAnother)
{
    fill();
    // The other copy runs as a whole between two measurements of this one.
    DBIF_Connection source = from.open();
    DBIF_Connection own = to.open();
    const DBIF_TrueCondition all;
    const dbif::CopySelection selection = dbif::select_for_copy(source, &all, false);
    const dbif::CopyOutcome outcome =
        dbif::copy_records(source, own, selection, [this](std::size_t done) {
            if (done == 2) {
                EXPECT_EQ(copy(from, to).copied, 7);
            }
        });
    EXPECT_EQ(outcome.copied, 2);
    EXPECT_EQ(outcome.present, 7);
    EXPECT_EQ(dump(to), dump(from));

    // What is stored twice all the same is told.
    to.execute("UPDATE measurement_condition SET name = 'other' WHERE measurement_id <= 2");
    const dbif::CopyOutcome again = dbif::copy_records(source, own, selection);
    EXPECT_EQ(again.copied, 2);
    to.execute("UPDATE measurement_condition SET name = 'dc'");
    for (const dbif::CopiedTable& table :
         dbif::compare_copies(source, own, selection, again.places)) {
        if (table.name == "measurement") {
            EXPECT_EQ(table.sourceRows, 9U);
            EXPECT_EQ(table.targetRows, 11U);
        }
    }
}

TEST_P(RecordCopy, TakesWhatAQuerySelectsWithItsHistory)
{
    fill();
    EXPECT_EQ(copy(from, to, "$DEVNAME=a").copied, 3);
    EXPECT_EQ(to.rows("SELECT count(*) FROM latest_setup"), "1;");
    EXPECT_EQ(
        to.rows(
            "SELECT (SELECT count(*) FROM device), (SELECT count(*) FROM setup), (SELECT count(*) FROM die)"),
        "1|3|1;");
    EXPECT_EQ(copy(from, to, "$DEVNAME=lonely1.000000").copied, 0);
    EXPECT_EQ(to.rows("SELECT count(*) FROM device"), "2;");
    EXPECT_EQ(copy(from, to).copied, 6);
    EXPECT_EQ(dump(to), dump(from));

    // What a superseding record was left out of counts as the latest, until a newer one comes.
    MeasurementDatabase part(GetParam().to);
    const auto latest = [&part] {
        return part.rows(
            "SELECT minimum FROM latest_setup JOIN setup_association ON setup_id = id WHERE "
            "maximum IS NOT NULL ORDER BY 1");
    };
    from.execute("UPDATE setup_association SET minimum = maximum WHERE minimum IS NOT NULL");
    EXPECT_EQ(copy(from, part, "ALLDATA: OUTD.id=2; $DEVNAME=a").copied, 2);
    EXPECT_EQ(latest(), "2;");
    EXPECT_EQ(copy(from, part, "$DEVNAME=a").copied, 1);
    EXPECT_EQ(latest(), "3;");
}

TEST_P(RecordCopy, MergesWithWhatTheTargetHas)
{
    fill();
    const auto other = [](RecordWriter& writer) {
        add_measurement(writer, "a", 25, "IDVG", 9);
        writer.findOrAddDevice(1, {.name = "a"}, {number_key("more", 1, "ID")});
    };
    to.write(other);
    const QDateTime before = dbif::newest_time(to.connection);
    EXPECT_EQ(copy(from, to).copied, 9);
    EXPECT_GT(dbif::newest_time(to.connection), before);
    // The target's own sweep is the newest of its identity, and its device keeps what it has.
    EXPECT_EQ(
        to.rows(
            "SELECT maximum FROM latest_setup s JOIN setup_association ON setup_id = s.id JOIN setup o ON "
            "o.identity = s.identity AND o.id = 1 WHERE maximum IS NOT NULL"),
        "9;");
    EXPECT_EQ(to.rows("SELECT count(*) FROM device_data WHERE device_id = 1"), "4;");

    // A conflict stops the copy and says what differs.
    MeasurementDatabase conflicting(GetParam().to);
    conflicting.write([](RecordWriter& writer) {
        writer.findOrAddDevice(
            writer.findOrAddDie({.lot = "A", .wafer = ""}), {.name = "b"},
            {number_key("W", 7, "PHYSICAL")});
    });
    EXPECT_THAT(
        test_support::thrown_by([&] { copy(from, conflicting); }),
        HasSubstr("The device \"b\" is stored with W = 7, but here W = 1.3000000000000003e-07."));
    EXPECT_EQ(conflicting.rows("SELECT count(*) FROM measurement"), "0;");
}

TEST_P(RecordCopy, RefusesDamagedDataAndTellsDifferences)
{
    fill();
    from.execute("UPDATE setup_data SET payload = substr(payload, 1, 20) WHERE setup_id = 3");
    EXPECT_THAT(
        test_support::thrown_by([this] { copy(from, to); }), HasSubstr("of setup 3 is damaged"));

    DBIF_Connection source = to.open();
    const DBIF_TrueCondition all;
    const dbif::CopySelection selection = dbif::select_for_copy(source, &all, false);
    MeasurementDatabase copied(GetParam().from);
    const dbif::CopyOutcome outcome = dbif::copy_records(source, copied.connection, selection);
    copied.execute("UPDATE setup_data SET payload = substr(payload, 1, 20) WHERE setup_id = 1");
    copied.execute("UPDATE measurement SET \"user\" = 'x' WHERE id = 1");
    copied.execute("UPDATE measurement SET superseded_by = NULL WHERE id = 1");
    std::string different;
    for (const dbif::CopiedTable& table :
         dbif::compare_copies(source, copied.connection, selection, outcome.places)) {
        different += table.isEqual() ? "" : table.name + " ";
    }
    EXPECT_THAT(different, HasSubstr("measurement "));
    EXPECT_THAT(different, HasSubstr("setup_data "));
}

INSTANTIATE_TEST_SUITE_P(
    On,
    RecordCopy,
    testing::Values(
        Pair{Engine::Sqlite, Engine::MariaDb},
        Pair{Engine::MariaDb, Engine::Sqlite},
        Pair{Engine::Sqlite, Engine::Sqlite}),
    pair_name);
