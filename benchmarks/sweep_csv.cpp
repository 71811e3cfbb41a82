#include "benchmarks/sweep_csv.h"

#include <array>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace bench {
namespace {
void append_number(double number, std::string* text)
{
    std::array<char, 32> digits{};
    const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    text->append(digits.data(), end);
}

std::string annotations(const DieData& die, const DeviceData& device, const SweepData& sweep)
{
    std::string text = "# $APP = benchmarks\n";
    text += "# $LOT = " + die.lot + "\n# $WAFER = " + die.wafer + "\n# $DIE = " + die.die + "\n";
    text += "# $DEVNAME = " + device.name + "\n# $DEVTYPE = " + device.type + "\n";
    text += "# $SUBSITE = " + device.subsite + "\n# $DEVID = " + device.position + "\n";
    text += "# $ROUTINENAME = " + sweep.routine + "\n# $TEMP = ";
    append_number(sweep.temperature, &text);
    return text + "\n# $MCNAME = " + sweep.condition + "\n# $SETNAME = " + sweep.setup + "\n";
}

std::string rows(const SweepData& sweep)
{
    std::string text;
    std::vector<const std::vector<double>*> columns;
    for (std::size_t key = 0; key < kSweepKeys.size(); ++key) {
        if (!sweep.columns[key].empty()) {
            text += columns.empty() ? "" : ",";
            text += std::string(kSweepKeys[key].isInput ? "IND." : "OUTD.") + kSweepKeys[key].name;
            columns.push_back(&sweep.columns[key]);
        }
    }
    for (std::size_t point = 0; point < sweep.points; ++point) {
        char separator = '\n';
        for (const std::vector<double>* column : columns) {
            text += separator;
            append_number((*column)[point], &text);
            separator = ',';
        }
    }
    return text + "\n";
}
} // namespace

void write_sweep_files(const std::string& folder, const SweepPopulation& population)
{
    std::filesystem::create_directory(folder);
    for (std::size_t place = 0; place < population.setups(); ++place) {
        const SweepData sweep = population.setup(place);
        const DeviceData device = population.device(sweep.device);
        const std::string path = folder + "/setup" + std::to_string(place) + ".csv";
        std::ofstream out(path, std::ios::binary);
        out << annotations(population.die(device.die), device, sweep) << rows(sweep);
        if (!out.flush()) {
            throw std::runtime_error("cannot write " + path);
        }
    }
}
} // namespace bench
