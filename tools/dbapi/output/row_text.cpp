#include "tools/dbapi/output/row_text.h"

#include "dbif/host/host_number.h"
#include "dbif/host/parallel_for.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <utility>

namespace dbapi::tool {
namespace {
using Type = ValueColumn::Type;
using Write = std::function<void(std::string_view)>;

void append_csv(std::string_view value, bool isAlone, std::string* to)
{
    // An empty line would be no row.
    const bool isBlankLine = isAlone && value.empty();
    if (!isBlankLine && value.find_first_of(",\"\r\n") == std::string_view::npos) {
        *to += value;
        return;
    }
    *to += '"';
    for (const char letter : value) {
        to->append(letter == '"' ? 2 : 1, letter);
    }
    *to += '"';
}

void append_line(std::string_view value, std::string* to)
{
    constexpr std::string_view kBreaks = "\t\r\n";
    constexpr std::string_view kLetters = "trn";
    for (std::size_t at = value.find_first_of(kBreaks); at != std::string_view::npos;
         at = value.find_first_of(kBreaks)) {
        *to += value.substr(0, at);
        *to += '\\';
        *to += kLetters[kBreaks.find(value[at])];
        value.remove_prefix(at + 1);
    }
    *to += value;
}

void append_json(double number, std::string* to)
{
    *to += std::isfinite(number) ? dbif::double_text(number) : "null";
}

void append_json(std::complex<double> number, std::string* to)
{
    *to += '[';
    append_json(number.real(), to);
    *to += ',';
    append_json(number.imag(), to);
    *to += ']';
}

void append_json(const dbif::ComplexMatrix& matrix, std::string* to)
{
    for (std::size_t i = 0; i < matrix.cells.size(); ++i) {
        const std::size_t column = i % matrix.columns;
        *to += i == 0 ? "[[" : column == 0 ? "],[" : ",";
        append_json(matrix.cells[i], to);
    }
    *to += "]]";
}

void append_json(const ValueColumn& column, std::size_t row, std::string* to)
{
    if (!column.hasValue(row)) {
        *to += "null";
        return;
    }
    switch (column.type) {
    case Type::Number:
        append_json(column.numbers[row], to);
        break;
    case Type::Complex:
        append_json(column.complexNumbers[row], to);
        break;
    case Type::Matrix:
        append_json(column.matrices[row], to);
        break;
    case Type::Integer:
        column.appendText(row, to);
        break;
    case Type::Time:
    case Type::Text: {
        std::string text;
        column.appendText(row, &text);
        *to += json_text(text);
        break;
    }
    }
}

bool are_same(const ValueColumn& column, std::size_t a, std::size_t b)
{
    switch (column.type) {
    case Type::Number:
        return std::bit_cast<std::uint64_t>(column.numbers[a]) ==
               std::bit_cast<std::uint64_t>(column.numbers[b]);
    case Type::Integer:
    case Type::Time:
        return column.integers[a] == column.integers[b];
    case Type::Complex:
        return column.complexNumbers[a] == column.complexNumbers[b];
    case Type::Text:
        return column.codes[a] == column.codes[b];
    case Type::Matrix:
        break;
    }
    return column.matrices[a] == column.matrices[b];
}

/// Writes the values of a column, one row after the other. What follows itself is made once.
class CellWriter
{
public:
    CellWriter(const ValueColumn& column, RowForm form, bool isAlone)
        : column_(&column), form_(form), isAlone_(isAlone)
    {}

    void append(std::size_t row, std::string* to)
    {
        if (!hasLast_ || !are_same(*column_, row, lastRow_)) {
            make(row);
        }
        hasLast_ = true;
        lastRow_ = row;
        *to += last_;
    }

private:
    void make(std::size_t row)
    {
        last_.clear();
        if (form_ == RowForm::JsonLine || form_ == RowForm::JsonMember) {
            append_json(*column_, row, &last_);
            return;
        }
        std::string& text = form_ == RowForm::Csv ? raw_ : last_;
        text.clear();
        column_->appendText(row, &text);
        if (form_ == RowForm::Csv) {
            append_csv(raw_, isAlone_, &last_);
        } else if (column_->type == Type::Text) {
            raw_.swap(last_);
            last_.clear();
            append_line(raw_, &last_);
        }
    }

