#include "benchmarks/sweep_population.h"

#include "benchmarks/seeded_noise.h"

#include <cmath>

namespace bench {
namespace {
enum Stream : std::uint64_t { Device = 100, Drain, Gate, Bulk };

constexpr std::array kTemperatures{-40.0, 0.0, 25.0, 85.0, 125.0};
constexpr std::array kBulkVoltages{0.0, -0.3, -0.6, -0.9};
constexpr std::size_t kFastSteps = 25;
constexpr std::size_t kSlowSteps = 5;

/// Drain current of a transistor, from subthreshold to saturation.
double drain_current(double vg, double vd, double vb, double temperature, double spread)
{
    const double thermal = 8.617e-5 * (temperature + 273.15);
    const double threshold = 0.4 + 0.05 * spread - 0.2 * vb - 7e-4 * (temperature - 25);
    const double slope = 1.4 * thermal;
    const double overdrive = slope * std::log1p(std::exp((vg - threshold) / slope));
    return 5e-4 * overdrive * overdrive * std::tanh(vd / (overdrive + 2 * thermal)) *
           (1 + 0.1 * vd);
}
} // namespace

DieData SweepPopulation::die(std::size_t place) const
{
    constexpr std::size_t kLots = 25;
    return {
        "L" + std::to_string(100 + place % kLots), std::to_string(place / kLots % 4 + 1),
        "D" + std::to_string(place / kLots / 4 + 1)};
}

DeviceData SweepPopulation::device(std::size_t place) const
{
    DeviceData data;
    data.die = place / kDevicesPerDie;
    data.name = "fet" + std::to_string(place);
    data.type = "nfet";
    data.subsite = "S1";
    data.position = std::to_string(place % kDevicesPerDie);
    return data;
}

SweepData SweepPopulation::setup(std::size_t place) const
{
    const std::size_t kind = place % 8;
    const bool isOverGate = kind < 4;
    SweepData data;
    data.device = place / kSetupsPerDevice;
    data.temperature = kTemperatures[place % kSetupsPerDevice / 8];
    data.routine = isOverGate ? "idvg" : "idvd";
    const double vb = kBulkVoltages[kind % 4];
    data.condition = "bulk" + std::to_string(kind % 4);
    data.setup = data.routine + "_" + data.condition;
    data.points = kPointsPerSetup;

    const double spread = 2 * unit_noise(Device, data.device) - 1;
    const std::array<bool, kSweepKeys.size()> has{true, true,          kind % 4 != 0,
                                                  true, place % 5 < 3, place % 100 < 49};
    auto& [vgs, vds, vbs, ids, igs, ibs] = data.columns;
    for (std::size_t i = 0; i < kPointsPerSetup; ++i) {
        const auto fast = static_cast<double>(i % kFastSteps);
        const auto slow = static_cast<double>(i / kFastSteps);
        static_assert(kFastSteps * kSlowSteps == kPointsPerSetup);
        const double vg = isOverGate ? fast / 20 : (slow + 1) / 5;
        const double vd = isOverGate ? (slow + 1) / 5 : fast / 20;
        const std::size_t point = place * kPointsPerSetup + i;
        vgs.push_back(vg);
        vds.push_back(vd);
        vbs.push_back(vb);
        ids.push_back(
            drain_current(vg, vd, vb, data.temperature, spread) *
                (1 + 1e-3 * unit_noise(Drain, point)) +
            1e-13 * unit_noise(Drain, point));
        igs.push_back(1e-12 * std::expm1(vg) + 1e-14 * unit_noise(Gate, point));
        ibs.push_back(-ids.back() * 1e-6 * vd - 1e-13 * unit_noise(Bulk, point));
    }
    for (std::size_t key = 0; key < has.size(); ++key) {
        if (!has[key]) {
            data.columns[key].clear();
        }
    }
    return data;
}
} // namespace bench
