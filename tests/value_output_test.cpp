#include "tests/support/command_fixture.h"
#include "tests/support/sqlite_file.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace {
using namespace test_support; // NOLINT(google-build-using-namespace)
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

/// A setup of three points, none of which is in order.
class ValueOutput : public Command
{
protected:
    ValueOutput()
    {
        dbapi(
            {"import", "lab",
             sweep(
                 "a.csv", "# $DEVNAME = d\n# DEVX.c = 1-2j\n# DEVM.m = [[1, 2j]]\nIND.n,OUTS.t\n"
                          "10,\"a, \"\"b\"\"\"\n9,\"x\ty\nz\"\n-1.5,\n")});
    }
};

TEST_F(ValueOutput, HasEveryFormat)
{
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

TEST_F(ValueOutput, HasTheOrderAndShapeThatIsAskedFor)
{
    const std::string asked = "{\"connection\":\"lab\",\"query\":\"\",";
    for (const auto& [arguments, data] : std::vector<std::pair<Arguments, std::string>>{
             {{"n", "--order", "stored", "--ids"}, "n,id,point\n10,1,1\n9,1,2\n-1.5,1,3\n"},
             {{"n", "--order", "stored", "--limit", "1"}, "n\n10\n"},
             {{"n", "--desc", "--limit", "2"}, "n\n10\n9\n"},
             {{"t", "--distinct", "--count"}, "2\n"},
             {{"n", "--json", "rows", "--limit", "2"},
              asked + "\"rows\":[{\"n\":-1.5},{\"n\":9}]}\n"},
             {{"n", "--json", "rows", "--order", "stored", "-q", "n>99"},
              "{\"connection\":\"lab\",\"query\":\"n>99\",\"rows\":[]}\n"},
             {{"n", "--json", "columns", "--order", "stored", "-q", "n>99"},
              "{\"connection\":\"lab\",\"query\":\"n>99\",\"columns\":[{\"keyword\":\"n\","
              "\"values\":[]}]}\n"},
             {{"c", "m", "--json", "columns"},
              asked + "\"columns\":[{\"keyword\":\"c\",\"values\":[[1,-2]]},"
                      "{\"keyword\":\"m\",\"values\":[[[[1,0],[0,2]]]]}]}\n"},
             {{"$DEVNAME", "c", "--order", "stored", "--format", "table"},
              "$DEVNAME  c\nd         1-2j\n"}}) {
        Arguments all{"values", "lab"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        EXPECT_EQ(dbapi(all).data, data) << arguments.front();
    }
    EXPECT_EQ(
        dbapi({"tables", "--json", "columns", "--limit", "1"}).data,
        "{\"columns\":[{\"name\":\"table\",\"values\":[\"catalog_entry\"]}]}\n");
    EXPECT_EQ(dbapi({"ids", "lab", "setup", "-o", "/dev/stdout"}).data, "id\n1\n");
}

TEST_F(ValueOutput, LeavesAFileAloneThatItCannotReplaceWhole)
{
    const std::string file = folder.file("values.csv");
    write_file(file, "of yesterday\n");
    run_on_file(database, "UPDATE setup_data SET payload = X'00'");
    for (const char* order : {"stored", "sorted"}) {
        const Outcome failed = dbapi({"values", "lab", "n", "--order", order, "-o", file});
        EXPECT_EQ(failed.code, 4) << failed.talk;
        EXPECT_EQ(read_file(file), "of yesterday\n");
    }
    for (const char* order : {"stored", "sorted"}) {
        const Outcome failed = dbapi({"values", "lab", "nokey", "--order", order, "-o", file});
        EXPECT_EQ(failed.code, 2);
        EXPECT_THAT(failed.talk, HasSubstr("\n  nokey\n  ^^^^^\n"));
        EXPECT_EQ(read_file(file), "of yesterday\n");
    }
}

using TableOutput = Command;

TEST_F(TableOutput, ShortensTablesAndColoursOnATerminalOnly)
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
        shown.data, EndsWith("\r\n16\r\n... and 84 more rows. See all with --all, or "
                             "with --format csv.\r\n"));
    EXPECT_THAT(dbapi_on_terminal({"values", "lab", "n", "--all"}).data, EndsWith("\r\n100\r\n"));
    setenv("NO_COLOR", "1", 1);
    EXPECT_THAT(dbapi_on_terminal(values).data, StartsWith(" n\r\n"));
    unsetenv("NO_COLOR");
    EXPECT_THAT(dbapi({"values", "lab", "n", "--format", "table"}).data, StartsWith("  n\n  1\n"));
}

using InfoOutput = Command;

TEST_F(InfoOutput, ShowsADatabaseAtAGlance)
{
    EXPECT_THAT(
        dbapi({"info", "lab"}).data, EndsWith("\nsetup                        0           0\n\n"));
    dbapi(
        {"import", "lab",
         sweep(
             "a.csv",
             "# $LOT = L\x1b[1m\n# $DEVNAME = d\n# $TEMP = 27.5\n# DEVD.W = 5u\nIND.V\n1\n2\n")});
    const Outcome text = dbapi({"info", "lab"});
    for (const char* line :
         {"\nDevice types    no type (1)\n", "\nTemperatures    27.5 C (1)\n",
          "\nPoints          2\n", "\nLots            L\\x1b[1m (1)\n",
          "\nW    device  PHYSICAL  DOUBLE          1            5e-06    5e-06\n"}) {
        EXPECT_THAT(text.data, HasSubstr(line));
    }
    EXPECT_EQ(text.data.find('\x1b'), std::string::npos);
    const std::string json = dbapi({"info", "lab", "--format", "json"}).data;
    EXPECT_THAT(json, HasSubstr("\"temperatures\":[{\"celsius\":27.5,\"measurements\":1}]"));
    EXPECT_THAT(
        json,
        HasSubstr("\"keys\":[{\"key\":\"W\",\"category\":\"PHYSICAL\",\"datatype\":\"DOUBLE\","
                  "\"records\":1,\"minimum\":5e-06,\"maximum\":5e-06}]"));
    EXPECT_EQ(dbapi({"info", "lsb"}).code, 3);
}
} // namespace
