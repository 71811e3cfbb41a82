#include "dbapi/db_arrow.h"
#include "dbapi/db_columns.h"
#include "dbapi/db_connections.h"
#include "dbapi/db_fault.h"
#include "dbapi/db_values.h"
#include "dbif/host/host_number.h"

#include "tests/support/lab_database.h"
#include "tests/support/run_command.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cmath>
#include <filesystem>
#include <thread>

namespace {
using namespace test_support;
using dbapi::ColumnOptions;
using dbapi::ColumnReader;
using dbapi::ColumnTable;
using dbapi::Fault;
using dbapi::ValueColumn;
using Order = ColumnOptions::Order;
using testing::HasSubstr;

std::vector<std::vector<std::string>> cells(const ColumnTable& table)
{
    std::vector<std::vector<std::string>> texts;
    for (const ValueColumn& column : table.columns) {
        EXPECT_EQ(column.size(), table.rows);
        std::vector<std::string>& of = texts.emplace_back();
        for (std::size_t row = 0; row < table.rows; ++row) {
            column.appendText(row, &of.emplace_back());
        }
    }
    return texts;
}

dbif::SetupColumn sweep_of(const std::string& name, dbif::SweepArray values)
{
    dbif::SetupColumn column;
    column.name = name;
    column.values = std::move(values);
    return column;
}

class DbColumns : public testing::TestWithParam<Engine>
{
protected:
    DbColumns()
    {
        lab.write([](dbif::RecordWriter& writer) {
            const int device = writer.findOrAddDevice(
                writer.findOrAddDie({.lot = "C"}), {.name = "y"},
                {text_key("z", "1-2j", "NODE", dbif::ValueKind::Complex),
                 text_key("S", "[[1+0j, 2j]]", "NODE", dbif::ValueKind::Matrix)});
            const int measurement =
                writer.addMeasurement({writer.addCatalogEntry({}), device, 0, 25, {}});
            dbif::SweepArray y{dbif::ValueKind::Complex, {}, {{1, 2}, dbif::kNoComplex}, {}, {}};
            dbif::SweepArray m{dbif::ValueKind::Matrix, {}, {}, {{1, 1, {{3, 4}}}, {}}, {}};
            writer.addSetup(
                writer.addCondition(measurement, {}), {.name = "ac"},
                {sweep("f", {1, 2}), sweep_of("Y", y), sweep_of("M", m),
                 text_sweep("T", {"on", "off"})},
                "ac");
        });
    }

    std::string read(
        const std::vector<std::string>& keywords,
        const std::string& query,
        const ColumnOptions& options)
    {
        const bool isRead = dbapi::db_get_columns("lab", keywords, &table, query, options, &errors);
        return isRead ? joined(cells(table)) : errors;
    }

    std::unique_ptr<ColumnReader>
    open(const std::vector<std::string>& keywords, std::size_t rows, const ColumnOptions& options)
    {
        std::unique_ptr<ColumnReader> reader;
        EXPECT_TRUE(
            dbapi::db_open_column_reader("lab", keywords, rows, &reader, "", options, &errors))
            << errors;
        return reader;
    }

    /// All rows of a reader, or why it failed.
    std::string rest(ColumnReader& reader, std::size_t batchRows = 0)
    {
        std::string all;
        while (reader.next(&table, &errors)) {
            EXPECT_TRUE(batchRows == 0 || table.rows <= batchRows);
            if (table.rows == 0) {
                return all;
            }
            all += joined(cells(table));
        }
        return errors;
    }

