#include "tests/support/random_records.h"

#include "dbif/connection/column_store.h"
#include "dbif/value/complex_values.h"

#include <QVariant>

#include <limits>

namespace test_support {
namespace {
using enum RecordTable;

ModelValue number_value(double number)
{
    return {dbif::to_utf8(QVariant(number).toString()), number};
}

ModelValue random_value(Dice& dice, ValueKind kind)
{
    static const std::vector<double> kNumbers{
        0,    -0.0, 1, -2, 25, 1.2, 1.2 * (1 + 1e-11), 1.2 * (1 + 1e-9), 1.3000000000000001e-07,
        1e300};
    static const std::vector<ModelValue> kComplexNumbers{
        {"1.5-2j", {1.5, -2}}, {"1.5+2j", {1.5, 2}}, {"-1+0j", -1}};
    static const std::vector<std::string> kTexts{"", "a", "A", "a ", "b'c", "ü", "10", "9"};
    switch (kind) {
    case ValueKind::Double:
        return number_value(dice.of(kNumbers));
    case ValueKind::Complex:
        return dice.of(kComplexNumbers);
    default:
        return {dice.of(kTexts)};
    }
}

std::string stored_key(RecordTable table, const std::string& key)
{
    return dbif::table_info(table).dataTable() + key;
}

/// A text that is equal for records with equal columns and keys.
std::string identity_of(const dbif::FixedTexts& texts, const std::vector<dbif::KeyValue>& keys)
{
    std::string text;
    for (const auto& [name, value] : texts) {
        text += name + "=" + value + "\n";
    }
    for (const dbif::KeyValue& key : keys) {
        text += key.name + ":" + key.text + std::to_string(key.number + 0.0) + "\n";
    }
    return text + "\n";
}

template <typename Fields>
Fields fields_of(const dbif::FixedTexts& texts)
{
    Fields fields;
    for (const auto& [column, text] : texts) {
        EXPECT_TRUE(dbif::set_field(column, text, &fields)) << column;
    }
    return fields;
}

int id_of(const ModelRecord* record)
{
    return record == nullptr ? 0 : record->id;
}
} // namespace

const std::vector<ModelColumn>& random_columns()
{
    using enum ValueKind;
    static const std::vector<ModelColumn> kColumns{
        {CatalogEntry, "id", Double},
        {CatalogEntry, "application"},
        {CatalogEntry, "|TEXT|batch"},
        {CatalogEntry, "|DOUBLE|run", Double},
        {Routine, "id", Double},
        {Routine, "name"},
        {Die, "id", Double},
        {Die, "lot"},
        {Die, "wafer"},
        {Device, "id", Double},
        {Device, "name"},
        {Device, "parent_subsite_name"},
        {Device, "PHYSICAL|DOUBLE|W", Double},
        {Device, "PHYSICAL|DOUBLE|L", Double},
        {Device, "ID|TEXT|W"},
        {Device, "NODE|COMPLEX|z", Complex},
        {Measurement, "id", Double},
        {Measurement, "temperature", Double},
        {Measurement, "|TEXT|DataOrigin"},
        {Measurement, "|DOUBLE|gain", Double},
        {MeasurementCondition, "id", Double},
        {MeasurementCondition, "name"},
        {MeasurementCondition, "|DOUBLE|vd", Double},
        {MeasurementCondition, "|TEXT|mode"},
        {Setup, "id", Double},
        {Setup, "name"},
        {Setup, "path"},
        {Setup, "IN|DOUBLE|vg", Double},
        {Setup, "OUT|DOUBLE|id", Double},
        {Setup, "OUT|TEXT|flag"},
        {Setup, "OUT|COMPLEX|y", Complex}};
    return kColumns;
}

bool RandomRecords::has(const ModelColumn& column) const
{
    return !column.isKey() || keys_.contains(stored_key(column.table, column.name));
}

void RandomRecords::import()
{
    dbif::RecordWriter writer(connection_);
    newSetups_.clear();
    const dbif::FixedTexts texts = fixedTexts(CatalogEntry);
    const Keys values = keys(CatalogEntry);
    const ModelRecord& catalog = note(
        CatalogEntry, writer.addCatalogEntry(fields_of<dbif::CatalogEntryFields>(texts), values),
        {}, texts, values);
    for (std::size_t i = 1 + dice_.below(4); i > 0; --i) {
        const ModelRecord* device = dice_.chance(10) ? nullptr : addDevice(writer);
        for (std::size_t m = dice_.below(3); m > 0; --m) {
            addMeasurement(writer, dice_.chance(10) ? nullptr : &catalog, device);
        }
    }
    writer.commit();
    model_.supersede();
}

dbif::FixedTexts RandomRecords::fixedTexts(RecordTable table)
{
    dbif::FixedTexts texts;
    for (const ModelColumn& column : random_columns()) {
        if (column.table == table && column.kind == ValueKind::Text && !column.isKey() &&
            dice_.chance(70)) {
            texts[column.name] = random_value(dice_, ValueKind::Text).text;
        }
    }
    return texts;
}

/// Random keys, among them the stored ones with their values.
RandomRecords::Keys
RandomRecords::keys(RecordTable table, const std::map<std::string, ModelValue>& stored)
{
    Keys values;
    for (const ModelColumn& column : random_columns()) {
        const auto known = stored.find(column.name);
        if (column.table != table || !column.isKey() ||
            (known == stored.end() && dice_.chance(40))) {
            continue;
        }
        const ModelValue value =
            known != stored.end() ? known->second : random_value(dice_, column.kind);
        const auto parts = *dbif::split_column_key(column.name);
        const bool isNumber = column.kind == ValueKind::Double;
        values.push_back(
            {parts.name, column.kind, parts.category, isNumber ? value.number.real() : 0,
             isNumber ? "" : value.text});
    }
    return values;
}

ModelRecord& RandomRecords::note(
    RecordTable table,
    int id,
    const Parents& parents,
    const dbif::FixedTexts& texts,
    const Keys& keys)
{
    ModelRecord* record = nullptr;
    for (ModelRecord& known : model_.records(table)) {
        record = known.id == id ? &known : record;
    }
    if (record == nullptr) {
        record = &model_.add(table, id, parents);
    }
    for (const auto& [name, text] : texts) {
        record->values[name] = {text};
    }
    for (const dbif::KeyValue& key : keys) {
        const std::string unique = dbif::column_key(key.category, key.kind, key.name);
        ModelValue& value = record->values[unique];
        value = key.kind == ValueKind::Double ? number_value(key.number) : ModelValue{key.text};
        if (key.kind == ValueKind::Complex) {
            value.number = *dbif::read_complex(key.text);
        }
        keys_.insert(stored_key(table, unique));
    }
    return *record;
}

const ModelRecord* RandomRecords::addDevice(dbif::RecordWriter& writer)
{
    const ModelRecord* die = nullptr;
    if (dice_.chance(80)) {
        const dbif::FixedTexts texts = fixedTexts(Die);
        die = &note(Die, writer.findOrAddDie(fields_of<dbif::DieFields>(texts)), {}, texts);
    }
    const dbif::FixedTexts texts = fixedTexts(Device);
    const std::string identity = std::to_string(id_of(die)) + identity_of(texts, {});
    std::map<std::string, ModelValue> stored;
    for (const ModelRecord& known : model_.records(Device)) {
        if (known.identity == identity) {
            stored = known.values;
        }
    }
    const Keys values = keys(Device, stored);
    ModelRecord& device = note(
        Device, writer.findOrAddDevice(id_of(die), fields_of<dbif::DeviceFields>(texts), values),
        {die}, texts, values);
    EXPECT_EQ(device.identity, stored.empty() ? "" : identity) << "found another device";
    device.identity = identity;
    return &device;
}

void RandomRecords::addMeasurement(
    dbif::RecordWriter& writer,
    const ModelRecord* catalog,
    const ModelRecord* device)
{
    const ModelRecord* routine = nullptr;
    if (dice_.chance(60)) {
        const dbif::FixedTexts texts = fixedTexts(Routine);
        routine = &note(
            Routine, writer.findOrAddRoutine(fields_of<dbif::RoutineFields>(texts)), {}, texts);
    }
    dbif::MeasurementRecord row{id_of(catalog), id_of(device), id_of(routine), {}, {}};
    row.keys = keys(Measurement);
    if (dice_.chance(70)) {
        row.temperature = dice_.chance(50) ? 25 : -40;
    }
    ModelRecord& measurement =
        note(Measurement, writer.addMeasurement(row), {catalog, device, routine}, {}, row.keys);
    if (row.temperature) {
        measurement.values["temperature"] = number_value(*row.temperature);
    }
    measurement.identity = std::to_string(row.device) + " " + std::to_string(row.routine);
    for (const char* part : {"temperature", "|TEXT|DataOrigin"}) {
        const auto value = measurement.values.find(part);
        measurement.identity +=
            value == measurement.values.end() ? "\n-" : "\n+" + value->second.text;
    }
    for (std::size_t i = dice_.below(3); i > 0; --i) {
        addCondition(writer, measurement);
    }
}

void RandomRecords::addCondition(dbif::RecordWriter& writer, const ModelRecord& measurement)
{
    const dbif::FixedTexts texts = fixedTexts(MeasurementCondition);
    const Keys values = keys(MeasurementCondition);
    ModelRecord& condition = note(
        MeasurementCondition,
        writer.addCondition(measurement.id, fields_of<dbif::ConditionFields>(texts), values),
        {&measurement}, texts, values);
    condition.identity = measurement.identity + "\n" + identity_of(texts, values);
    for (std::size_t i = dice_.below(3); i > 0; --i) {
        addSetup(writer, condition);
    }
}

void RandomRecords::addSetup(dbif::RecordWriter& writer, const ModelRecord& condition)
{
    const dbif::FixedTexts texts = fixedTexts(Setup);
    const auto fields = fields_of<dbif::SetupFields>(texts);
    const std::size_t points = dice_.below(dice_.chance(20) ? 21 : 5);
    std::vector<dbif::SetupColumn> sweep;
    std::map<std::string, std::vector<ModelCell>> cells;
    for (const ModelColumn& column : random_columns()) {
        if (column.isOnPoints() && dice_.chance(70)) {
            sweep.push_back(sweepColumn(column, points, &cells[column.name]));
        }
    }
    const std::string identity = condition.identity + identity_of(texts, {});
    if (!newSetups_.insert(identity).second) {
        EXPECT_THROW(writer.addSetup(condition.id, fields, sweep, "again"), DBIF_Exception);
        return;
    }
    ModelRecord& setup =
        note(Setup, writer.addSetup(condition.id, fields, sweep, "setup"), {&condition}, texts);
    setup.identity = identity;
    setup.points = sweep.empty() ? 0 : points;
    setup.sweeps = cells;
    for (const auto& [key, column] : cells) {
        keys_.insert(stored_key(Setup, key));
    }
}

dbif::SetupColumn RandomRecords::sweepColumn(
    const ModelColumn& column,
    std::size_t points,
    std::vector<ModelCell>* cells)
{
    const auto parts = *dbif::split_column_key(column.name);
    dbif::SetupColumn stored{parts.name, parts.category == "IN", "", {}};
    stored.values.kind = column.kind;
    const std::size_t missing = dice_.below(3) * 45;
    for (std::size_t point = 0; point < points; ++point) {
        const ModelCell cell =
            dice_.chance(missing) ? ModelCell() : random_value(dice_, column.kind);
        cells->push_back(cell);
        if (column.kind == ValueKind::Double) {
            stored.values.numbers.push_back(
                cell ? cell->number.real() : std::numeric_limits<double>::quiet_NaN());
        } else if (column.kind == ValueKind::Complex) {
            stored.values.complexNumbers.push_back(cell ? cell->number : dbif::kNoComplex);
        } else {
            stored.values.texts.push_back(cell ? std::optional(cell->text) : std::nullopt);
        }
    }
    return stored;
}
} // namespace test_support
