#include "dbapi/wall/query_parser.h"

#include "dbapi/query/query_syntax.h"
#include "dbapi/query/value_list.h"
#include "dbapi/query_terms.h"
#include "dbapi/wall/key_condition.h"
#include "dbapi/wall/keyword_resolution.h"
#include "dbapi/wall/keyword_split.h"
#include "dbif/condition/compound_condition.h"
#include "dbif/condition/constant_condition.h"
#include "dbif/host/error_text.h"
#include "dbif/schema/schema_names.h"

#include <iostream>
#include <memory>

namespace {
using Condition = std::unique_ptr<DBIF_QueryCondition>;
using dbapi::QueryNode;

/// Builds the conditions of one query. Null stands for a failure, whose text is in `errors_`.
class ConditionWalk
{
public:
    ConditionWalk(
        DBIF_Connection& connection,
        const std::map<std::string, std::set<std::string>>& resolved,
        KTString* errors)
        : connection_(connection), resolved_(resolved), errors_(errors)
    {}

    Condition build(const QueryNode& node)
    {
        switch (node.kind) {
        case QueryNode::Kind::True:
            return std::make_unique<DBIF_BooleanQueryCondition>(true);
        case QueryNode::Kind::Error:
            return fail(node.error);
        case QueryNode::Kind::Term:
        case QueryNode::Kind::BareTerm:
            return term(node);
        case QueryNode::Kind::Not: {
            const Condition operand = build(*node.operands.front());
            return operand == nullptr
                       ? nullptr
                       : std::make_unique<DBIF_CompoundQueryCondition>(NOT, operand.get());
        }
        case QueryNode::Kind::And:
        case QueryNode::Kind::Or:
            break;
        }
        return joined(node);
    }

private:
    struct Key
    {
        std::string keyname;
        std::string tablename;
        std::string attributes;
        bool isNumeric = false;
    };

    Condition fail(const std::string& message)
    {
        *errors_ = message;
        return nullptr;
    }

    Condition joined(const QueryNode& node)
    {
        const Operator op = node.kind == QueryNode::Kind::And ? AND : OR;
        Condition all;
        for (const auto& operand : node.operands) {
            const Condition next = build(*operand);
            if (next == nullptr) {
                return nullptr;
            }
            if (all == nullptr) {
                all.reset(next->clone());
            } else {
                all = std::make_unique<DBIF_CompoundQueryCondition>(all.get(), op, next.get());
            }
        }
        return all;
    }

    Condition term(const QueryNode& node)
    {
        Key key;
        std::string reason;
        const bool isResolved = dbapi_extract_resolved_db_names_for_keyword_from_preprocessed_map(
            node.keyword, resolved_, &key.keyname, &key.tablename, &key.attributes, &reason);
        if (node.kind == QueryNode::Kind::BareTerm) {
            return std::make_unique<DBIF_BooleanQueryCondition>(isResolved);
        }
        if (!isResolved) {
            std::string message = "Query string \"" + node.text +
                                  "\" has an invalid term.\nThe term: \"" + node.keyword +
                                  "\" was not evaluated to a valid unique database key.\n";
            return fail(
                reason.empty() ? message : message + "Database Error(s) occurred: \n" + reason);
        }
        std::string category;
        std::string datatype;
        dbapi_extract_category_datatype_attributes(key.attributes, &category, &datatype);
        key.isNumeric = datatype == dbif::to_utf8(DOUBLE_DATATYPE);
        if (node.comparator == EQUAL && dbapi::is_range(node.value)) {
            return range(node, key);
        }
        if (node.comparator == EQUAL || node.comparator == NOT_EQUAL) {
            return list(node, key);
        }
        return single(key, node.value, node.comparator, true);
    }

    /// One comparison with one value. `unquote`: a pair of quotes around the value does not count.
    Condition single(const Key& key, const std::string& given, Comparator comparator, bool unquote)
    {
        std::string value = given;
        if (key.isNumeric &&
            !convert_value_str_to_proper_value_double_str(given, 1, &value, errors_)) {
            return nullptr;
        }
        return condition(key, unquote ? dbapi::without_quotes(value) : value, comparator);
    }

