#include "tests/support/command_fixture.h"

#include <gmock/gmock.h>

#include <vector>

namespace {
using namespace test_support; // NOLINT(google-build-using-namespace)
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using FaultAdvice = Command;

TEST_F(FaultAdvice, PointsAtTheFault)
{
    dbapi(
        {"import", "lab",
         sweep(
             "a.csv", "# $DEVNAME = d\n# DEVD.W = 5u\n# TECHS.process = p\n# CED.W = 1\n"
                      "# Key(S11,measurement,COMPLEX) = 1j\n# MES.DataOrigin = x\n"
                      "# MED.length = 1\nOUTD.ID\n1\n")});

    struct Fault
    {
        Arguments arguments;
        std::string lines;
    };

    const std::vector<Fault> faults{
        {{"lenght"}, "  lenght\n  ^^^^^^\nDid you mean length?\n"},
        {{"LENGTH"}, "  LENGTH\n  ^^^^^^\nDid you mean length?\n"},
        {{"length", "$DEVNAM"}, "  $DEVNAM\n  ^^^^^^^\nDid you mean $DEVNAME?\n"},
        {{"device.length"},
         "  device.length\n  ^^^^^^^^^^^^^\nDid you mean Key(length,measurement,DOUBLE)?\n"},
        {{"W"},
         "  W\n  ^\nDid you mean Key(W,catalog_entry,DOUBLE) or Key(W,device,DOUBLE,PHYSICAL)?\n"},
        {{"Key(length,measurements)"},
         "  Key(length,measurements)\n             ^^^^^^^^^^^^\nDid you mean measurement?\n"},
        {{"Key(length"}, "  Key(length\n            ^\n"},
        {{"$dataorigin"}, "  $dataorigin\n  ^^^^^^^^^^^\nDid you mean $DATAORIGIN, "},
        {{"length", "-q", "length=1; DEVD.w = 5u"},
         "  length=1; DEVD.w = 5u\n            ^^^^^^\n"},
        {{"length", "-q", "process=\u00b5\u00b5;length=[0,1V]"},
         "  process=\u00b5\u00b5;length=[0,1V]\n                       ^^\n"},
        {{"length", "-q", "alldata: length=1,2y,3"},
         "  alldata: length=1,2y,3\n                    ^^\n"},
        {{"length", "-q", "process='p"}, "  process='p\n          ^^\n"},
        {{"length", "-q", "length=[1]"}, "  length=[1]\n         ^^^\n"},
        {{"length", "-q", "length<1,2"}, "  length<1,2\n         ^^^\n"},
        {{"length", "-q", "length=,"}, "  length=,\n         ^\n"},
        {{"length", "-q", "$MEASDBID=x"}, "  $MEASDBID=x\n            ^\n"},
        {{"length", "-q", "S11<1"}, "  S11<1\n      ^\n"},
        {{"length", "-q", "length=1;{W"}, "  length=1;{W\n           ^^\n"},
        {{"length", "-q", "length=1;W"}, "  length=1;W\n           ^\n"},
        {{"length", "-q", "length=1 ALLDATA:"}, "  length=1 ALLDATA:\n           ^^^^^^^\n"},
        {{"device.$DEVNAME"},
         "  device.$DEVNAME\n  ^^^^^^^^^^^^^^^\nA builtin keyname stands alone, without table and "
         "attributes.\nProbably meant:\n  $DEVNAME\n"},
        {{"\x1b[31mred"}, "  \\x1b[31mred\n  ^^^^^^^^^^^\n"}};
    for (const Fault& fault : faults) {
        Arguments arguments{"values", "lab"};
        arguments.insert(arguments.end(), fault.arguments.begin(), fault.arguments.end());
        const Outcome outcome = dbapi(arguments);
        EXPECT_EQ(outcome.code, 2) << fault.lines;
        EXPECT_THAT(outcome.talk, StartsWith("dbapi: "));
        EXPECT_THAT(outcome.talk, HasSubstr("\n" + fault.lines));
        EXPECT_EQ(outcome.data, "");
    }
}

TEST_F(FaultAdvice, AdvisesWhatWasProbablyMeant)
{
    dbapi(
        {"import", "lab",
         sweep(
             "a.csv", "# $DEVNAME = nfet_1\n# $LOT = S130\n# $TEMP = 25\n# DEVD.W = 5u\n"
                      "# DEVD.L = 1u\n# TECHS.process = p\nIND.VG,OUTD.ID\n1,2\n")});

    struct Case
    {
        std::string query;
        /// The whole query that is advised; empty for words alone.
        std::string corrected;
        std::string words = {};
    };

    // Refused; the mended query finds the device.
    const std::vector<Case> faults{
        {"Wx=5u;VG=1", "", "Did you mean W?\n"},
        {"W=5u and L=1u", "{W=5u} AND {L=1u}", "AND, OR and NOT are written in capitals."},
        {"W<6u AND L>0.5u", "{W<6u} AND {L>0.5u}", "join what stands in braces"},
        {"VG=1;W=5u AND L=2u OR L=1u", "VG=1;{{{W=5u} AND {L=2u}} OR {L=1u}}"},
        {"W=5u AND (L=2u OR L=1u)", "{W=5u} AND {{L=2u} OR {L=1u}}"},
        {"W=5u && Lx=1um", "{W=5u} AND {L=1u}"},
        {"W=6u OR 5u", "W=6u,5u"},
        {"NOT {W=6u} AND {L=1u}", "{NOT KEY(W)=6u} AND {L=1u}"},
        {"not device.W=6u;L=1u", "{NOT KEY(W,device)=6u};L=1u", "NOT stands in capitals"},
        {"NOT{W=6u}", "NOT KEY(W)=6u"},
        {"W==5u", "W=5u", "The comparators are"},
        {"W=<5u;L=>1u", "W<=5u;L>=1u"},
        {"W < = 5u", "W<=5u"},
        {"W in [1u,6u]", "W=[1u,6u]", "a range KEY=[Min,Max]"},
        {"W IN (5u, 6u)", "W=5u, 6u"},
        {"process not in (a,b)", "process!=a,b"},
        {"W between 1u and 6u", "W=[1u,6u]"},
        {"process like 'p%'", "process>=p;process<q"},
        {"1u<W<6u", "W>1u;W<6u", "one comparator"},
        {"VG=1;6u>=W>1u", "VG=1;{W<=6u;W>1u}"},
        {"1u<=W<=6u", "W=[1u,6u]"},
        {"6u>W", "W<6u"},
        {"W=5u;", "W=5u", "stand between two terms"},
        {"W=5u;;{L=1u;}", "W=5u;{L=1u}"},
        {"{W=5u} AND", "{W=5u}"},
        {"{{W=5u};L=1u", "{{W=5u};L=1u}", "open brace"},
        {"W=*", "", "There is no wild card"},
        {"W=[1um,6um]", "W=[1u,6u]", "but no unit"},
        {"W=5 \u00b5m", "W=5u"},
        {"$TEMP=25C", "$TEMP=25"},
        {"VG<1MHz", "VG<1MEG"},
        {"W=0.5u..6u", "W=[0.5u,6u]", "A range is written [Min,Max]."},
        {"W=[0.5u:6u]", "W=[0.5u,6u]"},
        {"W<5,5u", "W<5.5u", "Decimals stand behind a point"},
        {"W=[0,5u,6,5u]", "W=[0.5u,6.5u]"},
        {"W=5u;=S130", "", "write single quotes around"},
        {"{=S130}", "", "write single quotes around"},
        {"device.$DEVNAME=nfet_1", "$DEVNAME=nfet_1"}};
    // Read, and a note on the standard error stream says how.
    const std::vector<Case> notes{
        {"{W=5u} and {L=1u}", "{W=5u} AND {L=1u}", "It is ignored: behind a closing brace"},
        {"{W=5u} {L=1u}", "{W=5u} AND {L=1u}"},
        {"{W=5u} xyz", ""},
        {"{} AND W=1", "", "It is ignored: {} selects everything"},
        {"process=p AND L=1u", "{process=p} AND {L=1u}", "taken for one value"},
        {"L=1u;process=p and W=5u", "L=1u;{{process=p} AND {W=5u}}"},
        {"process=q OR p", "process=q,p"},
        {"process==p", "process=p"},
        {"process=R AND D", "", "In single quotes it is meant as it stands."},
        {"{W in (5u,6u)}", "{W=5u,6u}", "taken for a keyword"},
        {"$DEVNAME=nfet*", "$DEVNAME>=nfet;$DEVNAME<nfeu", "There is no wild card"},
        {"$DEVNAME=%fet_1", ""}};
    const auto check = [this](const Case& one, bool isFault) {
        const Outcome outcome = dbapi({"values", "lab", "$LOT", "-q", one.query});
        EXPECT_EQ(outcome.code == 2, isFault) << one.query << outcome.talk;
        EXPECT_THAT(outcome.talk, HasSubstr("\n  " + one.query + "\n")) << one.query;
        EXPECT_THAT(outcome.talk, HasSubstr(one.words)) << one.query;
        EXPECT_THAT(outcome.talk, Not(HasSubstr("nan"))) << one.query;
        const std::string advice = "\nProbably meant:\n  ";
        EXPECT_EQ(outcome.talk.find(advice) != std::string::npos, !one.corrected.empty());
        if (!one.corrected.empty()) {
            EXPECT_THAT(outcome.talk, HasSubstr(advice + one.corrected + "\n"));
            const Outcome mended = dbapi({"values", "lab", "$LOT", "-q", one.corrected});
            EXPECT_EQ(mended.data + mended.talk, "$LOT\nS130\n") << one.query;
        }
    };
    for (const Case& fault : faults) {
        check(fault, true);
    }
    for (const Case& note : notes) {
        check(note, false);
    }
    // Quoted values are meant as they stand; every command with a query tells its notes.
    EXPECT_THAT(
        dbapi({"values", "lab", "$LOT", "-q", "process='p AND W=5u'"}).talk,
        Not(HasSubstr("note")));
    EXPECT_THAT(dbapi({"values", "lab", ""}).talk, HasSubstr("write single quotes around"));
    dbapi({"connection", "add", "other", "--sqlite", folder.file("other.db")});
    for (Arguments arguments :
         {Arguments{"ids", "lab", "device"}, Arguments{"keys", "lab", "device"},
          Arguments{"record", "lab", "device", "1", "W"}, Arguments{"copy", "lab", "other"}}) {
        arguments.insert(arguments.end(), {"-q", "{W=5u} x"});
        const Outcome outcome = dbapi(arguments);
        EXPECT_EQ(outcome.code, 0) << outcome.talk;
        EXPECT_THAT(outcome.talk, StartsWith("dbapi: note: It is ignored: ")) << arguments.front();
    }
}
} // namespace
