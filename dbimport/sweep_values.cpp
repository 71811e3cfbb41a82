#include "dbimport/sweep_values.h"

#include "dbapi/words/keyword_parts.h"
#include "dbapi/words/text_rules.h"
#include "dbapi/words/vocabulary.h"
#include "dbif/host/host_number.h"
#include "dbif/host/host_string.h"
#include "dbif/value/complex_values.h"

#include <algorithm>

namespace dbapi {
namespace {
bool refuse(std::string* reason, std::string text)
{
    if (reason != nullptr) {
        *reason = std::move(text);
    }
    return false;
}

/// The message for a text that is no value of a kind.
std::string no_value_of(dbif::ValueKind kind, std::string_view text)
{
    switch (kind) {
    case dbif::ValueKind::Complex:
        return quoted_beginning(text) + " is no complex number. Write one like 1.5-2j.";
    case dbif::ValueKind::Matrix:
        return quoted_beginning(text) +
               " is no complex matrix. Write one like [[1+0j, 0.5j], [0.5j, 1+0j]].";
    default:
        return quoted_beginning(text) +
               " is no finite number. Write one like -1.5e-9 or 0.15u, or leave it "
               "empty for 'no value'.";
    }
}

bool is_finite(std::complex<double> number)
{
    return std::isfinite(number.real()) && std::isfinite(number.imag());
}

bool read_finite_complex(std::string_view text, std::complex<double>* number)
{
    const std::optional<std::complex<double>> read = dbif::read_complex(text);
    *number = read.value_or(dbif::kNoComplex);
    return read.has_value() && is_finite(*read);
}

bool read_finite_matrix(std::string_view text, dbif::ComplexMatrix* matrix)
{
    std::optional<dbif::ComplexMatrix> read = dbif::read_matrix(text);
    if (!read || !std::all_of(read->cells.begin(), read->cells.end(), is_finite)) {
        return false;
    }
    *matrix = std::move(*read);
    return true;
}

bool append_text(std::string_view cell, dbif::SweepArray* values, std::string* reason)
{
    if (!is_storable_text(cell, reason)) {
        values->texts.emplace_back(std::nullopt);
        return false;
    }
    values->texts.emplace_back(std::string(cell));
    return true;
}

/// Appends the value of a cell that does not hold text, if the cell has one.
bool append_if_valid(std::string_view cell, dbif::SweepArray* values)
{
    if (values->kind == dbif::ValueKind::Double) {
        double number = 0;
        if (read_number(cell, &number)) {
            values->numbers.push_back(number);
            return true;
        }
    } else if (values->kind == dbif::ValueKind::Complex) {
        std::complex<double> number;
        if (read_finite_complex(cell, &number)) {
            values->complexNumbers.push_back(number);
            return true;
        }
    } else {
        dbif::ComplexMatrix matrix;
        if (read_finite_matrix(cell, &matrix)) {
            values->matrices.push_back(std::move(matrix));
            return true;
        }
    }
    return false;
}

/// The advice for a keyword that says too little about its column.
std::string spellings_of(const std::string& name)
{
    return "Write IND." + name + " for an input or OUTD." + name +
           " for an output; S, X or M in the place of D makes it text, complex numbers or complex "
           "matrices.";
}
} // namespace

std::string quoted_beginning(std::string_view text)
{
    // Enough to find it in its file.
    constexpr std::size_t kMostShown = 60;
    if (text.size() <= kMostShown) {
        return dbapi::quoted(text);
    }
    std::size_t end = kMostShown;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
        --end;
    }
    return dbapi::quoted(std::string(text.substr(0, end)) + "...");
}

bool set_key_value(const std::string& text, dbif::KeyValue* key, std::string* reason)
{
    std::complex<double> number;
    dbif::ComplexMatrix matrix;
    bool isValid = true;
    switch (key->kind) {
    case dbif::ValueKind::Double:
        return read_number(text, &key->number) || refuse(reason, no_value_of(key->kind, text));
    case dbif::ValueKind::Complex:
        isValid = read_finite_complex(text, &number);
        break;
    case dbif::ValueKind::Matrix:
        isValid = read_finite_matrix(text, &matrix);
        break;
    case dbif::ValueKind::Text:
        break;
    }
    key->text = text;
    return isValid || refuse(reason, no_value_of(key->kind, text));
}

