#include "dbapi/dbapi.h"
#include "dbif/host/host_number.h"
#include "dbimport/sweep_import.h"

#include "tests/support/lab_database.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <set>

namespace {
using dbif::RecordWriter;
using test_support::Engine;
using test_support::number_key;
using test_support::sweep;
using test_support::text_key;
using test_support::text_sweep;

const std::vector<std::string> kTexts{
    "",
    "a",
    "A",
    "a ",
    " a",
    "aa",
    "ab",
    "B",
    "b",
    "z",
    "Z",
    "\xC3\xA4",
    "\xC3\x84",
    "\xC3\x9F",
    "ss",
    "\xC3\xA9",
    "e\xCC\x81",
    "\xF0\x9F\x98\x80",
    "\xF0\x9D\x92\x9C",
    "\xEF\xBF\xBD",
    "\\",
    "\\n",
    "a\\b",
    "\\'",
    "'",
    "''",
    "it's",
    "\"",
    "\"a\"",
    "`",
    "%",
    "_",
    "a_b",
    "axb",
    "a%b",
    "a\tb",
    "a\nb",
    "a\rb",
    "\n",
    " ",
    "  ",
    "10",
    "9",
    "09",
    "1e3",
    "1000",
    "0",
    "-1",
    "+1",
    "NULL",
    "null",
    "\xC2\xA0",
    "a\xE2\x80\x8B",
    "\xE2\x80\xAE"
    "x",
    "--",
    "/* */",
    "a;b",
    "{a}",
    "a=b",
    "?"};

const std::vector<double> kNumbers{
    0.0,
    -0.0,
    1.0,
    -1.0,
    1.0 + 1e-15,
    1.0 + 2e-10,
    1.0 + 0.5e-10,
    0.1,
    0.30000000000000004,
    1.0 / 3,
    5e-324,
    -5e-324,
    2.2250738585072014e-308,
    2.225073858507201e-308,
    1e-300,
    1e-17,
    1.3000000000000003e-07,
    1.5e-7,
    5e-6,
    100,
    123456789,
    123456789012345678.0,
    9007199254740993.0,
    1e15,
    1e16,
    1e21,
    1e22,
    1e100,
    1.7976931348623157e308,
    -1.7976931348623157e308,
    4.35,
    0.000001};

/// What many calls on one engine give, a line for each.
class Transcript
{
public:
    explicit Transcript(Engine engine) : database_(engine)
    {
        test_support::store_connection(database_, "lab");
        fill();
        readAll();
        refuseAll();
        importAll();
    }

    std::vector<std::string> lines;

private:
    /// Escaped, so that a difference shows in what is printed of it.
    static std::string shown(const std::string& text)
    {
        std::string result = "\"";
        for (const char c : text) {
            if (c == '\n' || c == '\r' || c == '\t') {
                result += c == '\n' ? "\\n" : c == '\r' ? "\\r" : "\\t";
            } else {
                result += c;
            }
        }
        return result + "\"";
    }

    template <typename List>
    static std::string listed(const List& list)
    {
        std::string text = "[";
        for (const auto& item : list) {
            if constexpr (std::is_same_v<std::decay_t<decltype(item)>, std::string>) {
                text += shown(item) + ",";
            } else if constexpr (std::is_integral_v<std::decay_t<decltype(item)>>) {
                text += std::to_string(item) + ",";
            } else {
                text += listed(item) + ",";
            }
        }
        return text + "]";
    }

    /// Notes what `run` gives: it returns whether the call succeeded, fills in the errors, and
    /// hands the result over as text.
    void note(
        const std::string& call,
        const std::function<bool(std::string* result, std::string* errors)>& run)
    {
        std::string result;
        std::string errors;
        std::string ending;
        try {
            ending = run(&result, &errors) ? "true " : "false ";
        } catch (const DBIF_Exception& exception) {
            ending = "throws " + dbif::to_utf8(exception.error().databaseText());
        }
        lines.push_back(call + " -> " + ending + result + " " + shown(errors));
    }

