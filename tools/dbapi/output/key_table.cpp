#include "tools/dbapi/output/key_table.h"

#include "dbif/host/host_number.h"

namespace dbapi::tool {
namespace {
constexpr const char* kPoints = "points";

std::string number_text(const std::optional<double>& number)
{
    return number.has_value() ? dbif::double_text(*number) : std::string();
}

std::string cell(const std::string& heading, const std::string& table, const KeyStatistics& key)
{
    if (heading == "key") {
        return key.name;
    }
    if (heading == "table") {
        return table;
    }
    if (heading == "category") {
        return key.category;
    }
    if (heading == "datatype") {
        return key.datatype;
    }
    if (heading == "records") {
        return std::to_string(key.records);
    }
    if (heading == kPoints) {
        return key.points.has_value() ? std::to_string(*key.points) : std::string();
    }
    return number_text(heading == "minimum" ? key.minimum : key.maximum);
}
} // namespace

std::vector<DataColumn> key_columns(bool hasPoints)
{
    std::vector<DataColumn> columns;
    for (const char* heading : {"key", "table", "category", "datatype"}) {
        columns.push_back({heading, {}});
    }
    for (const char* heading : {"records", kPoints, "minimum", "maximum"}) {
        if (hasPoints || heading != kPoints) {
            columns.push_back({heading, {}, DataColumn::Content::Numbers});
        }
    }
    return columns;
}

void add_keys(
    const std::string& table,
    const std::vector<KeyStatistics>& keys,
    std::vector<DataColumn>* columns)
{
    for (const KeyStatistics& key : keys) {
        for (DataColumn& column : *columns) {
            column.values.push_back(cell(column.heading, table, key));
        }
    }
}
} // namespace dbapi::tool
