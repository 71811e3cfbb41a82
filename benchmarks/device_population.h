#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>

namespace bench {
struct DieData
{
    std::string lot;
    std::string wafer;
    std::string die;
};

struct DeviceKey
{
    const char* name;
    const char* category;
};

/// The keys that every device of a `DevicePopulation` has.
inline constexpr std::array<DeviceKey, 6> kNumberKeys{
    {{"W", "PHYSICAL"},
     {"L", "PHYSICAL"},
     {"NF", "PHYSICAL"},
     {"AREA", "PHYSICAL"},
     {"VTH", "PHYSICAL"},
     {"IDSAT", "PHYSICAL"}}};
inline constexpr std::array<DeviceKey, 4> kTextKeys{
    {{"MODEL", "PHYSICAL"}, {"PROCESS", "TECHNOLOGY"}, {"BATCH", "ID"}, {"SERIAL", "ID"}}};

struct DeviceData
{
    /// Counts from 0.
    std::size_t die = 0;
    std::string name;
    std::string type;
    std::string subsite;
    std::string position;
    std::array<double, kNumberKeys.size()> numbers{};
    std::array<std::string, kTextKeys.size()> texts;
    /// The temperature of the device's only measurement.
    std::optional<double> temperature;
};

/// Devices with keys and a measurement each, on dies of lots. About 100 devices share a BATCH,
/// whatever the size; SERIAL is every device's own; the other keys have few values, or (VTH, IDSAT)
/// as many as there are devices.
class DevicePopulation
{
public:
    explicit DevicePopulation(std::size_t devices) : devices_(devices) {}

    [[nodiscard]] std::size_t devices() const { return devices_; }

    [[nodiscard]] std::size_t dies() const
    {
        return (devices_ + kDevicesPerDie - 1) / kDevicesPerDie;
    }

    [[nodiscard]] std::size_t batches() const { return (devices_ + 99) / 100; }

    /// The data by place, counted from 0.
    [[nodiscard]] DieData die(std::size_t place) const;
    [[nodiscard]] DeviceData device(std::size_t place) const;
    [[nodiscard]] static std::string batchName(std::size_t batch);
    [[nodiscard]] static std::string deviceName(std::size_t place);

private:
    static constexpr std::size_t kDevicesPerDie = 100;
    std::size_t devices_;
};
} // namespace bench
