#include "tests/support/command_fixture.h"

#include <QStandardPaths>

#include <gmock/gmock.h>

namespace {
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using namespace test_support;

class PlotOutput : public Command
{
protected:
    /// The script that the command keeps for these arguments; `talk` receives what it says.
    std::string script(Arguments arguments)
    {
        const std::string file = folder.file("picture.gp");
        arguments.insert(arguments.begin(), {"values", "lab"});
        arguments.insert(arguments.end(), {"--plot", file});
        const Outcome outcome = dbapi(arguments);
        EXPECT_EQ(outcome.code, 0) << outcome.talk;
        EXPECT_EQ(outcome.data, "");
        talk = outcome.talk;
        return read_file(file);
    }

    std::string talk;
};

TEST_F(PlotOutput, DrawsTheFamiliesOfTheShippedSweeps)
{
    dbapi({"import", "lab", SAMPLE_DIRECTORY});
    const std::string device = "$DEVNAME=nfet_01v8_w0p36u_l0p15u_m1";
    const std::string family = script({"IN.VG", "OUTD.ID", "-q", device});
    EXPECT_THAT(talk, StartsWith("Drew 6 curves into"));
    EXPECT_THAT(talk, HasSubstr("\n1 setup left out: it does not sweep IN.VG.\n"));
    EXPECT_THAT(family, HasSubstr("set xlabel \"IN.VG\"\n"));
    EXPECT_THAT(family, HasSubstr("set xtics (\"0\" 0, \"0.2\" 0.2, "));
    EXPECT_THAT(family, HasSubstr("\"160u\" 0.00016, \"180u\" 0.00018)\n"));
    EXPECT_THAT(family, HasSubstr("$data << END_OF_DATA\n0 "));
    for (const char* label :
         {"VD=0.1, VB=-1.8", "VD=0.1, VB=-0.9", "VD=0.1, VB=0", "VD=1.8, VB=-1.8",
          "VD=1.8, VB=-0.9", "VD=1.8, VB=0"}) {
        EXPECT_THAT(family, HasSubstr("title \"" + std::string(label) + "\""));
    }
    const std::string logarithmic = script({"IN.VG", "OUTD.ID", "-q", device, "--logy"});
    EXPECT_THAT(logarithmic, HasSubstr("set ylabel \"|OUTD.ID|\"\nset logscale y\n"));
    EXPECT_THAT(logarithmic, HasSubstr("\"100n\" 1e-07"));
    EXPECT_THAT(
        talk, HasSubstr("1 point left out: a logarithmic axis shows only what is above 0."));
    EXPECT_THAT(
        script({"IN.VG", "OUTD.ID", "-q", "$DEVTYPE=pfet_01v8"}),
        HasSubstr("title \"VD=-1.8, VB=0, pfet_01v8_w0p420u_l0p150u_m1, 2605, 1_10\""));
    EXPECT_THAT(talk, HasSubstr("The legend names one of "));

    EXPECT_THAT(script({"W"}), HasSubstr("set xtics (\"360n\" 0, \"390n\" 1, \"420n\" 2, "));
    EXPECT_THAT(script({"$DEVTYPE"}), HasSubstr("END_OF_DATA\n0 55\n1 49\n"));
    EXPECT_THAT(script({"ID_absmax", "--logx"}), HasSubstr("set logscale x\n"));
    EXPECT_THAT(script({"W", "ID_absmax"}), HasSubstr("with points"));
}

TEST_F(PlotOutput, DrawsImagesWithGnuplot)
{
    if (QStandardPaths::findExecutable(QStringLiteral("gnuplot")).isEmpty()) {
        GTEST_SKIP() << "gnuplot is not installed";
    }
    const std::string mark = folder.file("run_by_gnuplot");
    const std::string evil =
        R"(x''; system("touch )" + mark + R"(") #`touch )" + mark + R"(` @y \"z)";
    const std::string path = sweep(
        "a.csv", "# $DEVNAME = " + evil + "\n\"IND.v'`touch " + mark + "`\",OUTD.i\n0,1\n1,2\n");
    sweep("b.csv", "# $DEVNAME = END_OF_DATA\n\"IND.v'`touch " + mark + "`\",OUTD.i\n0,3\n1,5\n");
    ASSERT_EQ(dbapi({"import", "lab", folder.file("sweeps")}).code, 0);
    const auto draw = [&](const std::string& keyword, const std::string& name) {
        const Outcome outcome = dbapi(
            {"values", "lab", keyword, "i", "-q", "i>0", "--plot", folder.file(name), "--logy"});
        EXPECT_EQ(outcome.code, 0) << outcome.talk;
        return read_file(folder.file(name));
    };
    const std::string key = "v'`touch " + mark + "`";
    const std::string image = draw(key, "a.svg");
    EXPECT_THAT(image, HasSubstr("<svg"));
    EXPECT_THAT(image, HasSubstr("END_OF_DATA"));
    EXPECT_THAT(image, HasSubstr("touch " + mark));
    EXPECT_THAT(draw("$DEVNAME", "b.png"), StartsWith("\x89PNG"));
    EXPECT_FALSE(std::filesystem::exists(mark));
    EXPECT_EQ(
        dbapi({"values", "lab", "i", "-q", "i>9", "--plot", folder.file("none.svg")}).code, 1);
    EXPECT_FALSE(std::filesystem::exists(folder.file("none.svg")));
    EXPECT_EQ(dbapi({"values", "lab", "i", "--plot", "/nowhere/a.svg"}).code, 5);
}

TEST_F(PlotOutput, ExplainsWhatItCannotDraw)
{
    dbapi({"import", "lab", sweep("a.csv", "# $DEVNAME = d\nIND.v,OUTD.i,OUTS.t\n0,1,a\n")});
    const auto talkOf = [&](Arguments arguments) {
        arguments.insert(arguments.begin(), {"values", "lab"});
        const Outcome outcome = dbapi(arguments);
        EXPECT_EQ(outcome.code, 2) << outcome.talk;
        return outcome.talk;
    };
    EXPECT_THAT(talkOf({"v", "t", "--plot", "x.gp"}), HasSubstr("\"t\" holds texts"));
    EXPECT_THAT(talkOf({"t", "i", "--logx", "--plot", "x.gp"}), HasSubstr("t holds texts"));
    EXPECT_THAT(talkOf({"v", "i", "--plot", "x.pdf"}), HasSubstr("has to end in .svg, .png"));
    EXPECT_THAT(talkOf({"v", "i", "--logx"}), HasSubstr("--logx needs --plot."));
    EXPECT_THAT(
        talkOf({"v", "--distinct", "--plot", "x.gp"}),
        HasSubstr("--distinct and --plot cannot be combined."));
    EXPECT_THAT(
        talkOf({"v", "--limit", "1", "--plot", "x.gp"}), HasSubstr("--limit and --plot cannot be"));
    dbapi({"import", "lab", sweep("b.csv", "# $DEVNAME = e\nIND.u\n1\n")});
    EXPECT_EQ(
        dbapi({"values", "lab", "u", "i", "--plot", "x.gp"}).talk,
        "dbapi: nothing to draw: no sweep or record has values of both u and i.\n");
    const std::string path = qgetenv("PATH").toStdString();
    qputenv("PATH", QByteArray::fromStdString(folder.path()));
    const Outcome outcome = dbapi({"values", "lab", "v", "i", "--plot", folder.file("x.svg")});
    qputenv("PATH", QByteArray::fromStdString(path));
    EXPECT_EQ(outcome.code, 5);
    EXPECT_THAT(outcome.talk, HasSubstr("Debian's package gnuplot-nox"));
}
} // namespace
