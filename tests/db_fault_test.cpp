#include "dbapi/dbapi.h"
#include "dbapi/wall/column_search.h"

#include "tests/support/lab_database.h"

#include <gmock/gmock.h>

#include <tuple>

namespace {
using namespace test_support;
using dbapi::Fault;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// The rows of several keywords side by side, or the error text.
std::string rows_of(const std::vector<std::string>& keywords, const std::string& query)
{
    std::vector<std::vector<std::string>> columns;
    std::string errors;
    return dbapi::db_get_values_for_keywords("lab", keywords, &columns, query, &errors)
               ? joined(columns)
               : errors;
}

/// The values of one keyword, or the error text.
std::string values_of(const std::string& keyword, const std::string& query = {})
{
    std::vector<std::string> values;
    std::string errors;
    return dbapi::db_get_values_for_keyword_as_text("lab", keyword, &values, query, &errors)
               ? joined(values)
               : errors;
}

std::size_t count_of(const std::string& part, const std::string& text)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

class DbFault : public testing::TestWithParam<Engine>
{
protected:
    LabDatabase lab{GetParam()};
};

TEST_P(DbFault, TellsWhatAndWhere)
{
    Fault fault;
    EXPECT_FALSE(dbapi::db_get_last_fault(&fault));

    struct Case
    {
        std::string keyword;
        std::string query;
        Fault::Kind kind;
        Fault::Where where;
        std::size_t position;
        std::size_t length;
    };

    using Kind = Fault::Kind;
    using Where = Fault::Where;
    const std::vector<Case> cases{
        {"W", " ALLDATA: L=1;{W", Kind::UnbalancedBraces, Where::Query, 14, 2},
        {"W", "L=0.15u; Wx=5u", Kind::UnknownKey, Where::Query, 9, 2},
        {"W", "L=[1,2y]", Kind::NoNumber, Where::Query, 5, 2},
        {"W", "L=1;vth=1", Kind::AmbiguousKey, Where::Query, 4, 3},
        {"W", "L=1;Key(W=1", Kind::MalformedKeyword, Where::Query, 9, 0},
        {" Key(W,devise)", "", Kind::MalformedKeyword, Where::Keyword, 7, 6},
        {" Wx ", "", Kind::UnknownKey, Where::Keyword, 1, 2},
        {"vth", "", Kind::AmbiguousKey, Where::Keyword, 0, 3},
        {"device.$LOT", "", Kind::QualifiedBuiltin, Where::Keyword, 0, 11}};
    for (const Case& one : cases) {
        const std::string errors = values_of(one.keyword, one.query);
        ASSERT_TRUE(dbapi::db_get_last_fault(&fault)) << errors;
        EXPECT_EQ(fault.text, errors);
        EXPECT_EQ(
            std::tuple(fault.kind, fault.where, fault.position, fault.length),
            std::tuple(one.kind, one.where, one.position, one.length))
            << errors << fault.position << "," << fault.length;
        EXPECT_EQ(fault.source, one.query.empty() ? one.keyword : one.query);
        EXPECT_EQ(
            joined(fault.candidates),
            one.kind == Kind::AmbiguousKey
                ? "Key(vth,device,DOUBLE,NODE);Key(vth,measurement,DOUBLE);"
                : "");
    }
    // Of several keywords, the one at fault.
    rows_of({"W", "process", "vth"}, "");
    ASSERT_TRUE(dbapi::db_get_last_fault(&fault));
    EXPECT_EQ(fault.source, "vth");
    EXPECT_EQ(fault.kind, Kind::AmbiguousKey);
    values_of("W");
    EXPECT_FALSE(dbapi::db_get_last_fault(&fault));
}

TEST_P(DbFault, QuotesWhatWasWritten)
{
    const std::vector<std::pair<std::string, std::string>> values{
        {"W=1um", "\"1um\""},
        {"$TEMP=25C", "\"25C\""},
        {"W=[0.5u..1u,2]", "\"0.5u..1u\""},
        {"W=5u,1um", "1um"},
        {"W<1um", "\"1um\""}};
    for (const auto& [query, quoted] : values) {
        const std::string text = values_of("W", query);
        EXPECT_THAT(
            text, StartsWith("Error: Invalid query condition string encountered: \"" + query));
        EXPECT_THAT(text.substr(text.find('\n')), HasSubstr(quoted));
        EXPECT_THAT(text, Not(HasSubstr("nan")));
    }
    for (const char* query : {"\t Wx=1 ", " alldata : Wx=1\n", "ALLDATA:Wx=1"}) {
        EXPECT_THAT(
            values_of("W", query),
            StartsWith("Error: Invalid query condition string encountered: \"Wx=1\".\n"));
    }
    for (const std::string& text :
         {values_of("device.$DEVNAME"), rows_of({"device.$DEVNAME"}, "")}) {
        EXPECT_EQ(count_of("\"device.$DEVNAME\"", text), 1U) << text;
    }
}

TEST_P(DbFault, LeavesOtherKeywordsAloneBesideAnAmbiguousOne)
{
    // No selected record has the key process.
    EXPECT_EQ(rows_of({"vth", "process"}, "$DEVNAME=n2"), "0.5|;");
    EXPECT_EQ(values_of("process", "$DEVNAME=n2"), "");
    EXPECT_THAT(
        rows_of({"process", "vth"}, ""), HasSubstr("Ambiguous VANTO database keyword \"vth\""));

    constexpr int kKeys = 1100;
    std::vector<std::string> keywords{"vth"};
    std::string query = "{vth}";
    std::string row = "0.5";
    lab.write([&](dbif::RecordWriter& writer) {
        std::vector<dbif::KeyValue> keys;
        for (int i = 0; i < kKeys; ++i) {
            const std::string name = "key" + std::to_string(i);
            keys.push_back(number_key(name, i, "PHYSICAL"));
            keywords.push_back(name);
            query += " OR {" + name + "=" + std::to_string(i) + "}";
            row += "|";
        }
        writer.findOrAddDevice(0, {.name = "many"}, keys);
    });
    EXPECT_EQ(rows_of(keywords, "$DEVNAME=n2"), row + ";");
    EXPECT_EQ(values_of("$DEVNAME", query), "many;");
}

TEST_P(DbFault, HandsADatabaseErrorOutAsAText)
{
    lab.execute("ALTER TABLE device_column RENAME TO elsewhere");
    EXPECT_THAT(
        values_of("W"),
        StartsWith("Error: Failed to resolve keyword \"W\" to a valid database key. \n"
                   "Error: Database Exception reported: \n"));
    EXPECT_THAT(rows_of({"W", "L"}, ""), HasSubstr("Error: Database Exception reported: \n"));
    EXPECT_THAT(values_of("$DEVNAME", "W=1"), HasSubstr("Error: Invalid query condition string"));
    Fault fault;
    ASSERT_TRUE(dbapi::db_get_last_fault(&fault));
    EXPECT_EQ(fault.kind, Fault::Kind::Database);
}

TEST_P(DbFault, IsNoneInAChainThatChangesAThousandTimes)
{
    std::string chain;
    for (int i = 0; i < 500; ++i) {
        chain += "{$DEVNAME=n1} OR {W>0} AND ";
    }
    EXPECT_EQ(values_of("$DEVNAME", chain + "{$DEVNAME=n1} OR $DEVNAME=n2"), "n1;n2;");
}

TEST_P(DbFault, FindsNoColumnWithoutADataType)
{
    QSharedPointer<DBIF_MeasurementColumn> measured;
    QSharedPointer<DBIF_DeviceColumn> device;
    QSharedPointer<DBIF_SetupColumn> swept;
    for (const std::string datatype : {"DOUBLE", "", "NUMBER"}) {
        const bool isOne = datatype == "DOUBLE";
        EXPECT_EQ(searchForColumn(lab.connection, "vth", datatype, &measured), isOne) << datatype;
        EXPECT_EQ(searchForColumn2(lab.connection, "W", "PHYSICAL", datatype, &device), isOne);
        EXPECT_EQ(searchForColumn3(lab.connection, "VG", datatype, true, &swept), isOne);
    }
}

INSTANTIATE_ON_ENGINES(DbFault);
} // namespace
