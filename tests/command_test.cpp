#include "dbui/connection_registry.h"

#include "tests/support/command_fixture.h"
#include "tests/support/mariadb_server.h"
#include "tests/support/sqlite_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace {
using namespace test_support; // NOLINT(google-build-using-namespace)
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST_F(Command, TellsWhatKeepsTheListFromBeingSaved)
{
    const std::string lock = folder.connections_file() + ".lock";
    std::filesystem::remove(lock);
    std::filesystem::create_directory(lock);
    const std::string other = folder.file("other.db");
    const Outcome added = dbapi({"connection", "add", "other", "--sqlite", other});
    const Outcome removed = dbapi({"connection", "remove", "lab"});
    for (const Outcome& outcome : {added, removed}) {
        EXPECT_EQ(outcome.code, 5);
        EXPECT_THAT(
            outcome.talk, HasSubstr(
                              "Failed to update the database connections configuration file.\n\"" +
                              lock + "\": Is a directory\n"));
    }
    EXPECT_FALSE(std::filesystem::exists(other));
    std::filesystem::remove(lock);

    // Written by hand; nothing of it reaches the terminal as it is.
    write_file(
        folder.connections_file(), "<DB_Connections><DbConnection ConnectionName=\"odd\" "
                                   "DatabaseName=\"&#27;[31m\"/></DB_Connections>");
    EXPECT_THAT(dbapi({"connection", "remove", "odd"}).talk, HasSubstr("\"\\x1b[31m\""));
}

TEST_F(Command, KeepsConnectionsFromAddToRemove)
{
    EXPECT_EQ(
        dbapi({"connection", "list", "--format", "json"}).data,
        "{\"connections\":[{\"name\":\"lab\",\"driver\":\"QSQLITE\",\"database\":\"" + database +
            "\",\"host\":\"\",\"port\":\"\",\"user\":\"\"}]}\n");
    const Outcome again = dbapi({"connection", "add", "lab", "--sqlite", folder.file("b.db")});
    EXPECT_EQ(again.code, 3);
    EXPECT_THAT(again.talk, StartsWith("dbapi: there is a connection \"lab\" already."));
    EXPECT_THAT(
        dbapi({"connection", "test", "lab"}).data,
        StartsWith(
            "check,result,detail,advice\nrecord,ok,\"the SQLite file \"\"" + database +
            "\"\"\",\n"));
    EXPECT_EQ(dbapi({"values", database, "$LOT"}).code, 1);
    EXPECT_EQ(dbapi({"connection", "remove", database}).code, 3);
    EXPECT_THAT(
        dbapi({"import", database, sweep("a.csv", "")}).talk,
        HasSubstr("which is opened for reading only. To write to it, store it under a name"));
    std::filesystem::rename(database, folder.file("away.db"));
    const Outcome away = dbapi({"connection", "test", "lab", "--format", "json"});
    EXPECT_EQ(away.code, 3);
    EXPECT_THAT(
        away.data, HasSubstr(
                       "{\"check\":\"file\",\"result\":\"failed\",\"detail\":\"there is no file "
                       "\\\"" +
                       database));
    EXPECT_EQ(dbapi({"values", "lab", "W"}).code, 3);
    EXPECT_FALSE(std::filesystem::exists(database));
    test_support::write_file(
        database, "this is no database, but longer than a hundred bytes: " + std::string(100, '.'));
    EXPECT_NE(dbapi({"connection", "test", "lab"}).code, 0);
    EXPECT_THAT(
        dbapi({"connection", "add", "text", "--sqlite", database}).talk,
        HasSubstr(
            "The SQLite file \"" + database +
            "\" does not open: file is not a database.\nThe file is something else"));
    EXPECT_EQ(dbapi({"connection", "rename", "lab", "lab"}).code, 3);
    EXPECT_EQ(
        dbapi({"connection", "rename", "lab", "bench"}).talk,
        "Renamed the connection \"lab\" to \"bench\".\n");
    EXPECT_EQ(dbapi({"connection", "remove", "lab"}).code, 3);
    EXPECT_EQ(dbapi({"connection", "remove", "bench"}).code, 0);
    for (const char* place : {"one", "two"}) {
        dbui_add_connection({"twice", "QSQLITE", "", "", place, "", ""}, false);
    }
    EXPECT_EQ(
        lines({"connection", "list"}), "twice\tQSQLITE\tone\t\t\t\ntwice\tQSQLITE\ttwo\t\t\t\n");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(dbapi({"connection", "remove", "twice"}).code, 0);
    }
    EXPECT_TRUE(std::filesystem::exists(database));
    const Outcome none = dbapi({"connection", "list"});
    EXPECT_EQ(none.code, 1);
    EXPECT_EQ(none.data, "name,driver,database,host,port,user\n");
}

