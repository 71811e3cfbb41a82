#include "dbapi/query/query_condition.h"
#include "dbapi/query/query_syntax.h"
#include "dbapi/wall/alldata_command.h"

#include "tests/support/case_table.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

namespace {
using dbapi::QueryNode;

const std::string kFile = "query_syntax.case";
const std::string kTooDeep = "Query string is nested deeper than 200 levels.";

const std::map<QueryNode::Kind, std::string> kOperators{
    {QueryNode::Kind::And, "AND"},
    {QueryNode::Kind::Or, "OR"},
    {QueryNode::Kind::Not, "NOT"}};
const std::map<Comparator, std::string> kComparators{{EQUAL, "="},   {NOT_EQUAL, "!="},
                                                     {LESS, "<"},    {LESS_EQUAL, "<="},
                                                     {GREATER, ">"}, {GREATER_EQUAL, ">="}};

std::string print(const QueryNode& node)
{
    switch (node.kind) {
    case QueryNode::Kind::True:
        return "TRUE";
    case QueryNode::Kind::Term:
        return "(" + node.keyword + " " + kComparators.at(node.comparator) + " " + node.value + ")";
    case QueryNode::Kind::BareTerm:
        return "?" + node.keyword;
    case QueryNode::Kind::Error:
        return "!" + node.fault->text;
    default:
        break;
    }
    std::string text;
    for (const auto& operand : node.operands) {
        text += (text.empty() ? "" : ", ") + print(*operand);
    }
    return kOperators.at(node.kind) + "[" + text + "]";
}

std::string print_positions(const QueryNode& node)
{
    static const std::vector<std::string> names{"true", "term", "term", "error",
                                                "and",  "or",   "not"};
    std::string text =
        names.at(static_cast<std::size_t>(node.kind)) + "@" + std::to_string(node.position);
    if (node.kind == QueryNode::Kind::Term || node.kind == QueryNode::Kind::BareTerm) {
        text +=
            ":" + std::to_string(node.keywordPosition) + "," + std::to_string(node.valuePosition);
    }
    for (const auto& operand : node.operands) {
        text += " " + print_positions(*operand);
    }
    return text;
}

std::string collect(const std::string& query)
{
    const dbapi::QueryTree tree = dbapi::parse_query_syntax(query, false);
    if (const dbapi::Fault* fault = dbapi::find_syntax_fault(*tree.root)) {
        EXPECT_EQ(fault->source, query);
        return "! " + fault->text;
    }
    std::string text;
    const std::set<std::string> keywords = dbapi::keywords_of(*tree.root);
    for (const std::string& keyword : keywords) {
        text += (text.empty() ? "" : ",") + keyword;
    }
    return text;
}

std::string repeated(const std::string& text, int times)
{
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

/// `query` writes a query of a given size; `deepest` is the largest one that may be read.
void expect_depth_limit(
    const std::function<std::string(int)>& query,
    int deepest,
    const std::string& keywords)
{
    EXPECT_EQ(collect(query(deepest)), keywords);
    EXPECT_EQ(collect(query(deepest + 1)), "! " + kTooDeep);
    EXPECT_EQ(collect(query(100'000)), "! " + kTooDeep);
}

void expect_flat_chain(const std::string& link, std::size_t operandsOfLink)
{
    constexpr int kLinks = 100'000;
    const auto tree = dbapi::parse_query_syntax(repeated(link, kLinks) + "c=3", false);
    ASSERT_EQ(tree.root->operands.size(), kLinks + 1U) << link;
    EXPECT_EQ(tree.root->operands[kLinks - 1]->operands.size(), operandsOfLink);
    EXPECT_EQ(tree.root->operands.back()->keyword, "c");
}
} // namespace

TEST(QuerySyntax, ReadsQueriesIntoTrees)
{
    check_cases(kFile, "tree", 1, [](const auto& fields) {
        return print(*dbapi::parse_query_syntax(fields[0], false).root);
    });
    EXPECT_EQ(print(*dbapi::parse_query_syntax(" x", true).root), "?x");
}

TEST(QuerySyntax, TellsWhereNodesStand)
{
    check_cases(kFile, "positions", 1, [](const auto& fields) {
        return print_positions(*dbapi::parse_query_syntax(fields[0], false).root);
    });
}

TEST(QuerySyntax, CollectsKeywordsUpToTheFirstFault)
{
    check_cases(kFile, "keywords", 1, [](const auto& fields) { return collect(fields[0]); });
}

TEST(QuerySyntax, BoundsTheDepth)
{
    const auto braces = [](int depth) {
        return repeated("{", depth) + "a=1" + repeated("}", depth);
    };
    expect_depth_limit(braces, 200, "a");
    expect_depth_limit([](int count) { return repeated("NOTa=1;", count) + "b=2"; }, 200, "Ta,b");
    EXPECT_EQ(collect(repeated("{a=1} AND {b=2} OR ", 1000) + "c=3"), "a,b,c");
    EXPECT_EQ(collect("b=1;" + braces(100'000) + " OR {c=1}"), "! " + kTooDeep);
    const std::string open = repeated("{", 100'000);
    EXPECT_EQ(
        collect(open), "! Query string \"" + open +
                           "\" does not have a balanced set of open '{' and close '}' braces.");
}

TEST(QuerySyntax, KeepsLongChainsFlat)
{
    expect_flat_chain("a=1;", 0);
    expect_flat_chain("{a=1} OR ", 0);
    expect_flat_chain("{{b};a=1} AND\n", 2);
}

TEST(QuerySyntax, TakesMegabytesOfBlanksBracesAndFaults)
{
    const std::string blanks(4 << 20, ' ');
    EXPECT_EQ(collect("{" + blanks + "a" + blanks + "}" + blanks + ";b" + blanks + "=1"), "a,b");
    EXPECT_EQ(collect("a=" + std::string(4 << 20, '}')), "a");
    const auto tree = dbapi::parse_query_syntax(std::string(4 << 20, ';'), false);
    EXPECT_EQ(tree.root->kind, QueryNode::Kind::Error);
}

TEST(QuerySyntax, RemovesTheAlldataCommand)
{
    check_cases(kFile, "alldata", 1, [](const auto& fields) {
        std::string rest = "x";
        std::vector<std::string> commands{"x"};
        std::string errors = "x";
        const bool isFound = dbapi_found_and_removed_alldata_condition_from_query_str(
            fields[0], &rest, &commands, &errors);
        if (isFound) {
            return rest + " | " + commands.at(0) + errors;
        }
        EXPECT_TRUE(commands.empty());
        return rest + (errors.empty() ? "none" : "! " + errors);
    });
}
