#pragma once

#include <optional>
#include <string>
#include <vector>

class DBIF_Connection;
class DBIF_QueryCondition;

namespace dbapi {
/// The values that the selected records of a table hold under one key, in numbers.
struct KeyStatistics
{
    std::string name;
    /// In full: "PHYSICAL", "INPUT"; empty for tables whose keys have none.
    std::string category;
    /// In full: "DOUBLE".
    std::string datatype;
    /// The number of records that have the key.
    long long records = 0;
    /// The number of points they have under it; nothing for other tables than setup.
    std::optional<long long> points;
    /// The smallest and largest number; nothing for keys that hold no real numbers. Those of setups
    /// are over whole columns, whichever of their points a condition selects.
    std::optional<double> minimum;
    std::optional<double> maximum;
};

/// The keys that the selected records of a table have, by name, with their statistics: one
/// statement, whatever the number of keys. None for die and routine. The records are chosen as by
/// `select_records`. Throws `DBIF_Exception`.
std::vector<KeyStatistics> read_key_statistics(
    DBIF_Connection& connection,
    const std::string& tablename,
    const DBIF_QueryCondition* condition,
    bool latestOnly);
} // namespace dbapi
