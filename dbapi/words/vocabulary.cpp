#include "dbapi/words/vocabulary.h"

#include "dbapi/words/text_rules.h"
#include "dbif/query/dynamic_column.h"
#include "dbif/schema/schema_names.h"

namespace {
using TablenamesVocabulary = std::map<std::string, std::pair<std::string, std::string>>;
using WordVocabulary = std::map<std::string, std::string>;

// Function-local, so that whoever asks first while the process starts still finds them built.
const TablenamesVocabulary& tablenames()
{
    static const TablenamesVocabulary vocabulary = dbapi::build_tablenames_vocabulary();
    return vocabulary;
}

const WordVocabulary& categories()
{
    static const WordVocabulary vocabulary = dbapi::build_categories_vocabulary();
    return vocabulary;
}

const WordVocabulary& datatypes()
{
    static const WordVocabulary vocabulary = dbapi::build_datatypes_vocabulary();
    return vocabulary;
}

// Builds them while the library is loaded. The constants that they copy are defined by the headers
// above, and so come first.
[[maybe_unused]] const bool builtAtLoad =
    !tablenames().empty() && !categories().empty() && !datatypes().empty();

bool find_word(const WordVocabulary& vocabulary, const std::string& name, std::string* found)
{
    const auto entry = vocabulary.find(dbapi::normalised(name));
    *found = entry == vocabulary.end() ? std::string() : entry->second;
    return entry != vocabulary.end();
}
} // namespace

bool dbapi_find_tablename_in_table_vocabulary(
    const std::string& name,
    std::string* tablename,
    std::string* attributes)
{
    const auto entry = tablenames().find(dbapi::normalised(name));
    const bool found = entry != tablenames().end();
    *tablename = found ? entry->second.first : std::string();
    *attributes = found ? entry->second.second : std::string();
    return found;
}

bool dbapi_find_category_from_category_vocabulary(const std::string& name, std::string* category)
{
    return find_word(categories(), name, category);
}

bool dbapi_find_datatype_from_datatype_vocabulary(const std::string& name, std::string* datatype)
{
    return find_word(datatypes(), name, datatype);
}

bool dbapi_is_category_fixed(const std::string& name)
{
    const std::string category = dbapi::normalised(name);
    return category == "FIXED" || category == "BUILTINFIXED";
}

bool dbapi_is_category_input(const std::string& name, bool* isInput, bool* isOutput)
{
    const std::string category = dbapi::convert_to_short_category_name(name);
    *isInput = category == "IN";
    *isOutput = category == "OUT";
    return *isInput || *isOutput;
}

std::string dbapi_convert_to_short_category_name(const std::string& name)
{
    return dbapi::convert_to_short_category_name(name);
}

namespace dbapi {
bool is_string_a_valid_tablename(const std::string& name)
{
    return build_tablenames_vocabulary().count(normalised(name)) != 0;
}

bool is_string_a_valid_category(const std::string& name)
{
    return dbapi_is_category_fixed(name) ||
           build_categories_vocabulary().count(normalised(name)) != 0;
}

bool is_string_a_valid_datatype(const std::string& name)
{
    return build_datatypes_vocabulary().count(normalised(name)) != 0;
}

std::string convert_to_full_category_name(const std::string& name)
{
    const std::string category = normalised(name);
    if (category == "IN") {
        return "INPUT";
    }
    return category == "OUT" ? "OUTPUT" : name;
}

std::string convert_to_short_category_name(const std::string& name)
{
    const std::string category = normalised(name);
    if (category == "INPUT") {
        return "IN";
    }
    return category == "OUTPUT" ? "OUT" : name;
}

std::string convert_to_full_datatype_name(const std::string& name)
{
    std::string datatype = normalised(name);
    for (const auto& [word, shortName] : datatype_names()) {
        if (datatype == shortName) {
            return word;
        }
    }
    return datatype;
}

std::string convert_to_short_datatype_name(const std::string& name)
{
    std::string datatype = normalised(name);
    for (const auto& [word, shortName] : datatype_names()) {
        if (datatype == word) {
            return shortName;
        }
    }
    return datatype;
}

std::string convert_setup_is_input_to_full_category_name(bool isInput)
{
    return isInput ? "INPUT" : "OUTPUT";
}

std::string convert_setup_is_input_to_short_category_name(bool isInput)
{
    return isInput ? "IN" : "OUT";
}

bool compare_category_names(const std::string& a, const std::string& b)
{
    return convert_to_full_category_name(normalised(a)) ==
           convert_to_full_category_name(normalised(b));
}
} // namespace dbapi
