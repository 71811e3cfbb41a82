#include "dbif/condition/column_condition.h"
#include "dbif/condition/compound_condition.h"
#include "dbif/condition/constant_condition.h"
#include "dbif/engine/sql_text.h"
#include "dbif/host/host_number.h"
#include "dbif/record/record_tables.h"
#include "dbif/retrieval/query_run.h"
#include "dbif/retrieval/vanto_query.h"

#include "tests/support/measurement_database.h"

#include <gmock/gmock.h>

#include <limits>
#include <numeric>

using namespace test_support; // NOLINT(google-build-using-namespace)
using testing::HasSubstr;

namespace {
/// Texts that mean something to one database or the other when they are not quoted.
std::vector<std::string> odd_texts()
{
    const std::string longText(200, 'x'); // longer than what an index holds of a text
    return {
        "'",
        "''",
        "\"",
        "\\",
        "\\'",
        "'; DROP TABLE device; --",
        "/*",
        "*/",
        "#",
        "%",
        "_",
        "?",
        ":a",
        "@a",
        "$1",
        "`a`",
        "a\nb\tc\rd",
        "ü",
        "U",
        "u",
        "u ",
        " u",
        "\xF0\x9F\x98\x80",
        "e\xCC\x81",
        "\xC3\xA9",
        "\x01\x7F",
        "NULL",
        "0",
        "00",
        "x' OR '1'='1",
        "\\0",
        "\\%",
        "a''b",
        longText,
        longText + "y",
        longText + "y "};
}

bool is_key_name(const std::string& text)
{
    return dbif::trimmed(text) == text && text.front() != '$';
}

std::vector<int> numbered(std::size_t count)
{
    std::vector<int> numbers(count);
    std::iota(numbers.begin(), numbers.end(), 1);
    return numbers;
}

class SqlTexts : public EngineTest
{
protected:
    std::vector<int> devices(const DBIF_QueryCondition& condition) const
    {
        return dbif::matching_ids(
            database.connection, dbif::RecordTable::Device, &condition, false);
    }

    DBIF_SingleColumnCondition
    deviceKey(const std::string& name, Comparator comparator, const std::string& value)
    {
        const QString datatype = name == "W" ? DOUBLE_DATATYPE : TEXT_DATATYPE;
        const QString key = DBIF_DeviceColumn::computeKey(
            dbif::to_qt(name), DBIF_DeviceColumn::ID_CATEGORY, datatype);
        return DBIF_DeviceColumn::get(database.connection, key)
            ->singleColumnCondition(comparator, dbif::to_qt(value));
    }
};
} // namespace

TEST_P(SqlTexts, KeepTextsApartAndWhole)
{
    const std::vector<std::string> texts = odd_texts();
    database.write([&texts](dbif::RecordWriter& writer) {
        const int entry = writer.addCatalogEntry({});
        for (const std::string& text : texts) {
            const int die = writer.findOrAddDie({.lot = text});
            std::vector<dbif::KeyValue> keys{text_key("plain", text, "ID")};
            if (is_key_name(text)) {
                keys.push_back(text_key(text, "here", "ID"));
            }
            const int device = writer.findOrAddDevice(die, {.name = text}, keys);
            const int condition =
                writer.addCondition(writer.addMeasurement({entry, device, 0, {}, {}}), {});
            dbif::SetupColumn column = text_sweep("s", {text, std::nullopt});
            column.header = text;
            writer.addSetup(condition, {.path = text}, {column}, text);
        }
    });
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::string& text = texts[i];
        const std::vector<int> own{static_cast<int>(i) + 1};
        SCOPED_TRACE(text);
        const QString value = dbif::to_qt(text);
        EXPECT_EQ(devices(DBIF_Device::NAME.singleColumnCondition(EQUAL, value)), own);
        EXPECT_EQ(devices(DBIF_Die::LOT.singleColumnCondition(IN, value)), own);
        EXPECT_EQ(devices(DBIF_Setup::PATH.singleColumnCondition(EQUAL, value)), own);
        EXPECT_EQ(devices(deviceKey("plain", EQUAL, text)), own);
        EXPECT_EQ(devices(deviceKey("plain", NOT_EQUAL, text)).size(), texts.size() - 1);
        EXPECT_EQ(
            devices(deviceKey("plain", LESS, text)).size(),
            std::count_if(texts.begin(), texts.end(), [&text](const auto& t) { return t < text; }));
        EXPECT_EQ(
            devices(DBIF_SetupColumn::get(database.connection, QStringLiteral("OUT|TEXT|s"))
                        ->singleColumnCondition(EQUAL, value)),
            own);
        EXPECT_EQ(
            database.rows(
                "SELECT vanto_header FROM setup_association WHERE setup_id = " +
                std::to_string(own.front())),
            text + ";");
        if (is_key_name(text)) {
            EXPECT_EQ(devices(deviceKey(text, EQUAL, "here")), own);
        }
    }
    std::vector<std::string> sorted = texts;
    std::sort(sorted.begin(), sorted.end());
    for (const auto& [table, column] :
         {std::pair("device", "name"),
          {"device_data", "ID|TEXT|plain"},
          {"setup_data", "OUT|TEXT|s"}}) {
        DBIF_VantoQuery query(database.connection);
        query.addColumn(dbif::to_qt(table), dbif::to_qt(column), false);
        query.addOrder(dbif::to_qt(table), dbif::to_qt(column), true);
        dbif::QueryResult result = dbif::run_query(query);
        EXPECT_EQ(dbif::take_texts(&result.columns.front()), sorted) << table;
    }
    // No stored text holds a zero byte, and what stands behind one does not get lost.
    const QString zero = QStringLiteral("'") + QChar(0) + QStringLiteral("x");
    EXPECT_EQ(devices(DBIF_Device::NAME.singleColumnCondition(EQUAL, zero)), std::vector<int>());
    EXPECT_EQ(
        devices(DBIF_Device::NAME.singleColumnCondition(NOT_EQUAL, zero)).size(), texts.size());
    const std::string odd = "\"; DROP TABLE a; --";
    database.execute(
        (dbif::SqlText("CREATE TABLE ") << dbif::SqlName(odd) << " (id INTEGER)").utf8());
    database.execute((dbif::SqlText("DROP TABLE ") << dbif::SqlName(odd)).utf8());
}

