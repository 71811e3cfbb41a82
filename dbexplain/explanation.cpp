#include "dbexplain/explanation.h"

#include "dbapi/words/vocabulary.h"

#include <algorithm>

namespace dbapi {
bool KeyExplanation::isNumber() const
{
    return datatype == kWholeNumber || datatype == convert_to_full_datatype_name("DOUBLE");
}

bool KeyExplanation::isOnPoints() const
{
    return column.isOnPoints();
}

const KeyExplanation* Explanation::keyOf(const std::string& keyword) const
{
    const auto found = std::find_if(
        keys.begin(), keys.end(), [&keyword](const auto& key) { return key.keyword == keyword; });
    return found == keys.end() ? nullptr : &*found;
}

std::size_t Explanation::keptRecords() const
{
    return tree.has_value() ? tree->alone->records : records;
}

std::string records_text(std::size_t count, dbif::RecordTable table)
{
    std::string name(dbif::table_info(table).name);
    std::replace(name.begin(), name.end(), '_', ' ');
    if (count != 1) {
        name = name.ends_with('y') ? name.substr(0, name.size() - 1) + "ies" : name + "s";
    }
    return std::to_string(count) + " " + name;
}
} // namespace dbapi