TEST_F(Command, ExplainsWrongUse)
{
    for (const char* display : {"DISPLAY", "WAYLAND_DISPLAY"}) {
        unsetenv(display);
    }

    struct WrongUse
    {
        Arguments arguments;
        int code;
        std::string talk;
    };

    const std::vector<WrongUse> uses{
        {{}, 2, "dbapi: a command is missing: dbapi COMMAND.\nSee: dbapi --help\n"},
        {{"valeus", "lab", "W"},
         2,
         "dbapi: there is no command \"valeus\". Did you mean values?\nSee: dbapi --help\n"},
        {{"connection", "lst"},
         2,
         "dbapi: there is no command \"lst\". Did you mean list?\nSee: dbapi connection --help\n"},
        {{"values", "lab", "W", "--formt", "csv"},
         2,
         "dbapi: there is no option --formt. Did you mean --format?\nSee: dbapi values --help\n"},
        {{"values", "lab"},
         2,
         "dbapi: KEYWORD is missing: a key (W, DEVD.W, \"Key(W,device)\") or builtin keyname "
         "('$DEVNAME'); several stand side by side.\nSee: dbapi values --help\n"},
        {{"values", "lab", "W", "-q"},
         2,
         "dbapi: the option --query takes a value: --query QUERY.\nSee: dbapi values --help\n"},
        {{"values", "lab", "W", "-q", "W=1", "--query", "L=1"},
         2,
         "dbapi: --query is given more than once. Give it once.\nSee: dbapi values --help\n"},
        {{"values", "lab", "W", "--count", "--limit", "5"},
         2,
         "dbapi: --limit and --count cannot be combined. Leave one out.\n"
         "See: dbapi values --help\n"},
        {{"values", "lab", "W", "--limit", "-1"},
         2,
         "dbapi: --limit: \"-1\" is no whole number from 0 up\nSee: dbapi values --help\n"},
        {{"keys", "lab", "devices"},
         2,
         "dbapi: TABLE: there is no table \"devices\". Did you mean device? dbapi tables lists those "
         "there are\nSee: dbapi keys --help\n"},
        {{"help", "connection", "lst"},
         2,
         "dbapi: there is no command \"lst\". Did you mean list?\n"
         "See: dbapi connection --help\n"},
        {{"completion", "tcsh"},
         2,
         "dbapi: SHELL: there is no script for \"tcsh\"; choose bash, zsh or fish\n"
         "See: dbapi completion --help\n"},
        {{"setup", "lab", "x"},
         2,
         "dbapi: ID: \"x\" is no id; dbapi ids lists those there are\nSee: dbapi setup --help\n"},
        {{"setup", "lab", "7"},
         1,
         "dbapi: nothing found: there is no setup with id 7. dbapi ids lab setup lists them.\n"},
        {{"header", "lab", "7", "ID"},
         1,
         "dbapi: nothing found: there is no setup with id 7. dbapi ids lab setup lists them.\n"},
        {{"values", "lab", "W", "--format", "xml"},
         2,
         "dbapi: --format: \"xml\" is no format; choose table, csv, tsv, json, jsonl or lines\n"
         "See: dbapi values --help\n"},
        {{"connection", "list", "lab"},
         2,
         "dbapi: the argument \"lab\" is not expected.\nSee: dbapi connection list --help\n"},
        {{"connection", "manage"},
         2,
         "dbapi: there is no display to show a window on. Use dbapi connection add, list, test and "
         "remove.\n"},
        {{"connection", "add", "x"}, 2, "dbapi: give either --sqlite FILE or --mysql DATABASE\n"},
        {{"connection", "add", "x", "--sqlite", "/nowhere/x.db"},
         5,
         "dbapi: there is no folder \"/nowhere\" for the database. Make it first.\n"},
        {{"values", "lsb", "W"},
         3,
         "dbapi: there is no stored connection \"lsb\". Did you mean lab? Stored are:\n  lab\n"},
        {{"import", "lab", "/nowhere"},
         5,
         "dbapi: nothing was imported.\nThere is no file or folder \"/nowhere\".\n"},
        {{"import", "lab", folder.path()},
         5,
         "dbapi: nothing was imported.\nThe folder \"" + folder.path() +
             "\" holds no *.csv file. Folders below it are not searched.\n"}};
    for (const WrongUse& use : uses) {
        const Outcome outcome = dbapi(use.arguments);
        EXPECT_EQ(outcome.code, use.code) << use.talk;
        EXPECT_EQ(outcome.talk, use.talk);
        EXPECT_EQ(outcome.data, "");
    }
    EXPECT_THAT(dbapi({"--version"}).data, StartsWith("dbapi "));
    const std::string help = dbapi({"connection", "add", "--help"}).data;
    EXPECT_EQ(dbapi({"help", "connection", "add"}).data, help);
    EXPECT_EQ(dbapi({"help"}).data, dbapi({"--help"}).data);
    EXPECT_THAT(dbapi({"values", "--help"}).data, HasSubstr("\nExample: dbapi values "));
}

