#include "tests/support/lab_database.h"

#include "dbui/connection_record.h"
#include "dbui/connection_registry.h"

#include <cmath>
#include <map>

namespace test_support {
namespace {
using Columns = std::vector<dbif::SetupColumn>;

dbif::SetupColumn input(dbif::SetupColumn column)
{
    column.isInput = true;
    return column;
}

int device_n1(dbif::RecordWriter& writer)
{
    const int die = writer.findOrAddDie({.lot = "A", .wafer = "1"});
    return writer.findOrAddDevice(
        die, {.name = "n1"},
        {number_key("W", 5e-6, "PHYSICAL"), number_key("L", 1.5e-7, "PHYSICAL"),
         text_key("process", "it's; \"x\"", "TECHNOLOGY")});
}

void add_setup(
    dbif::RecordWriter& writer,
    int device,
    double temperature,
    std::vector<dbif::KeyValue> keys,
    const Columns& sweep)
{
    keys.push_back(text_key("DataOrigin", "MEASURED"));
    const int entry = writer.addCatalogEntry({.application = "test"});
    const int measurement = writer.addMeasurement({entry, device, 0, temperature, keys});
    const int condition = writer.addCondition(measurement, {.name = "dc"}, {number_key("VS", 0)});
    if (!sweep.empty()) {
        writer.addSetup(condition, {.name = "IDVG"}, sweep, "setup");
    }
}
} // namespace

void store_connection(const MeasurementDatabase& database, const std::string& name)
{
    dbui_add_connection(database.record(name), false);
}

LabDatabase::LabDatabase(Engine engine) : MeasurementDatabase(engine)
{
    store_connection(*this, "lab");
    write([](dbif::RecordWriter& writer) {
        const int n1 = device_n1(writer);
        const int dieA = writer.findOrAddDie({.lot = "A", .wafer = "1"});
        const int dieB = writer.findOrAddDie({.lot = "B"});
        const int n2 = writer.findOrAddDevice(
            dieA, {.name = "n2"},
            {number_key("W", 1e-5, "PHYSICAL"), number_key("vth", 0.5, "NODE")});
        writer.findOrAddDevice(
            dieB, {.name = "d3"}, {text_key("process", "back\\slash", "TECHNOLOGY")});
        writer.findOrAddDevice(
            dieB, {.name = "lonely"}, {number_key("W", 1.3000000000000003e-07, "PHYSICAL")});
        add_setup(
            writer, n1, 25, {number_key("vth", 0.4)},
            {input(sweep("VG", {0, 1, 2})), sweep("ID", {1e-9, std::nan(""), 3e-6})});
        add_setup(writer, n1, 125, {}, {input(sweep("VG", {0, 1})), sweep("ID", {2e-9, 4e-6})});
        add_setup(writer, n2, 25, {}, {});
    });
}

void LabDatabase::supersedeFirstSetup()
{
    write([](dbif::RecordWriter& writer) {
        add_setup(
            writer, device_n1(writer), 25, {number_key("vth", 0.4)},
            {input(sweep("VG", std::vector<double>{7})), sweep("ID", std::vector<double>{7e-6})});
    });
}

std::string joined(const std::vector<std::vector<std::string>>& columns)
{
    std::string text;
    for (std::size_t row = 0; !columns.empty() && row < columns.front().size(); ++row) {
        for (std::size_t i = 0; i < columns.size(); ++i) {
            text += (i == 0 ? "" : "|") + columns[i][row];
        }
        text += ";";
    }
    return text;
}

std::string joined(const std::vector<std::string>& column)
{
    return joined(std::vector<std::vector<std::string>>{column});
}
} // namespace test_support
