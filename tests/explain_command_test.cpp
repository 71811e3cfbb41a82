#include "dbif/host/host_string.h"

#include "tests/support/lab_database.h"
#include "tests/support/run_command.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

namespace {
using namespace test_support; // NOLINT(google-build-using-namespace)
using testing::Contains;
using testing::HasSubstr;

struct Read
{
    Arguments arguments;
    /// What its explanation says, blanks and line ends as one blank each.
    std::vector<std::string> says;
};

class ExplainCommand : public testing::TestWithParam<Engine>
{
protected:
    static Outcome explain(Arguments arguments)
    {
        arguments.insert(arguments.begin(), {"explain", "lab"});
        return dbapi(arguments);
    }

    static void expect(const std::vector<Read>& reads)
    {
        for (const Read& read : reads) {
            const Outcome outcome = explain(read.arguments);
            EXPECT_EQ(outcome.code, 0) << outcome.talk;
            const std::string text = dbif::to_utf8(dbif::to_qt(outcome.data).simplified());
            for (const std::string& said : read.says) {
                EXPECT_THAT(text, HasSubstr(said)) << outcome.data;
            }
        }
    }

    /// The explanation as JSON, of which every statement has a plan.
    static nlohmann::json json(Arguments arguments)
    {
        arguments.insert(arguments.end(), {"--format", "json"});
        const nlohmann::json explanation = nlohmann::json::parse(explain(arguments).data);
        for (const nlohmann::json& statement : explanation["read"]["statements"]) {
            EXPECT_FALSE(statement["plan"].empty()) << statement["sql"];
        }
        return explanation;
    }