TEST_P(SqlTexts, TakeListsAndChainsOfAnyLength)
{
    constexpr int kDevices = 40;
    database.write([](dbif::RecordWriter& writer) {
        for (int i = 1; i <= kDevices; ++i) {
            writer.findOrAddDevice(
                0, {.name = std::to_string(i)},
                {number_key("W", i, "ID"), text_key("T", std::to_string(i), "ID")});
        }
    });
    const std::vector<int> all = numbered(kDevices);
    std::string list = "1";
    for (int i = 2; i <= 10'000; ++i) {
        list += "', '" + std::to_string(i);
    }
    for (const char* key : {"W", "T"}) {
        EXPECT_EQ(devices(deviceKey(key, IN, list)), all);
        EXPECT_EQ(devices(deviceKey(key, NOT_IN, list)), std::vector<int>());
    }
    EXPECT_EQ(devices(DBIF_Device::ID.singleColumnCondition(IN, dbif::to_qt(list))), all);

    // Comparisons of one column become a list.
    for (const int length : {2'000, 100'000}) {
        for (const bool growsLeft : {true, false}) {
            using Compound = DBIF_CompoundQueryCondition;
            std::unique_ptr<DBIF_QueryCondition> chain =
                std::make_unique<DBIF_BooleanQueryCondition>(false);
            for (int i = 1; i <= length; ++i) {
                const auto next =
                    i % 2 == 0 ? DBIF_Device::ID.singleColumnCondition(EQUAL, QString::number(i))
                               : deviceKey("T", EQUAL, std::to_string(i));
                chain = growsLeft ? std::make_unique<Compound>(chain.get(), OR, &next)
                                  : std::make_unique<Compound>(&next, OR, chain.get());
            }
            const Compound negated(NOT, chain.get());
            EXPECT_GT(negated.generateSelectionCriteria(database.connection).size(), 60 * length);
            EXPECT_EQ(devices(*chain), all);
            EXPECT_EQ(devices(negated), std::vector<int>());
        }
    }
}

TEST_P(SqlTexts, NameTheLimitOfAConditionInWords)
{
    database.write([](dbif::RecordWriter& writer) {
        writer.findOrAddDevice(0, {}, {number_key("W", 1, "ID")});
    });
    const auto isOne = deviceKey("W", EQUAL, "1");
    const auto isFirst = DBIF_Device::ID.singleColumnCondition(EQUAL, QStringLiteral("1"));
    const DBIF_CompoundQueryCondition both(&isOne, AND, &isFirst);
    DBIF_CompoundQueryCondition chain = both;
    for (int i = 0; i < 15'000; ++i) {
        chain = DBIF_CompoundQueryCondition(&chain, OR, &both);
    }
    EXPECT_THAT(
        thrown_by([&] { devices(chain); }),
        HasSubstr("The condition has 30002 comparisons, and 30000 is the most."));
}

