#include "dbapi/wall/keyword_split.h"

#include "dbapi/words/keyword_parts.h"

bool break_keyword_into_keyname_tablename_extra_attributes(
    const std::string& keyword,
    std::string* keyname,
    std::string* tablename,
    std::string* attributes,
    std::string* error)
{
    dbapi::SplitKeyword split = dbapi::split_keyword(keyword);
    *keyname = std::move(split.parts.keyname);
    *tablename = std::move(split.parts.tablename);
    *attributes = std::move(split.parts.attributes);
    *error = split.fault.has_value() ? split.fault->text : std::string();
    return !split.fault.has_value();
}

void dbapi_extract_category_datatype_attributes(
    const std::string& attributes,
    std::string* category,
    std::string* datatype)
{
    dbapi::KeyAttributes split = dbapi::split_attributes(attributes);
    *category = std::move(split.category);
    *datatype = std::move(split.datatype);
}

std::string dbapi_full_keyname_from_keyname_and_attributes(
    const std::string& keyname,
    const std::string& tablename,
    const std::string& datatype,
    const std::string& category)
{
    return dbapi::function_form(keyname, tablename, datatype, category);
}
