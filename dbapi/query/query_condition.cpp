#include "dbapi/query/query_condition.h"

#include "dbapi/query/engineering_values.h"
#include "dbapi/query/value_list.h"
#include "dbapi/words/text_rules.h"
#include "dbif/condition/column_condition.h"
#include "dbif/condition/compound_condition.h"
#include "dbif/condition/constant_condition.h"
#include "dbif/engine/read_trace.h"
#include "dbif/host/error_text.h"

namespace dbapi {
namespace {
using Condition = std::unique_ptr<DBIF_QueryCondition>;

void collect_keywords(const QueryNode& node, std::set<std::string>* keywords)
{
    if (node.kind == QueryNode::Kind::Term || node.kind == QueryNode::Kind::BareTerm) {
        keywords->insert(node.keyword);
    }
    for (const auto& operand : node.operands) {
        collect_keywords(*operand, keywords);
    }
}

/// The first term from the left with this keyword.
const QueryNode* find_term(const QueryNode& node, const std::string& keyword)
{
    const bool isTerm =
        node.kind == QueryNode::Kind::Term || node.kind == QueryNode::Kind::BareTerm;
    if (isTerm && node.keyword == keyword) {
        return &node;
    }
    for (const auto& operand : node.operands) {
        if (const QueryNode* found = find_term(*operand, keyword)) {
            return found;
        }
    }
    return nullptr;
}

/// A fault in a keyword, seen from the query that holds the keyword in a term.
Fault in_query(Fault fault, const QueryTree& tree, const QueryNode& term)
{
    fault.where = Fault::Where::Query;
    fault.source = tree.query;
    fault.position += term.keywordPosition;
    return fault;
}

Fault value_fault(
    Fault::Kind kind,
    const QueryTree& tree,
    const QueryNode& term,
    const std::string& text)
{
    const TextPlace place = kind == Fault::Kind::NoNumber ? place_of_no_number(term.value)
                                                          : TextPlace{0, term.value.size()};
    return {
        kind,         text, Fault::Where::Query, tree.query, term.valuePosition + place.position,
        place.length, {}};
}

/// Builds the conditions of one query.
class ConditionWalk
{
public:
    ConditionWalk(const QueryTree& tree, const Resolutions& resolutions)
        : tree_(tree), resolutions_(resolutions)
    {}

    Condition build(const QueryNode& node)
    {
        switch (node.kind) {
        case QueryNode::Kind::True:
            return std::make_unique<DBIF_BooleanQueryCondition>(true);
        case QueryNode::Kind::Error:
            throw FaultError(*node.fault);
        case QueryNode::Kind::BareTerm:
            return std::make_unique<DBIF_BooleanQueryCondition>(
                resolutions_.at(node.keyword).isUnique());
        case QueryNode::Kind::Term:
            return term(node);
        case QueryNode::Kind::Not:
            return std::make_unique<DBIF_CompoundQueryCondition>(
                NOT, build(*node.operands.front()).get());
        case QueryNode::Kind::And:
        case QueryNode::Kind::Or:
            break;
        }
        return joined(node);
    }

private:
    Condition joined(const QueryNode& node)
    {
        const Operator op = node.kind == QueryNode::Kind::And ? AND : OR;
        Condition all;
        for (const auto& operand : node.operands) {
            Condition next = build(*operand);
            all = all == nullptr
                      ? std::move(next)
                      : std::make_unique<DBIF_CompoundQueryCondition>(all.get(), op, next.get());
        }
        return all;
    }

    Condition term(const QueryNode& node)
    {
        const Resolution& resolution = resolutions_.at(node.keyword);
        if (!resolution.isUnique()) {
            Fault fault = in_query(resolution.fault, tree_, node);
            fault.text = "Query string " + quoted(node.text) +
                         " has an invalid term.\nThe term: " + quoted(node.keyword) +
                         " was not evaluated to a valid unique database key.\n" +
                         (fault.text.empty() ? "" : "Database Error(s) occurred: \n" + fault.text);
            throw FaultError(std::move(fault));
        }
        const KeyCandidate& key = resolution.candidates.front();
        try {
            if (node.comparator == EQUAL && is_range(node.value)) {
                return range(node, key);
            }
            if (node.comparator == EQUAL || node.comparator == NOT_EQUAL) {
                return list(node, key);
            }
            return single(node, key, node.value, node.comparator, true);
        } catch (DBIF_Exception& exception) {
            // The column refuses the value.
            const bool holdsNumbers = key.column->kind() == dbif::ValueKind::Double;
            throw FaultError(value_fault(
                holdsNumbers ? Fault::Kind::NoNumber : Fault::Kind::RefusedValue, tree_, node,
                convert_DBIF_Exception_to_string(&exception).str()));
        }
    }

    static bool isNumeric(const KeyCandidate& key)
    {
        return key.datatype == dbif::to_utf8(DOUBLE_DATATYPE);
    }