    void values(const std::string& keyword, const std::string& query)
    {
        note(keyword + " | " + query, [&](std::string* result, std::string* errors) {
            std::vector<std::string> values;
            const bool done =
                dbapi::db_get_values_for_keyword_as_text("lab", keyword, &values, query, errors);
            *result = listed(values);
            return done;
        });
    }

    void sideBySide(const std::vector<std::string>& keywords, const std::string& query)
    {
        for (const bool distinct : {false, true}) {
            note(listed(keywords) + " | " + query, [&](std::string* result, std::string* errors) {
                std::vector<std::vector<std::string>> columns;
                const bool done = dbapi_get_values_for_keywords(
                    distinct, "lab", keywords, &columns, query, errors);
                *result = listed(columns);
                return done;
            });
        }
    }

    void fill()
    {
        database_.write([](RecordWriter& writer) {
            for (std::size_t i = 0; i < kTexts.size(); ++i) {
                const int die = writer.findOrAddDie(
                    i % 3 == 0 ? dbif::DieFields{.lot = kTexts[i]}
                               : dbif::DieFields{.lot = kTexts[i], .wafer = kTexts[i / 2]});
                std::vector<dbif::KeyValue> keys{text_key("T", kTexts[i], "TECHNOLOGY")};
                if (i < kNumbers.size()) {
                    keys.push_back(number_key("W", kNumbers[i], "PHYSICAL"));
                    keys.push_back(number_key("L", kNumbers[i / 3], "NODE"));
                }
                if (i % 4 == 0) {
                    keys.push_back(
                        text_key("z", std::to_string(i) + "-2j", "NODE", dbif::ValueKind::Complex));
                    keys.push_back(text_key(
                        "m", "[[1+0j, " + std::to_string(i) + "j]]", "NODE",
                        dbif::ValueKind::Matrix));
                }
                const int device = writer.findOrAddDevice(die, {.name = kTexts[i]}, keys);
                const int entry =
                    writer.addCatalogEntry({.application = kTexts[i]}, {text_key("o", kTexts[i])});
                if (i % 2 == 0) {
                    const std::optional<double> temperature =
                        i < kNumbers.size() ? std::optional(kNumbers[i]) : std::nullopt;
                    const int condition = writer.addCondition(
                        writer.addMeasurement({entry, device, 0, temperature, {}}),
                        {.name = kTexts[i]}, {number_key("VS", kNumbers[i % kNumbers.size()])});
                    if (i % 6 == 0) {
                        dbif::SetupColumn headed = sweep("x", kNumbers);
                        headed.header = kTexts[i];
                        writer.addSetup(
                            condition, {.name = kTexts[i], .path = ""},
                            {headed,
                             text_sweep(
                                 "s", {kTexts.begin(), kTexts.begin() + static_cast<std::ptrdiff_t>(
                                                                            kNumbers.size())})},
                            "file");
                    }
                }
            }
        });
        // A second version of some, which supersedes.
        database_.write([](RecordWriter& writer) {
            const int die = writer.findOrAddDie({.lot = ""});
            const int device = writer.findOrAddDevice(die, {.name = ""});
            const int condition = writer.addCondition(
                writer.addMeasurement({0, device, 0, 0.0, {}}), {.name = ""},
                {number_key("VS", 0)});
            writer.addSetup(
                condition, {.name = "", .path = ""}, {sweep("x", {1.0, std::nan(""), -5e-324})},
                "file");
        });
        for (const char* table :
             {"die", "device", "catalog_entry", "measurement", "measurement_condition", "setup"}) {
            database_.execute(
                "UPDATE " + std::string(table) +
                " SET modified_time = CASE WHEN id < 5 THEN '2026-01-31T12:34:56.789' ELSE "
                "'2026-01-31T12:34:56.790' END, \"user\" = 'u'");
        }
    }