    LabDatabase lab{GetParam()};
};

TEST_P(ExplainCommand, TellsHowAReadIsUnderstood)
{
    expect(
        {{{"$DEVNAME", "-q", "W=[5u,10u];$TEMP=25"},
          {"2 rows, from 2 devices, in ", "AND 2 ", "W from 5e-06 to 1e-05 device.W 2 2 ",
           "$TEMP = 25 measurement.temperature 2 2 alone: how many of 4 devices",
           "$DEVNAME name device fixed column TEXT builtin keyname ",
           "W W device PHYSICAL DOUBLE the only key of its name ",
           "There are none of this table, and conditions on measurements"}},
         {{"-q", "{W=5u, 130n} OR {NOT KEY(W)=10u} OR {$LOT='B'}"},
          {"3 rows, from 3 devices", "OR 3 W in 5e-06, 1.3e-07 device.W 2 NOT 2 "
                                     "KEY(W) = 1e-05 device.W 1 $LOT = 'B' die.lot 2 "}},
         {{"vth", "-q", "$DEVNAME=n1"},
          {"vth vth measurement DOUBLE of the 2 that agree with the keyword, the one that the "
           "selected records have "}},
         {{"device.vth", "$DATAORIGIN", "device;FIXED.name"},
          {"Empty: all of 3 measurements count.",
           "device.vth vth device NODE DOUBLE the one of 2 keys named vth that agrees with the "
           "keyword ",
           "$DATAORIGIN DataOrigin measurement TEXT builtin keyname of a stored key ",
           "device;FIXED.name name device fixed column TEXT named as a fixed column "}},
         {{"OUTD.ID", "-q", "IND.VG>0.5;$TEMP=125"},
          {"1 row, a point of a setup, in ", "IND.VG > 0.5 setup.VG 2 2 3 ",
           "leaves 1 setup. Of their 2 points, 1 of 1 setup satisfy the query."}}});
}

TEST_P(ExplainCommand, TellsWhatLeavesNothing)
{
    expect(
        {{{"W", "-q", "W=6u;$LOT=A"},
          {"Nothing is found", "\"W = 6e-06\" keeps nothing, even by itself. What to try Stored "
                               "under W: 1.3000000000000003e-07, 5e-06, 1e-05. "}},
         {{"OUTD.ID", "-q", "IND.VG=1;OUTD.ID=3u"},
          {"\"OUTD.ID = 3e-06\" keeps 1 setup by itself, but none of the 2 setups that \"IND.VG = "
           "1\" keeps. Conditions on points hold for one point at a time: no single point",
           "Without \"IND.VG = 1\", 1 setup is left. Without \"OUTD.ID = 3e-06\", 2 setups are left."}},
         {{"process", "-q", "W=10u"},
          {"The query keeps 1 device, but none has a value of process."}},
         {{"W", "-q", "NOT KEY(W)>0"}, {"NOT \"KEY(W) > 0\" keeps nothing: wherever there is"}},
         {{"W", "-q", "W=5u;{nokey}"}, {"\"{nokey}\" is false: it names no key, or several."}},
         {{"$ROUTINENAME"}, {"The database has no routines at all."}}});
    std::string many = "{W=1}";
    for (int i = 2; i <= 120; ++i) {
        many += " OR {W=" + std::to_string(i) + "}";
        if (i == 20) {
            expect(
                {{{"W", "-q", many},
                  {"\"W = 5\" keeps nothing, even by itself. So do 15 more terms. What"}}});
        }
    }
    expect(
        {{{"W", "-q", many},
          {"too many parts to count each of them.", " OR 0 W = 1 device.W W = 2 device.W "}}});
    lab.supersedeFirstSetup();
    expect(
        {{{"OUTD.ID", "-q", "IND.VG=2"},
          {"Stored under IND.VG: 0, 1, 7.", "That leaves out 1 setup.",
           "With \"ALLDATA:\" in front, 1 setup that was superseded is found."}},
         {{"OUTD.ID", "-q", "ALLDATA: IND.VG=2"},
          {"1 row, a point of a setup", "They count: the query begins with \"ALLDATA:\"."}}});
}

TEST_P(ExplainCommand, ShowsTheStatementsThatRan)
{
    lab.write([](dbif::RecordWriter& writer) {
        for (int i = 0; i < 600; ++i) {
            const int device = writer.findOrAddDevice(0, {.name = "m" + std::to_string(i)});
            writer.addSetup(
                writer.addCondition(writer.addMeasurement({0, device, 0, 25, {}}), {}), {},
                {sweep("x", {1, 2})}, "");
        }
    });
    const nlohmann::json byKey = json({"$DEVNAME", "-q", "W=5u"});
    std::vector<std::string> indexes;
    for (const nlohmann::json& statement : byKey["read"]["statements"]) {
        for (const nlohmann::json& index : statement["indexes"]) {
            indexes.push_back(index);
        }
    }
    EXPECT_THAT(indexes, Contains("device_data_by_number"));

    // So many records stand in a temporary table, which is gone when the read is done.
    const nlohmann::json byPoints = json({"$DEVNAME", "-q", "OUTD.x=2"});
    EXPECT_EQ(byPoints["read"]["rows"], 600);
    EXPECT_EQ(byPoints["tree"]["alone"], (nlohmann::json{{"records", 600}, {"points", 600}}));
    EXPECT_EQ(
        byPoints["read"]["points"], (nlohmann::json{
                                        {"setups_by_bounds", 600},
                                        {"points_by_bounds", 1200},
                                        {"setups", 600},
                                        {"points", 600}}));
    EXPECT_THAT(
        byPoints["read"]["statements"].back()["sql"], testing::StartsWith("SELECT device.name"));
}

TEST_P(ExplainCommand, FitsTheTerminalAndPointsAtFaults)
{
    const Outcome shown =
        dbapi_on_terminal({"explain", "lab", "OUTD.ID", "-q", "IND.VG=[0,1];$LOT=A,B,'C'"});
    const std::size_t statements = shown.data.find("SQL and plan");
    ASSERT_NE(statements, std::string::npos) << shown.data;
    for (std::size_t begin = statements; begin < shown.data.find("Time", statements);) {
        const std::size_t end = shown.data.find("\r\n", begin);
        EXPECT_LE(end - begin, 80U) << shown.data.substr(begin, end - begin);
        begin = end + 2;
    }
    expect(
        {{{"W", "-q", "{W=5u} and {L=1}"},
          {"Ignored \"and {L=1}\": It is ignored: behind a closing brace, only \";\", AND or OR"}}});
    const nlohmann::json ignored = json({"W", "-q", "{} W=5u"})["ignored"][0];
    EXPECT_EQ(ignored["text"], "W=5u");
    EXPECT_EQ(ignored["position"], 3);
    const Outcome fault = explain({"W", "-q", "W=5u;Lx=1"});
    EXPECT_EQ(fault.code, 2);
    EXPECT_THAT(fault.talk, HasSubstr("\n  W=5u;Lx=1\n       ^^\nDid you mean L?"));
    EXPECT_EQ(explain({"Wx"}).code, 2);
    EXPECT_EQ(explain({}).code, 2);
}

INSTANTIATE_ON_ENGINES(ExplainCommand);
} // namespace
