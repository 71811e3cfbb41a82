#include "dbif/value/key_definition.h"

#include "dbif/host/host_string.h"

namespace dbif {
std::string column_key(std::string_view category, ValueKind kind, std::string_view name)
{
    std::string key(category);
    key += "|" + to_utf8(datatype_name(kind)) + "|";
    return key.append(name);
}

std::optional<KeyDefinition> split_column_key(std::string_view key)
{
    const std::size_t first = key.find('|');
    const std::size_t second = first == std::string_view::npos ? first : key.find('|', first + 1);
    if (second == std::string_view::npos) {
        return std::nullopt;
    }
    const auto kind = value_kind(to_qt(key.substr(first + 1, second - first - 1)));
    if (!kind.has_value()) {
        return std::nullopt;
    }
    return KeyDefinition{
        0, std::string(key.substr(second + 1)), *kind, std::string(key.substr(0, first)),
        std::string(key)};
}
} // namespace dbif
