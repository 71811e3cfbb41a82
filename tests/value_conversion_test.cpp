#include "dbapi/query/value_list.h"
#include "dbapi/wall/value_conversion.h"

#include "tests/support/case_table.h"

#include <gtest/gtest.h>

#include <map>

namespace {
const std::string kFile = "values.case";

std::string convert(const std::string& value, int expectedCount)
{
    std::string converted = value;
    KTString errors = "x";
    const bool isValid =
        convert_value_str_to_proper_value_double_str(converted, expectedCount, &converted, &errors);
    return converted + (isValid ? "" : "! ") + errors.str();
}

std::string run_comparison(const std::vector<std::string>& fields)
{
    const auto comparison = dbapi::compare_with_list(
        fields[1], std::stoul(fields[2]), fields[0] == "=" ? EQUAL : NOT_EQUAL);
    const std::map<Comparator, std::string> names{
        {EQUAL, "= "}, {NOT_EQUAL, "!= "}, {IN, "IN "}, {NOT_IN, "NOT_IN "}};
    return names.at(comparison.comparator) + comparison.value;
}
} // namespace

TEST(ValueConversion, ConvertsNumbersAndReportsWhatIsNone)
{
    check_cases(kFile, "number characters", 1, [](const auto& fields) {
        return string_has_valid_enot_to_dbl_chars(fields[0]) ? "yes" : "no";
    });
    check_cases(kFile, "conversion", 2, [](const auto& fields) {
        return convert(fields[0], std::stoi(fields[1]));
    });
}

TEST(ValueConversion, TakesListsOfMegabytes)
{
    std::string values;
    std::string converted;
    for (int i = 0; i < 300'000; ++i) {
        values += "1.5u,";
        converted += i == 0 ? "1.5e-06" : ", 1.5e-06";
    }
    EXPECT_EQ(convert(values, -1), converted);
    EXPECT_EQ(dbapi::split_value_list(values).count, 300'000U);
    EXPECT_EQ(dbapi::split_value_list("'" + values + "'").isMismatched, true);
}

TEST(ValueList, SplitsListsAndRanges)
{
    check_cases(kFile, "list", 1, [](const auto& fields) {
        const auto list = dbapi::split_value_list(fields[0]);
        if (list.isMismatched) {
            return list.joined + "mismatch";
        }
        return list.joined + (list.count == 0 ? "" : " ") + "(" + std::to_string(list.count) + ")";
    });
    check_cases(kFile, "comparison", 3, run_comparison);
    check_cases(kFile, "range", 1, [](const auto& fields) -> std::string {
        std::string minimum = "x";
        std::string maximum = "x";
        if (!dbapi::is_range(fields[0])) {
            return "no range";
        }
        return dbapi::split_range(fields[0], &minimum, &maximum) ? minimum + "|" + maximum
                                                                 : minimum + "invalid" + maximum;
    });
}
