#include "tools/dbapi/output/explanation_text.h"

#include "dbexplain/statement_text.h"
#include "dbexplain/term_text.h"
#include "dbsuggest/display_text.h"
#include "dbsuggest/wrapped_text.h"

#include "tools/dbapi/output/table_output.h"
#include "tools/dbapi/output/terminal.h"

#include <algorithm>

namespace dbapi::tool {
namespace {
/// A term that is longer is cut.
constexpr std::size_t kWidestTerm = 60;

std::string heading(const std::string& text)
{
    return "\n" + styled(text, Style::Bold, stdout) + "\n";
}

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

    /// What the columns mean.
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
        return key == nullptr ? "" : cut(key->found.key.tablename + "." + key->found.key.keyname);
    }

    const Explanation& explanation_;
    DataColumn term_;
    DataColumn key_;
    DataColumn alone_;
    DataColumn soFar_;
    DataColumn points_;
};

std::string verdict(const Explanation& explanation, std::size_t width)
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
    return wrapped_text(text, 0, width);
}

std::string nothing_text(const NothingFound& nothing, std::size_t width)
{
    if (nothing.reasons.empty()) {
        return {};
    }
    std::string text = heading("What leaves nothing");
    for (const std::string& reason : nothing.reasons) {
        text += wrapped_text(reason, 2, width);
    }
    if (!nothing.suggestions.empty()) {
        text += heading("What to try");
    }
    for (const std::string& suggestion : nothing.suggestions) {
        text += wrapped_text(suggestion, 2, width);
    }
    return text;
}

std::string tree_text(const Explanation& explanation, std::size_t width)
{
    std::string text = heading("Query");
    const std::string all = records_text(explanation.records, explanation.table);
    if (!explanation.tree.has_value()) {
        return text + wrapped_text("Empty: all of " + all + " count.", 2, width);
    }
    const TreeTable lines(explanation);
    text += indented(table_text(lines.table(), false));
    text += wrapped_text(lines.legend(), 2, width);
    return explanation.tree->isCountedInParts()
               ? text
               : text + wrapped_text(
                            "The query has more parts than are counted one by one.", 2, width);
}

std::string keys_text(const Explanation& explanation)
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
            cut(key.found.key.keyname),
            key.found.key.tablename,
            key.category,
            key.datatype,
            key.rule};
        for (std::size_t i = 0; i < cells.size(); ++i) {
            table.columns[i].values.push_back(cells[i]);
        }
    }
    return table.rows() == 0 ? "" : heading("Keywords") + indented(table_text(table, false));
}

std::string points_text(const Explanation& explanation, std::size_t width)
{
    if (!explanation.read.points.has_value()) {
        return {};
    }
    const dbif::TracedPoints& points = *explanation.read.points;
    return heading("Decided on points, in memory") +
           wrapped_text(
               "SQL, which compares the records and the smallest and largest value of each setup's "
               "keys, leaves " +
                   records_text(points.setups, dbif::RecordTable::Setup) + ". Of their " +
                   std::to_string(points.points) + " points, " + std::to_string(points.keptPoints) +
                   " of " + records_text(points.keptSetups, dbif::RecordTable::Setup) +
                   " satisfy the query.",
               2, width);
}

/// Whether the statement is the same for every read.
bool is_usual(const dbif::TracedStatement& statement)
{
    return statement.step == dbif::kDefinitionsStep || statement.step == dbif::kFreshnessStep;
}

std::string statements_text(const Explanation& explanation, std::size_t width)
{
    std::string text = heading("SQL and plan");
    std::size_t hidden = 0;
    for (const dbif::TracedStatement& statement : explanation.read.statements) {
        if (is_usual(statement)) {
            hidden += statement.runs;
        } else {
            text += statement_text(statement, width);
        }
    }
    if (hidden > 0) {
        text += wrapped_text(
            "Left out: " + counted(hidden, "short statement") + " that " + dbif::kFreshnessStep +
                " or " + dbif::kDefinitionsStep + " (--format json has them).",
            2, width);
    }
    return text;
}

std::string times_text(const Explanation& explanation)
{
    DataTable table{{}, "", {{"step", {}}, {"time", {}}}};
    for (const dbif::TracedStep& step : explanation.read.steps) {
        table.columns[0].values.push_back(step.name);
        table.columns[1].values.push_back(time_text(step.seconds));
    }
    return heading("Time") + indented(table_text(table, false));
}
} // namespace

std::string explanation_text(const Explanation& explanation, std::size_t width)
{
    return verdict(explanation, width) + nothing_text(explanation.nothing, width) +
           tree_text(explanation, width) + keys_text(explanation) + heading("Superseded records") +
           wrapped_text(explanation.whyLatest, 2, width) + points_text(explanation, width) +
           statements_text(explanation, width) + times_text(explanation);
}
} // namespace dbapi::tool
