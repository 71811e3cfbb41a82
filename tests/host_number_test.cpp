#include "dbif/host_number.h"
#include "dbif/host_string.h"

#include <QVariant>

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <random>

namespace {
constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kSmallest = std::numeric_limits<double>::denorm_min();
} // namespace

TEST(HostNumber, ReadsEngineeringNotation)
{
    const std::pair<const char*, double> numbers[] = {
        {"0", 0},
        {"1", 1},
        {"-1.5", -1.5},
        {"+.5", .5},
        {"5.", 5},
        {" \t\r\n\v\f7 \t\r\n\v\f", 7},
        {"1e3", 1000},
        {"1E-3", 1e-3},
        {"1e+3k", 1e6},
        {"2t", 2e12},
        {"2G", 2e9},
        {"2x", 2e6},
        {"2Meg", 2e6},
        {"2k", 2e3},
        {"2M", 2e-3},
        {"0.13u", 1.3e-07},
        {"0.15u", 1.5e-07},
        {"2n", 2e-9},
        {"2p", 2e-12},
        {"2f", 2e-15},
        {"2a", 2e-18},
        {"-0.0a", 0},
        {"1.7976931348623157e308", kLargest},
        {"-1.7976931348623157e296t", -kLargest},
        {"5e-324", kSmallest},
        {"0e999999999999", 0},
        {"1e-400", 0},
        {"1e-99999999999999999999", 0},
        {"1e-2147483648a", 0}};
    for (const auto& [text, number] : numbers) {
        EXPECT_EQ(enot_to_dbl(text), number) << text;
    }
    const std::string zeros(400, '0');
    EXPECT_EQ(dbif::read_engineering_number("1" + zeros + "e-400"), 1);
    EXPECT_EQ(dbif::read_engineering_number("0." + zeros + "1"), 0);
    EXPECT_EQ(dbif::read_engineering_number(std::string_view("12k34").substr(0, 3)), 12000);
}

TEST(HostNumber, RefusesWhatIsNoNumber)
{
    for (const char* text :
         {"",
          " ",
          ".",
          "-",
          "+-1",
          "--1",
          "- 1",
          "1 k",
          "1,5",
          "0x10",
          "1kk",
          "1megs",
          "1mil",
          "1e",
          "1e+",
          "e3",
          "k",
          "nan",
          "inf",
          "-infinity",
          "1e5.5",
          "1_000",
          "1'",
          "\xC2\xA0"
          "1",
          "1\xC2\xB5",
          "1e400",
          "-1e309",
          "1e308k",
          "1e2147483647t",
          "1e99999999999999999999"}) {
        EXPECT_TRUE(std::isnan(enot_to_dbl(text))) << text;
    }
    EXPECT_TRUE(std::isnan(enot_to_dbl(nullptr)));
    EXPECT_TRUE(std::isnan(dbif::read_engineering_number(std::string("1\0", 2))));
    EXPECT_TRUE(std::isnan(dbif::read_engineering_number("1" + std::string(400, '0') + "e-5")));
}

TEST(HostNumber, WritesAsQVariantDoesAndReadsBack)
{
    std::mt19937_64 random(7);
    const auto check = [](double number) {
        const std::string text = dbif::double_text(number);
        ASSERT_EQ(text, dbif::to_utf8(QVariant(number).toString()));
        ASSERT_LE(text.size(), dbif::kLongestDouble);
        ASSERT_EQ(enot_to_dbl(text.c_str()), number) << text;
    };
    for (const double number :
         {0.0, -0.0, 1.0, 1e15, 1e16, 1e17, 1e22, 123456789012345678.0, 1e-4, 1e-5, 0.00012345,
          kLargest, -kLargest, kSmallest, std::numeric_limits<double>::min()}) {
        check(number);
    }
    for (int i = 0; i < 50'000; ++i) {
        const double any = std::bit_cast<double>(random());
        if (std::isfinite(any)) {
            check(any);
        }
        // As people write them: few digits, near 1.
        const double digits = static_cast<double>(static_cast<int>(random() % 200'001) - 100'000);
        check(digits * std::pow(10.0, static_cast<int>(random() % 40) - 25));
    }
}
