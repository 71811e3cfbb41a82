#include "dbif/host/host_number.h"
#include "dbif/host/host_string.h"

#include "tests/support/case_table.h"

#include <QVariant>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

TEST(HostNumber, ReadsEngineeringNotation)
{
    check_cases("numbers.case", "reading", 1, [](const std::vector<std::string>& fields) {
        const double number = enot_to_dbl(fields[0].c_str());
        return std::isnan(number) ? "none" : dbif::double_text(number);
    });
    const std::string zeros(400, '0');
    EXPECT_EQ(dbif::read_engineering_number("1" + zeros + "e-400"), 1);
    EXPECT_EQ(dbif::read_engineering_number("0." + zeros + "1"), 0);
    EXPECT_TRUE(std::isnan(dbif::read_engineering_number("1" + zeros + "e-5")));
    EXPECT_TRUE(std::isnan(dbif::read_engineering_number(std::string("1\0", 2))));
    EXPECT_EQ(dbif::read_engineering_number(std::string_view("12k34").substr(0, 3)), 12000);
    EXPECT_TRUE(std::isnan(enot_to_dbl(nullptr)));
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
    using Limits = std::numeric_limits<double>;
    for (const double number :
         {0.0, -0.0, 1e15, 1e16, 1e17, 1e22, 123456789012345678.0, 1e-4, 1e-5, 0.00012345,
          Limits::max(), Limits::lowest(), Limits::denorm_min(), Limits::min()}) {
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
