#include "dbexplain/explanation_text.h"

#include "dbapi/words/text_rules.h"
#include "dbexplain/statement_text.h"
#include "dbexplain/term_text.h"
#include "dbsuggest/display_text.h"
#include "dbsuggest/query_notes.h"
#include "dbsuggest/table_text.h"
#include "dbsuggest/wrapped_text.h"

#include <algorithm>

namespace dbapi {
namespace {
/// A term that is longer is cut.
constexpr std::size_t kWidestTerm = 60;

std::string cut(const std::string& text)
{
    return display_cut(text, kWidestTerm);
}

std::string indented(const std::string& lines)
{
    std::string text;
    for (std::size_t begin = 0; begin < lines.size();) {
        const std::size_t end = lines.find('\n', begin) + 1;
        text += "  " + lines.substr(begin, end - begin);
        begin = end;
    }
    return text;
}

/// How the lines are laid out.
struct Layout
{
    std::size_t width;
    bool isBold;

    [[nodiscard]] std::string heading(const std::string& text) const
    {
        return "\n" + (isBold ? bold_text(text) : text) + "\n";
    }

    [[nodiscard]] std::string wrapped(const std::string& text, std::size_t indent = 2) const
    {
        return wrapped_text(text, indent, width);
    }

    [[nodiscard]] std::string table(const DataTable& table) const
    {
        return indented(table_text(table, {kAllRows, isBold}));
    }
};

/// The lines of the query's tree.
class TreeTable
{
public:
    explicit TreeTable(const Explanation& explanation)
        : explanation_(explanation),
          term_{"term", {}},
          key_{"key", {}},
          alone_{"alone", {}},
          soFar_{"so far", {}},
          points_{"points", {}}
    {
        add(*explanation.tree, 0);
    }

    /// Columns without a cell are left out.
    [[nodiscard]] DataTable table() const
    {
        DataTable table{{}, "", {term_}};
        for (const DataColumn* column : {&key_, &alone_, &soFar_, &points_}) {
            if (has_cells(*column)) {
                table.columns.push_back(*column);
            }
        }
        return table;
    }

    /// The meaning of the columns.
    [[nodiscard]] std::string legend() const
    {
        std::string text = "alone: how many of " +
                           records_text(explanation_.records, explanation_.table) +
                           " each part keeps by itself";
        text += has_cells(soFar_) ? "; so far: together with the parts before it" : "";
        return text + (has_cells(points_) ? "; points: how many satisfy it." : ".");
    }

private:
    static bool has_cells(const DataColumn& column)
    {
        return std::any_of(column.values.begin(), column.values.end(), [](const auto& cell) {
            return !cell.empty();
        });
    }

    void add(const NodeExplanation& node, std::size_t depth)
    {
        term_.values.push_back(std::string(2 * depth, ' ') + cut(node.text));
        key_.values.push_back(keyText(node));
        const bool isCounted = node.alone.has_value();
        alone_.values.push_back(isCounted ? std::to_string(node.alone->records) : "");
        soFar_.values.push_back(node.soFar.has_value() ? std::to_string(node.soFar->records) : "");
        points_.values.push_back(
            isCounted && node.alone->points.has_value() ? std::to_string(*node.alone->points) : "");
        for (const NodeExplanation& operand : node.operands) {
            add(operand, depth + 1);
        }
    }

    [[nodiscard]] std::string keyText(const NodeExplanation& node) const
    {
        const KeyExplanation* key =
            node.keyword.empty() ? nullptr : explanation_.keyOf(node.keyword);
        return key == nullptr ? "" : cut(key->tableName() + "." + key->keyName());
    }