    void readAll()
    {
        const std::vector<std::string> keywords{
            "T",        "W",        "L",        "z",        "m",       "$DEVNAME", "$LOT",
            "$WAFER",   "$TEMP",    "VS",       "CES.o",    "$APP",    "OUTD.x",   "OUTS.s",
            "$SETPATH", "$DEVTIME", "$DEVUSER", "$DEVDBID", "$MCNAME", "$SETNAME"};
        for (const std::string& keyword : keywords) {
            for (const char* query :
                 {"", "ALLDATA:", "$TEMP>=0", "W<=1;$TEMP<=1", "OUTD.x=1", "ALLDATA: OUTD.x<0"}) {
                values(keyword, query);
            }
        }
        for (const char* comparator : {"=", "!=", "<", "<=", ">", ">="}) {
            for (const std::string keyword : {"T", "$DEVNAME", "$LOT", "OUTS.s"}) {
                for (const std::string& text : kTexts) {
                    values("$DEVDBID", keyword + comparator + text);
                    values("$DEVDBID", keyword + comparator + "'" + text + "'");
                }
            }
            for (const std::string keyword : {"W", "$TEMP", "VS", "OUTD.x", "$DEVDBID"}) {
                for (const double number : kNumbers) {
                    values("$DEVDBID", keyword + comparator + dbif::double_text(number));
                }
                values("$DEVDBID", keyword + comparator + "0.15u");
            }
            for (const char* keyword : {"z", "m"}) {
                values("$DEVDBID", keyword + std::string(comparator) + "4-2j");
                values("$DEVDBID", keyword + std::string(comparator) + "'[[1+0j, 4j]]'");
            }
            values("$DEVDBID", "$DEVTIME" + std::string(comparator) + "2026-01-31T12:34:56.789");
        }
        for (const char* query :
             {"W=[0,1]", "W=[-1,5e-324]", "T=[A,b]", "T=[a ,b]", "$DEVNAME=a,A, a ,\xC3\xA4",
              "W=1,0,1e22", "W!=1,0,1e22", "NOT KEY(W)=1", "NOT KEY(T)=a", "{T=a} OR {$TEMP=25}",
              "{NOT KEY(W)=1} AND {{T=a} OR {T!=A}}", "{NOT KEY(OUTD.x)=1}",
              "{OUTD.x=1;OUTS.s=a} OR {W=100}", "{}", "{W}",
              "ALLDATA: {OUTD.x=[-1,1]} AND {VS=0}"}) {
            for (const char* keyword : {"$DEVDBID", "T", "OUTD.x"}) {
                values(keyword, query);
            }
        }
        sideBySide({"T", "W", "L"}, "");
        sideBySide({"W", "T", "z", "m"}, "$TEMP<=1");
        sideBySide({"$LOT", "$WAFER", "$DEVNAME"}, "");
        sideBySide({"OUTS.s", "OUTD.x", "W", "T"}, "ALLDATA:");
        sideBySide({"OUTD.x", "OUTS.s", "$DEVNAME"}, "OUTD.x<=1;W<=1");
        listAll();
    }

    void listAll()
    {
        std::set<std::string> tables;
        dbapi::db_get_tablenames(&tables);
        for (const std::string& table : tables) {
            for (const char* query : {"", "W<=1", "T=a", "OUTD.x=1"}) {
                for (const char* format : {"SHORT", "FULL"}) {
                    note(
                        "keys " + table + " | " + query,
                        [&](std::string* result, std::string* errors) {
                            std::set<std::string> keys;
                            const bool done = dbapi::db_get_keynames_in_table(
                                "lab", table, &keys, query, format, errors);
                            *result = listed(keys);
                            return done;
                        });
                }
                note("ids " + table + " | " + query, [&](std::string* result, std::string* errors) {
                    std::set<int> ids;
                    const bool done = dbapi_get_table_ids_from_query_for_tablename(
                        "lab", table, &ids, query, errors);
                    *result = listed(ids);
                    return done;
                });
            }
        }
        for (int id = 0; id < 14; ++id) {
            note("setup " + std::to_string(id), [&](std::string* result, std::string* errors) {
                std::vector<std::string> keys;
                std::vector<std::vector<std::string>> columns;
                std::string header;
                const bool done = dbapi::db_get_setup_keys_values_for_setup_id_as_text(
                    "lab", id, &keys, &columns, errors);
                dbapi::db_get_column_dataheader_from_setup_id("lab", id, "x", &header, errors);
                *result = listed(keys) + listed(columns) + shown(header);
                return done;
            });
            note("record " + std::to_string(id), [&](std::string* result, std::string* errors) {
                std::vector<std::string> found;
                const bool done = dbapi::db_get_key_values_for_device_id_as_text(
                    "lab", id, "T", &found, "", errors);
                *result = listed(found);
                return done;
            });
        }
    }

