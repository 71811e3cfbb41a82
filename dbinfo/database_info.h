#pragma once

#include "dbapi/key/key_statistics.h"

#include <optional>
#include <string>
#include <vector>

namespace dbapi {
/// What a database holds, at a glance. Plain data that belongs to the caller; texts are UTF-8, as
/// they are stored, and times UTC, as "2026-01-31T12:34:56.789". Where superseded records are not
/// named, they do not count.
struct DatabaseInfo
{
    struct Table
    {
        std::string name;
        long long records = 0;
        /// Those among them that later ones supersede; nothing for tables that have none.
        std::optional<long long> superseded;
        /// The keys that its records have, with their ranges; see `db_get_key_statistics`.
        std::vector<KeyStatistics> keys;
    };

    /// The records that have one text or number in common.
    struct Group
    {
        /// The text; nothing for records without one.
        std::optional<std::string> text;
        long long records = 0;
    };

    struct Temperature
    {
        /// In degrees Celsius; nothing for measurements without one.
        std::optional<double> celsius;
        long long measurements = 0;
    };

    /// The import, or the run of another program, that stored the latest measurement.
    struct Import
    {
        std::string time;
        std::string user;
        std::string application;
        std::string applicationVersion;
        long long measurements = 0;
        long long setups = 0;
    };

    /// As the caller named it.
    std::string connection;
    /// "SQLite" or "MySQL", and its version.
    std::string engine;
    std::string engineVersion;
    /// The path of the file, or the name of the database; and the server, empty for a file.
    std::string database;
    std::string host;
    int schemaVersion = 0;
    /// The bytes that the database takes, as far as the engine tells.
    std::optional<long long> bytes;

    /// The seven record tables by name.
    std::vector<Table> tables;
    /// The points of all setups.
    long long points = 0;

    /// Each from the largest group to the smallest: devices by type and by lot, measurements by
    /// routine, setups by name.
    std::vector<Group> deviceTypes;
    std::vector<Group> lots;
    std::vector<Group> routines;
    std::vector<Group> setupNames;
    /// From the coldest to the hottest.
    std::vector<Temperature> temperatures;

    /// When the first and the latest of the measurements were stored; empty without any.
    std::string firstTime;
    std::string lastTime;
    std::optional<Import> lastImport;
};

/// Looks a stored connection's database over, in one read transaction. It counts: the time grows
/// with the number of records, not with that of points. Nothing is written. Throws `FaultError`
/// when the connection does not open, and `DBIF_Exception` on a database error. Call it in the
/// thread in which the process makes its other data calls.
DatabaseInfo database_info(const std::string& connectionName);
} // namespace dbapi
