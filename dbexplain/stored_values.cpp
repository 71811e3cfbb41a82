#include "dbexplain/stored_values.h"

#include "dbapi/query/value_list.h"
#include "dbexplain/value_reading.h"
#include "dbif/host/exception.h"
#include "dbif/host/host_number.h"
#include "dbif/host/host_string.h"
#include "dbsuggest/display_text.h"
#include "dbsuggest/nearest_text.h"

#include <algorithm>
#include <cmath>

namespace dbapi {
namespace {
/// Up to this many values are simply listed.
constexpr std::size_t kMostListed = 6;
constexpr std::size_t kMostSuggested = 3;

/// The first value of a list or range, without quotes.
std::string first_value(const std::string& value)
{
    const std::size_t begin = is_range(value) ? 1 : 0;
    return without_quotes(
        dbif::trimmed(value.substr(begin, value.find_first_of(",]", begin) - begin)));
}

std::string number_text(const std::vector<std::string>& values, const std::string& wanted)
{
    const double number = dbif::read_engineering_number(wanted);
    std::string text =
        std::to_string(values.size()) + " values from " + values.front() + " to " + values.back();
    const auto above =
        std::find_if(values.begin(), values.end(), [number](const std::string& value) {
            return dbif::read_engineering_number(value) >= number;
        });
    if (std::isnan(number) || above == values.begin() || above == values.end()) {
        return text;
    }
    return text + "; next to " + dbif::double_text(number) + " stand " + *(above - 1) + " and " +
           *above;
}

std::string text_text(const std::vector<std::string>& values, const std::string& wanted)
{
    return std::to_string(values.size()) + " texts." +
           suggestion(nearest_texts(wanted, {values.begin(), values.end()}, kMostSuggested));
}

bool read_stored(
    const std::string& connection,
    const KeyExplanation& key,
    bool latestOnly,
    std::vector<std::string>* values)
{
    std::vector<std::vector<std::string>> columns;
    std::string ignored;
    try {
        const bool isRead = read_values(
            {connection, {key.keyword}, latestOnly ? "" : "ALLDATA:"}, true, &columns, &ignored);
        *values = std::move(columns.front());
        return isRead;
    } catch (const DBIF_Exception&) {
        return false;
    }
}
} // namespace

std::string stored_values_text(
    const std::string& connection,
    const KeyExplanation& key,
    const std::string& value,
    bool latestOnly)
{
    std::vector<std::string> values;
    if (!read_stored(connection, key, latestOnly, &values)) {
        return {};
    }
    std::erase(values, "");
    if (values.empty()) {
        return "No record that counts has a value of " + key.keyword + ".";
    }
    const std::string stored = "Stored under " + key.keyword + ": ";
    if (values.size() <= kMostListed) {
        return stored + listed(values) + ".";
    }
    const std::string wanted = first_value(value);
    return stored +
           (key.isNumber() ? number_text(values, wanted) + "." : text_text(values, wanted));
}
} // namespace dbapi
