#include "dbapi/words/vocabulary.h"

#include "tests/support/case_table.h"

#include <gtest/gtest.h>

namespace {
const std::string kFile = "vocabulary.case";

std::string yes_no(bool answer)
{
    return answer ? "yes" : "no";
}

std::string run_find(const std::string& what, const std::string& text)
{
    std::string name = "x";
    std::string attributes = "x";
    if (what == "find category") {
        return dbapi_find_category_from_category_vocabulary(text, &name) ? name : "none" + name;
    }
    if (what == "find datatype") {
        return dbapi_find_datatype_from_datatype_vocabulary(text, &name) ? name : "none" + name;
    }
    return dbapi_find_tablename_in_table_vocabulary(text, &name, &attributes)
               ? name + " " + attributes
               : "none" + name + attributes;
}

std::string run_test(const std::string& what, const std::string& text)
{
    if (what == "valid table") {
        return yes_no(dbapi::is_string_a_valid_tablename(text));
    }
    if (what == "valid category") {
        return yes_no(dbapi::is_string_a_valid_category(text));
    }
    if (what == "valid datatype") {
        return yes_no(dbapi::is_string_a_valid_datatype(text));
    }
    if (what == "is fixed") {
        return yes_no(dbapi_is_category_fixed(text));
    }
    bool isInput = true;
    bool isOutput = true;
    const bool isEither = dbapi_is_category_input(text, &isInput, &isOutput);
    EXPECT_EQ(isEither, isInput != isOutput);
    return isInput ? "input" : (isOutput ? "output" : "neither");
}

std::string run_function(const std::vector<std::string>& fields)
{
    const std::string& what = fields[0];
    const std::string& text = fields[1];
    if (what == "full category") {
        return dbapi::convert_to_full_category_name(text);
    }
    if (what == "short category") {
        return dbapi_convert_to_short_category_name(text);
    }
    if (what == "full datatype") {
        return dbapi::convert_to_full_datatype_name(text);
    }
    if (what == "short datatype") {
        return dbapi::convert_to_short_datatype_name(text);
    }
    return what.rfind("find", 0) == 0 ? run_find(what, text) : run_test(what, text);
}
} // namespace

TEST(Vocabulary, LooksUpAndConverts)
{
    check_cases(kFile, "functions", 2, run_function);
    check_cases(kFile, "same category", 2, [](const std::vector<std::string>& fields) {
        return yes_no(dbapi::compare_category_names(fields[0], fields[1]));
    });
    EXPECT_EQ(dbapi::convert_setup_is_input_to_full_category_name(true), "INPUT");
    EXPECT_EQ(dbapi::convert_setup_is_input_to_short_category_name(false), "OUT");
}
