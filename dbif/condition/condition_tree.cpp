#include "dbif/condition/condition_tree.h"

#include <QtGlobal>

#include <algorithm>

namespace dbif {
struct ConditionTree::Node
{
    Q_DISABLE_COPY_MOVE(Node)

    Kind kind = Kind::True;
    std::size_t size = 1;
    std::size_t depth = 0;
    std::optional<ColumnComparison> comparison;
    std::vector<ConditionTree> operands;

    Node() = default;

    /// Takes a long chain apart in a loop; destroying it node by node would recurse.
    ~Node()
    {
        std::vector<ConditionTree> doomed = std::move(operands);
        while (!doomed.empty()) {
            const ConditionTree last = std::move(doomed.back());
            doomed.pop_back();
            if (last.node_ != nullptr && last.node_.use_count() == 1) {
                // This handle is the only owner of the node, so nobody sees the change.
                auto& inner = const_cast<Node&>(*last.node_).operands;
                std::move(inner.begin(), inner.end(), std::back_inserter(doomed));
                inner.clear();
            }
        }
    }
};

namespace {
Comparator opposite(Comparator comparator)
{
    switch (comparator) {
    case EQUAL:
        return NOT_EQUAL;
    case NOT_EQUAL:
        return EQUAL;
    case LESS:
        return GREATER_EQUAL;
    case LESS_EQUAL:
        return GREATER;
    case GREATER:
        return LESS_EQUAL;
    case GREATER_EQUAL:
        return LESS;
    case NOT_NULL:
        return IS_NULL;
    case IS_NULL:
        return NOT_NULL;
    case IN:
        return NOT_IN;
    case NOT_IN:
        return IN;
    }
    return comparator;
}
} // namespace

bool ColumnComparison::holdsFor(std::string_view text) const
{
    const std::string_view first =
        texts.empty() ? std::string_view() : std::string_view(texts.front());
    switch (comparator) {
    case EQUAL:
        return text == first;
    case NOT_EQUAL:
        return text != first;
    case LESS:
        return text < first;
    case LESS_EQUAL:
        return text <= first;
    case GREATER:
        return text > first;
    case GREATER_EQUAL:
        return text >= first;
    case NOT_NULL:
        return true;
    case IS_NULL:
        return false;
    case IN:
        return std::binary_search(texts.begin(), texts.end(), text);
    case NOT_IN:
        return !std::binary_search(texts.begin(), texts.end(), text);
    }
    return false;
}

ColumnComparison ColumnComparison::negated() const
{
    ColumnComparison result = *this;
    result.comparator = opposite(comparator);
    if (holdsNumbers) {
        result.ranges = complement(ranges);
    }
    return result;
}

ConditionTree ConditionTree::constant(bool value)
{
    auto node = std::make_shared<Node>();
    node->kind = value ? Kind::True : Kind::False;
    return ConditionTree(std::move(node));
}

ConditionTree ConditionTree::comparison(ColumnComparison comparison)
{
    auto node = std::make_shared<Node>();
    node->kind = Kind::Comparison;
    node->comparison = std::move(comparison);
    return ConditionTree(std::move(node));
}

ConditionTree ConditionTree::joined(Kind kind, const std::vector<ConditionTree>& operands)
{
    const Kind decisive = kind == Kind::And ? Kind::False : Kind::True;
    auto node = std::make_shared<Node>();
    node->kind = kind;
    for (const ConditionTree& operand : operands) {
        if (operand.kind() == decisive) {
            return operand;
        }
        if (!operand.isConstant()) {
            node->operands.push_back(operand);
        }
    }
    if (node->operands.empty()) {
        return constant(kind == Kind::And);
    }
    if (node->operands.size() == 1) {
        return node->operands.front();
    }
    node->size = 0;
    for (const ConditionTree& operand : node->operands) {
        node->size += operand.size();
        node->depth = std::max(node->depth, operand.depth() + (operand.kind() == kind ? 0 : 1));
    }
    return ConditionTree(std::move(node));
}

ConditionTree::Kind ConditionTree::kind() const
{
    return node_->kind;
}

std::size_t ConditionTree::size() const
{
    return node_->size;
}

std::size_t ConditionTree::depth() const
{
    return node_->depth;
}

const ColumnComparison& ConditionTree::comparison() const
{
    return *node_->comparison;
}

std::vector<ConditionTree> ConditionTree::operands() const
{
    std::vector<ConditionTree> flat;
    std::vector<ConditionTree> pending{*this};
    while (!pending.empty()) {
        const ConditionTree next = std::move(pending.back());
        pending.pop_back();
        if (next.kind() == kind() && (kind() == Kind::And || kind() == Kind::Or)) {
            pending.insert(
                pending.end(), next.node_->operands.rbegin(), next.node_->operands.rend());
        } else {
            flat.push_back(next);
        }
    }
    return flat;
}

std::vector<ConditionTree> ConditionTree::conjuncts() const
{
    return kind() == Kind::And ? operands() : std::vector<ConditionTree>{*this};
}

bool ConditionTree::hasPoints() const
{
    return any([](const ColumnComparison& comparison) { return comparison.isOnPoints(); });
}

ConditionTree ConditionTree::negated() const
{
    switch (kind()) {
    case Kind::True:
        return constant(false);
    case Kind::False:
        return constant(true);
    case Kind::Comparison:
        return comparison(comparison().negated());
    case Kind::And:
    case Kind::Or:
        break;
    }
    std::vector<ConditionTree> parts;
    for (const ConditionTree& operand : operands()) {
        parts.push_back(operand.negated());
    }
    return joined(kind() == Kind::And ? Kind::Or : Kind::And, parts);
}

ConditionTree ConditionTree::mapped(
    const std::function<ConditionTree(const ConditionTree& comparison)>& replace) const
{
    if (kind() == Kind::Comparison) {
        return replace(*this);
    }
    if (isConstant()) {
        return *this;
    }
    std::vector<ConditionTree> parts;
    for (const ConditionTree& operand : operands()) {
        parts.push_back(operand.mapped(replace));
    }
    return joined(kind(), parts);
}

void ConditionTree::forEachComparison(
    const std::function<void(const ColumnComparison&)>& visit) const
{
    static_cast<void>(any([&visit](const ColumnComparison& c) {
        visit(c);
        return false;
    }));
}

bool ConditionTree::any(const std::function<bool(const ColumnComparison&)>& test) const
{
    std::vector<ConditionTree> pending{*this};
    while (!pending.empty()) {
        const ConditionTree next = std::move(pending.back());
        pending.pop_back();
        if (next.kind() != Kind::Comparison) {
            pending.insert(
                pending.end(), next.node_->operands.rbegin(), next.node_->operands.rend());
        } else if (test(next.comparison())) {
            return true;
        }
    }
    return false;
}
} // namespace dbif
