#include "benchmarks/device_rows.h"

#include "benchmarks/device_population.h"
#include "benchmarks/seeded_noise.h"
#include "benchmarks/stored_database.h"

namespace bench {
namespace {
enum Stream : std::uint64_t { Asked = 200 };

using Database = std::shared_ptr<StoredDatabase>;

constexpr const char* kKeyOfAll = R"(
SELECT number FROM device_value WHERE key_id = (SELECT id FROM device_key WHERE name = 'VTH')
ORDER BY number)";

constexpr const char* kFourNumbersOfAll = R"(
SELECT w.number, l.number, vth.number, idsat.number
FROM device
LEFT JOIN device_value w ON w.device_id = device.id
    AND w.key_id = (SELECT id FROM device_key WHERE name = 'W')
LEFT JOIN device_value l ON l.device_id = device.id
    AND l.key_id = (SELECT id FROM device_key WHERE name = 'L')
LEFT JOIN device_value vth ON vth.device_id = device.id
    AND vth.key_id = (SELECT id FROM device_key WHERE name = 'VTH')
LEFT JOIN device_value idsat ON idsat.device_id = device.id
    AND idsat.key_id = (SELECT id FROM device_key WHERE name = 'IDSAT')
ORDER BY 1, 2, 3, 4)";

constexpr const char* kFourKeysOfAll = R"(
SELECT w.number, l.number, vth.number, model.text
FROM device
LEFT JOIN device_value w ON w.device_id = device.id
    AND w.key_id = (SELECT id FROM device_key WHERE name = 'W')
LEFT JOIN device_value l ON l.device_id = device.id
    AND l.key_id = (SELECT id FROM device_key WHERE name = 'L')
LEFT JOIN device_value vth ON vth.device_id = device.id
    AND vth.key_id = (SELECT id FROM device_key WHERE name = 'VTH')
LEFT JOIN device_value model ON model.device_id = device.id
    AND model.key_id = (SELECT id FROM device_key WHERE name = 'MODEL')
ORDER BY 1, 2, 3, 4)";

constexpr const char* kIdsOfBatch = R"(
SELECT device_id FROM device_value
WHERE key_id = (SELECT id FROM device_key WHERE name = 'BATCH') AND text = ?
ORDER BY device_id)";

constexpr const char* kIdsByThreeTerms = R"(
SELECT DISTINCT measurement.device_id
FROM device_value w
JOIN device_value l ON l.device_id = w.device_id
JOIN measurement ON measurement.device_id = w.device_id
WHERE w.key_id = (SELECT id FROM device_key WHERE name = 'W') AND w.number = 5e-6
AND l.key_id = (SELECT id FROM device_key WHERE name = 'L') AND l.number BETWEEN 0.08e-6 AND 0.5e-6
AND measurement.temperature = 25
ORDER BY measurement.device_id)";

constexpr const char* kKeyByName = R"(
SELECT number FROM device JOIN device_value ON device_id = device.id
WHERE name = ? AND key_id = (SELECT id FROM device_key WHERE name = 'VTH')
ORDER BY number)";

constexpr const char* kKeyById = R"(
SELECT number FROM device_value
WHERE device_id = ? AND key_id = (SELECT id FROM device_key WHERE name = 'VTH')
ORDER BY number)";

/// A row of many calls, each for another batch.
Comparison ids_of_batches(Comparison row, const Database& database, std::size_t batches)
{
    constexpr int kCalls = 200;
    const auto name = [batches](std::size_t call) {
        return DevicePopulation::batchName(pick(Asked, call, batches));
    };
    return timed<Ids>(
        std::move(row), kCalls,
        [=](Ids* ids) {
            for (std::size_t call = 0; call < kCalls; ++call) {
                ids->push_back(database->deviceIds("BATCH=" + name(call)));
            }
        },
        [=](Ids* ids) {
            PeerDatabase& peer = database->peer();
            for (std::size_t call = 0; call < kCalls; ++call) {
                const std::string batch = name(call);
                peer.readNewestTime();
                ids->push_back(peer.ids(kIdsOfBatch, batch));
            }
        });
}