    Condition condition(const Key& key, const std::string& value, Comparator comparator)
    {
        return Condition(dbapi_make_single_column_condition_for_resolved_keyname_tablename(
            connection_, key.keyname, key.tablename, key.attributes, value, comparator, errors_));
    }

    Condition range(const QueryNode& node, const Key& key)
    {
        std::string minimum;
        std::string maximum;
        if (!dbapi::split_range(node.value, &minimum, &maximum)) {
            return fail(dbapi::invalid_range_message(node.text, node.keyword, node.value));
        }
        const Condition low = single(key, minimum, GREATER_EQUAL, key.isNumeric);
        if (low == nullptr) {
            return nullptr;
        }
        const Condition high = single(key, maximum, LESS_EQUAL, key.isNumeric);
        if (high == nullptr) {
            return nullptr;
        }
        return std::make_unique<DBIF_CompoundQueryCondition>(low.get(), AND, high.get());
    }

    Condition list(const QueryNode& node, const Key& key)
    {
        dbapi::ValueList values = dbapi::split_value_list(node.value);
        if (values.isMismatched) {
            return fail(dbapi::mismatched_quote_message(
                node.text, node.keyword, node.value, node.comparator));
        }
        if (key.isNumeric && !convert_value_str_to_proper_value_double_str(
                                 values.joined, -1, &values.joined, errors_)) {
            return nullptr;
        }
        const dbapi::ListComparison by =
            dbapi::compare_with_list(values.joined, values.count, node.comparator);
        return condition(key, by.value, by.comparator);
    }

    DBIF_Connection& connection_;
    const std::map<std::string, std::set<std::string>>& resolved_;
    KTString* errors_;
};
} // namespace

bool dbapi_extract_query_terms_impl(
    DBIF_Connection& /*connection*/,
    const KTString& query,
    std::set<std::string>* terms,
    KTString* errors,
    bool allowBareTerm)
{
    errors->clear();
    const auto tree = dbapi::parse_query_syntax(query.str(), allowBareTerm);
    std::set<std::string> found;
    std::string error;
    if (!dbapi::collect_term_keywords(*tree, &found, &error)) {
        *errors = error;
        return false;
    }
    terms->merge(found);
    return true;
}

bool dbapi_extract_and_resolve_query_term_keywords(
    DBIF_Connection& connection,
    const std::string& query,
    std::map<std::string, std::set<std::string>>* resolved,
    bool latestOnly,
    KTString* errors)
{
    errors->clear();
    std::set<std::string> terms;
    if (!dbapi_extract_query_terms_impl(connection, query, &terms, errors, false)) {
        return false;
    }
    std::string reason;
    if (!dbapi_resolve_set_of_keywords(connection, terms, resolved, nullptr, latestOnly, &reason)) {
        *errors = reason;
        return false;
    }
    return true;
}

DBIF_QueryCondition* dbapi_parse_query(
    DBIF_Connection& connection,
    const KTString& query,
    const std::map<std::string, std::set<std::string>>& resolved,
    bool /*latestOnly*/,
    KTString* errors,
    bool allowBareTerm)
{
    KTString message;
    const auto tree = dbapi::parse_query_syntax(query.str(), allowBareTerm);
    Condition condition = dbapi::condition_of(connection, *tree, resolved, &message);
    if (errors != nullptr) {
        *errors = condition == nullptr ? message : KTString();
    } else if (condition == nullptr) {
        std::cerr << message.str();
    }
    return condition.release();
}

namespace dbapi {
std::unique_ptr<DBIF_QueryCondition> condition_of(
    DBIF_Connection& connection,
    const QueryNode& node,
    const std::map<std::string, std::set<std::string>>& resolved,
    KTString* errors)
{
    errors->clear();
    try {
        return ConditionWalk(connection, resolved, errors).build(node);
    } catch (DBIF_Exception& exception) {
        *errors = convert_DBIF_Exception_to_string(&exception);
        return nullptr;
    }
}
} // namespace dbapi
