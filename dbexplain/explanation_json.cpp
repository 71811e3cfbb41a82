#include "dbexplain/explanation_json.h"

#include "dbexplain/statement_text.h"
#include "dbsuggest/query_notes.h"

#include <nlohmann/json.hpp>

namespace dbapi {
namespace {
using Json = nlohmann::ordered_json;
using Kind = QueryNode::Kind;

const char* kind_name(Kind kind)
{
    switch (kind) {
    case Kind::And:
        return "and";
    case Kind::Or:
        return "or";
    case Kind::Not:
        return "not";
    case Kind::Term:
        return "term";
    case Kind::BareTerm:
        return "key exists";
    default:
        return "true";
    }
}

Json count_json(const KeptCount& count)
{
    Json json{{"records", count.records}};
    if (count.points.has_value()) {
        json["points"] = *count.points;
    }
    return json;
}

Json node_json(const NodeExplanation& node)
{
    Json json{{"kind", kind_name(node.kind)}, {"text", node.text}};
    if (!node.keyword.empty()) {
        json["keyword"] = node.keyword;
        json["written"] = node.written;
    }
    json["decided_on_points"] = node.isOnPoints;
    if (node.alone.has_value()) {
        json["alone"] = count_json(*node.alone);
    }
    if (node.soFar.has_value()) {
        json["so_far"] = count_json(*node.soFar);
    }
    for (const NodeExplanation& operand : node.operands) {
        json["operands"].push_back(node_json(operand));
    }
    return json;
}

Json ignored_json(const Explanation& explanation)
{
    Json json = Json::array();
    for (const IgnoredText& ignored : explanation.ignored) {
        json.push_back(
            {{"text", explanation.query.substr(ignored.position, ignored.length)},
             {"position", ignored.position},
             {"length", ignored.length},
             {"reason", why_ignored(ignored.reason)}});
    }
    return json;
}

Json keys_json(const std::vector<KeyExplanation>& keys)
{
    Json json = Json::array();
    for (const KeyExplanation& key : keys) {
        json.push_back(
            {{"keyword", key.keyword},
             {"asked", key.isAsked},
             {"compared", key.isCompared},
             {"key", key.keyName()},
             {"table", key.tableName()},
             {"category", key.category},
             {"data_type", key.datatype},
             {"rule", key.rule}});
    }
    return json;
}

Json statement_json(const dbif::TracedStatement& statement)
{
    Json plan = Json::array();
    for (const dbif::PlanStep& step : statement.plan) {
        plan.push_back(
            {{"depth", step.depth},
             {"text", step.text},
             {"table", step.table},
             {"index", step.index},
             {"whole_table", step.isWholeTable}});
    }
    return {{"step", statement.step},       {"sql", statement.sql},
            {"runs", statement.runs},       {"rows", statement.rows},
            {"seconds", statement.seconds}, {"indexes", indexes_of(statement)},
            {"plan", std::move(plan)}};
}

Json read_json(const ReadExplanation& read)
{
    Json json{{"rows", read.rows}, {"seconds", read.seconds}};
    json["steps"] = Json::array();
    for (const dbif::TracedStep& step : read.steps) {
        json["steps"].push_back({{"step", step.name}, {"seconds", step.seconds}});
    }
    if (read.points.has_value()) {
        json["points"] = {
            {"setups_by_bounds", read.points->setups},
            {"points_by_bounds", read.points->points},
            {"setups", read.points->keptSetups},
            {"points", read.points->keptPoints}};
    }
    json["statements"] = Json::array();
    for (const dbif::TracedStatement& statement : read.statements) {
        json["statements"].push_back(statement_json(statement));
    }
    return json;
}
} // namespace

std::string explanation_json(const Explanation& explanation)
{
    Json json{
        {"connection", explanation.connection},
        {"engine", explanation.engine},
        {"keywords", explanation.keywords},
        {"query", explanation.query},
        {"latest_only", explanation.latestOnly},
        {"superseded_records", explanation.whyLatest},
        {"table", dbif::table_info(explanation.table).name},
        {"records", explanation.records},
        {"records_in_all", explanation.recordsInAll}};
    json["tree"] = explanation.tree.has_value() ? node_json(*explanation.tree) : Json();
    json["ignored"] = ignored_json(explanation);
    json["keys"] = keys_json(explanation.keys);
    json["read"] = read_json(explanation.read);
    json["nothing_left_by"] = explanation.nothing.reasons;
    json["suggestions"] = explanation.nothing.suggestions;
    return json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}
} // namespace dbapi