TEST_F(Command, ImportsTheShippedSweepsTwice)
{
    const std::string imported = "Imported 243 files into \"lab\": 243 setups, 84154 points, ";
    const Outcome first = dbapi({"import", "lab", SAMPLE_DIRECTORY});
    EXPECT_EQ(first.code, 0);
    EXPECT_THAT(first.talk, StartsWith(imported));
    EXPECT_EQ(first.data, "");
    const std::string query = "$DEVNAME=nfet_01v8_w7u_l0p15u_m1;$SUBSITE=8434;$DEVID=10_11;"
                              "IND.VD=0.1;IND.VB=0;IND.VG=[0.5,0.6]";
    const std::string points = "IND.VG,OUTD.ID\n0.5,1.2762e-07\n0.55,4.9989e-07\n0.6,1.8226e-06\n";
    EXPECT_EQ(dbapi({"values", "lab", "IND.VG", "OUTD.ID", "-q", query}).data, points);
    EXPECT_THAT(dbapi({"import", "lab", SAMPLE_DIRECTORY}).talk, StartsWith(imported));
    EXPECT_EQ(dbapi({"values", "lab", "IND.VG", "OUTD.ID", "-q", query}).data, points);
    EXPECT_EQ(
        lines({"keys", "lab", "device", "-q", "$DEVTYPE=pfet_01v8"}),
        "L\tdevice\tPHYSICAL\tDOUBLE\t49\t1.5e-07\t8e-06\n"
        "M\tdevice\tPHYSICAL\tDOUBLE\t49\t1\t1\n"
        "W\tdevice\tPHYSICAL\tDOUBLE\t49\t4.2e-07\t7e-06\n"
        "process\tdevice\tTECHNOLOGY\tTEXT\t49\t\t\n");
    EXPECT_EQ(lines({"keys", "lab", "device", "--short"}), "L\nM\nW\nprocess\n");
    EXPECT_EQ(lines({"values", "lab", "$CATDBID"}), "1\n2\n");
    EXPECT_EQ(lines({"values", "lab", "$CATDBID", "-q", "$SETNAME=IDVG"}), "2\n");
}

