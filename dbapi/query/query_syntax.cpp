#include "dbapi/query/query_syntax.h"

#include "dbapi/words/query_command.h"
#include "dbapi/words/text_rules.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace dbapi {
namespace {
using Kind = QueryNode::Kind;
using NodePtr = std::unique_ptr<QueryNode>;

/// In the order in which they are searched for: the first that occurs anywhere in a term is the
/// term's comparator.
constexpr std::array<std::pair<std::string_view, Comparator>, 7> kComparators{
    {{"!=", NOT_EQUAL},
     {"<>", NOT_EQUAL},
     {"<=", LESS_EQUAL},
     {">=", GREATER_EQUAL},
     {"=", EQUAL},
     {">", GREATER},
     {"<", LESS}}};

constexpr std::array<std::pair<std::string_view, Kind>, 3> kConnectors{
    {{";", Kind::And}, {"AND", Kind::And}, {"OR", Kind::Or}}};

/// For each open brace the offset of the brace that closes it, found once for the whole query.
/// Braces in quotes count.
std::vector<std::size_t> match_braces(std::string_view query)
{
    std::vector<std::size_t> closing(query.size(), std::string_view::npos);
    std::vector<std::size_t> open;
    for (std::size_t at = query.find_first_of("{}"); at != std::string_view::npos;
         at = query.find_first_of("{}", at + 1)) {
        if (query[at] == '{') {
            open.push_back(at);
        } else if (!open.empty()) {
            closing[open.back()] = at;
            open.pop_back();
        }
    }
    return closing;
}

bool is_negation(std::string_view piece)
{
    return piece.substr(0, 3) == "NOT";
}

/// The operand at the head of a piece, not yet read, and what joins it to the rest of the piece.
struct Head
{
    std::string_view operand;
    std::optional<Kind> connector;
    std::string_view rest;
};

class SyntaxReader
{
public:
    /// Faults and ignored texts count their places in `query`.
    explicit SyntaxReader(const std::string& query) : query_(query), closing_(match_braces(query))
    {}

    [[nodiscard]] NodePtr read(std::string_view piece, bool allowBareTerm, std::size_t depth);

    [[nodiscard]] std::vector<IgnoredText> takeIgnored() { return std::move(ignored_); }

private:
    [[nodiscard]] NodePtr
    read_operand(std::string_view piece, bool allowBareTerm, std::size_t depth);
    [[nodiscard]] NodePtr read_chain(std::string_view piece, std::size_t depth);
    [[nodiscard]] NodePtr read_term(std::string_view piece, bool allowBareTerm);
    [[nodiscard]] Head split_head(std::string_view piece) const;
    [[nodiscard]] Head split_group(std::string_view piece) const;

    [[nodiscard]] NodePtr make_node(Kind kind, std::string_view piece) const;
    [[nodiscard]] NodePtr make_leaf(Kind kind, std::string_view piece) const;
    [[nodiscard]] NodePtr
    make_error(Fault::Kind kind, std::string_view piece, const std::string& message);
    void note_ignored(std::string_view group);
    [[nodiscard]] std::size_t offset_of(std::string_view piece) const;
    [[nodiscard]] bool is_closed_group(std::string_view piece) const;
    /// Between the braces of the group at the head of a piece, and behind them.
    [[nodiscard]] std::string_view inside(std::string_view piece) const;
    [[nodiscard]] std::string_view behind(std::string_view piece) const;

