#include "dbsuggest/query_completion.h"

#include "dbapi/read/keyword_read.h"
#include "dbapi/words/builtin_keynames.h"
#include "dbapi/words/fault.h"
#include "dbapi/words/query_command.h"
#include "dbif/host/host_string.h"
#include "dbsuggest/known_keys.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace dbapi {
namespace {
constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kComparators = "!<>=";
constexpr long long kMostValues = 1000;

std::size_t behind_blanks(std::string_view text, std::size_t at)
{
    return std::min(text.find_first_not_of(kBlanks, at), text.size());
}

/// Where the term that is being typed begins; nothing where no term can begin.
std::optional<std::size_t> begin_of_term(const std::string& query)
{
    const std::size_t mark = query.find_last_of(";{}");
    std::size_t begin = behind_blanks(query, mark == std::string::npos ? 0 : mark + 1);
    if (mark == std::string::npos) {
        const std::string_view rest = split_query_command(query).rest;
        return query.size() - rest.size() > begin && !rest.empty()
                   ? static_cast<std::size_t>(rest.data() - query.data())
                   : begin;
    }
    if (query[mark] != '}') {
        return begin;
    }
    for (const std::string_view connector : {"AND", "OR"}) {
        if (std::string_view(query).substr(begin).starts_with(connector)) {
            return behind_blanks(query, begin + connector.size());
        }
    }
    return std::nullopt;
}

/// A value as a query string writes it; empty where it cannot.
std::string written_value(const std::string& value)
{
    if (value.find_first_of(";{}'[]!<>=") != std::string::npos || dbif::trimmed(value) != value) {
        return {};
    }
    return value.find(',') == std::string::npos ? value : "'" + value + "'";
}

bool is_number(const DBIF_Connection& connection, const std::string& keyword)
{
    return KnownKeys(connection).kindOf(keyword) == dbif::ValueKind::Double;
}

/// The values of a keyword that may begin with `typed`, the first ones in their order.
std::vector<std::string> stored_values(
    const DBIF_Connection& connection,
    const std::string& keyword,
    const std::string& typed)
{
    const bool isFromThere =
        !typed.empty() && written_value(typed) == typed && !is_number(connection, keyword);
    const std::string query = isFromThere ? keyword + ">=" + typed : std::string();
    dbif::ColumnRead read = read_of_keyword(select_on(connection, query), keyword, true);
    if (read.isOnPoints()) {
        return {};
    }
    read.limit = kMostValues;
    const dbif::QueryResult result = dbif::read_columns(std::move(read));
    std::vector<std::string> values;
    for (std::size_t row = 0; row < result.rows; ++row) {
        values.push_back(written_value(result.columns.front().text(row)));
    }
    std::erase(values, "");
    return values;
}

/// The words that begin with what was typed; of keywords in function form the name may.
std::vector<std::string> fitting(std::vector<std::string> words, std::string_view typed)
{
    const std::string function = "Key(" + std::string(typed);
    std::erase_if(words, [&](const std::string& word) {
        return !word.starts_with(typed) && !word.starts_with(function);
    });
    return words;
}

std::vector<std::string>
with_comparators(const DBIF_Connection& connection, const std::string& word)
{
    std::vector<std::string> words{word + "=", word + "!="};
    if (is_number(connection, word)) {
        words.insert(words.end(), {word + "<", word + ">", word + "=["});
    }
    return words;
}

/// What may stand in the place of the keyword or value that is being typed.
std::vector<std::string>
next_words(const DBIF_Connection& connection, std::string_view term, std::size_t* begin)
{
    const std::size_t comparator = term.find_first_of(kComparators);
    if (comparator == std::string_view::npos) {
        *begin = 0;
        std::vector<std::string> keywords = fitting(known_keywords(connection), term);
        const bool isComplete = std::find(keywords.begin(), keywords.end(), term) != keywords.end();
        return keywords.size() == 1 || isComplete
                   ? with_comparators(connection, isComplete ? std::string(term) : keywords.front())
                   : keywords;
    }
    const std::size_t value =
        std::min(term.find_first_not_of(kComparators, comparator), term.size());
    const std::size_t last = term.find_last_of(",[");
    *begin = behind_blanks(term, last == std::string_view::npos || last < value ? value : last + 1);
    const std::string keyword = dbif::trimmed(std::string(term.substr(0, comparator)));
    const std::string typed(term.substr(*begin));
    return fitting(stored_values(connection, keyword, typed), typed);
}
} // namespace

std::vector<std::string> known_keywords(const DBIF_Connection& connection, const std::string& table)
{
    std::vector<std::string> keywords;
    for (const auto& [name, forms] : function_keywords(connection, table)) {
        if (forms.size() == 1) {
            keywords.push_back(name);
        } else {
            keywords.insert(keywords.end(), forms.begin(), forms.end());
        }
    }
    for (const auto& [keyname, column] : build_builtin_keywords(false)) {
        if (table.empty() || column.starts_with(table + ".")) {
            keywords.push_back(keyname);
        }
    }
    return keywords;
}

std::vector<std::string>
query_completions(const DBIF_Connection& connection, const std::string& query)
{
    try {
        const std::optional<std::size_t> term = begin_of_term(query);
        if (!term.has_value()) {
            return {};
        }
        std::size_t word = 0;
        std::vector<std::string> words =
            next_words(connection, std::string_view(query).substr(*term), &word);
        for (std::string& text : words) {
            text.insert(0, query, 0, *term + word);
        }
        return words;
    } catch (const FaultError&) {
        return {};
    }
}
} // namespace dbapi