/// A row that repeats the same call.
Comparison cached_value(Comparison row, const Database& database, std::size_t devices)
{
    constexpr int kCalls = 2000;
    const std::string name = DevicePopulation::deviceName(devices / 3);
    return timed<Values>(
        std::move(row), kCalls,
        [=](Values* values) {
            for (int call = 0; call < kCalls; ++call) {
                values->push_back(database->values("VTH", "$DEVNAME=" + name));
            }
        },
        [=](Values* values) {
            PeerDatabase& peer = database->peer();
            for (int call = 0; call < kCalls; ++call) {
                peer.readNewestTime();
                values->push_back(peer.texts(kKeyByName, name).front());
            }
        });
}

/// A row of ten thousand calls, each for another record.
Comparison values_by_id(Comparison row, const Database& database, std::size_t devices)
{
    constexpr int kCalls = 10'000;
    // The writer numbers records from 1.
    const auto idOf = [devices](int call) {
        return static_cast<int>(pick(Asked, static_cast<std::uint64_t>(call), devices)) + 1;
    };
    return timed<Values>(
        std::move(row), kCalls,
        [=](Values* values) {
            for (int call = 0; call < kCalls; ++call) {
                values->push_back(database->deviceValues(idOf(call), "VTH"));
            }
        },
        [=](Values* values) {
            PeerDatabase& peer = database->peer();
            for (int call = 0; call < kCalls; ++call) {
                peer.readNewestTime();
                values->push_back(peer.texts(kKeyById, static_cast<long long>(idOf(call))).front());
            }
        });
}
} // namespace

std::vector<Comparison> device_rows(const DataStore& store, std::size_t devices, bool isLargest)
{
    const std::string size = std::to_string(devices);
    const auto database =
        std::make_shared<StoredDatabase>(store, "devices" + size, [devices](const DataStore& made) {
            return made.devices(devices);
        });
    const auto row = [&](const char* id, const char* title, const Targets& targets) {
        Comparison comparison;
        comparison.id = std::string(id) + "/" + size;
        comparison.title = title;
        comparison.size = size + " devices";
        comparison.prepare = [database] {
            database->open();
        };
        if (isLargest) {
            comparison.target = targets.of(store.engine());
        }
        return comparison;
    };
    return {
        timed<Values>(
            row("device_key", "one device key of all devices, sorted, as text", {1.1, 1.2}), 1,
            [=](Values* values) { values->push_back(database->values("VTH")); },
            [=](Values* values) { *values = database->peer().texts(kKeyOfAll); }),
        timed<Values>(
            row("four_device_keys", "four device keys side by side, sorted", {0.6, 1.2}), 1,
            [=](Values* values) {
                *values = database->values(std::vector<std::string>{"W", "L", "VTH", "MODEL"});
            },
            [=](Values* values) { *values = database->peer().texts(kFourKeysOfAll); }),
        timed<Numbers>(
            row("four_device_keys_numbers", "four device keys side by side, sorted, as numbers",
                {0.25, 1.2}),
            1,
            [=](Numbers* numbers) {
                *numbers = database->numbers(
                    {"W", "L", "VTH", "IDSAT"}, dbapi::ColumnOptions::Order::Sorted);
            },
            [=](Numbers* numbers) { *numbers = database->peer().numbers(kFourNumbersOfAll); }),
        ids_of_batches(
            row("ids_by_key", "ids of devices where key = v (about 100)", {3, 3}), database,
            DevicePopulation(devices).batches()),
        timed<Ids>(
            row("ids_by_three_terms", "ids by three terms on two tables, about 1 %", {1.2, 1.2}), 1,
            [=](Ids* ids) { ids->push_back(database->deviceIds("W=5u;L=[0.08u,0.5u];$TEMP=25")); },
            [=](Ids* ids) { ids->push_back(database->peer().ids(kIdsByThreeTerms)); }),
        cached_value(
            row("cached_value", "the same call again (cached), one value", {2, 2}), database,
            devices),
        values_by_id(
            row("value_by_id", "key value of one record by id, 10,000 calls in turn", {5, 5}),
            database, devices)};
}
} // namespace bench