bool make_sweep_column(const std::string& keyword, dbif::SetupColumn* column, std::string* reason)
{
    const SplitKeyword split = split_keyword(keyword);
    if (split.fault.has_value()) {
        const bool isCut =
            dbif::upper_case(keyword).find("KEY(") != std::string::npos && !keyword.ends_with(")");
        return refuse(
            reason, syntax_reason(split.fault->text) +
                        (isCut ? " A keyword with commas stands in double quotes." : ""));
    }
    const std::string& name = split.parts.keyname;
    const std::string& table = split.parts.tablename;
    if (name.empty() || name.front() == '$' || (!table.empty() && table != "setup")) {
        return refuse(
            reason, quoted_beginning(keyword) +
                        " is no key of a setup, which is what columns hold. "
                        "Columns are named like IND.VG (an input) or OUTD.ID (an "
                        "output).");
    }
    const KeyAttributes attributes = split_attributes(split.parts.attributes);
    bool isOutput = false;
    const std::optional<dbif::ValueKind> kind = dbif::value_kind(dbif::to_qt(attributes.datatype));
    if (!dbapi_is_category_input(attributes.category, &column->isInput, &isOutput) || !kind) {
        return refuse(
            reason, quoted_beginning(keyword) + " does not say what the column holds. " +
                        spellings_of(name));
    }
    column->name = name;
    column->values.kind = *kind;
    return is_key_name(name, reason);
}

bool append_value(std::string_view cell, dbif::SweepArray* values, std::string* reason)
{
    if (values->kind == dbif::ValueKind::Text) {
        return append_text(cell, values, reason);
    }
    if (append_if_valid(cell, values)) {
        return true;
    }
    append_no_value(values);
    if (dbif::trimmed(cell).empty()) {
        return true;
    }
    if (reason != nullptr) {
        *reason = no_value_of(values->kind, cell);
    }
    return false;
}

void append_no_value(dbif::SweepArray* values)
{
    switch (values->kind) {
    case dbif::ValueKind::Text:
        values->texts.emplace_back(std::nullopt);
        break;
    case dbif::ValueKind::Double:
        values->numbers.push_back(std::numeric_limits<double>::quiet_NaN());
        break;
    case dbif::ValueKind::Complex:
        values->complexNumbers.push_back(dbif::kNoComplex);
        break;
    case dbif::ValueKind::Matrix:
        values->matrices.emplace_back();
        break;
    }
}

bool is_key_name(const std::string& name, std::string* reason)
{
    const bool isTrimmed = dbif::trimmed(name) == name;
    const bool isSimple = name.find(',') == std::string::npos &&
                          dbif::upper_case(name).find("KEY(") == std::string::npos;
    return (!name.empty() && isTrimmed && isSimple) ||
           refuse(
               reason, "The key name " + quoted_beginning(name) +
                           (name.empty() ? " is empty. Give the key a name."
                            : !isTrimmed ? " begins or ends with a blank. Remove it."
                                         : " holds a comma or \"KEY(\". Choose another name."));
}

bool is_storable_text(std::string_view text, std::string* reason)
{
    if (!dbif::is_utf8(text)) {
        return refuse(reason, "The text is not UTF-8. Save the file as UTF-8.");
    }
    return text.find('\0') == std::string_view::npos ||
           refuse(reason, "The text holds a zero byte, which cannot be stored. Remove it.");
}

std::string syntax_reason(const std::string& splitterError)
{
    const std::string text = dbif::trimmed(splitterError);
    const std::size_t lineEnd = text.rfind('\n');
    return lineEnd == std::string::npos ? text : text.substr(lineEnd + 1);
}
} // namespace dbapi