    const ValueColumn* column_;
    RowForm form_;
    bool isAlone_;
    bool hasLast_ = false;
    std::size_t lastRow_ = 0;
    std::string last_;
    std::string raw_;
};

/// What stands before the first value of a row, between two, and behind the last one.
struct Marks
{
    const char* begin;
    const char* between;
    const char* end;
    bool hasNames;
};

Marks marks_of(RowForm form)
{
    switch (form) {
    case RowForm::Csv:
        return {"", ",", "\n", false};
    case RowForm::JsonLine:
        return {"{", ",", "}\n", true};
    case RowForm::JsonMember:
        return {",{", ",", "}", true};
    case RowForm::Lines:
        break;
    }
    return {"", "\t", "\n", false};
}

/// The texts before the values of each column, and behind the last one.
std::vector<std::string> texts_between(const std::vector<ValueColumn>& columns, RowForm form)
{
    const Marks marks = marks_of(form);
    std::vector<std::string> texts;
    texts.reserve(columns.size() + 1);
    for (const ValueColumn& column : columns) {
        texts.push_back(
            (texts.empty() ? marks.begin : marks.between) +
            (marks.hasNames ? json_text(column.keyword) + ":" : std::string()));
    }
    texts.emplace_back(marks.end);
    return texts;
}

/// Appends the text of the places from `first` up to `last`.
using Make = std::function<void(std::size_t first, std::size_t last, std::string* to)>;

constexpr std::size_t kPart = 1U << 14U;
constexpr std::size_t kPartsAtOnce = 16;

/// Texts of the next places from `begin` on, below `count`, made in several threads.
std::vector<std::string> next_parts(std::size_t begin, std::size_t count, const Make& make)
{
    std::vector<std::string> parts(std::min((count - begin + kPart - 1) / kPart, kPartsAtOnce));
    dbif::parallel_for(parts.size(), 1, [&](std::size_t first, std::size_t last) {
        for (std::size_t part = first; part < last; ++part) {
            const std::size_t start = begin + part * kPart;
            make(start, std::min(start + kPart, count), &parts[part]);
        }
    });
    return parts;
}

/// Writes the texts of the places from 0 up to `count`, in their order.
void write_in_parts(std::size_t count, const Make& make, const Write& write)
{
    for (std::size_t begin = 0; begin < count; begin += kPart * kPartsAtOnce) {
        for (const std::string& part : next_parts(begin, count, make)) {
            write(part);
        }
    }
}

void append_rows(
    const ColumnTable& table,
    RowForm form,
    const std::vector<std::string>& between,
    std::pair<std::size_t, std::size_t> rows,
    std::string* to)
{
    std::vector<CellWriter> cells;
    cells.reserve(table.columns.size());
    for (const ValueColumn& column : table.columns) {
        cells.emplace_back(column, form, table.columns.size() == 1);
    }
    for (std::size_t row = rows.first; row < rows.second; ++row) {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            *to += between[i];
            cells[i].append(row, to);
        }
        *to += between.back();
    }
}
} // namespace

std::string json_text(const std::string& text)
{
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string heading_text(const std::vector<ValueColumn>& columns, RowForm form)
{
    std::string text;
    const std::vector<std::string> between = texts_between(columns, form);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        text += between[i];
        if (form == RowForm::Csv) {
            append_csv(columns[i].keyword, columns.size() == 1, &text);
        } else {
            append_line(columns[i].keyword, &text);
        }
    }
    return text + between.back();
}

void write_rows(const ColumnTable& table, std::size_t rows, RowForm form, const Write& write)
{
    const std::vector<std::string> between = texts_between(table.columns, form);
    const auto make = [&](std::size_t first, std::size_t last, std::string* to) {
        append_rows(table, form, between, {first, last}, to);
    };
    write_in_parts(rows, make, write);
}

void write_json_values(const ValueColumn& column, std::size_t rows, const Write& write)
{
    const auto make = [&](std::size_t first, std::size_t last, std::string* to) {
        CellWriter cell(column, RowForm::JsonMember, false);
        for (std::size_t row = first; row < last; ++row) {
            *to += row == 0 ? "" : ",";
            cell.append(row, to);
        }
    };
    write_in_parts(rows, make, write);
}
} // namespace dbapi::tool
