#include "dbexplain/term_text.h"

#include "dbapi/query/engineering_values.h"
#include "dbapi/query/value_list.h"
#include "dbif/host/host_string.h"

namespace dbapi {
namespace {
/// Numbers as they were read, without quotes; texts in quotes.
std::string values_text(const std::string& values, bool isNumber)
{
    ConvertedValues converted = convert_values(values, -1);
    if (!isNumber || converted.fault != ConvertedValues::Fault::None) {
        return values;
    }
    std::erase(converted.text, '\'');
    return converted.text;
}

std::string single_text(const std::string& value, bool isNumber)
{
    return isNumber ? values_text(value, true) : "'" + without_quotes(value) + "'";
}

const char* sign_of(Comparator comparator)
{
    switch (comparator) {
    case LESS:
        return " < ";
    case LESS_EQUAL:
        return " <= ";
    case GREATER:
        return " > ";
    case GREATER_EQUAL:
        return " >= ";
    case NOT_EQUAL:
        return " != ";
    default:
        return " = ";
    }
}
} // namespace

std::string shown_keyword(const std::string& keyword)
{
    const std::size_t function = dbif::upper_case(keyword).find("KEY(");
    return function == std::string::npos ? keyword : keyword.substr(function);
}

std::string term_text(const QueryNode& term, bool isNumber)
{
    const std::string keyword = shown_keyword(term.keyword);
    std::string minimum;
    std::string maximum;
    if (term.comparator == EQUAL && is_range(term.value) &&
        split_range(term.value, &minimum, &maximum)) {
        return keyword + " from " + single_text(dbif::trimmed(minimum), isNumber) + " to " +
               single_text(dbif::trimmed(maximum), isNumber);
    }
    if (term.comparator != EQUAL && term.comparator != NOT_EQUAL) {
        return keyword + sign_of(term.comparator) + single_text(term.value, isNumber);
    }
    const ValueList list = split_value_list(term.value);
    const bool isEqual = term.comparator == EQUAL;
    const char* sign = isEqual ? " in " : " not in ";
    return keyword + (list.count > 1 ? sign : sign_of(term.comparator)) +
           values_text(list.joined, isNumber);
}
} // namespace dbapi
