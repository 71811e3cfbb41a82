#include "dbif/retrieval/result_column.h"

#include "dbif/host/host_number.h"
#include "dbif/host/parallel_for.h"
#include "dbif/value/complex_values.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace dbif {
namespace {
using Kind = ResultColumn::Kind;

std::string integer_text(double number)
{
    return std::isnan(number) ? std::string() : std::to_string(static_cast<long long>(number));
}

std::string number_text(double number)
{
    return std::isnan(number) ? std::string() : double_text(number);
}

void keep_first(std::size_t count, ResultColumn* column)
{
    with_values(*column, [count](auto& values) { values.resize(std::min(count, values.size())); });
}

template <typename T>
void keep_marked(const std::vector<std::uint8_t>& isKept, std::vector<T>* values)
{
    std::size_t kept = 0;
    for (std::size_t row = 0; row < values->size(); ++row) {
        if (isKept[row] == 0) {
            continue;
        }
        if (kept != row) {
            (*values)[kept] = std::move((*values)[row]);
        }
        ++kept;
    }
    values->resize(kept);
}
} // namespace

std::size_t ResultColumn::size() const
{
    return with_values(*this, [](const auto& values) { return values.size(); });
}

std::string ResultColumn::text(std::size_t row) const
{
    switch (kind) {
    case Kind::Integer:
        return integer_text(numbers[row]);
    case Kind::Double:
        return number_text(numbers[row]);
    case Kind::Complex:
        return complex_text(complexNumbers[row]);
    case Kind::SharedText:
        return dictionary[codes[row]];
    case Kind::Text:
        break;
    }
    return texts[row];
}

void ResultColumn::reserve(std::size_t rows)
{
    with_values(*this, [rows](auto& values) { values.reserve(rows); });
}

void ResultColumn::keepRows(const std::vector<std::uint8_t>& isKept)
{
    with_values(*this, [&isKept](auto& values) { keep_marked(isKept, &values); });
}

void keep_first_rows(std::size_t count, QueryResult* result)
{
    if (count >= result->rows) {
        return;
    }
    for (ResultColumn& column : result->columns) {
        keep_first(count, &column);
    }
    result->rows = count;
}

namespace {
/// Formats the values from place `first` on; sorted columns repeat values, and those are formatted
/// once.
template <typename T, typename Format>
void format_part(
    const std::vector<T>& values,
    const Format& format,
    std::size_t first,
    std::span<std::string> texts)
{
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const T& value = values[first + i];
        if (i > 0 && value == values[first + i - 1]) {
            texts[i] = texts[i - 1];
        } else {
            texts[i] = format(value);
        }
    }
}

template <typename T, typename Format>
std::vector<std::string> formatted(const std::vector<T>& values, const Format& format)
{
    constexpr std::size_t kWorthAThread = 20'000;
    std::vector<std::string> texts(values.size());
    parallel_for(values.size(), kWorthAThread, [&](std::size_t first, std::size_t last) {
        format_part(values, format, first, std::span(texts).subspan(first, last - first));
    });
    return texts;
}
} // namespace

std::vector<std::string> take_texts(ResultColumn* column)
{
    ResultColumn taken = std::move(*column);
    *column = ResultColumn();
    switch (taken.kind) {
    case Kind::Integer:
        return formatted(taken.numbers, integer_text);
    case Kind::Double:
        return formatted(taken.numbers, number_text);
    case Kind::Complex:
        return formatted(taken.complexNumbers, complex_text);
    case Kind::SharedText:
        return formatted(
            taken.codes, [&taken](std::uint32_t code) { return taken.dictionary[code]; });
    case Kind::Text:
        break;
    }
    return std::move(taken.texts);
}
} // namespace dbif