    LabDatabase lab{GetParam()};
    ColumnTable table;
    std::string errors;
};

ColumnOptions ordered(Order order)
{
    ColumnOptions options;
    options.order = order;
    return options;
}

TEST_P(DbColumns, SayWhatTheTextCallsSay)
{
    const std::vector<std::vector<std::string>> asked{
        {"W"},
        {"$DEVNAME"},
        {"process", "W"},
        {"ID", "VG", "$DEVNAME"},
        {"z"},
        {"S", "$LOT"},
        {"Y", "f", "$SETNAME"},
        {"M", "T"},
        {"vth", "$TEMP"},
        {"$SETDBID", "VG"}};
    for (const auto& keywords : asked) {
        for (const char* query : {"", "W=5u", "VG=1", "ALLDATA:"}) {
            for (const bool distinct : {false, true}) {
                std::vector<std::vector<std::string>> texts;
                const bool isRead = dbapi_get_values_for_keywords(
                    distinct, "lab", keywords, &texts, query, &errors);
                const std::string said = isRead ? joined(texts) : errors;
                ColumnOptions options;
                options.distinct = distinct;
                EXPECT_EQ(read(keywords, query, options), said) << keywords.front() << " " << query;
                options.progress = [](const dbapi::ReadProgress&) {
                    return true;
                };
                EXPECT_EQ(read(keywords, query, options), said) << keywords.front();
            }
        }
    }
}

TEST_P(DbColumns, TellTypesAndTakeOptions)
{
    ColumnOptions stored = ordered(Order::Stored);
    stored.withIds = true;
    EXPECT_EQ(
        read({"W", "$DEVNAME"}, "", stored),
        "5e-06|n1|1;1e-05|n2|2;|d3|3;1.3000000000000003e-07|lonely|4;|y|5;");
    EXPECT_EQ(
        table.columns[0].table + table.columns[0].category + table.columns[0].dataType,
        "devicePHYSICALDOUBLE");
    EXPECT_EQ(table.columns[0].missing(), 2U);
    EXPECT_EQ(table.columns[1].name + table.columns[1].dataType, "name");
    EXPECT_EQ(table.columns[2].keyword, "id");
    EXPECT_EQ(table.columns[1].dictionary.size(), 5U);
    // The ids beside them give no row a value.
    EXPECT_EQ(read({"W"}, "", stored), "5e-06|1;1e-05|2;1.3000000000000003e-07|4;");
    EXPECT_EQ(
        read({"ID", "VG"}, "$LOT=A", stored), "1e-09|0|1;|1|1;3e-06|2|1;2e-09|0|2;4e-06|1|2;");
    EXPECT_EQ(read({"$LOT", "T"}, "$LOT=C", stored), "C|on|3;C|off|3;");
    EXPECT_EQ(table.columns[0].dictionary, std::vector<std::string>{"C"});

    stored.limit = 3;
    EXPECT_EQ(read({"ID"}, "", stored), "1e-09|1;3e-06|1;2e-09|2;");
    stored.withPoints = true;
    EXPECT_EQ(read({"ID"}, "", stored), "1e-09|1|1;3e-06|1|3;2e-09|2|1;");
    EXPECT_EQ(read({"W"}, "W=5u", stored), "5e-06|1;");
    ColumnOptions descending;
    descending.descending = true;
    EXPECT_EQ(read({"W"}, "", descending), "1e-05;5e-06;1.3000000000000003e-07;");
    EXPECT_EQ(
        read({"$LOT", "W"}, "$LOT<C", descending), "B|1.3000000000000003e-07;B|;A|1e-05;A|5e-06;");
    descending.order = Order::Stored;
    EXPECT_THAT(read({"W"}, "", descending), HasSubstr("Only sorted rows can be descending"));
    ColumnOptions all = ordered(Order::None);
    lab.supersedeFirstSetup();
    EXPECT_EQ(read({"ID"}, "$TEMP=25;$LOT=A", all), "7e-06;");
    all.allData = true;
    EXPECT_EQ(read({"ID"}, "$TEMP=25;$LOT=A", all), "1e-09;3e-06;7e-06;");

    // Between the year 2020 and the year 2200.
    ASSERT_TRUE(dbapi::db_get_columns("lab", {"$DEVTIME"}, &table, "", {}, &errors)) << errors;
    EXPECT_EQ(table.columns[0].type, ValueColumn::Type::Time);
    EXPECT_GT(table.columns[0].integers.front(), 1'577'836'800'000'000);
    EXPECT_LT(table.columns[0].integers.back(), 7'258'118'400'000'000);
    const std::string times = lab.rows("SELECT modified_time FROM device ORDER BY modified_time");
    EXPECT_EQ(joined(cells(table)), times);
}

TEST_P(DbColumns, FailWithAFault)
{
    Fault fault;
    EXPECT_TRUE(read({"Wx"}, "", {}).starts_with("Error: Failed to resolve keyword \"Wx\""));
    EXPECT_THAT(read({"W", "Wx"}, "", {}), HasSubstr("Failed to resolve keyword"));
    ASSERT_TRUE(dbapi::db_get_last_fault(&fault));
    EXPECT_EQ(fault.kind, Fault::Kind::UnknownKey);
    EXPECT_EQ(fault.piece(), "Wx");
    std::unique_ptr<ColumnReader> reader;
    EXPECT_FALSE(dbapi::db_open_column_reader("lab", {"W"}, 9, &reader, "W=5u;{L", {}, &errors));
    ASSERT_TRUE(dbapi::db_get_last_fault(&fault));
    EXPECT_EQ(fault.kind, Fault::Kind::UnbalancedBraces);
    EXPECT_FALSE(dbapi::db_open_column_reader("nolab", {"W"}, 9, &reader, "", {}, &errors));
    EXPECT_THAT(errors, HasSubstr("\"nolab\" was not found"));
    EXPECT_FALSE(dbapi::db_open_column_reader("lab", {"W"}, 0, &reader, "", {}, &errors));
    EXPECT_EQ(reader, nullptr);
    ColumnOptions options;
    options.limit = -2;
    EXPECT_THAT(read({"W"}, "", options), HasSubstr("The limit is -2"));
    options = {};
    options.distinct = options.withIds = true;
    EXPECT_THAT(read({"W"}, "", options), HasSubstr("no ids stand beside them"));

    options = {};
    options.mostBytes = 100;
    EXPECT_THAT(read({"ID", "VG"}, "", options), HasSubstr("up to 5 rows, for which about 200"));
    options.limit = 1;
    EXPECT_EQ(read({"ID", "VG"}, "", options), "|1;");
    options = {};
    options.progress = [](const dbapi::ReadProgress& progress) {
        EXPECT_EQ(progress.mostRows, 5U);
        return progress.rows == 0;
    };
    EXPECT_EQ(read({"ID", "VG"}, "", options), "Error: The read was cancelled.\n");
    ASSERT_TRUE(dbapi::db_get_last_fault(&fault));
    EXPECT_EQ(fault.kind, Fault::Kind::Cancelled);
    options = {};
    int asked = 0;
    options.interrupted = [&asked] {
        return ++asked == 2;
    };
    EXPECT_EQ(read({"ID", "VG"}, "", options), "Error: The read was cancelled.\n");
    EXPECT_EQ(asked, 2);
    options.interrupted = nullptr;
    options.progress = [](const dbapi::ReadProgress&) -> bool {
        throw 7;
    };
    EXPECT_THROW(read({"ID"}, "", options), int);
    EXPECT_EQ(read({"z"}, "", {}), "1-2j;");

    lab.execute("UPDATE device_data SET text = 'no matrix' WHERE text LIKE '[[%'");
    EXPECT_THAT(
        read({"S"}, "", {}), HasSubstr("\"no matrix\", stored under S of device, is damaged"));
}

TEST_P(DbColumns, ComeInBatches)
{
    // Setups of several sizes, more than a block has; and records far apart.
    lab.write([](dbif::RecordWriter& writer) {
        const int device = writer.findOrAddDevice(
            writer.findOrAddDie({.lot = "many"}), {.name = "many"},
            {number_key("W", 1, "PHYSICAL")});
        const int measurement =
            writer.addMeasurement({writer.addCatalogEntry({}), device, 0, 25, {}});
        const int condition = writer.addCondition(measurement, {});
        for (int setup = 0; setup < 1100; ++setup) {
            writer.addSetup(
                condition, {.name = "s" + std::to_string(setup % 7), .path = std::to_string(setup)},
                {sweep("p", std::vector<double>(static_cast<std::size_t>(setup % 5 + 1), setup))},
                "many" + std::to_string(setup));
        }
        writer.findOrAddDie({.lot = "far"});
    });
    lab.execute("UPDATE die SET id = 400000 WHERE lot = 'far'");
    for (const char* sql :
         {"UPDATE setup SET id = 300000 WHERE id = 3",
          "UPDATE setup_association SET setup_id = 300000 WHERE setup_id = 3",
          "UPDATE setup_data SET setup_id = 300000 WHERE setup_id = 3"}) {
        lab.execute(sql);
    }
    const std::vector<std::vector<std::string>> asked{
        {"p", "$SETNAME"}, {"T", "f", "p", "$LOT"}, {"$LOT"}, {"W", "$DEVNAME"}, {"$SETNAME"}};
    for (const auto& keywords : asked) {
        for (const Order order : {Order::Stored, Order::Sorted}) {
            const std::string whole = read(keywords, "", ordered(order));
            for (const std::size_t rows : {7U, 1000U, 1'000'000U}) {
                EXPECT_EQ(rest(*open(keywords, rows, ordered(order)), rows), whole)
                    << keywords.front() << " " << rows;
            }
        }
    }
    ColumnOptions options = ordered(Order::None);
    std::size_t last = 0;
    options.progress = [&last](const dbapi::ReadProgress& progress) {
        EXPECT_EQ(progress.mostRows, 3300U);
        EXPECT_GE(progress.rows, last);
        last = progress.rows;
        return true;
    };
    const auto reader = open({"p"}, 100, options);
    rest(*reader, 100);
    EXPECT_EQ(last, 3300U);
}

TEST_P(DbColumns, SeeOneStateUntilTheyEnd)
{
    const std::string before = read({"VG", "$TEMP"}, "", ordered(Order::Stored));
    const auto reader = open({"VG", "$TEMP"}, 2, ordered(Order::Stored));
    ASSERT_TRUE(reader->next(&table, &errors));
    const std::string first = joined(cells(table));
    lab.supersedeFirstSetup();
    ASSERT_TRUE(dbapi::db_remove_connection("lab", &errors)) << errors;
    // In another thread, too.
    std::string others;
    std::thread([&] { others = rest(*reader); }).join();
    EXPECT_EQ(first + others, before);
    EXPECT_TRUE(reader->next(&table, &errors));
    EXPECT_EQ(table.rows, 0U);
    EXPECT_EQ(reader->fault(), nullptr);
}

TEST_P(DbColumns, EndWhenCancelledOrCutOff)
{
    const auto cancelled = open({"VG"}, 1, ordered(Order::None));
    ASSERT_TRUE(cancelled->next(&table, &errors));
    cancelled->cancel();
    EXPECT_EQ(rest(*cancelled), "Error: The read was cancelled.\n");
    EXPECT_FALSE(cancelled->next(&table, nullptr));
    EXPECT_EQ(cancelled->fault()->kind, Fault::Kind::Cancelled);

    const auto cut = open({"$LOT"}, 1, ordered(Order::Stored));
    if (GetParam() == Engine::Sqlite) {
        ASSERT_TRUE(cut->next(&table, &errors));
        // As another program would replace it.
        const std::string other = lab.folder().file("other.db");
        std::filesystem::copy_file(lab.path(), other);
        std::filesystem::rename(other, lab.path());
        EXPECT_THAT(rest(*cut), HasSubstr("was replaced or overwritten while it was read"));
    } else {
        const std::string ids =
            lab.rows("SELECT id FROM information_schema.processlist WHERE db = DATABASE() "
                     "AND id <> CONNECTION_ID() ORDER BY id DESC LIMIT 1");
        MariaDbServer::instance().execute("KILL " + ids.substr(0, ids.size() - 1));
        EXPECT_THAT(rest(*cut), HasSubstr("rror"));
    }
    EXPECT_EQ(cut->fault()->kind, Fault::Kind::Connection);
}

/// The value of a cell of a column of numbers or texts, by its buffers.
std::string arrow_cell(const ArrowSchema& schema, const ArrowArray& array, std::int64_t row)
{
    const auto* validity = static_cast<const std::uint8_t*>(array.buffers[0]);
    if (validity != nullptr && (validity[row / 8] >> (row % 8) & 1) == 0) {
        return "null";
    }
    if (schema.dictionary == nullptr) {
        return dbif::double_text(static_cast<const double*>(array.buffers[1])[row]);
    }
    const std::int32_t code = static_cast<const std::int32_t*>(array.buffers[1])[row];
    const auto* ends = static_cast<const std::int64_t*>(array.dictionary->buffers[1]);
    const auto* bytes = static_cast<const char*>(array.dictionary->buffers[2]);
    return {bytes + ends[code], bytes + ends[code + 1]};
}

TEST_P(DbColumns, AreArrowArraysThatOutliveTheirStream)
{
    const std::vector<std::string> keywords{"W", "$DEVNAME", "S"};
    ArrowArrayStream stream{};
    dbapi::db_export_arrow_stream(open(keywords, 3, ordered(Order::Stored)), &stream);
    ArrowSchema schema{};
    ASSERT_EQ(stream.get_schema(&stream, &schema), 0);
    EXPECT_EQ(std::string(schema.format) + schema.children[0]->format, "+sg");
    EXPECT_STREQ(schema.children[1]->name, "$DEVNAME");
    EXPECT_STREQ(schema.children[2]->children[0]->children[0]->format, "+w:2");
    std::vector<ArrowArray> batches;
    for (ArrowArray batch{}; stream.get_next(&stream, &batch) == 0 && batch.release != nullptr;) {
        batches.push_back(batch);
    }
    stream.release(&stream);
    EXPECT_EQ(stream.release, nullptr);

    std::string rows;
    for (ArrowArray& batch : batches) {
        // A consumer may keep one column only.
        ArrowArray texts = *batch.children[1];
        batch.children[1]->release = nullptr;
        for (std::int64_t row = 0; row < batch.length; ++row) {
            rows += arrow_cell(*schema.children[0], *batch.children[0], row) + " ";
        }
        const ArrowArray& matrices = *batch.children[2];
        const auto* ends = static_cast<const std::int64_t*>(matrices.buffers[1]);
        EXPECT_EQ(ends[batch.length], matrices.children[0]->length);
        EXPECT_EQ(matrices.null_count, batch.length - matrices.children[0]->length);
        batch.release(&batch);
        EXPECT_EQ(batch.release, nullptr);
        for (std::int64_t row = 0; row < texts.length; ++row) {
            rows += arrow_cell(*schema.children[1], texts, row) + " ";
        }
        texts.release(&texts);
    }
    schema.release(&schema);
    EXPECT_EQ(rows, "5e-06 1e-05 null n1 n2 d3 1.3000000000000003e-07 null lonely y ");

    ColumnOptions options = ordered(Order::None);
    options.progress = [](const dbapi::ReadProgress&) {
        return false;
    };
    dbapi::db_export_arrow_stream(open({"W"}, 1, options), &stream);
    ArrowArray none{};
    EXPECT_EQ(stream.get_next(&stream, &none), ECANCELED);
    EXPECT_THAT(stream.get_last_error(&stream), HasSubstr("cancelled"));
    EXPECT_EQ(none.release, nullptr);
    stream.release(&stream);
}

TEST(ReadColumnsExample, TellsTheLargestCurrents)
{
    LabDatabase lab(Engine::Sqlite);
    lab.write([](dbif::RecordWriter& writer) {
        const int device =
            writer.findOrAddDevice(writer.findOrAddDie({.lot = "E"}), {.name = "big"}, {});
        const int measurement =
            writer.addMeasurement({writer.addCatalogEntry({}), device, 0, 25, {}});
        writer.addSetup(
            writer.addCondition(measurement, {}), {.name = "e"}, {sweep("ID", {1, -4, 2})}, "e");
    });
    const Outcome outcome = run_on_terminal({READ_COLUMNS_EXAMPLE, "lab"});
    EXPECT_THAT(outcome.data + outcome.talk, HasSubstr("big 4 A"));
    EXPECT_EQ(outcome.code, 0);
}

INSTANTIATE_ON_ENGINES(DbColumns);
} // namespace