    const std::string& query_;
    std::vector<std::size_t> closing_;
    std::vector<IgnoredText> ignored_;
    /// Nothing behind the first fault is read: no walk of the tree would come to it.
    bool hasFailed_ = false;
};

std::size_t SyntaxReader::offset_of(std::string_view piece) const
{
    return static_cast<std::size_t>(piece.data() - query_.data());
}

NodePtr SyntaxReader::make_node(Kind kind, std::string_view piece) const
{
    auto node = std::make_unique<QueryNode>();
    node->kind = kind;
    node->position = offset_of(piece);
    return node;
}

NodePtr SyntaxReader::make_leaf(Kind kind, std::string_view piece) const
{
    NodePtr leaf = make_node(kind, piece);
    leaf->text = piece;
    return leaf;
}

NodePtr
SyntaxReader::make_error(Fault::Kind kind, std::string_view piece, const std::string& message)
{
    hasFailed_ = true;
    NodePtr leaf = make_leaf(Kind::Error, piece);
    leaf->fault = std::make_unique<Fault>(
        Fault{kind, message, Fault::Where::Query, query_, leaf->position, piece.size(), {}});
    return leaf;
}

/// Notes what stands behind a group that no connector follows.
void SyntaxReader::note_ignored(std::string_view group)
{
    const std::string_view ignored = behind(group);
    if (!ignored.empty()) {
        const bool isEmptyGroup = inside(group).empty();
        ignored_.push_back(
            {offset_of(ignored), ignored.size(),
             isEmptyGroup ? IgnoredText::Reason::BehindEmptyGroup
                          : IgnoredText::Reason::BehindGroup});
    }
}

bool SyntaxReader::is_closed_group(std::string_view piece) const
{
    return piece.front() == '{' && closing_[offset_of(piece)] < offset_of(piece) + piece.size();
}

std::string_view SyntaxReader::inside(std::string_view piece) const
{
    const std::size_t length = closing_[offset_of(piece)] - offset_of(piece) - 1;
    return trimmed_view(piece.substr(1, length));
}

std::string_view SyntaxReader::behind(std::string_view piece) const
{
    return trimmed_view(piece.substr(closing_[offset_of(piece)] - offset_of(piece) + 1));
}

/// head = group connector piece | group anything
/// Text behind a group that is no connector does not count, nor does any behind the empty group.
Head SyntaxReader::split_group(std::string_view piece) const
{
    const Head whole{piece, std::nullopt, {}};
    if (!is_closed_group(piece) || inside(piece).empty()) {
        return whole;
    }
    const std::string_view rest = behind(piece);
    for (const auto& [spelling, connector] : kConnectors) {
        if (rest.substr(0, spelling.size()) == spelling) {
            const auto group = static_cast<std::size_t>(rest.data() - piece.data());
            return {trimmed_view(piece.substr(0, group)), connector, rest.substr(spelling.size())};
        }
    }
    return whole;
}

/// head = ( as above ) | "NOT" piece | term ";" piece | term
Head SyntaxReader::split_head(std::string_view piece) const
{
    if (!piece.empty() && piece.front() == '{') {
        return split_group(piece);
    }
    const std::size_t semicolon = is_negation(piece) ? std::string_view::npos : piece.find(';');
    if (semicolon == std::string_view::npos) {
        return {piece, std::nullopt, {}};
    }
    return {trimmed_view(piece.substr(0, semicolon)), Kind::And, piece.substr(semicolon + 1)};
}

/// piece = operand | chain
NodePtr SyntaxReader::read(std::string_view piece, bool allowBareTerm, std::size_t depth)
{
    piece = trimmed_view(piece);
    if (depth > kDeepestQuery) {
        return make_error(
            Fault::Kind::NestedTooDeep, piece,
            "Query string is nested deeper than " + std::to_string(kDeepestQuery) + " levels.");
    }
    return split_head(piece).connector ? read_chain(piece, depth)
                                       : read_operand(piece, allowBareTerm, depth);
}

/// chain = head { connector head }. Where the connector changes, the rest nests to the right:
/// `{a} AND {b} OR {c}` is a AND (b OR c).
NodePtr SyntaxReader::read_chain(std::string_view piece, std::size_t depth)
{
    struct Link
    {
        NodePtr operand;
        std::optional<Kind> connector;
        std::string_view piece;
    };

    std::vector<Link> links;
    for (bool isLast = false; !isLast;) {
        const Head head = split_head(piece);
        links.push_back({read_operand(head.operand, false, depth), head.connector, piece});
        isLast = !head.connector || hasFailed_;
        piece = trimmed_view(head.rest);
    }
    // Run by run from the right, so that the depth of the tree is no depth of calls here.
    NodePtr rest = std::move(links.back().operand);
    links.pop_back();
    while (!links.empty()) {
        const Kind connector = *links.back().connector;
        std::vector<NodePtr> operands;
        operands.push_back(std::move(rest));
        std::string_view begin;
        while (!links.empty() && links.back().connector == connector) {
            begin = links.back().piece;
            operands.push_back(std::move(links.back().operand));
            links.pop_back();
        }
        std::reverse(operands.begin(), operands.end());
        rest = make_node(connector, begin);
        rest->operands = std::move(operands);
    }
    return rest;
}

/// operand = "{" "}" | "{" piece "}" | "NOT" piece | term
NodePtr SyntaxReader::read_operand(std::string_view piece, bool allowBareTerm, std::size_t depth)
{
    if (piece.empty()) {
        return make_error(Fault::Kind::EmptyQuery, piece, "Query string \"\" is empty.");
    }
    if (piece.front() == '{') {
        if (!is_closed_group(piece)) {
            return make_error(
                Fault::Kind::UnbalancedBraces, piece,
                "Query string " + quoted(piece) +
                    " does not have a balanced set of open '{' and close '}' braces.");
        }
        note_ignored(piece);
        const std::string_view inner = inside(piece);
        return inner.empty() ? make_node(Kind::True, piece) : read(inner, true, depth + 1);
    }
    if (is_negation(piece)) {
        NodePtr negation = make_node(Kind::Not, piece);
        // The operand keeps the T: NOTEMP=25 negates TEMP=25, and NOT KEY(W)=5 the function form,
        // before which text is ignored. Queries rely on it.
        negation->operands.push_back(read(piece.substr(2), false, depth + 1));
        return negation;
    }
    return read_term(piece, allowBareTerm);
}

/// term = keyword comparator value | keyword
NodePtr SyntaxReader::read_term(std::string_view piece, bool allowBareTerm)
{
    for (const auto& [spelling, comparator] : kComparators) {
        const std::size_t at = piece.find(spelling);
        if (at == std::string_view::npos) {
            continue;
        }
        const std::string_view keyword = trimmed_view(piece.substr(0, at));
        const std::string_view value = trimmed_view(piece.substr(at + spelling.size()));
        NodePtr term = make_leaf(Kind::Term, piece);
        term->keyword = keyword;
        term->keywordPosition = offset_of(keyword);
        term->comparator = comparator;
        term->value = value;
        term->valuePosition = offset_of(value);
        return term;
    }
    if (!allowBareTerm) {
        return make_error(
            Fault::Kind::MissingComparator, piece,
            "Query string " + quoted(piece) +
                " has an invalid or missing comparator.\n"
                "Valid comparators are: !=, <>, <=, >=, =, <, >");
    }
    NodePtr term = make_leaf(Kind::BareTerm, piece);
    term->keyword = piece;
    term->keywordPosition = offset_of(piece);
    return term;
}
} // namespace

QueryTree parse_query_syntax(const std::string& query, bool allowBareTerm)
{
    QueryTree tree{query, true, query, nullptr, {}};
    SyntaxReader reader(tree.query);
    tree.root = reader.read(tree.query, allowBareTerm, 0);
    tree.ignored = reader.takeIgnored();
    return tree;
}

QueryTree parse_query(const std::string& query)
{
    const CommandedQuery split = split_query_command(query);
    QueryTree tree{query, !split.isAllData, std::string(split.rest), nullptr, {}};
    if (!split.rest.empty()) {
        SyntaxReader reader(query);
        tree.root = reader.read(split.rest, false, 0);
        tree.ignored = reader.takeIgnored();
    }
    return tree;
}

const Fault* find_syntax_fault(const QueryNode& tree)
{
    if (tree.fault != nullptr) {
        return tree.fault.get();
    }
    for (const auto& operand : tree.operands) {
        if (const Fault* fault = find_syntax_fault(*operand)) {
            return fault;
        }
    }
    return nullptr;
}
} // namespace dbapi
