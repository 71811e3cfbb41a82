#include "dbapi/db_records.h"
#include "dbapi/dbapi.h"
#include "dbif/host_number.h"

#include "tests/support/lab_database.h"

#include <malloc.h>

namespace {
using namespace test_support;

std::string joined_set(const std::set<std::string>& texts)
{
    return joined(std::vector<std::string>(texts.begin(), texts.end()));
}

class DbRecords : public testing::TestWithParam<Engine>
{
protected:
    LabDatabase lab{GetParam()};
    std::string errors;
};

TEST_P(DbRecords, AreFoundByQueryAndReadById)
{
    std::set<int> ids{99};
    ASSERT_TRUE(dbapi::db_get_device_ids_from_query("lab", &ids, "$LOT=A", &errors)) << errors;
    EXPECT_EQ(ids, (std::set<int>{1, 2}));
    ASSERT_TRUE(dbapi::db_get_setup_ids_from_query("lab", &ids, "IND.VG=2", &errors)) << errors;
    EXPECT_EQ(ids, std::set<int>{1});
    ASSERT_TRUE(dbapi::db_get_measurement_ids_from_query("lab", &ids, "", &errors)) << errors;
    EXPECT_EQ(ids.size(), 3U);
    ASSERT_TRUE(dbapi::db_get_routine_ids_from_query("lab", &ids, "", &errors)) << errors;
    EXPECT_TRUE(ids.empty());
    EXPECT_FALSE(dbapi::db_get_die_ids_from_query("lab", &ids, "nokey=1", &errors));
    EXPECT_TRUE(
        errors.starts_with("Error: Couldn't retrieve table ids for table name: \"die\". \n"
                           "Error: Invalid query condition string encountered: \"nokey=1\".\n"));

    std::vector<std::string> values;
    ASSERT_TRUE(dbapi::db_get_key_values_for_device_id_as_text("lab", 2, "W", &values, "", &errors))
        << errors;
    EXPECT_EQ(joined(values), "1e-05;");
    ASSERT_TRUE(dbapi::db_get_key_values_for_measurement_id_as_text(
        "lab", 1, "OUTD.ID", &values, "ALLDATA: IND.VG=[1,2]", &errors));
    EXPECT_EQ(joined(values), "3e-06;");
    ASSERT_TRUE(
        dbapi::db_get_key_values_for_die_id_as_text("lab", 77, "$LOT", &values, "", &errors));
    EXPECT_TRUE(values.empty());
    std::string query;
    ASSERT_TRUE(dbapi_build_query_str_for_get_key_values_for_table_id_for_tablename(
        "measurement", 42, &query, " alldata : $TEMP=300 ", &errors));
    EXPECT_EQ(query, "ALLDATA: {$MEASDBID=42} AND $TEMP=300");
    EXPECT_FALSE(dbapi::db_get_key_values_for_device_id_as_text(
        "lab", 1, "W", &values, "W=1 ALLDATA:", &errors));
    EXPECT_TRUE(errors.ends_with("can only be placed at the beginning of the query string.\n"));
}

TEST_P(DbRecords, ListTheirKeys)
{
    std::set<std::string> names{"stale"};
    dbapi::db_get_tablenames(&names);
    EXPECT_EQ(
        joined_set(names),
        "catalog_entry;device;die;measurement;measurement_condition;routine;setup;");
    ASSERT_TRUE(dbapi::db_get_keynames_in_table("lab", "device", &names, "", "SHORT", &errors))
        << errors;
    EXPECT_EQ(joined_set(names), "L;W;process;vth;");
    ASSERT_TRUE(dbapi::db_get_keynames_in_table("lab", "device", &names, "$LOT=B", "FULL", &errors))
        << errors;
    EXPECT_EQ(
        joined_set(names), "Key(W,device,DOUBLE,PHYSICAL);Key(process,device,TEXT,TECHNOLOGY);");
    ASSERT_TRUE(
        dbapi::db_get_keynames_in_table("lab", "setup", &names, "IND.VG=2", "FULL", &errors))
        << errors;
    EXPECT_EQ(joined_set(names), "Key(ID,setup,DOUBLE,OUTPUT);Key(VG,setup,DOUBLE,INPUT);");
    ASSERT_TRUE(
        dbapi::db_get_keynames_in_table("lab", "measurement", &names, "$TEMP=25", "FULL", &errors));
    EXPECT_EQ(joined_set(names), "Key(DataOrigin,measurement,TEXT);Key(vth,measurement,DOUBLE);");
    for (const char* table : {"die", "routine"}) {
        EXPECT_TRUE(dbapi::db_get_keynames_in_table("lab", table, &names, "", "FULL", &errors))
            << errors;
        EXPECT_TRUE(names.empty());
    }
    EXPECT_FALSE(dbapi::db_get_keynames_in_table("lab", "nowhere", &names, "", "short", &errors));
    EXPECT_EQ(
        errors, "Error: Invalid key format type specified \"short\".\n"
                "The valid key format types are: \"SHORT\" or \"FULL\" .\n");
    EXPECT_FALSE(dbapi::db_get_keynames_in_table("lab", "nowhere", &names, "", "SHORT", &errors));
    EXPECT_EQ(
        errors, "Error: Unexpected, Invalid Database table name encountered: \"nowhere\". \n");
}

/// "name category datatype records [points] minimum maximum;" for each key.
std::string listed(const std::vector<dbapi::KeyStatistics>& keys)
{
    const auto number = [](std::optional<double> value) {
        return value.has_value() ? dbif::double_text(*value) : "-";
    };
    std::string text;
    for (const dbapi::KeyStatistics& key : keys) {
        text += key.name + " " + key.category + " " + key.datatype + " " +
                std::to_string(key.records) + " ";
        text += key.points.has_value() ? std::to_string(*key.points) + " " : "";
        text += number(key.minimum) + " " + number(key.maximum) + ";";
    }
    return text;
}

TEST_P(DbRecords, CountAndBoundTheirKeys)
{
    struct Case
    {
        const char* table;
        const char* query;
        const char* keys;
    };

    const std::vector<Case> cases{
        {"device", "",
         "L PHYSICAL DOUBLE 1 1.5e-07 1.5e-07;"
         "W PHYSICAL DOUBLE 3 1.3000000000000003e-07 1e-05;"
         "process TECHNOLOGY TEXT 2 - -;vth NODE DOUBLE 1 0.5 0.5;"},
        {"device", "$LOT=B",
         "W PHYSICAL DOUBLE 1 1.3000000000000003e-07 1.3000000000000003e-07;"
         "process TECHNOLOGY TEXT 1 - -;"},
        {"device", "ALLDATA: IND.VG=2;OUTD.ID>1u",
         "L PHYSICAL DOUBLE 1 1.5e-07 1.5e-07;W PHYSICAL DOUBLE 1 5e-06 5e-06;"
         "process TECHNOLOGY TEXT 1 - -;"},
        {"measurement", "", "DataOrigin  TEXT 3 - -;vth  DOUBLE 1 0.4 0.4;"},
        {"measurement_condition", "$TEMP=125", "VS  DOUBLE 1 0 0;"},
        {"setup", "", "ID OUTPUT DOUBLE 2 3 2e-09 7e-06;VG INPUT DOUBLE 2 3 0 7;"},
        {"setup", "ALLDATA: ", "ID OUTPUT DOUBLE 3 6 1e-09 7e-06;VG INPUT DOUBLE 3 6 0 7;"},
        {"setup", "IND.VG=7", "ID OUTPUT DOUBLE 1 1 7e-06 7e-06;VG INPUT DOUBLE 1 1 7 7;"},
        {"setup", "$LOT=B", ""},
        {"die", "", ""},
        {"routine", "$LOT=A", ""}};
    lab.supersedeFirstSetup();
    std::vector<dbapi::KeyStatistics> keys;
    for (const Case& c : cases) {
        EXPECT_TRUE(dbapi::db_get_key_statistics("lab", c.table, &keys, c.query, &errors))
            << errors;
        EXPECT_EQ(listed(keys), c.keys) << c.table << " " << c.query;
    }
    EXPECT_FALSE(dbapi::db_get_key_statistics("lab", "nowhere", &keys, "", &errors));
    EXPECT_EQ(
        errors, "Error: Unexpected, Invalid Database table name encountered: \"nowhere\". \n");
    EXPECT_FALSE(dbapi::db_get_key_statistics("lab", "device", &keys, "nokey=1", &errors));
    EXPECT_TRUE(errors.find("nokey") != std::string::npos) << errors;
}

TEST_P(DbRecords, ShowASetupWhole)
{
    std::vector<std::string> keys;
    std::vector<std::vector<std::string>> values;
    ASSERT_TRUE(
        dbapi::db_get_setup_keys_values_for_setup_id_as_text("lab", 1, &keys, &values, &errors))
        << errors;
    EXPECT_EQ(joined(keys), "Key(VG,setup,DOUBLE,INPUT);Key(ID,setup,DOUBLE,OUTPUT);");
    EXPECT_EQ(joined(values), "0|1e-09;1|;2|3e-06;");
    lab.write([](dbif::RecordWriter& writer) {
        const int entry = writer.addCatalogEntry({});
        const int measurement = writer.addMeasurement({entry, 0, 0, 25, {}});
        dbif::SetupColumn empty = sweep("VG", std::vector<double>());
        empty.header = "a 'header'";
        writer.addSetup(writer.addCondition(measurement, {}), {.name = "empty"}, {empty}, "empty");
    });
    ASSERT_TRUE(
        dbapi::db_get_setup_keys_values_for_setup_id_as_text("lab", 3, &keys, &values, &errors))
        << errors;
    EXPECT_EQ(joined(keys), "Key(VG,setup,DOUBLE,OUTPUT);");
    EXPECT_EQ(values, std::vector<std::vector<std::string>>(1));
    std::string header;
    ASSERT_TRUE(dbapi::db_get_column_dataheader_from_setup_id("lab", 3, "VG", &header, &errors))
        << errors;
    EXPECT_EQ(header, "a 'header'");
    ASSERT_TRUE(
        dbapi::db_get_column_dataheader_from_setup_id("lab", 3, "x' OR '1'='1", &header, &errors));
    EXPECT_EQ(header, "");

    const std::string failure = "Error retrieving database setup id's setup keys' values. ";
    EXPECT_FALSE(
        dbapi::db_get_setup_keys_values_for_setup_id_as_text("lab", 0, &keys, &values, &errors));
    EXPECT_EQ(
        errors, failure + "The given database setup id '0' is an invalid database setup id.\n");
    EXPECT_FALSE(
        dbapi::db_get_setup_keys_values_for_setup_id_as_text("lab", 9, &keys, &values, &errors));
    EXPECT_EQ(errors, failure + "The database holds no setup with id '9'.\n");
    EXPECT_FALSE(dbapi::db_get_column_dataheader_from_setup_id("lab", 1, "", &header, &errors));
    EXPECT_EQ(
        errors, "Error retrieving database setup id's column dataheader. "
                "An invalid empty database setup column name was given. \n");
}

/// A column whose second point is missing.
dbif::SetupColumn typed_sweep(const std::string& name, dbif::ValueKind kind, std::size_t points)
{
    dbif::SetupColumn column{name, false, "", {}};
    dbif::SweepArray& values = column.values;
    values.kind = kind;
    values.numbers.resize(kind == dbif::ValueKind::Double ? points : 0);
    values.complexNumbers.resize(kind == dbif::ValueKind::Complex ? points : 0);
    values.matrices.resize(kind == dbif::ValueKind::Matrix ? points : 0);
    values.texts.resize(kind == dbif::ValueKind::Text ? points : 0);
    for (std::size_t point = 0; point < points; ++point) {
        const bool isMissing = point == 1;
        const auto number = static_cast<double>(point);
        switch (kind) {
        case dbif::ValueKind::Double:
            values.numbers[point] = isMissing ? std::nan("") : number / 4;
            break;
        case dbif::ValueKind::Complex:
            values.complexNumbers[point] =
                isMissing ? dbif::kNoComplex : std::complex<double>(number, -1);
            break;
        case dbif::ValueKind::Matrix:
            values.matrices[point] =
                isMissing ? dbif::ComplexMatrix() : dbif::ComplexMatrix{1, 2, {1, {0, number}}};
            break;
        case dbif::ValueKind::Text:
            values.texts[point] =
                isMissing ? std::nullopt : std::optional<std::string>("it's; \"x\",\n");
        }
    }
    return column;
}

int add_sweeps(LabDatabase& lab, const std::vector<dbif::SetupColumn>& sweeps)
{
    int id = 0;
    lab.write([&](dbif::RecordWriter& writer) {
        id = writer.addSetup(
            writer.addCondition(writer.addMeasurement({0, 0, 0, 25, {}}), {}), {}, sweeps, "new");
    });
    return id;
}

TEST_P(DbRecords, ShowSetupsOfEveryTypeAndLength)
{
    using Kind = dbif::ValueKind;
    std::vector<std::string> keys;
    std::vector<std::vector<std::string>> values;
    const auto show = [&](int id) {
        EXPECT_TRUE(dbapi::db_get_setup_keys_values_for_setup_id_as_text(
            "lab", id, &keys, &values, &errors))
            << errors;
    };
    show(add_sweeps(
        lab, {typed_sweep("d", Kind::Double, 3), typed_sweep("t", Kind::Text, 3),
              typed_sweep("c", Kind::Complex, 3), typed_sweep("m", Kind::Matrix, 3)}));
    EXPECT_EQ(
        joined(keys), "Key(d,setup,DOUBLE,OUTPUT);Key(t,setup,TEXT,OUTPUT);"
                      "Key(c,setup,COMPLEX,OUTPUT);Key(m,setup,MATRIX,OUTPUT);");
    EXPECT_EQ(
        joined(values), "0|it's; \"x\",\n|0-1j|[[1+0j, 0+0j]];|||;"
                        "0.5|it's; \"x\",\n|2-1j|[[1+0j, 0+2j]];");

    constexpr std::size_t kMany = 1'000'000;
    show(add_sweeps(
        lab, {typed_sweep("d", Kind::Double, kMany), typed_sweep("c", Kind::Complex, kMany)}));
    ASSERT_EQ(values.size(), 2U);
    EXPECT_EQ(values[0].size(), kMany);
    EXPECT_EQ(values[1].size(), kMany);
    EXPECT_EQ(values[0].back() + " " + values[1].back(), "249999.75 999999-1j");
}

// A host asks for one record after another for days.
TEST_P(DbRecords, LeaveNoMemoryBehind)
{
    std::vector<std::string> values;
    const auto ask = [&](int times) {
        for (int i = 0; i < times; ++i) {
            const std::string query = i % 2 == 0 ? "" : "IND.VG=[0,1]";
            EXPECT_TRUE(dbapi::db_get_key_values_for_measurement_id_as_text(
                "lab", 1 + i % 3, i % 5 == 0 ? "$TEMP" : "OUTD.ID", &values, query, &errors))
                << errors;
        }
    };
    ask(200);
    const std::size_t before = mallinfo2().uordblks;
    ask(1000);
    // A database's own cache may still move by a few pages; a leak of 64 bytes a call shows.
    EXPECT_LE(mallinfo2().uordblks, before + 64 * 1000);
}

INSTANTIATE_ON_ENGINES(DbRecords);

// Nothing is stored, so nothing is listed, and nothing is an error.
TEST(DbRecordsOfAnEmptyDatabase, AreNone)
{
    const MeasurementDatabase empty(Engine::Sqlite);
    store_connection(empty, "empty");
    std::string errors;
    std::set<std::string> names;
    std::set<int> ids;
    std::vector<std::string> values;
    dbapi::db_get_tablenames(&names);
    const std::set<std::string> tables = names;
    for (const std::string& table : tables) {
        for (const char* format : {"SHORT", "FULL"}) {
            names = {"stale"};
            EXPECT_TRUE(
                dbapi::db_get_keynames_in_table("empty", table, &names, "", format, &errors))
                << errors;
            EXPECT_TRUE(names.empty());
            EXPECT_TRUE(
                dbapi::db_get_keynames_in_table("empty", table, &names, "$LOT=A", format, &errors))
                << errors;
            EXPECT_TRUE(names.empty());
        }
        ids = {7};
        EXPECT_TRUE(dbapi_get_table_ids_from_query_for_tablename("empty", table, &ids, "", &errors))
            << errors;
        EXPECT_TRUE(ids.empty());
        EXPECT_TRUE(dbapi_get_text_key_values_for_table_id_for_tablename(
            "empty", table, 1, "$DEVNAME", &values, "$LOT=A", &errors))
            << errors;
        EXPECT_TRUE(values.empty());
    }
    std::vector<std::vector<std::string>> rows{{"stale"}};
    EXPECT_TRUE(
        dbapi::db_get_values_for_keywords("empty", {"$LOT", "$SETNAME"}, &rows, "", &errors))
        << errors;
    EXPECT_EQ(rows, std::vector<std::vector<std::string>>(2));
    EXPECT_FALSE(dbapi::db_get_values_for_keyword_as_text("empty", "W", &values, "", &errors));
    EXPECT_FALSE(
        dbapi::db_get_setup_keys_values_for_setup_id_as_text("empty", 1, &values, &rows, &errors));
    std::string header = "stale";
    EXPECT_TRUE(dbapi::db_get_column_dataheader_from_setup_id("empty", 1, "VG", &header, &errors));
    EXPECT_EQ(header, "");
}
} // namespace
