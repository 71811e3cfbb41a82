#include "tools/dbapi/output/info_text.h"

#include "dbapi/words/text_rules.h"
#include "dbif/host/host_number.h"
#include "dbsuggest/data_table.h"
#include "dbsuggest/display_text.h"
#include "dbsuggest/table_text.h"
#include "dbsuggest/wrapped_text.h"

#include "tools/dbapi/output/key_table.h"
#include "tools/dbapi/output/terminal.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace dbapi::tool {
namespace {
/// More are counted, not named.
constexpr std::size_t kMostGroups = 12;
/// The width of what stands before the groups.
constexpr std::size_t kIndent = 16;

/// "5.2 MB".
std::string size_text(long long bytes)
{
    constexpr std::array kUnits{"bytes", "kB", "MB", "GB", "TB"};
    auto number = static_cast<double>(bytes);
    std::size_t unit = 0;
    while (number >= 1000 && unit + 1 < kUnits.size()) {
        number /= 1000;
        ++unit;
    }
    std::array<char, 64> text{};
    const int decimals = unit == 0 || number >= 100 ? 0 : 1;
    std::snprintf(text.data(), text.size(), "%.*f %s", decimals, number, kUnits.at(unit));
    return text.data();
}

std::string database_text(const DatabaseInfo& info)
{
    std::string text = info.host.empty()
                           ? "The SQLite file " + dbapi::quoted(info.database)
                           : "The database " + dbapi::quoted(info.database) + " at " + info.host +
                                 ", " + info.engine + " " + info.engineVersion;
    if (info.bytes.has_value()) {
        text += ", " + size_text(*info.bytes);
    }
    return text + ", with version " + std::to_string(info.schemaVersion) + " of the schema.";
}

std::string table_of_records(const DatabaseInfo& info, bool isBold)
{
    DataTable table{{}, "", {{"table", {}}, {"records", {}}, {"superseded", {}}, {"keys", {}}}};
    for (const DatabaseInfo::Table& read : info.tables) {
        const std::string superseded =
            read.superseded.has_value() ? std::to_string(*read.superseded) : "";
        const std::string keys = read.keys.empty() ? "" : std::to_string(read.keys.size());
        const std::array<std::string, 4> row{
            read.name, std::to_string(read.records), superseded, keys};
        for (std::size_t i = 0; i < row.size(); ++i) {
            table.columns[i].values.push_back(row.at(i));
        }
    }
    return table_text(table, {kAllRows, isBold});
}

/// "Lots            A7 (55), A8 (49), and 3 more"; nothing without groups.
std::string group_lines(const std::string& name, std::vector<std::string> groups, std::size_t width)
{
    if (groups.empty()) {
        return {};
    }
    if (groups.size() > kMostGroups) {
        const std::size_t hidden = groups.size() - kMostGroups;
        groups.resize(kMostGroups);
        groups.push_back("and " + std::to_string(hidden) + " more");
    }
    std::string line = name;
    line.resize(kIndent, ' ');
    std::string text;
    for (std::size_t i = 0; i < groups.size(); ++i) {
        const std::string group = groups[i] + (i + 1 < groups.size() ? "," : "");
        if (i > 0 && display_width(line) + 1 + display_width(group) > width) {
            text += line + "\n";
            line = std::string(kIndent, ' ') + group;
        } else {
            line += (i > 0 ? " " : "") + group;
        }
    }
    return text + line + "\n";
}

std::string group_text(const std::string& name, long long records)
{
    return name + " (" + std::to_string(records) + ")";
}

std::vector<std::string>
named_groups(const std::vector<DatabaseInfo::Group>& groups, const std::string& none)
{
    std::vector<std::string> texts;
    texts.reserve(groups.size());
    for (const DatabaseInfo::Group& group : groups) {
        texts.push_back(
            group_text(group.text.has_value() ? display_text(*group.text) : none, group.records));
    }
    return texts;
}

std::vector<std::string>
temperature_groups(const std::vector<DatabaseInfo::Temperature>& temperatures)
{
    std::vector<std::string> texts;
    for (const DatabaseInfo::Temperature& temperature : temperatures) {
        const std::string name = temperature.celsius.has_value()
                                     ? dbif::double_text(*temperature.celsius) + " C"
                                     : "no temperature";
        texts.push_back(group_text(name, temperature.measurements));
    }
    return texts;
}

std::string times_text(const DatabaseInfo& info, std::size_t width)
{
    if (info.firstTime.empty()) {
        return {};
    }
    std::string text = "Stored          " + info.firstTime +
                       (info.lastTime == info.firstTime ? "" : " to " + info.lastTime) + " (UTC)\n";
    if (!info.lastImport.has_value()) {
        return text;
    }
    const DatabaseInfo::Import& import = *info.lastImport;
    std::string last =
        counted(static_cast<std::size_t>(import.setups), "setup") + " at " + import.time;
    if (!import.user.empty()) {
        last += " by " + display_text(import.user);
    }
    if (!import.application.empty()) {
        last += " with " + display_text(import.application) +
                (import.applicationVersion.empty() ? "" : " ") +
                display_text(import.applicationVersion);
    }
    return text + "Last import     " + wrapped_text(last, kIndent, width).substr(kIndent);
}
} // namespace

std::string info_text(const DatabaseInfo& info, std::size_t width, bool isBold)
{
    // A path is not broken, to be copied.
    std::string text = display_text(database_text(info)) + "\n\n";
    text += table_of_records(info, isBold) + "\n";
    text += group_lines("Device types", named_groups(info.deviceTypes, "no type"), width);
    text += group_lines("Lots", named_groups(info.lots, "no lot"), width);
    text += group_lines("Routines", named_groups(info.routines, "no routine"), width);
    text += group_lines("Setups", named_groups(info.setupNames, "no name"), width);
    text += group_lines("Temperatures", temperature_groups(info.temperatures), width);
    text += info.points == 0 ? "" : "Points          " + std::to_string(info.points) + "\n";
    text += times_text(info, width);
    DataTable keys;
    keys.columns = key_columns(true);
    for (const DatabaseInfo::Table& table : info.tables) {
        add_keys(table.name, table.keys, &keys.columns);
    }
    return text + (keys.rows() == 0 ? "" : "\n" + table_text(keys, {kAllRows, isBold}));
}
} // namespace dbapi::tool
