#include "dbapi/words/vocabulary.h"
#include "dbif/host/host_string.h"
#include "dbif/query/dynamic_column.h"
#include "dbif/schema/schema_names.h"

#include <array>

namespace dbapi {
namespace {
struct Abbreviation
{
    const char* spelling;
    const char* tablename;
    std::string category;
};

constexpr std::array<std::pair<const char*, const char*>, 7> kTableWords{
    {{"CATALOG_ENTRY", "catalog_entry"},
     {"DIE", "die"},
     {"DEVICE", "device"},
     {"MEASUREMENT", "measurement"},
     {"MEASUREMENT_CONDITION", "measurement_condition"},
     {"ROUTINE", "routine"},
     {"SETUP", "setup"}}};

/// Each of these also exists with a suffix letter for the data type. Die and routine hold no keys
/// of users and have none.
std::vector<Abbreviation> abbreviations()
{
    return {
        {"CE", "catalog_entry", ""},
        {"DE", "device", ""},
        {"DEV", "device", dbif::to_utf8(DBIF_DeviceColumn::PHYSICAL_CATEGORY)},
        {"CAL", "device", dbif::to_utf8(DBIF_DeviceColumn::CALIBRATION_CATEGORY)},
        {"ID", "device", dbif::to_utf8(DBIF_DeviceColumn::ID_CATEGORY)},
        {"NOD", "device", dbif::to_utf8(DBIF_DeviceColumn::NODE_CATEGORY)},
        {"TECH", "device", dbif::to_utf8(DBIF_DeviceColumn::TECHNOLOGY_CATEGORY)},
        {"ME", "measurement", ""},
        {"MC", "measurement_condition", ""},
        {"IN", "setup", "IN"},
        {"OUT", "setup", "OUT"},
        {"SET", "setup", ""},
    };
}

std::vector<std::pair<std::string, std::string>> datatype_suffixes()
{
    return {
        {"D", dbif::to_utf8(DOUBLE_DATATYPE)},
        {"M", dbif::to_utf8(COMPLEX_MATRIX_DATATYPE)},
        {"S", dbif::to_utf8(TEXT_DATATYPE)},
        {"X", dbif::to_utf8(COMPLEX_NUMBER_DATATYPE)},
    };
}
} // namespace

std::map<std::string, std::pair<std::string, std::string>> build_tablenames_vocabulary()
{
    std::map<std::string, std::pair<std::string, std::string>> vocabulary;
    for (const auto& [spelling, tablename] : kTableWords) {
        vocabulary.emplace(spelling, std::pair(tablename, ""));
    }
    const auto suffixes = datatype_suffixes();
    for (const Abbreviation& entry : abbreviations()) {
        vocabulary.emplace(entry.spelling, std::pair(entry.tablename, entry.category));
        for (const auto& [letter, datatype] : suffixes) {
            vocabulary.emplace(
                entry.spelling + letter,
                std::pair(entry.tablename, entry.category + "|" + datatype));
        }
    }
    return vocabulary;
}

std::map<std::string, std::string> build_categories_vocabulary()
{
    std::map<std::string, std::string> vocabulary{
        {"IN", "IN"}, {"INPUT", "IN"}, {"OUT", "OUT"}, {"OUTPUT", "OUT"}};
    for (const QString& category :
         {DBIF_DeviceColumn::CALIBRATION_CATEGORY, DBIF_DeviceColumn::ID_CATEGORY,
          DBIF_DeviceColumn::NODE_CATEGORY, DBIF_DeviceColumn::PHYSICAL_CATEGORY,
          DBIF_DeviceColumn::TECHNOLOGY_CATEGORY, DBIF_DeviceColumn::IS_MEASUREMENT_CATEGORY}) {
        const std::string text = dbif::to_utf8(category);
        vocabulary.emplace(text, text);
    }
    return vocabulary;
}

std::map<std::string, std::string> build_datatypes_vocabulary()
{
    std::map<std::string, std::string> vocabulary;
    for (const auto& [word, shortName] : datatype_names()) {
        vocabulary.emplace(word, shortName);
    }
    for (const auto& [word, shortName] : datatype_names()) {
        vocabulary.emplace(shortName, shortName);
    }
    return vocabulary;
}

const std::vector<std::pair<std::string, std::string>>& datatype_names()
{
    static const std::vector<std::pair<std::string, std::string>> names{
        {"DOUBLE", dbif::to_utf8(DOUBLE_DATATYPE)},
        {"TEXT", dbif::to_utf8(TEXT_DATATYPE)},
        {"COMPLEX", dbif::to_utf8(COMPLEX_NUMBER_DATATYPE)},
        {"MATRIX", dbif::to_utf8(COMPLEX_MATRIX_DATATYPE)}};
    return names;
}
} // namespace dbapi