    void refuseAll()
    {
        for (const char* query :
             {"W=x", "W", "W=", "W=[1]", "$TEMP=a", "nothing=1", "T='open", "{W=1", "z<1", "m>1",
              "OUTD.x=5V", "$DEVDBID=1.5", "$DEVDBID=99999999999", "W=1e999", "W=-1e400",
              "1 ALLDATA: W=1", "x=1", "NOT", "W=1 OR T=a"}) {
            values("W", query);
            values("nothing", query);
        }
        for (const char* keyword : {"", "$NOTHING", "Key(", "Key(W,device)", "x", "s", "W,L"}) {
            values(keyword, "");
        }
    }

    void importAll()
    {
        const std::string head = "# $LOT = L\n# $DEVNAME = imported\n# $SETNAME = s\n";
        const std::vector<std::string> files{
            head +
                "# Key(W,device,DOUBLE,PHYSICAL) = 0.15u\nIND.VG,OUTS.t\n0,\"it's \\ \"\"x\"\" \"\n1,\n",
            head + "# Key(W,device,DOUBLE,PHYSICAL) = 0.16u\nIND.VG\n0\n",
            head + "# Key(W,device,DOUBLE,PHYSICAL) = abc\nIND.VG\n0\n",
            head + "IND.VG\n1e999\nx\n",
            head +
                "# $DEVTYPE = n \nIND.VG,OUTS.t\n5e-324,\xF0\x9F\x98\x80\n1.7976931348623157e308,\" \"\n"};
        for (std::size_t i = 0; i < files.size(); ++i) {
            const std::string path = database_.folder().file("in.csv");
            test_support::write_file(path, files[i]);
            note("import " + std::to_string(i), [&](std::string* result, std::string* /*errors*/) {
                const dbapi::ImportResult imported =
                    dbapi::import_sweeps(database_.connection, {path});
                *result = std::to_string(imported.setups) + " " + std::to_string(imported.points);
                for (const dbapi::ImportFault& fault : imported.faults) {
                    *result += " " + std::to_string(fault.line) + ": " + fault.text;
                }
                return imported.faults.empty();
            });
            sideBySide({"IND.VG", "OUTS.t", "W", "$DEVTYPE"}, "ALLDATA: $DEVNAME=imported");
            sideBySide({"IND.VG", "OUTS.t", "W", "$DEVTYPE"}, "$DEVNAME=imported");
        }
    }

    test_support::MeasurementDatabase database_;
};
} // namespace

TEST(EngineTranscript, IsTheSameOnBothMariaDb)
{
    const std::vector<std::string> sqlite = Transcript(Engine::Sqlite).lines;
    const std::vector<std::string> server = Transcript(Engine::MariaDb).lines;
    ASSERT_EQ(sqlite.size(), server.size());
    // The calls say much, and find something.
    EXPECT_GT(sqlite.size(), 2000);
    const auto found = std::count_if(sqlite.begin(), sqlite.end(), [](const std::string& line) {
        return line.find(" -> true [\"") != std::string::npos;
    });
    EXPECT_GT(found, 900) << "of " << sqlite.size();
    EXPECT_GT(std::set<std::string>(sqlite.begin(), sqlite.end()).size(), 1500);
    int differences = 0;
    for (std::size_t i = 0; i < sqlite.size() && differences < 20; ++i) {
        EXPECT_EQ(sqlite[i], server[i]);
        differences += sqlite[i] == server[i] ? 0 : 1;
    }
}
