#include "dbapi/words/builtin_keynames.h"
#include "dbapi/words/text_rules.h"

#include "tests/support/case_table.h"

#include <gtest/gtest.h>

namespace {
const std::string kFile = "keywords.case";

std::string look_up(const std::vector<std::string>& fields)
{
    std::string keyname = "x";
    std::string tablename = "x";
    const bool isBuiltin = dbapi_is_vanto_builtin_keyname(fields[0], &keyname, &tablename);
    EXPECT_EQ(dbapi::db_is_vanto_builtin_keyname(fields[0]), isBuiltin);
    const bool isDynamic = dbapi_is_builtin_keyword_dynamic(fields[0]);
    return isBuiltin ? keyname + " " + tablename + (isDynamic ? " stored" : " fixed")
                     : "none" + keyname + tablename;
}

std::string convert_set(const std::vector<std::string>& fields)
{
    std::vector<std::string> names;
    dbapi_tokenize(names, fields[1], ' ');
    std::set<std::string> keynames(names.begin(), names.end());
    dbapi_convert_any_keynames_in_set_to_builtins(keynames, fields[0]);
    std::string text;
    for (const std::string& keyname : keynames) {
        text += (text.empty() ? "" : " ") + keyname;
    }
    return text;
}
} // namespace

TEST(BuiltinKeynames, AreFoundInAnyLetterCaseAndConvertedBack)
{
    check_cases(kFile, "builtin look-up", 1, look_up);
    check_cases(kFile, "builtin of column", 1, [](const auto& fields) {
        std::string builtin = "x";
        const bool isFound = dbapi_convert_keyword_to_builtin_keyname(fields[0], &builtin);
        EXPECT_EQ(dbapi_convert_keyword_to_builtin_keyname(fields[0], nullptr), isFound);
        return isFound ? builtin : "none" + builtin;
    });
    check_cases(kFile, "builtins in set", 2, convert_set);
}
