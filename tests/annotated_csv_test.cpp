#include "dbif/connection/column_store.h"
#include "dbif/host/host_number.h"
#include "dbimport/annotated_csv.h"

#include "tests/support/temp_directory.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace {
using dbapi::AnnotatedCsv;
using dbif::RecordTable;

AnnotatedCsv read(const std::string& text)
{
    const test_support::TempDirectory folder;
    test_support::write_file(folder.file("sweep.csv"), text);
    return dbapi::read_annotated_csv(folder.file("sweep.csv"));
}

/// The faults as "line: text", one per line.
std::string faults_of(const AnnotatedCsv& csv)
{
    std::string lines;
    for (const dbapi::FileFault& fault : csv.faults.kept()) {
        lines += (lines.empty() ? "" : "\n") + std::to_string(fault.line) + ": " + fault.text;
    }
    return lines;
}

/// The points of a sweep: cells separated by blanks, rows by semicolons; "-" is no value.
std::string points_of(const AnnotatedCsv& csv)
{
    std::string text;
    for (std::size_t row = 0; row < csv.points; ++row) {
        text += row == 0 ? "" : ";";
        for (const dbif::SetupColumn& column : csv.columns) {
            text += &column == csv.columns.data() ? "" : " ";
            text += column.values.hasValue(row) ? "'" + column.values.text(row) + "'" : "-";
        }
    }
    return text;
}

std::string keys_of(RecordTable table, const std::vector<dbif::KeyValue>& keys)
{
    std::string text;
    for (const dbif::KeyValue& key : keys) {
        const bool isNumber = key.kind == dbif::ValueKind::Double;
        text += std::string(dbif::table_info(table).name) + ";" +
                dbif::column_key(key.category, key.kind, key.name) + "=" +
                (isNumber ? dbif::double_text(key.number) : key.text) + "\n";
    }
    return text;
}

template <typename Fields>
std::string record_of(const dbapi::RecordParts<Fields>& parts)
{
    std::string text;
    dbif::for_each_field(parts.fields, [&text](std::string_view column, const std::string& value) {
        text += std::string(dbif::table_info(Fields::kTable).name) + "." + std::string(column) +
                "=" + value + "\n";
    });
    return text + keys_of(Fields::kTable, parts.keys);
}

std::string records_of(const AnnotatedCsv& csv)
{
    const dbapi::Annotations& said = csv.annotations;
    return record_of(said.catalogEntry) + record_of(said.device) + record_of(said.die) +
           keys_of(RecordTable::Measurement, said.measurementKeys) + record_of(said.condition) +
           record_of(said.routine) + record_of(said.setup);
}

TEST(AnnotatedCsv, ReadsWhatItIsAskedToAccept)
{
    struct GoodFile
    {
        std::string text;
        std::string points;
    };

    const std::string longText(3'000'000, 'a');
    const std::vector<GoodFile> files{
        {"IND.VG,OUTD.ID\n0,1e-9\n0.15u,-2\n", "'0' '1e-09';'1.5e-07' '-2'"},
        {"\xEF\xBB\xBF# $LOT = a\r\n\r\nIND.VG,OUTD.ID\r\n1,2\r\n\r\n3,4", "'1' '2';'3' '4'"},
        {"IND.VG\r1\r2\r", "'1';'2'"},
        {"IND.VG,OUTD.ID\n1,\n,2\n\"\",\"3\"\n,\n", "'1' -;- '2';- '3';- -"},
        {"IND.VG\n\"\"\n+1\n  2  \n", "-;'1';'2'"},
        {"INS.a,OUTS.b\n\"x, \"\"y\"\"\",\"two\nlines\"\n,\"\"\n", "'x, \"y\"' 'two\nlines';- ''"},
        {"INX.s,OUTM.y\n1.5-2j,\"[[1+0j, 0.5j]]\"\n,\n", "'1.5-2j' '[[1+0j, 0+0.5j]]';- -"},
        {"\"Key(VG,setup,DOUBLE,INPUT)\",OUTD.VG,OUTS.VG\n1,2,x\n", "'1' '2' 'x'"},
        {"INS.a,OUTD.b\r\n\"" + longText + "\",1\r\n" + longText + ",2\r\n",
         "'" + longText + "' '1';'" + longText + "' '2'"},
        {"IND.VG\n", ""}};
    for (const GoodFile& file : files) {
        const AnnotatedCsv csv = read(file.text);
        EXPECT_EQ(faults_of(csv), "") << file.text;
        EXPECT_EQ(points_of(csv), file.points) << file.text;
    }
    EXPECT_TRUE(read(files[0].text).columns[0].isInput);
    EXPECT_FALSE(read(files[0].text).columns[1].isInput);
}

