#include "dbapi/words/builtin_keynames.h"

#include "dbapi/words/text_rules.h"

#include <array>
#include <utility>

namespace {
constexpr std::array<std::pair<const char*, const char*>, 42> kBuiltins{
    {{"$APP", "catalog_entry.application"},
     {"$APPVER", "catalog_entry.application_version"},
     {"$TESTTYPE", "catalog_entry.run_type"},
     {"$STARTTIME", "catalog_entry.start_time"},
     {"$ENDTIME", "catalog_entry.end_time"},
     {"$CATDBID", "catalog_entry.id"},
     {"$CATTIME", "catalog_entry.modified_time"},
     {"$CATUSER", "catalog_entry.user"},
     {"$DEVTYPE", "device.device_type"},
     {"$SUBSITE", "device.parent_subsite_name"},
     {"$DEVDBID", "device.id"},
     {"$DEVID", "device.position_within_subsite"},
     {"$DEVNAME", "device.name"},
     {"$DEVTIME", "device.modified_time"},
     {"$DEVUSER", "device.user"},
     {"$DIEDBID", "die.id"},
     {"$LOT", "die.lot"},
     {"$WAFER", "die.wafer"},
     {"$DIE", "die.die"},
     {"$BLOCK", "die.block"},
     {"$DIETIME", "die.modified_time"},
     {"$DIEUSER", "die.user"},
     {"$MCDBID", "measurement_condition.id"},
     {"$MCNAME", "measurement_condition.name"},
     {"$MCTIME", "measurement_condition.modified_time"},
     {"$MCUSER", "measurement_condition.user"},
     {"$ROUTINEDBID", "routine.id"},
     {"$ROUTINENAME", "routine.name"},
     {"$ROUTINETIME", "routine.modified_time"},
     {"$ROUTINEUSER", "routine.user"},
     {"$DATAORIGIN", "measurement.DataOrigin"},
     {"$TEMP", "measurement.temperature"},
     {"$MEASDBID", "measurement.id"},
     {"$MEASTIME", "measurement.modified_time"},
     {"$MEASUSER", "measurement.user"},
     {"$RUNTYPE", "setup.run_type"},
     {"$SETDATAORIGIN", "setup.data_origin"},
     {"$SETDBID", "setup.id"},
     {"$SETNAME", "setup.name"},
     {"$SETPATH", "setup.path"},
     {"$SETTIME", "setup.modified_time"},
     {"$SETUSER", "setup.user"}}};

const std::map<std::string, std::string>& builtins()
{
    static const std::map<std::string, std::string> table = dbapi::build_builtin_keywords(false);
    return table;
}

/// The column that a builtin keyname stands for.
struct Builtin
{
    std::string column;
    std::string table;
};

/// By normalised spelling.
const std::map<std::string, Builtin>& places()
{
    static const std::map<std::string, Builtin> table = [] {
        std::map<std::string, Builtin> made;
        for (const auto& [builtin, column] : builtins()) {
            const std::size_t dot = column.find('.');
            made[builtin] = {column.substr(dot + 1), column.substr(0, dot)};
        }
        return made;
    }();
    return table;
}

/// By "TABLE.COLUMN", in upper case.
const std::map<std::string, std::string>& builtins_by_column()
{
    static const std::map<std::string, std::string> table = dbapi::build_builtin_keywords(true);
    return table;
}

[[maybe_unused]] const bool builtAtLoad = !builtins().empty();
} // namespace

bool dbapi_is_vanto_builtin_keyname(
    const std::string& keyword,
    std::string* keyname,
    std::string* tablename)
{
    const auto place = places().find(dbapi::normalised(keyword));
    const bool isBuiltin = place != places().end();
    if (keyname != nullptr) {
        *keyname = isBuiltin ? place->second.column : std::string();
    }
    if (tablename != nullptr) {
        *tablename = isBuiltin ? place->second.table : std::string();
    }
    return isBuiltin;
}

bool dbapi_is_builtin_keyword_dynamic(const std::string& keyword)
{
    static const std::set<std::string> dynamic = dbapi::dynamic_builtin_keywords();
    return dynamic.contains(keyword) && dbapi::db_is_vanto_builtin_keyname(keyword);
}

bool dbapi_convert_keyword_to_builtin_keyname(const std::string& text, std::string* builtin)
{
    const auto found = builtins_by_column().find(dbapi::normalised(text));
    const bool isFound = found != builtins_by_column().end();
    if (builtin != nullptr) {
        *builtin = isFound ? found->second : std::string();
    }
    return isFound;
}

void dbapi_convert_any_keynames_in_set_to_builtins(
    std::set<std::string>& keynames,
    const std::string& tablename)
{
    const std::string prefix = tablename + ".";
    std::set<std::string> converted;
    for (const std::string& keyname : keynames) {
        std::string builtin;
        const bool isFixed = dbapi_convert_keyword_to_builtin_keyname(prefix + keyname, &builtin);
        converted.insert(isFixed ? builtin : keyname);
    }
    keynames = std::move(converted);
}

namespace dbapi {
std::map<std::string, std::string> build_builtin_keywords(bool reverse)
{
    std::map<std::string, std::string> table;
    for (const auto& [builtin, column] : kBuiltins) {
        if (reverse) {
            table.emplace(normalised(column), builtin);
        } else {
            table.emplace(builtin, column);
        }
    }
    return table;
}

std::set<std::string> dynamic_builtin_keywords()
{
    return {"$DATAORIGIN"};
}

bool db_get_builtin_keynames(std::set<std::string>* keynames)
{
    keynames->clear();
    for (const auto& entry : builtins()) {
        keynames->insert(entry.first);
    }
    return true;
}

bool db_is_vanto_builtin_keyname(const std::string& keyword)
{
    return dbapi_is_vanto_builtin_keyname(keyword, nullptr, nullptr);
}
} // namespace dbapi