    /// The numbers of a value in canonical form. A text that only looks like a number stays as it
    /// is written: the condition refuses it by its own words.
    [[nodiscard]] std::string
    numbers(const QueryNode& node, const std::string& value, int expectedCount) const
    {
        const ConvertedValues converted = convert_values(value, expectedCount);
        if (converted.fault != ConvertedValues::Fault::None) {
            const bool isNoNumber = converted.fault == ConvertedValues::Fault::NoNumber;
            throw FaultError(value_fault(
                isNoNumber ? Fault::Kind::NoNumber : Fault::Kind::WrongValueCount, tree_, node,
                converted.text));
        }
        return converted.hasOnlyNumbers ? converted.text : value;
    }

    /// One comparison with one value. `unquote`: a pair of quotes around the value does not count.
    Condition single(
        const QueryNode& node,
        const KeyCandidate& key,
        const std::string& given,
        Comparator comparator,
        bool unquote)
    {
        const std::string value = isNumeric(key) ? numbers(node, given, 1) : given;
        return condition(node, key, unquote ? without_quotes(value) : value, comparator);
    }

    [[nodiscard]] Condition condition(
        const QueryNode& node,
        const KeyCandidate& key,
        const std::string& value,
        Comparator comparator) const
    {
        if (!key.column.has_value()) {
            Fault fault = value_fault(Fault::Kind::UnknownKey, tree_, node, {});
            fault.position = node.keywordPosition;
            fault.length = node.keyword.size();
            fault.text = no_column_text(key.table, key.name);
            throw FaultError(std::move(fault));
        }
        return std::make_unique<DBIF_SingleColumnCondition>(*key.column, comparator, value);
    }

    Condition range(const QueryNode& node, const KeyCandidate& key)
    {
        std::string minimum;
        std::string maximum;
        if (!split_range(node.value, &minimum, &maximum)) {
            throw FaultError(value_fault(
                Fault::Kind::MalformedRange, tree_, node,
                invalid_range_message(node.text, node.keyword, node.value)));
        }
        const Condition low = single(node, key, minimum, GREATER_EQUAL, isNumeric(key));
        const Condition high = single(node, key, maximum, LESS_EQUAL, isNumeric(key));
        return std::make_unique<DBIF_CompoundQueryCondition>(low.get(), AND, high.get());
    }

    Condition list(const QueryNode& node, const KeyCandidate& key)
    {
        ValueList values = split_value_list(node.value);
        if (values.isMismatched) {
            throw FaultError(value_fault(
                Fault::Kind::MismatchedQuote, tree_, node,
                mismatched_quote_message(node.text, node.keyword, node.value, node.comparator)));
        }
        if (isNumeric(key)) {
            values.joined = numbers(node, values.joined, -1);
        }
        const ListComparison by = compare_with_list(values.joined, values.count, node.comparator);
        return condition(node, key, by.value, by.comparator);
    }

    const QueryTree& tree_;
    const Resolutions& resolutions_;
};

QueryCondition build(DBIF_Connection& connection, const QueryTree& tree)
{
    if (tree.root == nullptr) {
        return {std::make_unique<DBIF_TrueCondition>(), tree.latestOnly};
    }
    const Resolutions resolutions = resolve_terms(connection, tree);
    const dbif::TraceStep building(connection.trace(), "build the condition");
    return {condition_of(tree, *tree.root, resolutions), tree.latestOnly};
}
} // namespace

std::string no_column_text(const std::string& table, const std::string& name)
{
    return "The \"" + table + "\" table's key: \"" + name +
           "\" was not evaluated to a valid unique database key.Database Error(s) occurred: \n";
}

std::set<std::string> keywords_of(const QueryNode& tree)
{
    std::set<std::string> keywords;
    collect_keywords(tree, &keywords);
    return keywords;
}

Resolutions resolve_terms(DBIF_Connection& connection, const QueryTree& tree)
{
    if (const Fault* fault = find_syntax_fault(*tree.root)) {
        throw FaultError(*fault);
    }
    const dbif::TraceStep step(connection.trace(), "resolve the keywords");
    try {
        return resolve_keywords(connection, keywords_of(*tree.root), nullptr, tree.latestOnly);
    } catch (const FaultError& error) {
        const QueryNode* term = find_term(*tree.root, error.fault().source);
        throw FaultError(term == nullptr ? error.fault() : in_query(error.fault(), tree, *term));
    }
}

std::unique_ptr<DBIF_QueryCondition>
condition_of(const QueryTree& tree, const QueryNode& node, const Resolutions& resolutions)
{
    return ConditionWalk(tree, resolutions).build(node);
}

QueryCondition build_condition(DBIF_Connection& connection, const QueryTree& tree)
{
    const std::string heading =
        "Error: Invalid query condition string encountered: " + quoted(tree.rest) + ".\n";
    try {
        return build(connection, tree);
    } catch (const FaultError& error) {
        throw FaultError(error.fault().under(heading + "Error(s) reported: \n"));
    } catch (DBIF_Exception& exception) {
        const std::string reason = convert_DBIF_Exception_to_string(&exception).str();
        Fault fault;
        fault.text = reason.empty() ? heading : heading + "Error(s) reported: \n" + reason;
        throw FaultError(std::move(fault));
    }
}

QueryCondition build_condition(DBIF_Connection& connection, const std::string& query)
{
    const dbif::TraceStep step(connection.trace(), "parse the query");
    return build_condition(connection, parse_query(query));
}
} // namespace dbapi