TEST(AnnotatedCsv, PutsAnnotationsIntoTheirRecords)
{
    const AnnotatedCsv csv =
        read("# $APP = char\n#$LOT=L1\n# $devname = a = b\n# $TEMP = 25\n# $MCNAME = mc\n"
             "# $ROUTINENAME = dc\n# $SETNAME = IDVG\n# $DATAORIGIN = MEASURED\n# $WAFER =\n#\n"
             "# Key(W,device,DOUBLE,PHYSICAL) = 0.15u\n# TECHS.process = open 130 nm\n"
             "# CES.operator = me\n# Key(S11,measurement,COMPLEX) = 1-2j\n# MCD.VB = -0.1\n"
             "OUTD.ID\n1\n");
    EXPECT_EQ(faults_of(csv), "");
    EXPECT_EQ(csv.annotations.temperature, 25);
    EXPECT_EQ(
        records_of(csv), "catalog_entry.application=char\n"
                         "catalog_entry;|TEXT|operator=me\n"
                         "device.name=a = b\n"
                         "device;PHYSICAL|DOUBLE|W=1.5e-07\n"
                         "device;TECHNOLOGY|TEXT|process=open 130 nm\n"
                         "die.lot=L1\n"
                         "measurement;|TEXT|DataOrigin=MEASURED\n"
                         "measurement;|COMPLEX|S11=1-2j\n"
                         "measurement_condition.name=mc\n"
                         "measurement_condition;|DOUBLE|VB=-0.1\n"
                         "routine.name=dc\n"
                         "setup.name=IDVG\n"
                         "setup.data_origin=MEASURED\n");
    EXPECT_EQ(
        read("# $SETDATAORIGIN = SIMULATED\n# $DATAORIGIN = MEASURED\nOUTD.ID\n")
            .annotations.setup.fields.data_origin,
        "SIMULATED");
}

