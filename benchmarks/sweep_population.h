#pragma once

#include "benchmarks/device_population.h"

#include <vector>

namespace bench {
struct SweepKey
{
    const char* name;
    bool isInput;
};

inline constexpr std::array<SweepKey, 6> kSweepKeys{
    {{"VG", true}, {"VD", true}, {"VB", true}, {"ID", false}, {"IG", false}, {"IB", false}}};

/// One setup with what it belongs to.
struct SweepData
{
    /// Counts from 0.
    std::size_t device = 0;
    double temperature = 0;
    std::string routine;
    std::string condition;
    std::string setup;
    std::size_t points = 0;
    /// The values of each of `kSweepKeys`; none when the setup does not have the key.
    std::array<std::vector<double>, kSweepKeys.size()> columns;
};

/// Setups of 125 points: drain current over gate or drain voltage, 40 to a device, with full
/// digits in the currents. All have VG, VD and ID, three quarters VB, six tenths IG, and 49 % IB.
class SweepPopulation
{
public:
    explicit SweepPopulation(std::size_t setups) : setups_(setups) {}

    static constexpr std::size_t kPointsPerSetup = 125;

    [[nodiscard]] std::size_t setups() const { return setups_; }

    [[nodiscard]] std::size_t points() const { return setups_ * kPointsPerSetup; }

    [[nodiscard]] std::size_t devices() const
    {
        return (setups_ + kSetupsPerDevice - 1) / kSetupsPerDevice;
    }

    [[nodiscard]] std::size_t dies() const
    {
        return (devices() + kDevicesPerDie - 1) / kDevicesPerDie;
    }

    /// The data by place, counted from 0. Devices have no keys here.
    [[nodiscard]] DieData die(std::size_t place) const;
    [[nodiscard]] DeviceData device(std::size_t place) const;
    [[nodiscard]] SweepData setup(std::size_t place) const;

private:
    static constexpr std::size_t kSetupsPerDevice = 40;
    static constexpr std::size_t kDevicesPerDie = 5;
    std::size_t setups_;
};
} // namespace bench