TEST_F(Command, WritesEveryFormat)
{
    const std::string path =
        sweep("a.csv", "# $DEVNAME = d\nIND.n,OUTS.t\n10,\"a, \"\"b\"\"\"\n9,\"x\ty\nz\"\n-1.5,\n");
    EXPECT_EQ(
        dbapi({"import", "lab", path, path}).talk,
        "Imported 1 file into \"lab\": 1 setup, 3 points, 1 device.\n"
        "New keys: IND.n and OUTS.t (setup).\n");
    const Arguments both{"values", "lab", "n", "t", "-q", "$DEVNAME=d", "--format"};
    const auto written = [&both](const std::string& format) {
        Arguments arguments = both;
        arguments.push_back(format);
        return dbapi(arguments).data;
    };
    EXPECT_EQ(written("csv"), "n,t\n-1.5,\n9,\"x\ty\nz\"\n10,\"a, \"\"b\"\"\"\n");
    EXPECT_EQ(written("lines"), "-1.5\t\n9\tx\\ty\\nz\n10\ta, \"b\"\n");
    EXPECT_EQ(written("table"), "   n  t\n-1.5\n   9  x\\ty\\nz\n  10  a, \"b\"\n");
    EXPECT_EQ(
        written("json"),
        "{\"connection\":\"lab\",\"query\":\"$DEVNAME=d\",\"columns\":["
        "{\"keyword\":\"n\",\"values\":[-1.5,9,10]},"
        "{\"keyword\":\"t\",\"values\":[null,\"x\\ty\\nz\",\"a, \\\"b\\\"\"]}]}\n");
    EXPECT_EQ(
        written("jsonl"),
        "{\"n\":-1.5,\"t\":null}\n{\"n\":9,\"t\":\"x\\ty\\nz\"}\n{\"n\":10,\"t\":\"a, \\\"b\\\"\"}\n");
    EXPECT_EQ(written("tsv"), "n\tt\n-1.5\t\n9\tx\\ty\\nz\n10\ta, \"b\"\n");
    EXPECT_EQ(dbapi({"values", "lab", "n", "--limit", "2"}).data, "n\n-1.5\n9\n");
    EXPECT_EQ(dbapi({"values", "lab", "n", "--count"}).data, "3\n");
    EXPECT_EQ(
        dbapi({"keys", "lab", "setup", "--format", "jsonl", "--limit", "1"}).data,
        "{\"key\":\"n\",\"table\":\"setup\",\"category\":\"INPUT\",\"datatype\":\"DOUBLE\",\"records\":1,"
        "\"points\":3,\"minimum\":-1.5,\"maximum\":10}\n");
    for (const auto& [name, text] :
         {std::pair(
              "a.json",
              "{\"connection\":\"lab\",\"table\":\"setup\",\"query\":\"\",\"ids\":[{\"id\":1}]}\n"),
          std::pair("a.txt", "id\n 1\n"), std::pair("a", "id\n1\n")}) {
        const std::string file = folder.file(name);
        EXPECT_EQ(dbapi({"ids", "lab", "setup", "-o", file}).data, "");
        EXPECT_EQ(read_file(file), text);
    }
    const Outcome unwritten = dbapi({"ids", "lab", "setup", "-o", "/nowhere/a.csv"});
    EXPECT_EQ(unwritten.code, 5);
    EXPECT_THAT(
        unwritten.talk, StartsWith("dbapi: the file \"/nowhere/a.csv\" cannot be written: "));
    const Outcome nothing = dbapi({"values", "lab", "n", "-q", "$DEVNAME=e"});
    EXPECT_EQ(nothing.code, 1);
    EXPECT_EQ(nothing.data, "n\n");
    EXPECT_THAT(nothing.talk, StartsWith("dbapi: nothing found: "));
}

TEST_F(Command, NamesTheConnectionWhoseDatabaseRefusesAnImport)
{
    dbapi({"import", "lab", sweep("a.csv", "# $DEVNAME = d\nOUTD.a\n1\n")});
    run_on_file(
        database,
        "CREATE TRIGGER refuses BEFORE INSERT ON setup BEGIN SELECT RAISE(ABORT, 'closed'); END");
    const Outcome outcome = dbapi({"import", "lab", sweep("b.csv", "# $DEVNAME = d\nOUTD.a\n1\n")});
    EXPECT_EQ(outcome.code, 4);
    EXPECT_EQ(
        outcome.talk,
        "dbapi: nothing was imported: the database of the connection \"lab\" reports an error. "
        "closed\nWhat the connection may do: dbapi connection test lab\n");
}

