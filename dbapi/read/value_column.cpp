#include "dbapi/read/value_column.h"

#include "dbif/host/exception.h"
#include "dbif/host/host_number.h"
#include "dbif/host/host_string.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <optional>
#include <unordered_map>

namespace dbapi {
namespace {
using Kind = dbif::ResultColumn::Kind;
using Type = ValueColumn::Type;

Type type_of(const dbif::TableColumn& column)
{
    if (!column.isKey()) {
        switch (column.fixed().kind) {
        case dbif::FixedKind::Id:
            return Type::Integer;
        case dbif::FixedKind::Number:
            return Type::Number;
        case dbif::FixedKind::Text:
            break;
        }
        return column.name() == "modified_time" ? Type::Time : Type::Text;
    }
    switch (column.key().kind) {
    case dbif::ValueKind::Double:
        return Type::Number;
    case dbif::ValueKind::Complex:
        return Type::Complex;
    case dbif::ValueKind::Matrix:
        return Type::Matrix;
    case dbif::ValueKind::Text:
        break;
    }
    return Type::Text;
}

[[noreturn]] void refuse(const ValueColumn& column, const std::string& text)
{
    dbif::throw_error(
        "\"" + text + "\", stored under " + column.name + " of " + column.table +
            ", is damaged. Restore the database from a backup, or import the data again.",
        __FILE__, __LINE__);
}

/// The whole number that begins the text, which is shortened by it and the character behind.
std::optional<int> take_number(std::string_view* text)
{
    int number = 0;
    const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), number);
    if (error != std::errc() || number < 0) {
        return std::nullopt;
    }
    text->remove_prefix(static_cast<std::size_t>(end - text->data()));
    text->remove_prefix(std::min<std::size_t>(text->size(), 1));
    return number;
}

/// Microseconds since 1970 of "2026-01-31 23:59:59.123", as both engines write a time in UTC.
std::optional<std::int64_t> microseconds(std::string_view text)
{
    std::array<int, 6> parts{};
    for (int& part : parts) {
        const std::optional<int> number = take_number(&text);
        if (!number.has_value()) {
            return std::nullopt;
        }
        part = *number;
    }
    std::int64_t fraction = 0;
    for (std::size_t i = 0; i < 6; ++i) {
        const bool isDigit = i < text.size() && text[i] >= '0' && text[i] <= '9';
        fraction = 10 * fraction + (isDigit ? text[i] - '0' : 0);
    }
    const std::chrono::year_month_day day{
        std::chrono::year(parts[0]), std::chrono::month(static_cast<unsigned>(parts[1])),
        std::chrono::day(static_cast<unsigned>(parts[2]))};
    if (!day.ok() || parts[3] > 23 || parts[4] > 59 || parts[5] > 60) {
        return std::nullopt;
    }
    const std::int64_t days = std::chrono::sys_days(day).time_since_epoch().count();
    return (((days * 24 + parts[3]) * 60 + parts[4]) * 60 + parts[5]) * 1'000'000 + fraction;
}

/// Gives each text its place in a dictionary.
class TextCoder
{
public:
    std::int32_t code(const std::string& text)
    {
        if (text.empty()) {
            return ValueColumn::kNoText;
        }
        const auto [found, isNew] =
            codes_.try_emplace(text, static_cast<std::int32_t>(dictionary_.size()));
        if (isNew) {
            if (dictionary_.size() == std::numeric_limits<std::int32_t>::max()) {
                throw std::bad_alloc();
            }
            dictionary_.push_back(&found->first);
        }
        return found->second;
    }

    [[nodiscard]] std::vector<std::string> dictionary() const
    {
        std::vector<std::string> texts;
        texts.reserve(dictionary_.size());
        for (const std::string* text : dictionary_) {
            texts.push_back(*text);
        }
        return texts;
    }

private:
    std::unordered_map<std::string, std::int32_t> codes_;
    std::vector<const std::string*> dictionary_;
};

/// Rows that follow each other often have the same text; each run is looked up once.
template <typename Value, typename Code>
void code_runs(const std::vector<Value>& values, const Code& code, std::vector<std::int32_t>* codes)
{
    codes->resize(values.size());
    for (std::size_t row = 0; row < values.size(); ++row) {
        (*codes)[row] =
            row > 0 && values[row] == values[row - 1] ? (*codes)[row - 1] : code(values[row]);
    }
}

void take_coded_texts(const dbif::ResultColumn& values, ValueColumn* column)
{
    TextCoder coder;
    if (values.kind == Kind::SharedText) {
        code_runs(
            values.codes,
            [&](std::uint32_t place) { return coder.code((*values.dictionary)[place]); },
            &column->codes);
    } else {
        code_runs(
            values.texts, [&](const std::string& text) { return coder.code(text); },
            &column->codes);
    }
    column->dictionary = coder.dictionary();
}

void take_integers(const std::vector<double>& numbers, std::vector<std::int64_t>* integers)
{
    integers->reserve(numbers.size());
    for (const double number : numbers) {
        integers->push_back(
            std::isnan(number) ? ValueColumn::kNoInteger : static_cast<std::int64_t>(number));
    }
}

