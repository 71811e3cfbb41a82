#include "dbif/write/key_writer.h"

#include "dbif/connection/bulk_cursor.h"
#include "dbif/host/exception.h"
#include "dbif/host/host_number.h"
#include "dbif/host/host_string.h"
#include "dbif/query/dynamic_column.h"
#include "dbif/value/complex_values.h"
#include "dbif/write/record_identity.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace dbif {
void check_text(const std::string& text, const std::string& what)
{
    if (!is_utf8(text)) {
        throw_error(what + " is not UTF-8 text. Save the file as UTF-8.", __FILE__, __LINE__);
    }
    if (text.find('\0') != std::string::npos) {
        throw_error(what + " holds a zero byte, which no text may. Remove it.", __FILE__, __LINE__);
    }
}

namespace {
void check_name(const std::string& name, NewKeyNames names)
{
    const std::string what = "The key name \"" + name + "\"";
    check_text(name, what);
    if (trimmed(name).empty()) {
        throw_error("A key has an empty name. Give it one.", __FILE__, __LINE__);
    }
    if (trimmed(name) != name) {
        throw_error(what + " begins or ends with a blank. Remove it.", __FILE__, __LINE__);
    }
    if (name.find(',') != std::string::npos || upper_case(name).find("KEY(") != std::string::npos) {
        throw_error(
            what + " holds a comma or \"KEY(\", which no keyword could name. Choose another name.",
            __FILE__, __LINE__);
    }
    if (names == NewKeyNames::WithoutBuiltins && name.front() == '$') {
        throw_error(
            what +
                " begins with \"$\", as only builtin keynames such as $LOT do, and would be taken "
                "for one. Choose another name.",
            __FILE__, __LINE__);
    }
}

void check_category(const TableInfo& f, const std::string& name, const std::string& category)
{
    static const std::array kDeviceCategories{
        &DBIF_DeviceColumn::ID_CATEGORY,          &DBIF_DeviceColumn::PHYSICAL_CATEGORY,
        &DBIF_DeviceColumn::CALIBRATION_CATEGORY, &DBIF_DeviceColumn::NODE_CATEGORY,
        &DBIF_DeviceColumn::TECHNOLOGY_CATEGORY,  &DBIF_DeviceColumn::IS_MEASUREMENT_CATEGORY};
    if (f.table == RecordTable::Device) {
        if (std::any_of(
                kDeviceCategories.begin(), kDeviceCategories.end(),
                [&category](const QString* known) { return to_utf8(*known) == category; })) {
            return;
        }
        throw_error(
            "The device key \"" + name + "\" has the category \"" + category +
                "\". Give it one of ID, PHYSICAL, CALIBRATION, NODE, TECHNOLOGY, IS_MEASUREMENT.",
            __FILE__, __LINE__);
    }
    if (f.keys == KeyKind::None) {
        throw_error(
            "The table \"" + std::string(f.name) + "\" has no keys, so \"" + name +
                "\" cannot be one.",
            __FILE__, __LINE__);
    }
    if (f.keys != KeyKind::Direction && !category.empty()) {
        throw_error(
            "Keys of the table \"" + std::string(f.name) + "\" have no category, but \"" + name +
                "\" has \"" + category + "\". Leave it out.",
            __FILE__, __LINE__);
    }
}

void check_value(const KeyValue& key)
{
    const std::string what = "The value of the key \"" + key.name + "\"";
    if (key.kind == ValueKind::Double && std::isinf(key.number)) {
        throw_error(what + " is infinite. Only finite numbers can be stored.", __FILE__, __LINE__);
    }
    check_text(key.text, what);
    const bool isComplex = key.kind == ValueKind::Complex && read_complex(key.text).has_value();
    const bool isMatrix = key.kind == ValueKind::Matrix && read_matrix(key.text).has_value();
    if (!isComplex && key.kind == ValueKind::Complex) {
        throw_error(
            what + ", \"" + key.text + "\", is no complex number. Write it like 1.5-2j.", __FILE__,
            __LINE__);
    }
    if (!isMatrix && key.kind == ValueKind::Matrix) {
        throw_error(
            what + ", \"" + key.text +
                "\", is no matrix. Write it like [[1+0j, 0.5j], [0.5j, 1+0j]].",
            __FILE__, __LINE__);
    }
}
} // namespace

std::string canonical_text(const KeyValue& key)
{
    if (key.kind == ValueKind::Complex) {
        return complex_text(*read_complex(key.text));
    }
    if (key.kind == ValueKind::Matrix) {
        return matrix_text(*read_matrix(key.text));
    }
    return key.kind == ValueKind::Double ? double_text(key.number) : key.text;
}