TEST_F(Command, ImportsAllOrNothing)
{
    const std::string good = sweep("a.csv", "# $LOT = x\n# $DEVNAME = d\n# $APP = t\nOUTD.a\n1\n");
    const std::string bad = sweep("b.csv", "# $APP = t\nOUTD.a\nx\n1,2\n");
    const std::string other = sweep("c.csv", "# $DEVNAME = c\n# $APP = u\nOUTD.a\n1\n");
    const std::string same = sweep("d.csv", test_support::read_file(good));
    const Outcome failed = dbapi({"import", "lab", folder.file("sweeps")});
    EXPECT_EQ(failed.code, 4);
    EXPECT_THAT(
        failed.talk, StartsWith("dbapi: " + bad + ":3: OUTD.a: \"x\" is no finite number."));
    EXPECT_THAT(failed.talk, HasSubstr("dbapi: " + bad + ":4: The row has 2 cells"));
    EXPECT_THAT(
        failed.talk,
        HasSubstr("dbapi: " + other + ": It has $APP = u, but \"" + good + "\" has $APP = t."));
    EXPECT_THAT(
        failed.talk,
        HasSubstr(
            "dbapi: " + same + ": \"" + good + "\" and \"" + same + "\" hold the same sweep"));
    EXPECT_THAT(failed.talk, HasSubstr("nothing was imported: 3 files of 4 have faults."));
    EXPECT_EQ(dbapi({"values", "lab", "$CATDBID"}).code, 1);
    EXPECT_EQ(dbapi({"values", "lab", "OUTD.a"}).code, 2); // not even the key was defined

    EXPECT_EQ(dbapi({"import", "lab", good}).code, 0);
    const std::string changed =
        sweep("e.csv", "# $LOT = x\n# $DEVNAME = d\n# $DEVTYPE = n\n# DEVD.W = 1\nOUTD.a\n2\n");
    EXPECT_EQ(dbapi({"import", "lab", changed}).code, 0);
    EXPECT_EQ(lines({"values", "lab", "$DEVTYPE", "W", "a"}), "n\t1\t2\n");
    const Outcome conflict = dbapi(
        {"import", "lab", sweep("f.csv", "# $LOT = x\n# $DEVNAME = d\n# DEVD.W = 2\nOUTD.b\n")});
    EXPECT_EQ(conflict.code, 4);
    EXPECT_THAT(conflict.talk, HasSubstr("W = 1, but here W = 2."));

    std::string rows = "OUTD.a\n";
    for (int row = 0; row < 200; ++row) {
        rows += "x\n";
    }
    EXPECT_THAT(
        dbapi({"import", "lab", sweep("g.csv", rows)}).talk,
        HasSubstr(":21: OUTD.a: \"x\" is no finite number. Write one like -1.5e-9 or 0.15u, or "
                  "leave it empty for 'no value'.\ndbapi: ... and 180 more faults.\n"));
}

