#include "dbapi/wall/value_conversion.h"

#include "dbapi/query/engineering_values.h"

bool convert_value_str_to_proper_value_double_str(
    const std::string& value,
    int expectedCount,
    std::string* converted,
    KTString* errors)
{
    const dbapi::ConvertedValues values = dbapi::convert_values(value, expectedCount);
    const bool isValid = values.fault == dbapi::ConvertedValues::Fault::None;
    *converted = isValid ? values.text : std::string();
    *errors = isValid ? std::string() : values.text;
    return isValid;
}

bool string_has_valid_enot_to_dbl_chars(const std::string& text)
{
    return dbapi::has_characters_of_number(text);
}
