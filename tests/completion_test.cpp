#include "dbif/host/host_string.h"

#include "tests/support/command_fixture.h"

#include <QProcess>
#include <QStandardPaths>

#include <gmock/gmock.h>

namespace {
using testing::HasSubstr;
using namespace test_support;

/// What bash itself offers behind the words, with the script of the command; a word per line.
class Completion : public Command
{
protected:
    Completion()
    {
        dbapi(
            {"import", "lab",
             sweep(
                 "a.csv",
                 "# $DEVNAME = d\n# DEVD.W = 5u\n# CED.W = 1\n# DEVD.L = 1u\n# MED.vth = 1\n"
                 "\"Key(it's $x,setup,DOUBLE,INPUT)\",OUTD.ID\n1,2\n")});
    }

    static std::string offered(const Arguments& typed)
    {
        QStringList words{
            QStringLiteral("--norc"), QStringLiteral("-c"),
            QStringLiteral("source <(\"$1\" completion bash); shift 0; COMP_WORDS=(\"${@}\"); "
                           "COMP_CWORD=$(($# - 1)); _dbapi; printf '%s\\n' \"${COMPREPLY[@]}\""),
            QStringLiteral("bash"), QStringLiteral(DBAPI_COMMAND)};
        for (const std::string& word : typed) {
            words << dbif::to_qt(word);
        }
        QProcess bash;
        bash.start(QStringLiteral("bash"), words);
        EXPECT_TRUE(bash.waitForFinished(60'000));
        EXPECT_EQ(bash.readAllStandardError().toStdString(), "");
        return bash.readAllStandardOutput().toStdString();
    }
};

TEST_F(Completion, OffersWhatFitsThePlace)
{
    struct Case
    {
        Arguments typed;
        const char* offered;
    };

    const std::vector<Case> cases{
        {{"va"}, "values\n"},
        {{"connection", ""}, "add\nlist\ntest\nedit\nrename\nremove\nmanage\n"},
        {{"connection", "remove", ""}, "lab\n"},
        {{"help", "conn"}, "connection\n"},
        {{"help", "connection", "l"}, "list\n"},
        {{"completion", ""}, "bash\nzsh\nfish\n"},
        {{"connection", "add", ""}, "\n"},
        {{"keys", "l"}, "lab\n"},
        {{"keys", "lab", "me"}, "measurement\nmeasurement_condition\n"},
        {{"keys", "lab", "--s"}, "--short\n"},
        {{"values", "lab", "L", "--format", "t"}, "table\ntsv\n"},
        {{"explain", "lab", "--format", ""}, "text\njson\n"},
        {{"copy", "lab", "l"}, "lab\n"},
        {{"values", "lab", "-q", "L=1u", "v"}, "vth\n"},
        {{"values", "lab", "L", "Key"},
         "Key\\(W\\,catalog_entry\\,DOUBLE\\)\nKey\\(W\\,device\\,DOUBLE\\,PHYSICAL\\)\n"},
        {{"values", "lab", "it"}, "it\\'s\\ \\$x\n"},
        {{"values", "lab", "'it"}, "it'\\''s $x\n"},
        {{"values", "lab", "\"it"}, "it's \\$x\n"},
        {{"values", "lab", "'$LO"}, "$LOT\n"},
        {{"record", "lab", "DEV", "1", ""},
         "L\nW\n\\$DEVDBID\n\\$DEVID\n\\$DEVNAME\n\\$DEVTIME\n\\$DEVTYPE\n\\$DEVUSER\n\\$SUBSITE\n"},
        {{"header", "lab", "1", "I"}, "ID\n"},
        {{"values", "lab", "L", "-q", "'$DEVN"}, "$DEVNAME=\n$DEVNAME!=\n"},
        {{"values", "lab", "L", "-q", "'ALLDATA: L=1u;W"},
         "ALLDATA: L=1u;Key(W,catalog_entry,DOUBLE)\nALLDATA: L=1u;Key(W,device,DOUBLE,PHYSICAL)\n"},
        {{"values", "lab", "L", "-q", "\"{L=1u} AND {\\$DEVNAME=x,"},
         "{L=1u} AND {\\$DEVNAME=x,d\n"},
        {{"values", "lab", "L", "-q", "'L"}, "L=\nL!=\nL<\nL>\nL=[\n"},
        {{"values", "lab", "L", "-q", "'vth=[0,"}, "vth=[0,1\n"},
        {{"values", "lab", "L", "-q", "'ID="}, "\n"},
        {{"values", "lab", "L", "-q", "'{L=1u} and "}, "\n"},
        {{"values", "lab", "L", "-q", "'nokey=1"}, "\n"},
        {{"values", "lab", "--order", "s"}, "sorted\nstored\n"},
        {{"values", "nowhere", "L"}, "\n"},
        {{"import", "lab", ""}, "\n"},
        {{"tables", ""}, "\n"}};
    for (const Case& c : cases) {
        EXPECT_EQ(offered(c.typed), c.offered) << c.typed.back();
    }
}

TEST_F(Completion, StandsBesideAManualPageOfTheSameCommands)
{
    const Outcome manual = dbapi({"manual"});
    for (const char* text :
         {".TH DBAPI 1",
          ".SS \\fBvalues\\fR [\\fIOPTIONS\\fR] \\fICONNECTION\\fR \\fIKEYWORD\\fR...",
          ".TP\n\\fB\\-q\\fR, \\fB\\-\\-query\\fR \\fIQUERY\\fR\n", ".SS \\fBconnection add\\fR"}) {
        EXPECT_THAT(manual.data, HasSubstr(text));
    }
    EXPECT_EQ(manual.data.find(".SS \\fBcomplete\\fR"), std::string::npos);
    if (QStandardPaths::findExecutable(QStringLiteral("groff")).isEmpty()) {
        GTEST_SKIP() << "groff is not installed";
    }
    write_file(folder.file("dbapi.1"), manual.data);
    QProcess groff;
    groff.start(
        QStringLiteral("groff"), {QStringLiteral("-man"), QStringLiteral("-ww"),
                                  QStringLiteral("-Tutf8"), dbif::to_qt(folder.file("dbapi.1"))});
    EXPECT_TRUE(groff.waitForFinished(60'000));
    EXPECT_EQ(groff.exitCode(), 0);
    EXPECT_EQ(groff.readAllStandardError().toStdString(), "");
    EXPECT_THAT(groff.readAllStandardOutput().toStdString(), HasSubstr("$TEMP=25' --distinct"));
}
} // namespace