TEST(AnnotatedCsv, TellsTheLineAndReasonOfEveryFault)
{
    struct BadFile
    {
        std::string text;
        std::string faults;
    };

    const std::string numberHelp =
        " is no finite number. Write one like -1.5e-9 or 0.15u, or leave it empty for 'no value'.";
    const std::string noHeader =
        "0: The file has no header row, which names the columns, like IND.VG,OUTD.ID.";
    const std::vector<BadFile> files{
        {"", noHeader},
        {"# $LOT = a\n\n", noHeader},
        {"\n1,2\n3,4\n", "2: The header row is missing: before the first point, a row names the "
                         "columns, like IND.VG,OUTD.ID."},
        {"IND.VG,OUTD.ID\n1,2\n3\n\n4,5,6\n", "3: The row has 1 cell, but the header row has 2.\n"
                                              "5: The row has 3 cells, but the header row has 2."},
        {"IND.VG,OUTD.ID\n1,x\ninf,nan\n1e999,1u2\n",
         "2: OUTD.ID: \"x\"" + numberHelp + "\n3: IND.VG: \"inf\"" + numberHelp +
             "\n3: OUTD.ID: \"nan\"" + numberHelp + "\n4: IND.VG: \"1e999\"" + numberHelp +
             "\n4: OUTD.ID: \"1u2\"" + numberHelp},
        {"OUTS.a,OUTD.b\r\n\"1\r\n2\",3\r\n\r\n4,x\r\n", "5: OUTD.b: \"x\"" + numberHelp},
        {"INX.s,OUTM.y\n1+,[1]\n",
         "2: INX.s: \"1+\" is no complex number. Write one like 1.5-2j.\n"
         "2: OUTM.y: \"[1]\" is no complex matrix. Write one like [[1+0j, 0.5j], [0.5j, 1+0j]]."},
        {"OUTS.a\nx\n\xFF\n", "3: OUTS.a: The text is not UTF-8. Save the file as UTF-8."},
        {"OUTS.a\n\"x\ny\n", "2: A double quote that is opened here is not closed."},
        {"OUTD.a\n1\n1\"2\n",
         "3: A double quote stands inside of a cell. A cell with quotes stands in quotes as a "
         "whole, and each quote in it is doubled: \"a \"\"b\"\" c\"."},
        {"OUTD.a\n# $LOT = 1\n",
         "2: OUTD.a: \"# $LOT = 1\"" + numberHelp + " Annotations stand before the header row."},
        {"IND.VG,IND.VG,\n",
         "1: Column 2: \"IND.VG\" is column 1 already. Leave one out, or rename it.\n"
         "1: Column 3: The header row names no key. Write one, like OUTD.ID."},
        {"VG,device.W,$LOT,IND.,SETD.x\n",
         "1: Column 1: \"VG\" does not say what the column holds. Write IND.VG for an input or "
         "OUTD.VG for an output; S, X or M in the place of D makes it text, complex numbers or "
         "complex matrices.\n"
         "1: Column 2: \"device.W\" is no key of a setup, which is what columns hold. Columns are "
         "named like IND.VG (an input) or OUTD.ID (an output).\n"
         "1: Column 3: \"$LOT\" is no key of a setup, which is what columns hold. Columns are "
         "named like IND.VG (an input) or OUTD.ID (an output).\n"
         "1: Column 4: \"IND.\" is no key of a setup, which is what columns hold. Columns are "
         "named like IND.VG (an input) or OUTD.ID (an output).\n"
         "1: Column 5: \"SETD.x\" does not say what the column holds. Write IND.x for an input or "
         "OUTD.x for an output; S, X or M in the place of D makes it text, complex numbers or "
         "complex matrices."},
        {"Key(VG,setup\n1,2\n",
         "1: Column 1: The keyword \"Key(VG\" is missing a closing paranthesis ')' character at "
         "the end of the keyword string. A keyword with commas stands in double quotes.\n"
         "1: Column 2: \"setup\" does not say what the column holds. Write IND.setup for an input "
         "or OUTD.setup for an output; S, X or M in the place of D makes it text, complex numbers "
         "or complex matrices."},
        {"# \n# note\n# = 1\n# \xFF = 1\nOUTD.a\n",
         "2: \"# note\" is no annotation. Write \"# KEYWORD = VALUE\", like \"# $DEVNAME = "
         "nmos1\".\n"
         "3: \"# = 1\" is no annotation. Write \"# KEYWORD = VALUE\", like \"# $DEVNAME = "
         "nmos1\".\n"
         "4: The text is not UTF-8. Save the file as UTF-8."},
        {"# $DEVDBID = 1\n# $CATTIME = x\n# $SETUSER = x\n# $DEVNAM = x\nOUTD.a\n",
         "1: $DEVDBID cannot be set: the database itself gives ids, times and users. Leave the "
         "line out.\n"
         "2: $CATTIME cannot be set: the database itself gives ids, times and users. Leave the "
         "line out.\n"
         "3: $SETUSER cannot be set: the database itself gives ids, times and users. Leave the "
         "line out.\n"
         "4: \"$DEVNAM\" is no builtin keyname. Did you mean $DEVNAME?"},
        {"# $LOT = a\n# $lot = b\n# MED.x = 1\n# Key(x,measurement,DOUBLE) = 1\nOUTD.a\n",
         "2: $LOT is given in line 1 already. Give it once.\n"
         "4: measurement.x is given in line 3 already. Give it once."},
        {"# $TEMP = hot\n# MED.x = 1V\nOUTD.a\n",
         "1: $TEMP: \"hot\"" + numberHelp + "\n2: measurement.x: \"1V\"" + numberHelp},
        {"# W = 1\n# device.W = 1\n# Key(W,device,DOUBLE) = 1\n# Key(W,die,DOUBLE) = 1\n"
         "# OUTD.ID = 1\n# Key(x,measurement,DOUBLE,PHYSICAL) = 1\n# Key( x,CED) = 1\n"
         "# Key(x,CED = 1\n# device.$LOT = 1\nOUTD.a\n",
         "1: \"W\" defines no key. It does not say to which table the key belongs. Write table "
         "and data type (DOUBLE, TEXT, COMPLEX or MATRIX), like Key(W,device,DOUBLE,PHYSICAL).\n"
         "2: \"device.W\" defines no key. It does not say what the key holds. Write table and "
         "data type (DOUBLE, TEXT, COMPLEX or MATRIX), like Key(W,device,DOUBLE,PHYSICAL).\n"
         "3: \"Key(W,device,DOUBLE)\" defines no key. Keys of a device have a category: ID, "
         "PHYSICAL, CALIBRATION, NODE, TECHNOLOGY or IS_MEASUREMENT. Write it, like "
         "Key(W,device,DOUBLE,PHYSICAL).\n"
         "4: \"Key(W,die,DOUBLE)\" defines no key. The table die has no keys of its own, only "
         "$LOT, $WAFER, $DIE, $BLOCK and $ROUTINENAME.\n"
         "5: \"OUTD.ID\" defines no key. Keys of a setup are columns: name them in the header "
         "row, like OUTD.ID.\n"
         "6: \"Key(x,measurement,DOUBLE,PHYSICAL)\" defines no key. Keys of the table measurement "
         "have no category. Leave PHYSICAL out.\n"
         "7: \"Key( x,CED)\" defines no key. The key name \" x\" begins or ends with a blank. "
         "Remove it.\n"
         "8: The keyword \"Key(x,CED\" is missing a closing paranthesis ')' character at the end "
         "of the keyword string.\n"
         "9: \"device.$LOT\" has a table or attributes, but the builtin keyname $LOT stands "
         "alone. Write it so."}};
    for (const BadFile& file : files) {
        const AnnotatedCsv csv = read(file.text);
        EXPECT_EQ(faults_of(csv), file.faults) << file.text;
        EXPECT_TRUE(csv.columns.empty()) << file.text;
    }
}

