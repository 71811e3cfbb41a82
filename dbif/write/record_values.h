#pragma once

#include "dbif/sweep/sweep_array.h"
#include "dbif/value/data_type.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace dbif {
/// Fixed columns of a record by name, as text. A column that is not among them is missing.
using FixedTexts = std::map<std::string, std::string>;

/// One key of a record with its value. Doubles stand in `number`, everything else in `text`
/// (complex numbers and matrices as they print).
struct KeyValue
{
    std::string name;
    ValueKind kind = ValueKind::Double;
    /// Empty for tables whose keys have none.
    std::string category;
    double number = 0;
    std::string text;

    bool operator==(const KeyValue& other) const = default;
};

/// The definition of a key that a database did not have before.
struct NewKey
{
    /// The record table, "device".
    std::string table;
    std::string name;
    ValueKind kind = ValueKind::Double;
    /// "IN" or "OUT" for a setup's key; empty for tables whose keys have none.
    std::string category;
};

/// One column of a setup.
struct SetupColumn
{
    std::string name;
    bool isInput = false;
    /// The data header of the column; may be empty.
    std::string header;
    SweepArray values;
};

struct MeasurementRecord
{
    int catalogEntry = 0;
    /// The id of the device; 0 when there is none.
    int device = 0;
    int routine = 0;
    std::optional<double> temperature;
    std::vector<KeyValue> keys;
};
} // namespace dbif