TEST_P(SqlTexts, TakeConditionsWithinConditions)
{
    database.write([](dbif::RecordWriter& writer) {
        for (const char* name : {"a", "b", "c"}) {
            writer.findOrAddDevice(0, {.name = name});
        }
    });
    const auto isA = DBIF_Device::NAME.singleColumnCondition(EQUAL, QStringLiteral("a"));
    const auto isNoC = DBIF_Device::NAME.singleColumnCondition(NOT_EQUAL, QStringLiteral("c"));
    DBIF_CompoundQueryCondition nested(&isA, OR, &isNoC);
    for (int i = 1; i <= 1000; ++i) {
        nested =
            DBIF_CompoundQueryCondition(i % 2 == 0 ? &isA : &isNoC, i % 2 == 0 ? OR : AND, &nested);
    }
    EXPECT_EQ(devices(nested), numbered(2));
    EXPECT_EQ(devices(DBIF_CompoundQueryCondition(NOT, &nested)), std::vector<int>{3});
    EXPECT_THAT(
        thrown_by([&] { DBIF_CompoundQueryCondition(&isA, AND, &nested); }),
        HasSubstr("The condition changes between AND and OR more than 1000 times"));
}

TEST_P(SqlTexts, CompareNumbersAtTheirEnds)
{
    constexpr double kLargest = std::numeric_limits<double>::max();
    const std::vector<double> numbers{-kLargest, -1e300,   -1, -1e-300, -5e-324, 0,
                                      5e-324,    2.2e-308, 1,  1e300,   kLargest};
    database.write([&numbers](dbif::RecordWriter& writer) {
        for (const double number : numbers) {
            writer.findOrAddDevice(
                0, {.name = dbif::double_text(number)}, {number_key("W", number, "ID")});
        }
    });
    for (const double with : numbers) {
        const auto count = [&](const auto& test) {
            return static_cast<std::size_t>(std::count_if(numbers.begin(), numbers.end(), test));
        };
        const auto found = [&](Comparator comparator) {
            return devices(deviceKey("W", comparator, dbif::double_text(with))).size();
        };
        const std::size_t less = count([with](double n) { return n < with; });
        SCOPED_TRACE(with);
        EXPECT_EQ(found(LESS), less);
        EXPECT_EQ(found(LESS_EQUAL), less + 1);
        EXPECT_EQ(found(GREATER), numbers.size() - less - 1);
        EXPECT_EQ(found(GREATER_EQUAL), numbers.size() - less);
        EXPECT_EQ(found(EQUAL), 1U);
        EXPECT_EQ(found(NOT_EQUAL), numbers.size() - 1);
    }
}

TEST_P(SqlTexts, RefuseValuesThatAreNoNumbers)
{
    database.write([](dbif::RecordWriter& writer) {
        writer.findOrAddDevice(
            0, {},
            {number_key("W", 1, "ID"), text_key("z", "1+2j", "ID", dbif::ValueKind::Complex)});
    });
    for (const char* value : {"", "abc", "1,2", "0x1", "nan", "1e999", "1; DROP TABLE device"}) {
        EXPECT_THAT(
            thrown_by([&] { return deviceKey("W", EQUAL, value); }),
            HasSubstr(
                "The column \"device key W\" holds numbers, and \"" + std::string(value) +
                "\" is not a number."));
        EXPECT_THAT(
            thrown_by([&] {
                return DBIF_Measurement::TEMPERATURE.singleColumnCondition(
                    LESS, dbif::to_qt(value));
            }),
            HasSubstr("\"measurement.temperature\" holds numbers"));
    }
    EXPECT_EQ(devices(deviceKey("W", EQUAL, " '1' ")), numbered(1));
    EXPECT_EQ(devices(deviceKey("W", IN, " 7', '1 ")), numbered(1));
    const auto z = DBIF_DeviceColumn::get(database.connection, QStringLiteral("ID|COMPLEX|z"));
    EXPECT_EQ(devices(z->singleColumnCondition(IN, QStringLiteral("a', '1+2j"))), numbered(1));
    EXPECT_THAT(
        thrown_by([&] { return z->singleColumnCondition(LESS, QStringLiteral("1+2j")); }),
        HasSubstr("\"device key z\" holds complex values, which have no order."));
}

INSTANTIATE_ON_ENGINES(SqlTexts);

TEST(DatabaseExceptions, ShareTheBufferOfTheirReport)
{
    const auto failed = [](const QString& sql) {
        return DBIF_Exception(
            sql, QSqlError({}, QStringLiteral("no"), QSqlError::StatementError),
            QStringLiteral("a.cpp"), 7);
    };
    const char* first = failed(QStringLiteral("SELECT 1 %1")).what();
    EXPECT_STREQ(
        first, "==> Error reported by database in file: a.cpp line: 7\n  Query: SELECT 1 %1\n"
               "  Error reported: no\n");
    const char* second = failed(QStringLiteral("SELECT 22")).what();
    EXPECT_THAT(first, HasSubstr("SELECT 22"));
    const std::string whole = failed(QString(100'000, u'x')).what();
    EXPECT_THAT(whole, HasSubstr(std::string(100'000, 'x') + "\n  Error reported: no\n"));
    EXPECT_TRUE(whole.starts_with(first));
    EXPECT_THAT(second, HasSubstr("Query: xxx"));
}
