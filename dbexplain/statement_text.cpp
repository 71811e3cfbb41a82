#include "dbexplain/statement_text.h"

#include "dbsuggest/display_text.h"
#include "dbsuggest/wrapped_text.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace dbapi {
namespace {
/// Numbers of a list that are shown, and that make it too long to show.
constexpr std::size_t kShownNumbers = 5;
constexpr std::size_t kLongList = 12;

bool add_once(const std::string& text, std::vector<std::string>* texts)
{
    const bool isNew = std::find(texts->begin(), texts->end(), text) == texts->end();
    if (isNew && !text.empty()) {
        texts->push_back(text);
    }
    return isNew;
}

/// The list that begins at `begin`, shortened if it is a long one of whole numbers; moves `begin`
/// behind it.
std::string shortened_list(const std::string& sql, std::size_t* begin)
{
    const std::size_t end = std::min(sql.find_first_not_of("0123456789, ", *begin), sql.size());
    std::string list = sql.substr(*begin, end - *begin);
    *begin = end;
    const auto commas = static_cast<std::size_t>(std::count(list.begin(), list.end(), ','));
    if (commas + 1 < kLongList) {
        return list;
    }
    std::size_t shownEnd = 0;
    for (std::size_t i = 0; i < kShownNumbers; ++i) {
        shownEnd = list.find(',', shownEnd) + 1;
    }
    return list.substr(0, shownEnd) + " ... " + std::to_string(commas + 1 - kShownNumbers) +
           " more";
}

std::string shortened_lists(const std::string& sql)
{
    constexpr std::string_view kListBegin = "IN (";
    std::string text;
    std::size_t begin = 0;
    while (begin < sql.size()) {
        const std::size_t list = sql.find(kListBegin, begin);
        if (list == std::string::npos) {
            return text + sql.substr(begin);
        }
        text += sql.substr(begin, list + kListBegin.size() - begin);
        begin = list + kListBegin.size();
        text += shortened_list(sql, &begin);
    }
    return text;
}
} // namespace

std::vector<std::string> indexes_of(const dbif::TracedStatement& statement)
{
    std::vector<std::string> indexes;
    for (const dbif::PlanStep& step : statement.plan) {
        const bool isPrimary = step.index == "primary key";
        add_once(isPrimary ? step.index + " of " + step.table : step.index, &indexes);
    }
    return indexes;
}

std::vector<std::string> scanned_tables(const dbif::TracedStatement& statement)
{
    std::vector<std::string> tables;
    for (const dbif::PlanStep& step : statement.plan) {
        if (step.isWholeTable) {
            add_once(step.table, &tables);
        }
    }
    return tables;
}

std::string statement_text(const dbif::TracedStatement& statement, std::size_t width)
{
    std::string head = statement.step + ": ";
    head +=
        statement.runs == 1 ? "" : std::to_string(statement.runs) + " statements of this form, ";
    head += std::to_string(statement.rows) + (statement.rows == 1 ? " row, " : " rows, ") +
            time_text(statement.seconds);
    std::string text = wrapped_text(head, 2, width);
    text += wrapped_text(shortened_lists(statement.sql), 4, width);
    for (const dbif::PlanStep& step : statement.plan) {
        text += wrapped_text("> " + step.text, 4 + 2 * static_cast<std::size_t>(step.depth), width);
    }
    const std::string indexes = listed(indexes_of(statement));
    const std::string tables = listed(scanned_tables(statement));
    if (!statement.plan.empty()) {
        text += wrapped_text(indexes.empty() ? "no index" : "served by " + indexes, 4, width);
    }
    return tables.empty() ? text : text + wrapped_text("reads all of " + tables, 4, width);
}

std::string time_text(double seconds)
{
    const char* unit = " us";
    double value = seconds * 1e6;
    if (seconds >= 1) {
        unit = " s";
        value = seconds;
    } else if (seconds >= 1e-3) {
        unit = " ms";
        value = seconds * 1e3;
    }
    std::array<char, 64> buffer{};
    std::snprintf(buffer.data(), buffer.size(), value < 10 ? "%.1f" : "%.0f", value);
    return buffer.data() + std::string(unit);
}
} // namespace dbapi
