#include "dbsuggest/nearest_text.h"

#include "dbif/host/host_string.h"
#include "dbsuggest/display_text.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace dbapi {
namespace {
/// Longer texts are no names that somebody mistyped, and the distance takes their lengths' product.
constexpr std::size_t kLongestName = 200;

/// How far a likely text may be; nothing but the letter case may differ in a single letter.
std::size_t tolerance(std::size_t length)
{
    return std::min<std::size_t>((length + 1) / 3, 4);
}
} // namespace

std::size_t edit_distance(std::string_view first, std::string_view second)
{
    const std::string a = dbif::upper_case(first);
    const std::string b = dbif::upper_case(second);
    // The last three rows of the table of distances between all beginnings of both.
    std::vector<std::size_t> twoAbove;
    std::vector<std::size_t> above;
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 1; i <= a.size(); ++i) {
        twoAbove = std::move(above);
        above = std::move(row);
        row.assign(b.size() + 1, i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = above[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            const bool isSwap = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
            const std::size_t swapped = isSwap ? twoAbove[j - 2] + 1 : replaced;
            row[j] = std::min({replaced, swapped, above[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

std::vector<std::string>
nearest_texts(const std::string& text, const std::set<std::string>& candidates, std::size_t count)
{
    if (text.empty() || text.size() > kLongestName) {
        return {};
    }
    std::vector<std::tuple<std::size_t, std::size_t, std::string>> likely;
    for (const std::string& candidate : candidates) {
        if (candidate.size() > kLongestName) {
            continue;
        }
        const std::size_t distance = edit_distance(text, candidate);
        const bool isBeginning = text.size() > 1 && dbif::upper_case(candidate).starts_with(
                                                        dbif::upper_case(text)); // ID for ID_absmax
        if (distance <= tolerance(text.size())) {
            likely.emplace_back(distance, 0, candidate);
        } else if (isBeginning) {
            likely.emplace_back(tolerance(text.size()) + 1, distance, candidate);
        }
    }
    std::sort(likely.begin(), likely.end());
    std::vector<std::string> nearest;
    for (const auto& [distance, further, candidate] : likely) {
        if (nearest.size() < count) {
            nearest.push_back(candidate);
        }
    }
    return nearest;
}

std::string suggestion(const std::vector<std::string>& texts)
{
    return texts.empty() ? std::string() : " Did you mean " + listed(texts, " or ") + "?";
}
} // namespace dbapi