    const Explanation& explanation_;
    DataColumn term_;
    DataColumn key_;
    DataColumn alone_;
    DataColumn soFar_;
    DataColumn points_;
};

std::string verdict(const Explanation& explanation, const Layout& layout)
{
    const ReadExplanation& read = explanation.read;
    const bool isOne = read.rows == 1;
    std::string text = read.rows == 0 ? "Nothing is found"
                                      : std::to_string(read.rows) + (isOne ? " row" : " rows");
    if (read.rows > 0 && explanation.isOfPoints) {
        text += isOne ? ", a point of a setup" : ", each a point of a setup";
    } else if (read.rows > 0) {
        text += ", from " + records_text(explanation.keptRecords(), explanation.table);
    }
    text += ", in " + time_text(read.seconds) + " on " + explanation.engine + ".";
    return layout.wrapped(text, 0);
}

std::string nothing_text(const NothingFound& nothing, const Layout& layout)
{
    if (nothing.reasons.empty()) {
        return {};
    }
    std::string text = layout.heading("Why nothing is found");
    for (const std::string& reason : nothing.reasons) {
        text += layout.wrapped(reason);
    }
    if (!nothing.suggestions.empty()) {
        text += layout.heading("What to try");
    }
    for (const std::string& suggestion : nothing.suggestions) {
        text += layout.wrapped(suggestion);
    }
    return text;
}

std::string ignored_text(const Explanation& explanation, const Layout& layout)
{
    std::string text;
    for (const IgnoredText& ignored : explanation.ignored) {
        text += layout.wrapped(
            dbapi::quoted(cut(explanation.query.substr(ignored.position, ignored.length))) + ": " +
            why_ignored(ignored.reason));
    }
    return text.empty() ? text : layout.heading("Ignored") + text;
}

std::string tree_text(const Explanation& explanation, const Layout& layout)
{
    std::string text = layout.heading("Query");
    const std::string all = records_text(explanation.records, explanation.table);
    if (!explanation.tree.has_value()) {
        return text + layout.wrapped("Empty: all of " + all + " count.");
    }
    const TreeTable lines(explanation);
    text += layout.table(lines.table());
    text += layout.wrapped(lines.legend());
    return explanation.tree->isCountedInParts()
               ? text
               : text + layout.wrapped("The query has more parts than are counted one by one.");
}

std::string keys_text(const Explanation& explanation, const Layout& layout)
{
    DataTable table{
        {},
        "",
        {{"keyword", {}},
         {"key", {}},
         {"table", {}},
         {"category", {}},
         {"data type", {}},
         {"because it is", {}}}};
    for (const KeyExplanation& key : explanation.keys) {
        const std::vector<std::string> cells{
            cut(shown_keyword(key.keyword)),
            cut(key.keyName()),
            key.tableName(),
            key.category,
            key.datatype,
            key.rule};
        for (std::size_t i = 0; i < cells.size(); ++i) {
            table.columns[i].values.push_back(cells[i]);
        }
    }
    return table.rows() == 0 ? "" : layout.heading("Keywords") + layout.table(table);
}

std::string points_text(const Explanation& explanation, const Layout& layout)
{
    if (!explanation.read.points.has_value()) {
        return {};
    }
    const dbif::TracedPoints& points = *explanation.read.points;
    return layout.heading("Decided on points, in memory") +
           layout.wrapped(
               "SQL, which compares the records and the smallest and largest value of each setup's "
               "keys, leaves " +
               records_text(points.setups, dbif::RecordTable::Setup) + ". Of their " +
               std::to_string(points.points) + " points, " + std::to_string(points.keptPoints) +
               " of " + records_text(points.keptSetups, dbif::RecordTable::Setup) +
               " satisfy the query.");
}

/// Tells whether the statement is the same for every read.
bool is_usual(const dbif::TracedStatement& statement)
{
    return statement.step == dbif::kDefinitionsStep || statement.step == dbif::kFreshnessStep;
}

std::string statements_text(const Explanation& explanation, const Layout& layout)
{
    std::string text = layout.heading("SQL and plan");
    std::size_t hidden = 0;
    for (const dbif::TracedStatement& statement : explanation.read.statements) {
        if (is_usual(statement)) {
            hidden += statement.runs;
        } else {
            text += statement_text(statement, layout.width);
        }
    }
    if (hidden > 0) {
        text += layout.wrapped(
            "Left out: " + counted(hidden, "short statement") + " that " + dbif::kFreshnessStep +
            " or " + dbif::kDefinitionsStep + " (--format json has them).");
    }
    return text;
}

std::string times_text(const Explanation& explanation, const Layout& layout)
{
    DataTable table{{}, "", {{"step", {}}, {"time", {}}}};
    for (const dbif::TracedStep& step : explanation.read.steps) {
        table.columns[0].values.push_back(step.name);
        table.columns[1].values.push_back(time_text(step.seconds));
    }
    return layout.heading("Time") + layout.table(table);
}
} // namespace

std::string explanation_text(const Explanation& explanation, std::size_t width, bool isBold)
{
    const Layout layout{width, isBold};
    return verdict(explanation, layout) + nothing_text(explanation.nothing, layout) +
           tree_text(explanation, layout) + ignored_text(explanation, layout) +
           keys_text(explanation, layout) + layout.heading("Superseded records") +
           layout.wrapped(explanation.whyLatest) + points_text(explanation, layout) +
           statements_text(explanation, layout) + times_text(explanation, layout);
}
} // namespace dbapi
