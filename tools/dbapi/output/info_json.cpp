#include "tools/dbapi/output/info_text.h"

#include <nlohmann/json.hpp>

namespace dbapi::tool {
namespace {
using Json = nlohmann::ordered_json;

template <typename Value>
Json or_null(const std::optional<Value>& value)
{
    return value.has_value() ? Json(*value) : Json();
}

Json keys_json(const std::vector<KeyStatistics>& keys)
{
    Json list = Json::array();
    for (const KeyStatistics& key : keys) {
        Json& json = list.emplace_back(Json{
            {"key", key.name},
            {"category", key.category},
            {"datatype", key.datatype},
            {"records", key.records}});
        if (key.points.has_value()) {
            json["points"] = *key.points;
        }
        json["minimum"] = or_null(key.minimum);
        json["maximum"] = or_null(key.maximum);
    }
    return list;
}

Json tables_json(const DatabaseInfo& info)
{
    Json list = Json::array();
    for (const DatabaseInfo::Table& table : info.tables) {
        list.push_back(
            {{"table", table.name},
             {"records", table.records},
             {"superseded", or_null(table.superseded)},
             {"keys", keys_json(table.keys)}});
    }
    return list;
}

Json groups_json(const std::vector<DatabaseInfo::Group>& groups, const char* counted)
{
    Json list = Json::array();
    for (const DatabaseInfo::Group& group : groups) {
        list.push_back({{"name", or_null(group.text)}, {counted, group.records}});
    }
    return list;
}

Json temperatures_json(const std::vector<DatabaseInfo::Temperature>& temperatures)
{
    Json list = Json::array();
    for (const DatabaseInfo::Temperature& temperature : temperatures) {
        list.push_back(
            {{"celsius", or_null(temperature.celsius)},
             {"measurements", temperature.measurements}});
    }
    return list;
}

Json import_json(const DatabaseInfo::Import& import)
{
    return {
        {"time", import.time},
        {"user", import.user},
        {"application", import.application},
        {"application_version", import.applicationVersion},
        {"measurements", import.measurements},
        {"setups", import.setups}};
}
} // namespace

std::string info_json(const DatabaseInfo& info)
{
    Json json{
        {"connection", info.connection},
        {"engine", info.engine},
        {"engine_version", info.engineVersion},
        {"database", info.database},
        {"host", info.host},
        {"schema_version", info.schemaVersion},
        {"bytes", or_null(info.bytes)},
        {"points", info.points},
        {"device_types", groups_json(info.deviceTypes, "devices")},
        {"lots", groups_json(info.lots, "devices")},
        {"routines", groups_json(info.routines, "measurements")},
        {"setup_names", groups_json(info.setupNames, "setups")},
        {"temperatures", temperatures_json(info.temperatures)},
        {"first_time", info.firstTime},
        {"last_time", info.lastTime},
        {"last_import", info.lastImport.has_value() ? import_json(*info.lastImport) : Json()},
        {"tables", tables_json(info)}};
    return json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}
} // namespace dbapi::tool
