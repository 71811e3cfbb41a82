#pragma once

#include "dbif/write/record_writer.h"
#include "dbimport/file_faults.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace dbapi {
/// The columns and keys of one record that the file gives.
template <typename Fields>
struct RecordParts
{
    Fields fields;
    std::vector<dbif::KeyValue> keys;

    [[nodiscard]] bool isEmpty() const { return fields == Fields() && keys.empty(); }

    bool operator==(const RecordParts& other) const = default;
};

/// The records that a sweep belongs to, as the lines "# KEYWORD = VALUE" of its file tell them.
struct Annotations
{
    RecordParts<dbif::CatalogEntryFields> catalogEntry;
    RecordParts<dbif::RoutineFields> routine;
    RecordParts<dbif::DieFields> die;
    RecordParts<dbif::DeviceFields> device;
    std::optional<double> temperature;
    std::vector<dbif::KeyValue> measurementKeys;
    RecordParts<dbif::ConditionFields> condition;
    RecordParts<dbif::SetupFields> setup;
};

/// Tells whether they tell the device from others. What it is made on alone does not.
bool names_device(const Annotations& annotations);

/// Reads the annotation lines of one file.
class AnnotationReader
{
public:
    explicit AnnotationReader(FileFaults* faults) : faults_(faults) {}

    /// One line that begins with "#"; the line end does not belong to it.
    void addLine(std::size_t line, const std::string& text);

    /// The keyword and the value of one, where they stand apart: `line` is named in its faults.
    void addKeyword(std::size_t line, const std::string& keyword, const std::string& value);

    /// The records that the lines tell of, once they are all read.
    [[nodiscard]] Annotations take();

private:
    void addBuiltin(
        std::size_t line,
        const std::string& builtin,
        const std::string& table,
        const std::string& column,
        const std::string& value);
    void addKey(std::size_t line, const std::string& keyword, const std::string& value);
    void addKeyValue(
        std::size_t line,
        const std::string& table,
        dbif::KeyValue key,
        const std::string& value);
    /// Tells whether the key or column is given for the first time.
    bool isFirst(std::size_t line, const std::string& keyword, const std::string& identity);

    FileFaults* faults_;
    Annotations read_;
    std::map<std::string, std::size_t> lineOf_;
};
} // namespace dbapi
