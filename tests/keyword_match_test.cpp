#include "dbapi/wall/keyword_map.h"
#include "dbapi/wall/keyword_match.h"
#include "dbapi/wall/keyword_resolution_stages.h"
#include "dbapi/wall/keyword_split.h"
#include "dbapi/words/text_rules.h"

#include "tests/support/case_table.h"

#include <gtest/gtest.h>

namespace {
const std::string kFile = "keywords.case";

using KeywordMap = std::map<std::string, std::set<std::string>>;

/// A map of canonical texts, each under the key name that it splits into.
KeywordMap map_of(const std::string& texts)
{
    std::vector<std::string> pieces;
    dbapi_tokenize(pieces, texts, ' ');
    KeywordMap map;
    for (const std::string& text : pieces) {
        std::string keyname;
        std::string tablename;
        std::string attributes;
        std::string error;
        const bool isValid = break_keyword_into_keyname_tablename_extra_attributes(
            text, &keyname, &tablename, &attributes, &error);
        add_keyword_entry_into_map(isValid ? keyname : "vth", {text}, &map);
    }
    return map;
}

struct Names
{
    std::string keyname = "x";
    std::string tablename = "x";
    std::string attributes = "x";
    std::string error = "x";

    [[nodiscard]] std::string text(bool isFound) const
    {
        if (isFound) {
            return keyname + "/" + tablename + "/" + attributes + error;
        }
        return keyname + tablename + attributes + "! " + error;
    }
};
} // namespace

TEST(KeywordMatch, FirstStageFindsTheNamesToAskFor)
{
    check_cases(kFile, "potential names", 1, [](const auto& fields) {
        Names names;
        return names.text(dbapi_extract_potential_db_names_from_keyword(
            fields[0], &names.keyname, &names.tablename, &names.attributes, &names.error));
    });
    EXPECT_FALSE(dbapi::ResolutionMark::is_resolving());
}

TEST(KeywordMatch, SecondStageFindsTheOneKeyThatAgrees)
{
    check_cases(kFile, "resolved names", 2, [](const auto& fields) {
        Names names;
        return names.text(dbapi_extract_resolved_db_names_for_keyword_from_preprocessed_map(
            fields[0], map_of(fields[1]), &names.keyname, &names.tablename, &names.attributes,
            &names.error));
    });
}

TEST(KeywordMatch, ErrorsGoToStandardErrorWhenTheCallerTakesNone)
{
    Names names;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(dbapi_extract_resolved_db_names_for_keyword_from_preprocessed_map(
        "KEY(vth", {}, &names.keyname, &names.tablename, &names.attributes, nullptr));
    EXPECT_EQ(
        testing::internal::GetCapturedStderr(),
        "Error: Invalid keyword syntax. \nThe keyword \"KEY(vth\" is missing a closing paranthesis ')' character "
        "at the end of the keyword string.\n");
}

TEST(KeywordMatch, MarksNestAndTheOutermostOneEnds)
{
    {
        const dbapi::ResolutionMark outer;
        Names names;
        dbapi_extract_potential_db_names_from_keyword(
            "vth", &names.keyname, &names.tablename, &names.attributes, &names.error);
        EXPECT_TRUE(dbapi::ResolutionMark::is_resolving());
    }
    EXPECT_FALSE(dbapi::ResolutionMark::is_resolving());
}

TEST(KeywordMap, CollectsCanonicalTextsByNormalisedName)
{
    KeywordMap map;
    add_keyword_to_map2("Vth", "device", " physical|double", &map);
    add_keyword_to_map2("Vth", "device", "PHYSICAL|DOUBLE", &map);
    add_keyword_to_map2("vth", "measurement", " ", &map);
    const KeywordMap expected{{"VTH", {"device;PHYSICAL|DOUBLE.Vth", "measurement.vth"}}};
    EXPECT_EQ(map, expected);

    const KeywordMap merged = merge_maps(map, {{"VTH", {"die.vth"}}, {"W", {"device.W"}}});
    std::set<std::string> texts{"left over"};
    EXPECT_TRUE(dbapi_is_keyword_in_map2(merged, " vth", &texts));
    EXPECT_EQ(texts.size(), 3U);
    EXPECT_FALSE(dbapi_is_keyword_in_map2(merged, "vth ", &texts));
    EXPECT_TRUE(texts.empty());
    EXPECT_TRUE(dbapi_is_keyword_in_map2(merged, "w", nullptr));
}

TEST(KeywordMap, TextMapSplitsWhatItFinds)
{
    std::map<std::string, std::string> map;
    add_keyword_to_map("Vgs", "setup", "IN", "DOUBLE", &map);
    add_keyword_to_map("vgs", "device", "NODE", "", &map);
    Names names;
    EXPECT_TRUE(
        dbapi_is_keyword_in_map(map, " VGS", &names.keyname, &names.tablename, &names.attributes));
    EXPECT_EQ(names.keyname + names.tablename + names.attributes, "VgssetupIN|DOUBLE");
}
