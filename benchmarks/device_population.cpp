#include "benchmarks/device_population.h"

#include "benchmarks/formatted.h"
#include "benchmarks/seeded_noise.h"

namespace bench {
namespace {
enum Stream : std::uint64_t { Width, Length, Fingers, Threshold, Current, Model, Batch, Heat };

constexpr std::array kWidths{0.12e-6, 0.15e-6, 0.2e-6, 0.24e-6, 0.3e-6, 0.36e-6, 0.4e-6,
                             0.5e-6,  0.6e-6,  0.8e-6, 1e-6,    1.2e-6, 1.6e-6,  2e-6,
                             2.4e-6,  3e-6,    4e-6,   5e-6,    8e-6,   10e-6};
constexpr std::array kLengths{0.04e-6, 0.06e-6, 0.08e-6, 0.1e-6, 0.12e-6,
                              0.16e-6, 0.2e-6,  0.5e-6,  1e-6,   2e-6};
constexpr std::array kTypes{"nfet", "pfet", "nfet_hv", "pfet_hv"};
constexpr std::array kModels{"svt", "lvt", "hvt", "ulvt", "native", "io"};
constexpr std::array kTemperatures{-40.0, 25.0, 125.0};
} // namespace

DieData DevicePopulation::die(std::size_t place) const
{
    constexpr std::size_t kLots = 50;
    constexpr std::size_t kWafers = 25;
    return {
        formatted("L%03zu", place % kLots), formatted("%zu", place / kLots % kWafers + 1),
        formatted("D%zu", place / kLots / kWafers)};
}

std::string DevicePopulation::deviceName(std::size_t place)
{
    return formatted("dev%07zu", place);
}

std::string DevicePopulation::batchName(std::size_t batch)
{
    return formatted("B%06zu", batch);
}

DeviceData DevicePopulation::device(std::size_t place) const
{
    DeviceData data;
    data.die = place / kDevicesPerDie;
    data.name = deviceName(place);
    data.type = kTypes[place % kTypes.size()];
    data.subsite = formatted("S%zu", place % kDevicesPerDie / 10);
    data.position = formatted("%zu", place % 10);

    const double width = kWidths[pick(Width, place, kWidths.size())];
    const double length = kLengths[pick(Length, place, kLengths.size())];
    const auto fingers = static_cast<double>(std::size_t(1) << pick(Fingers, place, 4));
    const double threshold = 0.35 + 0.1 * unit_noise(Threshold, place);
    data.numbers = {
        width,     length,
        fingers,   width * length * fingers,
        threshold, 4e-4 * fingers * width / length * (1 + 0.05 * unit_noise(Current, place))};
    data.texts = {
        std::string(data.type) + "_" + kModels[pick(Model, place, kModels.size())],
        "bulk 40 nm, rev. B", batchName(pick(Batch, place, batches())),
        formatted("SN-%08zu", scrambled(Batch, place) % 100'000'000)};
    if (place % 10 != 0) {
        data.temperature = kTemperatures[pick(Heat, place, kTemperatures.size())];
    }
    return data;
}
} // namespace bench
