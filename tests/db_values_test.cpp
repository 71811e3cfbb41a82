#include "dbapi/call/cache_refresh.h"
#include "dbapi/db_values.h"
#include "dbapi/dbapi.h"
#include "dbapi/wall/condition_builder.h"
#include "dbui/connection_registry.h"

#include "tests/support/lab_database.h"
#include "tests/support/sqlite_file.h"

#include <filesystem>
#include <memory>

namespace {
using namespace test_support;

struct Read
{
    std::vector<std::string> keywords;
    std::string query;
    std::string expected;
};

/// The rows of one read, or "failed: " and the error text.
std::string
rows_of(const std::vector<std::string>& keywords, const std::string& query, bool distinct = false)
{
    std::vector<std::vector<std::string>> columns{{"stale"}};
    std::string errors;
    const bool isRead =
        distinct
            ? dbapi::db_get_distinct_values_for_keywords("lab", keywords, &columns, query, &errors)
            : dbapi::db_get_values_for_keywords("lab", keywords, &columns, query, &errors);
    EXPECT_EQ(isRead, errors.empty()) << errors;
    EXPECT_TRUE(isRead || columns.empty());
    return isRead ? joined(columns) : "failed: " + errors;
}

std::string values_of(const std::string& keyword, const std::string& query)
{
    std::vector<std::string> values{"stale"};
    std::string errors;
    const bool isRead =
        dbapi::db_get_values_for_keyword_as_text("lab", keyword, &values, query, &errors);
    EXPECT_TRUE(isRead || values.empty());
    return isRead ? joined(values) : "failed: " + errors;
}

class DbValues : public testing::TestWithParam<Engine>
{
protected:
    LabDatabase lab{GetParam()};
};

TEST_P(DbValues, AnswerEveryKindOfQuery)
{
    const std::vector<Read> reads{
        {{"$DEVNAME"}, "", "d3;lonely;n1;n2;"},
        {{"W"}, "", "1.3000000000000003e-07;5e-06;1e-05;"},
        {{"DEVD.W"}, "L<=0.15u", "5e-06;"},
        {{"Key(W,device,DOUBLE,PHYSICAL)"}, "$LOT=A", "5e-06;1e-05;"},
        {{"$DEVNAME"}, "W=[5u,10u]", "n1;n2;"},
        {{"$DEVNAME"}, "W=0.13u", "lonely;"},
        {{"$DEVNAME"}, "W=0.13u,'10u'", "lonely;n2;"},
        {{"$DEVNAME"}, "W!=5u,10u", "lonely;"},
        {{"$DEVNAME"}, "NOT KEY(W)=5u", "lonely;n2;"},
        {{"$DEVNAME"}, "{$DEVNAME=lonely} OR {$TEMP=25}", "lonely;n1;n2;"},
        {{"$DEVNAME"}, "{$LOT=A} AND {$TEMP=125} OR {$DEVNAME=n2}", "n1;n2;"},
        // Of one measurement, not of two of the same device.
        {{"$DEVNAME"}, "{KEY(vth,measurement)=0.4} OR {$SETNAME=x}", "n1;"},
        {{"$DEVNAME"}, "{{KEY(vth,measurement)=0.4} OR {$SETNAME=x}} AND $TEMP!=25", ""},
        {{"$DEVNAME"}, "process='it's; \"x\"'", "failed: "},
        {{"$DEVNAME"}, "process=back\\slash", "d3;"},
        {{"$DEVNAME"}, "$DEVNAME>n", "n1;n2;"},
        {{"$DEVNAME"}, "$DEVNAME=[d,m]", "d3;lonely;"},
        {{"$DEVNAME"}, "{vth}", ""},
        {{"$DEVNAME"}, "{W}", "d3;lonely;n1;n2;"},
        {{"$DEVNAME"}, "$DEVDBID=1,3", "d3;n1;"},
        {{"$TEMP"}, "$TEMP<=25", "25;25;"},
        {{"$DATAORIGIN"}, "$TEMP=125", "MEASURED;"},
        {{"W"}, "$LOT=nowhere", ""},
        {{"ME.vth"}, "", "0.4;"},
        {{"$DEVNAME", "W"}, "", "d3|;lonely|1.3000000000000003e-07;n1|5e-06;n2|1e-05;"},
        {{"W", "$DEVNAME"}, "$LOT=A", "5e-06|n1;1e-05|n2;"},
        {{"$LOT", "$TEMP", "W"}, "", "A|25|5e-06;A|25|1e-05;A|125|5e-06;"},
        // Points: conditions hold for one point at a time.
        {{"OUTD.ID"}, "", "1e-09;2e-09;3e-06;4e-06;"},
        {{"in.VG", "OUTD.ID"}, "$TEMP=25", "0|1e-09;1|;2|3e-06;"},
        {{"$DEVNAME", "IND.VG"}, "IND.VG=1", "n1|1;n1|1;"},
        {{"$DEVNAME"}, "IND.VG=1;OUTD.ID>1u", "n1;"},
        {{"$DEVNAME"}, "IND.VG=2;OUTD.ID<1u", ""},
        {{"$TEMP"}, "{IND.VG=2} OR {OUTD.ID=4u}", "25;125;"},
        {{"OUTD.ID"}, "{$TEMP=125} OR {IND.VG=2}", "2e-09;3e-06;4e-06;"},
    };
    for (const Read& read : reads) {
        const std::string rows = rows_of(read.keywords, read.query);
        if (read.expected == "failed: ") {
            EXPECT_TRUE(rows.starts_with(read.expected)) << read.query;
            continue;
        }
        EXPECT_EQ(rows, read.expected) << read.query;
        if (read.keywords.size() == 1) {
            EXPECT_EQ(values_of(read.keywords.front(), read.query), read.expected) << read.query;
        }
    }
    EXPECT_EQ(rows_of({"$LOT"}, "", true), "A;B;");
    EXPECT_EQ(rows_of({"$DEVNAME", "IND.VG"}, "IND.VG=1", true), "n1|1;");
}

TEST_P(DbValues, TakeListsHoweverTheyAreWritten)
{
    lab.write([](dbif::RecordWriter& writer) {
        for (const char* process : {"p one", "a, b", "it's"}) {
            writer.findOrAddDevice(0, {.name = process}, {text_key("mask", process, "TECHNOLOGY")});
        }
    });
    const std::vector<Read> reads{
        {{}, "mask='a, b' , p one", "a, b;p one;"},
        {{}, "mask!='a, b'\t,p one", "it's;"},
        {{}, "mask=p one,'a, b' ,", "a, b;p one;"},
        {{}, "mask=p one, it's,,", "it's;p one;"},
        {{}, "mask!=p one,,it's , ,", "a, b;"},
        {{}, "mask='a, b' ,", "a, b;"},
        {{}, "mask!='p one',,", "a, b;it's;"},
        {{}, "$DEVNAME!=n1,n2,d3,lonely,'a, b' ,,", "it's;p one;"},
        {{}, "$DEVDBID=1,3,,", "d3;n1;"},
        {{}, "$DEVDBID=3,,", "d3;"},
        {{}, "W=5u,10u,,", "n1;n2;"},
    };
    for (const Read& read : reads) {
        EXPECT_EQ(values_of("$DEVNAME", read.query), read.expected) << read.query;
    }
    for (const char* list : {"p one,',it's", "',p one", "p one,'", "','"}) {
        EXPECT_NE(
            values_of("$DEVNAME", "mask=" + std::string(list))
                .find("The column \"device key mask\" cannot be compared with the list \""),
            std::string::npos)
            << list;
    }
}

TEST_P(DbValues, SeeTheLatestOrAllRecords)
{
    lab.supersedeFirstSetup();
    EXPECT_EQ(rows_of({"OUTD.ID"}, "$TEMP=25"), "7e-06;");
    EXPECT_EQ(rows_of({"OUTD.ID"}, "ALLDATA: $TEMP=25"), "1e-09;3e-06;7e-06;");
    EXPECT_EQ(rows_of({"$TEMP"}, ""), "25;25;125;");
    EXPECT_EQ(rows_of({"$TEMP"}, "alldata :"), "25;25;25;125;");
    EXPECT_EQ(rows_of({"$DEVNAME"}, "IND.VG=2"), "");
    EXPECT_EQ(rows_of({"$DEVNAME"}, "ALLDATA: IND.VG=2"), "n1;");
}

TEST_P(DbValues, SayWhatIsWrong)
{
    const std::string heading =
        "failed: Error: Failed to resolve keywords to valid database unique key names. \n"
        "Error(s) reported: \n";
    const std::string noKey =
        "\" to a valid database key. \nNo matching key could be found in the database for the "
        "given keyword.\n";
    EXPECT_EQ(rows_of({"nokey"}, ""), heading + "Error: Failed to resolve keyword \"nokey" + noKey);
    EXPECT_EQ(values_of("w", ""), "failed: Error: Failed to resolve keyword \"w" + noKey);
    EXPECT_EQ(
        values_of("vth", ""),
        "failed: Error: Failed to resolve keyword \"vth\" to a valid database key. \n"
        "Ambiguous VANTO database keyword \"vth\".\n"
        "Multiple keys have been found in the database tables with the same name,\n i.e. : "
        "\"Key(vth,device,DOUBLE,NODE)\", \"Key(vth,measurement,DOUBLE)\"\n");
    EXPECT_EQ(
        values_of(" ", ""),
        "failed: Error: Failed to resolve an empty keyword \" \" to a valid database key. \n"
        "An empty keyword string is an invalid database key.\n");
    EXPECT_EQ(
        rows_of({}, ""), "failed: Error: No keywords provided to return database values for.\n");
    const std::string invalid = "failed: Error: Invalid query condition string encountered: \"";
    EXPECT_EQ(
        values_of("W", "nokey=1"),
        invalid +
            "nokey=1\".\nError(s) reported: \nQuery string \"nokey=1\" has an invalid term.\nThe term: "
            "\"nokey\" was not evaluated to a valid unique database key.\nDatabase Error(s) occurred: \n"
            "Error: Failed to resolve keyword \"nokey" +
            noKey);
    EXPECT_EQ(
        values_of("W", "W=x"),
        invalid +
            "W=x\".\nError(s) reported: \nQuery String Syntax Error: The specified query value \"'x'\" "
            "contains a value string \"x\" which could not be parsed as a real double value.\n");
    EXPECT_EQ(
        values_of("W", "$LOT!='a"),
        invalid +
            "$LOT!='a\".\nError(s) reported: \nQuery string \"$LOT!='a\" has an invalid value "
            "specified.\nThe term: \"$LOT\"'s specified value: \"'a\" after the NOT EQUALS operator, "
            "has a mismatched single quote ' character.\n");
    EXPECT_EQ(
        values_of("W", "W=[1]"),
        invalid +
            "W=[1]\".\nError(s) reported: \nQuery string \"W=[1]\" has an invalid '=[Min,Max]' value "
            "specifier.\nThe term: \"W\"'s specified '=[Min,Max]' value \"[1]\", requires a declared "
            "Min and Max value seperated by a comma ','.\n");
    EXPECT_NE(values_of("W", "$DEVDBID=one").find("device.id"), std::string::npos);
    EXPECT_NE(values_of("W", "W=1..2").find("is not a number"), std::string::npos);
    EXPECT_EQ(values_of("W", "Key(name,die,,FIXED)=1").substr(0, invalid.size()), invalid);
    std::vector<std::string> values;
    std::string errors;
    EXPECT_FALSE(dbapi::db_get_values_for_keyword_as_text("nowhere", "W", &values, "", &errors));
    EXPECT_EQ(
        errors, "Error: Database connection name \"nowhere\" was not found.\n"
                "Failed to create a valid open database connection.\n");
}

TEST(DbValuesOfAPath, ReadAFileThatIsNotStored)
{
    const TempDirectory folder;
    const std::string file = folder.file("sent.db");
    {
        LabDatabase sent(Engine::Sqlite);
        copy_content(sent.path(), file);
    }
    const auto answer = [](const std::string& name) {
        std::vector<std::string> values;
        std::string errors;
        const bool isRead =
            dbapi::db_get_values_for_keyword_as_text(name, "W", &values, "$LOT=A", &errors);
        return isRead ? joined(values) : errors;
    };
    EXPECT_EQ(answer(file), "5e-06;1e-05;");
    EXPECT_NE(
        thrown_by([] {
            dbapi_get_cached_connection()->query(
                QStringLiteral("DELETE FROM device"), 0, __FILE__, __LINE__);
        }).find("readonly"),
        std::string::npos);

    // The name alone is a path while the file is there, and another file in another folder.
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    EXPECT_EQ(answer("sent.db"), "5e-06;1e-05;");
    EXPECT_NE(answer("other.db").find("\"other.db\" was not found"), std::string::npos);
    std::filesystem::create_directory("below");
    run_on_file("below/sent.db", "CREATE TABLE t(x)");
    std::filesystem::current_path("below");
    EXPECT_NE(answer("sent.db").find("belongs to another program"), std::string::npos);
    run_on_file("sent.db", "DROP TABLE t");
    EXPECT_NE(answer("sent.db").find("has no tables"), std::string::npos);
    std::filesystem::current_path(before);
    EXPECT_NE(answer(folder.file("gone.db")).find("does not exist"), std::string::npos);
}

TEST_P(DbValues, KeepTheCallCacheCurrent)
{
    ASSERT_EQ(values_of("$DEVNAME", "W=5u"), "n1;");
    const DBIF_Connection* connection = dbapi_get_cached_connection();
    const DBIF_QueryCondition* condition = dbapi::cache()->condition.get();
    ASSERT_NE(connection, nullptr);

    // The same again: the same connection and condition, and the keyword is known.
    ASSERT_EQ(values_of("$DEVNAME", "W=5u"), "n1;");
    EXPECT_EQ(dbapi_get_cached_connection(), connection);
    EXPECT_EQ(dbapi::cache()->condition.get(), condition);
    EXPECT_EQ(dbapi::cache()->resolvedKeywords.count("$DEVNAME"), 1U);
    DBIF_Connection same = *connection;
    DBIF_QueryCondition* reused = nullptr;
    bool latestOnly = false;
    ASSERT_TRUE(
        dbapi_get_query_str_dbif_query_condition_ptr(same, "W=5u", &reused, &latestOnly, nullptr));
    EXPECT_EQ(reused, condition);

    // A change through another connection is seen at once, a new key too.
    DBIF_Connection other = lab.open();
    dbif::RecordWriter writer(other);
    writer.findOrAddDevice(
        0, {.name = "new"}, {number_key("W", 5e-6, "PHYSICAL"), number_key("new", 1, "ID")});
    writer.commit();
    EXPECT_EQ(values_of("$DEVNAME", "W=5u"), "n1;new;");
    EXPECT_EQ(values_of("new", "W=5u"), "1;");

    // A nested call leaves the cache alone; another port is another connection.
    {
        const DbapiCacheHelper outer;
        ASSERT_TRUE(outer.is_at_toplevel());
        EXPECT_EQ(values_of("$LOT", "W=10u"), "A;");
        EXPECT_EQ(dbapi_get_cached_query_str(), "W=5u");
    }
    if (GetParam() == Engine::Sqlite) {
        const DbuiConnection before = lab.record("lab");
        const DbuiConnection after(
            "lab", before.get_dbDriverName(), "", "4711", before.get_databaseName(), "", "");
        ASSERT_TRUE(dbui_update_connection(before, after, false));
        const DBIF_Connection held = *dbapi_get_cached_connection();
        ASSERT_EQ(values_of("$DEVNAME", "W=5u"), "n1;new;");
        EXPECT_FALSE(*dbapi_get_cached_connection() == held);
    }
    std::string errors;
    EXPECT_FALSE(dbapi_initialize_global_cache("gone", "", &errors));
    EXPECT_FALSE(dbapi_cache_is_valid());
}

TEST_P(DbValues, HoldOutAgainstExtremeQueries)
{
    std::string list = "W=5u";
    for (int i = 0; i < 10'000; ++i) {
        list += "," + std::to_string(i) + "u";
    }
    EXPECT_EQ(values_of("$DEVNAME", list), "n1;n2;");
    const std::string deep = std::string(100'000, '{') + "W=5u" + std::string(100'000, '}');
    EXPECT_NE(
        values_of("$DEVNAME", deep).find("Query string is nested deeper than 200 levels."),
        std::string::npos);
    EXPECT_TRUE(values_of(std::string(1'000'000, 'k'), "").starts_with("failed: "));
    EXPECT_TRUE(values_of("W", std::string("$DEVNAME=\xff\xfe")).empty());
    EXPECT_TRUE(values_of("$DEVNAME", "$DEVNAME='; DROP TABLE device; --").starts_with("failed: "));
    EXPECT_EQ(values_of("$DEVNAME", "$DEVNAME=x') OR (1=1) --"), "");
    std::string chain = "$DEVNAME=n1";
    for (int i = 0; i < 500; ++i) {
        chain += ";W=[1u,9u]";
    }
    EXPECT_EQ(values_of("$DEVNAME", chain), "n1;");
}

INSTANTIATE_ON_ENGINES(DbValues);
} // namespace