TEST_F(Command, RefusesToImportWhatIsNoTextFile)
{
    const Outcome refused = dbapi({"import", "lab", database});
    EXPECT_EQ(refused.code, 4);
    EXPECT_THAT(
        refused.talk,
        StartsWith("dbapi: " + database + ": The file is no text, so no annotated CSV either.\n"));
    const std::string line(300'000, 'x');
    const Outcome wrong =
        dbapi({"import", "lab", sweep("a.csv", "#" + line + "\n" + line + "\n1\n")});
    EXPECT_EQ(wrong.code, 4);
    EXPECT_LT(wrong.talk.size(), 2000U);

    ASSERT_EQ(mkfifo(folder.file("sweeps/b.csv").c_str(), 0600), 0);
    const Outcome pipe = dbapi({"import", "lab", folder.file("sweeps")});
    EXPECT_EQ(pipe.code, 5);
    EXPECT_THAT(pipe.talk, HasSubstr("b.csv: This is no regular file but a pipe or device"));
}

TEST_F(Command, TellsWhatAnImportSupersedes)
{
    const std::string first = sweep("first.csv", "IND.Vg,OUTD.Id\n0,1\n");
    const std::string second = sweep("second.csv", "IND.Vg,OUTD.Id\n0,2\n");
    const Outcome refused = dbapi({"import", "lab", first});
    EXPECT_EQ(refused.code, 4);
    EXPECT_THAT(
        refused.talk,
        StartsWith(
            "dbapi: " + first +
            ": It names no device, so it would supersede any other such sweep of the same routine, "
            "condition and name. Add a line above the header row, like \"# $DEVNAME = nmos1\".\n"));
    EXPECT_THAT(refused.talk, HasSubstr("With --allow-anonymous, files need not name a device."));
    const std::string imported = "Imported 1 file into \"lab\": 1 setup, 1 point, 0 devices.\n";
    EXPECT_EQ(
        dbapi({"import", "lab", first, "--allow-anonymous"}).talk,
        imported + "New keys: IND.Vg and OUTD.Id (setup).\n");
    EXPECT_EQ(
        dbapi({"import", "lab", second, "--allow-anonymous"}).talk,
        imported + "This supersedes 1 earlier setup: no device (" + second +
            "). Queries find it with \"ALLDATA:\" only.\n");

    const std::string named =
        "# $DEVNAME = d\x1b[1m\n# DEVD.W = 1\nIND.Vg,OUTD.Id,OUTX.s\n0,3,1j\n";
    EXPECT_THAT(
        dbapi({"import", "lab", sweep("a.csv", named)}).talk,
        HasSubstr("1 device.\nNew keys: W (device); OUTX.s (setup).\n"));
    const std::string repeated = sweep("b.csv", named);
    EXPECT_THAT(
        dbapi({"import", "lab", repeated}).talk,
        HasSubstr("1 device.\nThis supersedes 1 earlier setup: d\\x1b[1m (" + repeated + ")."));
}

TEST_F(Command, ShortensTablesAndColoursOnATerminalOnly)
{
    std::string rows = "# $DEVNAME = d\nIND.n\n";
    for (int row = 1; row <= 100; ++row) {
        rows += std::to_string(row) + "\n";
    }
    dbapi({"import", "lab", sweep("a.csv", rows)});
    const Arguments values{"values", "lab", "n"};
    const Outcome shown = dbapi_on_terminal(values);
    EXPECT_THAT(shown.data, StartsWith("\x1b[1m n\x1b[0m\r\n 1\r\n"));
    EXPECT_THAT(
        shown.data, testing::EndsWith("\r\n16\r\n... and 84 more rows. See all with --all, or "
                                      "with --format csv.\r\n"));
    EXPECT_THAT(
        dbapi_on_terminal({"values", "lab", "n", "--all"}).data, testing::EndsWith("\r\n100\r\n"));
    setenv("NO_COLOR", "1", 1);
    EXPECT_THAT(dbapi_on_terminal(values).data, StartsWith(" n\r\n"));
    unsetenv("NO_COLOR");
    EXPECT_THAT(dbapi({"values", "lab", "n", "--format", "table"}).data, StartsWith("  n\n  1\n"));
}

TEST_F(Command, UsesAMySqlServerWithoutShowingThePassword)
{
    const MariaDbServer& server = MariaDbServer::instance();
    const MariaDbDatabase onServer;
    const auto add = [&](const std::string& name) {
        return Arguments{"connection",  "add",           name,
                         "--mysql",     onServer.name(), "--host",
                         server.host(), "--port",        std::to_string(server.port()),
                         "--user",      server.user()};
    };
    Arguments piped = add("piped");
    piped.emplace_back("--password-stdin");
    const Outcome wrong = dbapi(piped, "not the password\n");
    EXPECT_EQ(wrong.code, 3);
    EXPECT_THAT(wrong.talk, Not(HasSubstr("not the password")));
    EXPECT_EQ(dbapi(piped, server.password() + "\n").code, 0);
    const Outcome typed = dbapi_on_terminal(add("typed"), server.password() + "x\x7f\n");
    EXPECT_EQ(typed.code, 0) << typed.data;
    EXPECT_THAT(typed.data, Not(HasSubstr(server.password())));
    EXPECT_EQ(dbapi_on_terminal(add("stopped"), "secret\x03").code, 2);
    EXPECT_EQ(dbapi(add("empty")).code, 3);
    const Arguments shows[] = {
        {"connection", "list", "--format", "json"},
        {"connection", "test", "typed", "--format", "json"}};
    for (const Arguments& arguments : shows) {
        const Outcome shown = dbapi(arguments);
        EXPECT_EQ(shown.code, 0) << shown.data;
        EXPECT_THAT(shown.data, Not(HasSubstr(server.password().substr(0, 4))));
    }

    EXPECT_EQ(dbapi({"import", "piped", sweep("a.csv", "# $DEVNAME = d\nOUTD.a\n1\n2\n")}).code, 0);
    EXPECT_EQ(lines({"values", "typed", "a", "-q", "$DEVNAME=d"}), "1\n2\n");
}
} // namespace
