#include "dbif/result_column.h"

#include "dbif/complex_values.h"
#include "dbif/host_number.h"

#include <algorithm>
#include <cmath>

namespace dbif {
namespace {
using Kind = ResultColumn::Kind;

std::string integer_text(double number)
{
    return std::to_string(static_cast<long long>(number));
}

void keep_first(std::size_t count, ResultColumn* column)
{
    with_values(*column, [count](auto& values) { values.resize(std::min(count, values.size())); });
}

template <typename T>
void keep_marked(const std::vector<bool>& isKept, std::vector<T>* values)
{
    std::size_t kept = 0;
    for (std::size_t row = 0; row < values->size(); ++row) {
        if (!isKept[row]) {
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
        return std::isnan(numbers[row]) ? std::string() : integer_text(numbers[row]);
    case Kind::Double:
        return std::isnan(numbers[row]) ? std::string() : double_text(numbers[row]);
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

void ResultColumn::keepRows(const std::vector<bool>& isKept)
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
/// Formats a column of numbers; sorted columns repeat values, and those are formatted once.
template <typename T, typename Format>
std::vector<std::string> formatted(const std::vector<T>& values, const Format& format)
{
    std::vector<std::string> texts;
    texts.reserve(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i > 0 && values[i] == values[i - 1]) {
            texts.push_back(texts.back());
        } else {
            texts.push_back(format(i));
        }
    }
    return texts;
}
} // namespace

std::vector<std::string> take_texts(ResultColumn* column)
{
    ResultColumn taken = std::move(*column);
    *column = ResultColumn();
    const auto format = [&taken](std::size_t row) {
        return taken.text(row);
    };
    switch (taken.kind) {
    case Kind::Integer:
    case Kind::Double:
        return formatted(taken.numbers, format);
    case Kind::Complex:
        return formatted(taken.complexNumbers, format);
    case Kind::SharedText:
        return formatted(taken.codes, format);
    case Kind::Text:
        break;
    }
    return std::move(taken.texts);
}
} // namespace dbif