bool is_missing(const KeyValue& key)
{
    return key.kind == ValueKind::Double ? std::isnan(key.number)
                                         : key.kind != ValueKind::Text && trimmed(key.text).empty();
}

std::map<std::string, int>& KeyWriter::definitionsOf(RecordTable table)
{
    std::optional<std::map<std::string, int>>& ids = ids_.at(static_cast<std::size_t>(table));
    if (!ids.has_value()) {
        ids.emplace();
        ColumnStore& store = ColumnStore::of(rows_.connection());
        store.refresh();
        for (const KeyDefinition& definition : store.all(rows_.connection(), table)) {
            ids->emplace(definition.key, definition.id);
        }
    }
    return *ids;
}

int KeyWriter::define(
    RecordTable table,
    const std::string& name,
    ValueKind kind,
    const std::string& category)
{
    const std::string key = column_key(category, kind, name);
    std::map<std::string, int>& ids = definitionsOf(table);
    const auto known = ids.find(key);
    if (known != ids.end()) {
        return known->second;
    }
    const TableInfo& f = table_info(table);
    check_name(name, names_);
    check_category(f, name, category);
    const int id = rows_.nextId(f.columnTable());
    const bool hasDirection = f.keys == KeyKind::Direction;
    RowInserter& row = rows_.into(
        f.columnTable(), {"id", "name", "data_type", hasDirection ? "is_input" : "category",
                          "column_key", "identity"});
    row.integer(id).text(name).text(to_utf8(datatype_name(kind)));
    if (hasDirection) {
        row.integer(category == "IN" ? 1 : 0);
    } else {
        row.text(category);
    }
    row.text(key).blob(RecordIdentity().text(key).digest()).endRow();
    rows_.into("multi_table_column", {"multi_table_id", "column_id"})
        .integer(static_cast<int>(table) + 1)
        .integer(id)
        .endRow();
    newKeys_.push_back({std::string(f.name), name, kind, category});
    return ids[key] = id;
}

void KeyWriter::add(
    RecordTable table,
    int record,
    const std::vector<KeyValue>& keys,
    StoredKeys* written)
{
    const TableInfo& f = table_info(table);
    StoredKeys own;
    StoredKeys& known = written == nullptr ? own : *written;
    for (const KeyValue& key : keys) {
        check_value(key);
        if (is_missing(key)) {
            continue;
        }
        const int column = define(table, key.name, key.kind, key.category);
        const std::string text = canonical_text(key);
        const auto first = known.find(column);
        if (first != known.end() && first->second == text) {
            continue;
        }
        if (first != known.end()) {
            throw_error(
                "The key \"" + key.name + "\" is given twice, as \"" + first->second +
                    "\" and as \"" + text + "\". Give it once.",
                __FILE__, __LINE__);
        }
        RowInserter& row =
            rows_.into(f.dataTable(), {f.linkColumn(), f.columnLink(), "number", "text"});
        row.integer(record).integer(column);
        if (key.kind == ValueKind::Double) {
            row.number(key.number).null();
        } else {
            row.null().text(text);
        }
        row.endRow();
        known.emplace(column, text);
    }
}

StoredKeys KeyWriter::read(RecordTable table, int record)
{
    const TableInfo& f = table_info(table);
    StoredKeys stored;
    SqlText sql;
    sql << "SELECT " << SqlName(f.columnLink()) << ", number, text FROM " << SqlName(f.dataTable())
        << " WHERE " << SqlName(f.linkColumn()) << " = " << record;
    BulkCursor cursor(rows_.connection(), sql);
    while (cursor.next()) {
        stored[cursor.integer(0)] =
            cursor.isNull(1) ? std::string(cursor.text(2)) : double_text(cursor.number(1));
    }
    return stored;
}

bool KeyWriter::addMissing(
    RecordTable table,
    int record,
    const std::vector<KeyValue>& keys,
    const std::string& what,
    StoredKeys* stored)
{
    std::vector<KeyValue> missing;
    for (const KeyValue& key : keys) {
        check_value(key);
        if (is_missing(key)) {
            continue;
        }
        const auto found = stored->find(define(table, key.name, key.kind, key.category));
        if (found == stored->end()) {
            missing.push_back(key);
        } else if (found->second != canonical_text(key)) {
            throw_error(
                what + " is stored with " + key.name + " = " + found->second + ", but here " +
                    key.name + " = " + canonical_text(key) +
                    ". Stored values are not overwritten: correct the value, or give the device another name.",
                __FILE__, __LINE__);
        }
    }
    add(table, record, missing, stored);
    return !missing.empty();
}
} // namespace dbif
