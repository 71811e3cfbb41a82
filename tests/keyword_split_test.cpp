#include "dbapi/wall/keyword_split.h"

#include "tests/support/case_table.h"

#include <gtest/gtest.h>

namespace {
const std::string kFile = "keywords.case";

std::string run_split(const std::string& keyword)
{
    std::string keyname = "x";
    std::string tablename = "x";
    std::string attributes = "x";
    std::string error = "x";
    const bool isValid = break_keyword_into_keyname_tablename_extra_attributes(
        keyword, &keyname, &tablename, &attributes, &error);
    return keyname + "/" + tablename + "/" + attributes + (isValid ? error : "! " + error);
}
} // namespace

TEST(KeywordSplit, SplitsKeywordsAndReportsTheirFaults)
{
    check_cases(kFile, "split", 1, [](const auto& fields) { return run_split(fields[0]); });
}

TEST(KeywordSplit, SplitsAttributeStrings)
{
    check_cases(kFile, "attributes", 1, [](const auto& fields) {
        std::string category = "x";
        std::string datatype = "x";
        dbapi_extract_category_datatype_attributes(fields[0], &category, &datatype);
        return category + "/" + datatype;
    });
}

TEST(KeywordSplit, WritesFunctionFormsThatSplitBack)
{
    check_cases(kFile, "function form", 4, [](const auto& fields) {
        std::string text = dbapi_full_keyname_from_keyname_and_attributes(
            fields[0], fields[1], fields[2], fields[3]);
        std::string keyname;
        std::string tablename;
        std::string attributes;
        std::string category;
        std::string datatype;
        std::string error;
        EXPECT_TRUE(break_keyword_into_keyname_tablename_extra_attributes(
            text, &keyname, &tablename, &attributes, &error));
        dbapi_extract_category_datatype_attributes(attributes, &category, &datatype);
        EXPECT_EQ(
            dbapi_full_keyname_from_keyname_and_attributes(keyname, tablename, datatype, category),
            text);
        return text;
    });
}

TEST(KeywordSplit, TakesKeywordsOfMegabytes)
{
    const std::string name(4 << 20, 'v');
    EXPECT_EQ(run_split("device." + name), name + "/device/");
    EXPECT_EQ(run_split("Key(" + name + ",device)"), name + "/device/");
    const std::string commas(4 << 20, ',');
    EXPECT_EQ(run_split("Key(vth" + commas + ")"), "vth//");
    const std::string dots(4 << 20, '.');
    EXPECT_EQ(run_split(dots), dots + "//");
}