/// Reads each text by itself, unless the row before has the same.
template <typename Value, typename Read>
void read_texts(
    dbif::ResultColumn* values,
    const ValueColumn& column,
    const Value& none,
    const Read& read,
    std::vector<Value>* to)
{
    const std::vector<std::string> texts = dbif::take_texts(values);
    to->reserve(texts.size());
    for (std::size_t row = 0; row < texts.size(); ++row) {
        if (row > 0 && texts[row] == texts[row - 1]) {
            to->push_back(to->back());
            continue;
        }
        const auto value = texts[row].empty() ? std::optional<Value>(none) : read(texts[row]);
        if (!value.has_value()) {
            refuse(column, texts[row]);
        }
        to->push_back(*value);
    }
}

/// Calls `use` with the vector that holds the column's values.
template <typename Use>
auto with_vector(const ValueColumn& column, const Use& use)
{
    switch (column.type) {
    case Type::Number:
        return use(column.numbers);
    case Type::Integer:
    case Type::Time:
        return use(column.integers);
    case Type::Complex:
        return use(column.complexNumbers);
    case Type::Matrix:
        return use(column.matrices);
    case Type::Text:
        break;
    }
    return use(column.codes);
}

void append_number(double number, std::string* to)
{
    std::array<char, dbif::kLongestDouble> buffer{};
    to->append(buffer.data(), dbif::format_double(number, buffer.data()));
}

/// A time as databases hold it, with milliseconds, and with microseconds where it has some.
void append_time(std::int64_t time, std::string* to)
{
    const std::chrono::sys_time<std::chrono::microseconds> moment{std::chrono::microseconds(time)};
    const auto day = std::chrono::floor<std::chrono::days>(moment);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(moment - day);
    const auto fraction = clock.subseconds().count();
    std::array<char, 64> text{};
    std::snprintf(
        text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
        static_cast<int>(clock.seconds().count()));
    *to += text.data();
    const bool isWhole = fraction % 1000 == 0;
    std::snprintf(
        text.data(), text.size(), isWhole ? "%03d" : "%06d",
        static_cast<int>(isWhole ? fraction / 1000 : fraction));
    *to += text.data();
}

bool is_value(double number)
{
    return !std::isnan(number);
}

bool is_value(std::int64_t number)
{
    return number != ValueColumn::kNoInteger;
}

bool is_value(const std::complex<double>& number)
{
    return !std::isnan(number.real());
}

bool is_value(const dbif::ComplexMatrix& matrix)
{
    return matrix.rows > 0;
}

bool is_value(std::int32_t code)
{
    return code != ValueColumn::kNoText;
}
} // namespace

std::size_t ValueColumn::size() const
{
    return with_vector(*this, [](const auto& values) { return values.size(); });
}

bool ValueColumn::hasValue(std::size_t row) const
{
    return with_vector(*this, [row](const auto& values) { return is_value(values[row]); });
}

void ValueColumn::appendText(std::size_t row, std::string* to) const
{
    if (!hasValue(row)) {
        return;
    }
    switch (type) {
    case Type::Number:
        append_number(numbers[row], to);
        break;
    case Type::Integer:
        *to += std::to_string(integers[row]);
        break;
    case Type::Complex:
        *to += dbif::complex_text(complexNumbers[row]);
        break;
    case Type::Matrix:
        *to += dbif::matrix_text(matrices[row]);
        break;
    case Type::Text:
        *to += text(row);
        break;
    case Type::Time:
        append_time(integers[row], to);
        break;
    }
}

std::size_t ValueColumn::missing() const
{
    return with_vector(*this, [](const auto& values) {
        return static_cast<std::size_t>(std::count_if(
            values.begin(), values.end(), [](const auto& value) { return !is_value(value); }));
    });
}

ValueColumn described_column(const std::string& keyword, const dbif::TableColumn& column)
{
    ValueColumn described;
    described.keyword = keyword;
    described.name = column.name();
    described.table = dbif::table_info(column.table()).name;
    if (column.isKey()) {
        described.category = column.key().category;
        described.dataType = dbif::to_utf8(dbif::datatype_name(column.key().kind));
    }
    described.type = type_of(column);
    return described;
}

ValueColumn with_values_of(ValueColumn column, dbif::ResultColumn* values)
{
    switch (column.type) {
    case Type::Number:
        column.numbers = std::move(values->numbers);
        break;
    case Type::Integer:
        take_integers(values->numbers, &column.integers);
        break;
    case Type::Complex:
        column.complexNumbers = std::move(values->complexNumbers);
        break;
    case Type::Text:
        take_coded_texts(*values, &column);
        break;
    case Type::Matrix: {
        const auto read = [](const std::string& text) {
            return dbif::read_matrix(text);
        };
        read_texts(values, column, dbif::ComplexMatrix(), read, &column.matrices);
        break;
    }
    case Type::Time:
        read_texts(
            values, column, ValueColumn::kNoInteger,
            [](const std::string& text) { return microseconds(text); }, &column.integers);
        break;
    }
    *values = dbif::ResultColumn();
    return column;
}
} // namespace dbapi
