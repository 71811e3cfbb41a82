#include "dbimport/annotations.h"

#include "dbapi/words/builtin_keynames.h"
#include "dbapi/words/keyword_parts.h"
#include "dbapi/words/text_rules.h"
#include "dbapi/words/vocabulary.h"
#include "dbif/host/host_string.h"
#include "dbif/query/dynamic_column.h"
#include "dbimport/sweep_values.h"
#include "dbsuggest/nearest_text.h"

#include <utility>

namespace dbapi {
namespace {
constexpr const char* kDataOrigin = "DataOrigin";

/// Calls `use` with what is said of the table's record, except a measurement, which has no fixed
/// texts.
template <typename Use>
void with_parts(Annotations& annotations, dbif::RecordTable table, const Use& use)
{
    switch (table) {
    case dbif::RecordTable::CatalogEntry:
        return use(annotations.catalogEntry);
    case dbif::RecordTable::Routine:
        return use(annotations.routine);
    case dbif::RecordTable::Die:
        return use(annotations.die);
    case dbif::RecordTable::Device:
        return use(annotations.device);
    case dbif::RecordTable::MeasurementCondition:
        return use(annotations.condition);
    case dbif::RecordTable::Setup:
        return use(annotations.setup);
    case dbif::RecordTable::Measurement:
        break;
    }
}

std::vector<dbif::KeyValue>& keys_of(Annotations& annotations, dbif::RecordTable table)
{
    std::vector<dbif::KeyValue>* keys = &annotations.measurementKeys;
    with_parts(annotations, table, [&keys](auto& parts) { keys = &parts.keys; });
    return *keys;
}

/// Tells whether the database gives the column its value.
bool is_given_by_database(const std::string& column)
{
    return column == "id" || column == "modified_time" || column == "user";
}

bool is_device_category(const std::string& category)
{
    bool isInput = false;
    bool isOutput = false;
    return !category.empty() && !dbapi_is_category_input(category, &isInput, &isOutput);
}

/// How a key of that name is written out in full, for a message.
std::string full_spelling(const std::string& name, const std::string& table)
{
    const std::string shown = table.empty() ? "device" : table;
    return "Key(" + name + "," + shown + ",DOUBLE" + (shown == "device" ? ",PHYSICAL)" : ")");
}

/// The message for a keyword that says too little or too much to define a key; empty when it does
/// define one.
std::string fault_of_key(
    const std::string& name,
    const std::string& table,
    const std::string& category,
    const std::string& datatype)
{
    if (table == "setup") {
        return "Keys of a setup are columns: name them in the header row, like OUTD." + name + ".";
    }
    if (table == "die" || table == "routine") {
        return "The table " + table +
               " has no keys of its own, only $LOT, $WAFER, $DIE, $BLOCK "
               "and $ROUTINENAME.";
    }
    if (table.empty() || datatype.empty()) {
        return std::string("It does not say ") +
               (table.empty() ? "to which table the key belongs" : "what the key holds") +
               ". Write table and data type (DOUBLE, TEXT, COMPLEX or MATRIX), like " +
               full_spelling(name, table) + ".";
    }
    if (table == "device" && !is_device_category(category)) {
        return "Keys of a device have a category: ID, PHYSICAL, CALIBRATION, NODE, TECHNOLOGY or "
               "IS_MEASUREMENT. Write it, like " +
               full_spelling(name, table) + ".";
    }
    if (table != "device" && !category.empty()) {
        return "Keys of the table " + table + " have no category. Leave " + category + " out.";
    }
    std::string reason;
    is_key_name(name, &reason);
    return reason;
}
} // namespace

bool names_device(const Annotations& annotations)
{
    const dbif::DeviceFields& device = annotations.device.fields;
    return device.name.has_value() || device.parent_subsite_name.has_value() ||
           device.position_within_subsite.has_value();
}

void AnnotationReader::addLine(std::size_t line, const std::string& text)
{
    std::string reason;
    if (!is_storable_text(text, &reason)) {
        faults_->add(line, reason);
        return;
    }
    const std::string content = dbif::trimmed(text.substr(1));
    const std::size_t equals = content.find('=');
    if (content.empty()) {
        return;
    }
    const std::string keyword = dbif::trimmed(content.substr(0, equals));
    if (equals == std::string::npos || keyword.empty()) {
        faults_->add(
            line, quoted_beginning(text) + " is no annotation. Write \"# KEYWORD = VALUE\", like "
                                           "\"# $DEVNAME = nmos1\".");
        return;
    }
    addKeyword(line, keyword, dbif::trimmed(content.substr(equals + 1)));
}

void AnnotationReader::addKeyword(
    std::size_t line,
    const std::string& keyword,
    const std::string& value)
{
    std::string column;
    std::string table;
    if (dbapi_is_vanto_builtin_keyname(keyword, &column, &table)) {
        addBuiltin(line, dbif::upper_case(keyword), table, column, value);
    } else if (keyword.front() == '$') {
        std::set<std::string> builtins;
        db_get_builtin_keynames(&builtins);
        faults_->add(
            line, quoted_beginning(keyword) + " is no builtin keyname." +
                      suggestion(nearest_texts(keyword, builtins, 3)));
    } else {
        addKey(line, keyword, value);
    }
}

void AnnotationReader::addBuiltin(
    std::size_t line,
    const std::string& builtin,
    const std::string& table,
    const std::string& column,
    const std::string& value)
{
    if (is_given_by_database(column)) {
        faults_->add(
            line, builtin + " cannot be set: the database itself gives ids, times and users. "
                            "Leave the line out.");
        return;
    }
    if (dbapi_is_builtin_keyword_dynamic(builtin)) {
        dbif::KeyValue key;
        key.name = column;
        key.kind = dbif::ValueKind::Text;
        addKeyValue(line, table, std::move(key), value);
        return;
    }
    if (!isFirst(line, builtin, table + "." + column) || value.empty()) {
        return;
    }
    if (table != "measurement") {
        with_parts(read_, dbif::find_table(table)->table, [&](auto& parts) {
            dbif::set_field(column, value, &parts.fields);
        });
        return;
    }
    dbif::KeyValue temperature;
    temperature.name = column;
    std::string reason;
    if (set_key_value(value, &temperature, &reason)) {
        read_.temperature = temperature.number;
    } else {
        faults_->add(line, builtin + ": " + reason);
    }
}

void AnnotationReader::addKey(
    std::size_t line,
    const std::string& keyword,
    const std::string& value)
{
    dbif::KeyValue key;
    const SplitKeyword split = split_keyword(keyword);
    if (split.fault.has_value()) {
        faults_->add(line, syntax_reason(split.fault->text));
        return;
    }
    key.name = split.parts.keyname;
    const std::string& table = split.parts.tablename;
    if (db_is_vanto_builtin_keyname(key.name)) {
        faults_->add(
            line, quoted_beginning(keyword) +
                      " has a table or attributes, but the builtin keyname " + key.name +
                      " stands alone. Write it so.");
        return;
    }
    const KeyAttributes attributes = split_attributes(split.parts.attributes);
    key.category = attributes.category;
    const std::string fault = fault_of_key(key.name, table, key.category, attributes.datatype);
    if (!fault.empty()) {
        faults_->add(line, quoted_beginning(keyword) + " defines no key. " + fault);
        return;
    }
    key.kind = *dbif::value_kind(dbif::to_qt(attributes.datatype));
    addKeyValue(line, table, std::move(key), value);
}

void AnnotationReader::addKeyValue(
    std::size_t line,
    const std::string& table,
    dbif::KeyValue key,
    const std::string& value)
{
    const std::string shown = table + "." + key.name;
    const std::string identity = table + ";" + dbif::column_key(key.category, key.kind, key.name);
    if (!isFirst(line, shown, identity) || value.empty()) {
        return;
    }
    std::string reason;
    if (set_key_value(value, &key, &reason)) {
        keys_of(read_, dbif::find_table(table)->table).push_back(std::move(key));
    } else {
        faults_->add(line, shown + ": " + reason);
    }
}

bool AnnotationReader::isFirst(
    std::size_t line,
    const std::string& keyword,
    const std::string& identity)
{
    const auto [first, isNew] = lineOf_.emplace(identity, line);
    if (!isNew) {
        faults_->add(
            line, keyword + " is given in line " + std::to_string(first->second) +
                      " already. Give it once.");
    }
    return isNew;
}

Annotations AnnotationReader::take()
{
    for (const dbif::KeyValue& key : read_.measurementKeys) {
        std::optional<std::string>& origin = read_.setup.fields.data_origin;
        if (key.name == kDataOrigin && key.kind == dbif::ValueKind::Text && !origin.has_value()) {
            origin = key.text;
        }
    }
    return std::move(read_);
}
} // namespace dbapi
