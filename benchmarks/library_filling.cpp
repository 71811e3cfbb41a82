#include "benchmarks/library_filling.h"

#include "dbif/write/record_writer.h"

namespace bench {
namespace {
dbif::DieFields fields_of(const DieData& die)
{
    return {.lot = die.lot, .wafer = die.wafer, .die = die.die};
}

dbif::DeviceFields fields_of(const DeviceData& device)
{
    return {
        .name = device.name,
        .device_type = device.type,
        .parent_subsite_name = device.subsite,
        .position_within_subsite = device.position};
}

std::vector<dbif::KeyValue> keys_of(const DeviceData& device)
{
    std::vector<dbif::KeyValue> keys;
    for (std::size_t i = 0; i < kNumberKeys.size(); ++i) {
        keys.push_back(
            {kNumberKeys[i].name, dbif::ValueKind::Double, kNumberKeys[i].category,
             device.numbers[i], ""});
    }
    for (std::size_t i = 0; i < kTextKeys.size(); ++i) {
        keys.push_back(
            {kTextKeys[i].name, dbif::ValueKind::Text, kTextKeys[i].category, 0, device.texts[i]});
    }
    return keys;
}

std::vector<dbif::SetupColumn> columns_of(SweepData& sweep)
{
    std::vector<dbif::SetupColumn> columns;
    for (std::size_t i = 0; i < kSweepKeys.size(); ++i) {
        if (!sweep.columns[i].empty()) {
            dbif::SetupColumn column{kSweepKeys[i].name, kSweepKeys[i].isInput, "", {}};
            column.values.numbers = std::move(sweep.columns[i]);
            columns.push_back(std::move(column));
        }
    }
    return columns;
}
} // namespace

void fill_library_database(DBIF_Connection connection, const DevicePopulation& population)
{
    connection.initializeSchemaIfMissing();
    dbif::RecordWriter writer(connection);
    dbif::MeasurementRecord measurement;
    measurement.catalogEntry = writer.addCatalogEntry({.application = "benchmarks"});
    measurement.routine = writer.findOrAddRoutine({.name = "dc"});
    std::vector<int> dies;
    for (std::size_t i = 0; i < population.dies(); ++i) {
        dies.push_back(writer.findOrAddDie(fields_of(population.die(i))));
    }
    for (std::size_t i = 0; i < population.devices(); ++i) {
        const DeviceData device = population.device(i);
        measurement.device =
            writer.findOrAddDevice(dies[device.die], fields_of(device), keys_of(device));
        measurement.temperature = device.temperature;
        writer.addMeasurement(measurement);
    }
    writer.commit();
}

void fill_library_database(DBIF_Connection connection, const SweepPopulation& population)
{
    connection.initializeSchemaIfMissing();
    dbif::RecordWriter writer(connection);
    dbif::MeasurementRecord measurement;
    measurement.catalogEntry = writer.addCatalogEntry({.application = "benchmarks"});
    std::vector<int> devices;
    for (std::size_t i = 0; i < population.devices(); ++i) {
        const DeviceData device = population.device(i);
        const int die = writer.findOrAddDie(fields_of(population.die(device.die)));
        devices.push_back(writer.findOrAddDevice(die, fields_of(device)));
    }
    for (std::size_t i = 0; i < population.setups(); ++i) {
        SweepData sweep = population.setup(i);
        measurement.device = devices[sweep.device];
        measurement.routine = writer.findOrAddRoutine({.name = sweep.routine});
        measurement.temperature = sweep.temperature;
        const int condition =
            writer.addCondition(writer.addMeasurement(measurement), {.name = sweep.condition});
        writer.addSetup(
            condition, {.name = sweep.setup}, columns_of(sweep), "setup " + std::to_string(i));
    }
    writer.commit();
}
} // namespace bench