TEST(AnnotatedCsv, CountsMoreFaultsThanItKeepsAndCrossesBlocks)
{
    std::string text = "OUTS.note,OUTD.ID\n";
    for (int row = 0; row < 100'000; ++row) {
        text += "\"a, \"\"b\"\"\"," + std::to_string(row) + "\n";
    }
    EXPECT_EQ(faults_of(read(text)), "");
    EXPECT_EQ(read(text).columns.at(1).values.numbers.at(99'999), 99'999);
    for (int row = 0; row < 100; ++row) {
        text += "x,y\n";
    }
    const AnnotatedCsv csv = read(text);
    EXPECT_EQ(csv.faults.count(), 100U);
    EXPECT_EQ(csv.faults.kept().size(), dbapi::FileFaults::kMostKept);
    EXPECT_EQ(csv.faults.kept().front().line, 100'002U);
}

TEST(AnnotatedCsv, TellsThatAFileCannotBeRead)
{
    const test_support::TempDirectory folder;
    for (const std::string& path : {folder.file("missing.csv"), folder.path()}) {
        const AnnotatedCsv csv = dbapi::read_annotated_csv(path);
        EXPECT_TRUE(csv.isUnreadable);
        EXPECT_EQ(csv.faults.count(), 1U);
    }
}
} // namespace
