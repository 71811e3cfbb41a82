#include "dbif/retrieval/value_codes.h"

#include "dbif/retrieval/value_order.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <unordered_map>

namespace dbif {
namespace {
using Code = std::uint16_t;

constexpr std::size_t kMostCodes = 4096;

/// Assigns codes to numbers in the order of their first appearance, through a table that is never
/// more than a quarter full.
class NumberTable
{
public:
    /// The code of a number; `kMostCodes` when it is one number too many.
    std::size_t code(std::uint64_t rank)
    {
        const std::size_t place = placeOf(rank);
        if (codes_[place] == kMostCodes && ranks_.size() < kMostCodes) {
            codes_[place] = static_cast<Code>(ranks_.size());
            keys_[place] = rank;
            ranks_.push_back(rank);
        }
        return codes_[place];
    }

    /// The numbers, by their codes.
    [[nodiscard]] const std::vector<std::uint64_t>& values() const { return ranks_; }

private:
    static constexpr std::size_t kPlaces = 4 * kMostCodes;
    static constexpr unsigned kUnusedBits = 64 - 14;
    static_assert(kPlaces == 1U << 14U);

    /// The slot in which the number stands, or would stand.
    [[nodiscard]] std::size_t placeOf(std::uint64_t rank) const
    {
        constexpr std::uint64_t kOddFactor = 0x9E3779B97F4A7C15;
        std::size_t place = rank * kOddFactor >> kUnusedBits;
        while (codes_[place] != kMostCodes && keys_[place] != rank) {
            place = (place + 1) % kPlaces;
        }
        return place;
    }

    std::vector<Code> codes_ = std::vector<Code>(kPlaces, kMostCodes);
    std::vector<std::uint64_t> keys_ = std::vector<std::uint64_t>(kPlaces);
    std::vector<std::uint64_t> ranks_;
};

/// The same for texts.
class TextTable
{
public:
    std::size_t code(std::string_view text)
    {
        const auto found = codes_.find(text);
        if (found != codes_.end()) {
            return found->second;
        }
        if (texts_.size() < kMostCodes) {
            codes_.emplace(text, static_cast<Code>(texts_.size()));
            texts_.push_back(text);
            return texts_.size() - 1;
        }
        return kMostCodes;
    }

    [[nodiscard]] const std::vector<std::string_view>& values() const { return texts_; }

private:
    std::unordered_map<std::string_view, Code> codes_;
    std::vector<std::string_view> texts_;
};

/// The place of each value when they are in order.
template <typename T>
std::vector<Code> places_in_order(const std::vector<T>& values)
{
    std::vector<Code> byOrder(values.size());
    std::iota(byOrder.begin(), byOrder.end(), Code(0));
    std::sort(byOrder.begin(), byOrder.end(), [&values](Code a, Code b) {
        return values[a] < values[b];
    });
    std::vector<Code> places(values.size());
    for (std::size_t place = 0; place < byOrder.size(); ++place) {
        places[byOrder[place]] = static_cast<Code>(place);
    }
    return places;
}

template <typename Table, typename T, typename KeyOf>
std::optional<ValueCodes> code_with(const std::vector<T>& values, const KeyOf& keyOf)
{
    Table table;
    ValueCodes coded;
    coded.codes.reserve(values.size());
    for (const T& value : values) {
        const std::size_t code = table.code(keyOf(value));
        if (code == kMostCodes) {
            return std::nullopt;
        }
        coded.codes.push_back(static_cast<Code>(code));
    }
    const std::vector<Code> places = places_in_order(table.values());
    for (Code& code : coded.codes) {
        code = places[code];
    }
    coded.count = places.size();
    return coded;
}
} // namespace

std::optional<ValueCodes> code_values(const ResultColumn& column)
{
    switch (column.kind) {
    case ResultColumn::Kind::Integer:
    case ResultColumn::Kind::Double:
        return code_with<NumberTable>(
            column.numbers, [](double number) { return rank_of(number); });
    case ResultColumn::Kind::SharedText:
        return code_with<NumberTable>(
            column.codes, [](std::uint32_t code) { return rank_of(code); });
    case ResultColumn::Kind::Text:
        return code_with<TextTable>(
            column.texts, [](const std::string& text) { return std::string_view(text); });
    case ResultColumn::Kind::Complex:
        break;
    }
    return std::nullopt;
}
} // namespace dbif
