#include "tests/support/device_series.h"

#include "dbif/write/record_writer.h"

#include "tests/support/measurement_database.h"

#include <array>

namespace test_support {
namespace {
std::string numbered(const char* prefix, std::size_t number)
{
    return prefix + std::to_string(number);
}

std::vector<dbif::KeyValue> device_keys(std::size_t n)
{
    const auto x = static_cast<double>(n);
    const auto below = [n](std::size_t count) {
        // Neighbouring devices get values that are far apart.
        return static_cast<double>(n * 7919 % 104'729 % count);
    };
    return {
        number_key("W", 1e-7 * (1 + below(20)), "PHYSICAL"),
        number_key("L", 1e-8 * (4 + below(10)), "PHYSICAL"),
        number_key("NF", 1 + below(4), "PHYSICAL"),
        number_key("AREA", 1e-14 * (1 + below(200)), "PHYSICAL"),
        number_key("VTH", 0.3 + 1e-6 * x, "PHYSICAL"),
        number_key("IDSAT", 1e-4 + 1e-9 * x, "PHYSICAL"),
        text_key("MODEL", numbered("model", n % 6), "PHYSICAL"),
        text_key("PROCESS", "bulk 40 nm", "TECHNOLOGY"),
        text_key("BATCH", numbered("B", n / 100), "ID"),
        text_key("SERIAL", numbered("SN", n), "ID")};
}

void add_setup(dbif::RecordWriter& writer, int measurement, std::size_t n)
{
    const int condition = writer.addCondition(
        measurement, {.name = "dc"},
        {number_key("VD", 0.01 * static_cast<double>(n % 100)),
         text_key("MODE", n % 2 == 0 ? "pulsed" : "steady")});
    dbif::SetupColumn gate = sweep("VG", {0, 0.4, 0.8, 1.2});
    gate.isInput = true;
    const double current = 1e-9 * static_cast<double>(n);
    writer.addSetup(
        condition, {.name = numbered("sweep", n % 1000)},
        {gate, sweep("ID", {current, current + 1e-6, current + 1e-5, current + 1e-4})},
        numbered("setup ", n));
}
} // namespace

void write_device_series(const DBIF_Connection& connection)
{
    constexpr std::array kTemperatures{-40.0, 25.0, 125.0};
    dbif::RecordWriter writer(connection);
    dbif::MeasurementRecord measurement;
    measurement.catalogEntry = writer.addCatalogEntry({.application = "tests"});
    measurement.routine = writer.findOrAddRoutine({.name = "dc"});
    int die = 0;
    for (std::size_t n = 1; n <= kSeriesDevices; ++n) {
        if (n % 100 == 1) {
            const std::size_t place = n / 100;
            die = writer.findOrAddDie(
                {.lot = numbered("L", place % 50), .wafer = numbered("", place / 50), .die = "1"});
        }
        measurement.device =
            writer.findOrAddDevice(die, {.name = numbered("dev", n)}, device_keys(n));
        measurement.temperature = n % 1000 == 0 ? 77 : kTemperatures.at(n % kTemperatures.size());
        measurement.keys = {
            number_key("GAIN", static_cast<double>(n)), text_key("RUN", numbered("R", n / 100))};
        const int id = writer.addMeasurement(measurement);
        if (n % 5 == 0) {
            add_setup(writer, id, n / 5);
        }
    }
    writer.commit();
}
} // namespace test_support
