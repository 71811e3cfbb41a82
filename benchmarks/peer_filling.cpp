#include "benchmarks/peer_filling.h"

#include "benchmarks/peer_database.h"

#include <map>

namespace bench {
namespace {
constexpr std::string_view kTime = "2026-01-31T12:34:56.789";

constexpr const char* kTables = R"(
CREATE TABLE catalog_entry (id INTEGER PRIMARY KEY, application TEXT, modified_time TEXT);
CREATE TABLE routine (id INTEGER PRIMARY KEY, name TEXT, modified_time TEXT);
CREATE TABLE die (id INTEGER PRIMARY KEY, lot TEXT, wafer TEXT, die TEXT, modified_time TEXT);
CREATE TABLE device (id INTEGER PRIMARY KEY, die_id INTEGER REFERENCES die, name TEXT,
    device_type TEXT, parent_subsite_name TEXT, position_within_subsite TEXT, modified_time TEXT);
CREATE TABLE device_key (id INTEGER PRIMARY KEY, name TEXT UNIQUE, category TEXT);
CREATE TABLE device_value (device_id INTEGER REFERENCES device, key_id INTEGER REFERENCES device_key,
    number REAL, text TEXT, PRIMARY KEY (device_id, key_id)) WITHOUT ROWID;
CREATE TABLE measurement (id INTEGER PRIMARY KEY, device_id INTEGER REFERENCES device,
    routine_id INTEGER REFERENCES routine, catalog_entry_id INTEGER REFERENCES catalog_entry,
    temperature REAL, modified_time TEXT);
CREATE TABLE measurement_condition (id INTEGER PRIMARY KEY,
    measurement_id INTEGER REFERENCES measurement, name TEXT, modified_time TEXT);
CREATE TABLE setup (id INTEGER PRIMARY KEY,
    measurement_condition_id INTEGER REFERENCES measurement_condition, name TEXT, modified_time TEXT);
CREATE TABLE point (id INTEGER PRIMARY KEY, setup_id INTEGER REFERENCES setup,
    vg REAL, vd REAL, vb REAL, i_d REAL, i_g REAL, i_b REAL);
)";

constexpr const char* kIndexes = R"(
CREATE INDEX catalog_entry_by_time ON catalog_entry (modified_time);
CREATE INDEX routine_by_time ON routine (modified_time);
CREATE INDEX die_by_time ON die (modified_time);
CREATE INDEX die_by_lot ON die (lot);
CREATE INDEX device_by_time ON device (modified_time);
CREATE INDEX device_by_die ON device (die_id);
CREATE INDEX device_by_name ON device (name);
CREATE INDEX device_value_by_number ON device_value (key_id, number);
CREATE INDEX device_value_by_text ON device_value (key_id, text);
CREATE INDEX measurement_by_time ON measurement (modified_time);
CREATE INDEX measurement_by_device ON measurement (device_id);
CREATE INDEX measurement_by_temperature ON measurement (temperature);
CREATE INDEX measurement_condition_by_time ON measurement_condition (modified_time);
CREATE INDEX measurement_condition_by_measurement ON measurement_condition (measurement_id);
CREATE INDEX setup_by_time ON setup (modified_time);
CREATE INDEX setup_by_condition ON setup (measurement_condition_id);
CREATE INDEX setup_by_name ON setup (name);
CREATE INDEX point_by_setup ON point (setup_id);
ANALYZE;
)";

void begin(PeerDatabase& database)
{
    // Speed of filling is not measured, and a file that was not completed is thrown away.
    database.execute("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; BEGIN");
    database.execute(kTables);
    PeerStatement(database, "INSERT INTO catalog_entry VALUES (1, 'benchmarks', ?)")
        .bind(1, kTime)
        .run();
}

void finish(PeerDatabase& database)
{
    database.execute(kIndexes);
    database.execute("COMMIT; PRAGMA journal_mode = DELETE");
}

/// Inserts records, numbered from 1, with the statements prepared once. The tables have to be
/// there.
class PeerFiller
{
public:
    explicit PeerFiller(PeerDatabase& database) : database_(database) {}

    int routine(const std::string& name)
    {
        const auto [found, isNew] =
            routines_.try_emplace(name, static_cast<int>(routines_.size()) + 1);
        if (isNew) {
            PeerStatement(database_, "INSERT INTO routine VALUES (?, ?, ?)")
                .bind(1, static_cast<long long>(found->second))
                .bind(2, name)
                .bind(3, kTime)
                .run();
        }
        return found->second;
    }

    void die(const DieData& die)
    {
        PeerStatement(database_, "INSERT INTO die VALUES (NULL, ?, ?, ?, ?)")
            .bind(1, die.lot)
            .bind(2, die.wafer)
            .bind(3, die.die)
            .bind(4, kTime)
            .run();
    }

    template <typename Population>
    void device(const Population& population, std::size_t place)
    {
        const DeviceData data = population.device(place);
        device_.bind(1, static_cast<long long>(data.die) + 1)
            .bind(2, data.name)
            .bind(3, data.type)
            .bind(4, data.subsite)
            .bind(5, data.position)
            .bind(6, kTime)
            .run();
        if constexpr (std::is_same_v<Population, DevicePopulation>) {
            keys(static_cast<long long>(place) + 1, data);
            measurement(place, data.temperature, routine("dc"));
        }
    }

    void sweep(const SweepPopulation& population, std::size_t place)
    {
        const SweepData data = population.setup(place);
        const auto id = static_cast<long long>(place) + 1;
        measurement(data.device, data.temperature, routine(data.routine));
        condition_.bind(1, id).bind(2, data.condition).bind(3, kTime).run();
        setup_.bind(1, id).bind(2, data.setup).bind(3, kTime).run();
        point_.bind(1, id);
        for (std::size_t i = 0; i < data.points; ++i) {
            for (int key = 0; key < static_cast<int>(kSweepKeys.size()); ++key) {
                const std::vector<double>& column = data.columns[static_cast<std::size_t>(key)];
                column.empty() ? point_.bindNull(key + 2) : point_.bind(key + 2, column[i]);
            }
            point_.run();
        }
    }

    void defineKeys()
    {
        PeerStatement key(database_, "INSERT INTO device_key VALUES (NULL, ?, ?)");
        for (const DeviceKey& definition : kNumberKeys) {
            key.bind(1, std::string_view(definition.name))
                .bind(2, std::string_view(definition.category))
                .run();
        }
        for (const DeviceKey& definition : kTextKeys) {
            key.bind(1, std::string_view(definition.name))
                .bind(2, std::string_view(definition.category))
                .run();
        }
    }

private:
    void keys(long long device, const DeviceData& data)
    {
        long long key = 1;
        for (const double number : data.numbers) {
            value_.bind(1, device).bind(2, key++).bind(3, number).bindNull(4).run();
        }
        for (const std::string& text : data.texts) {
            value_.bind(1, device).bind(2, key++).bindNull(3).bind(4, text).run();
        }
    }

    void measurement(std::size_t device, std::optional<double> temperature, int routine)
    {
        measurement_.bind(1, static_cast<long long>(device) + 1)
            .bind(2, static_cast<long long>(routine));
        temperature ? measurement_.bind(3, *temperature) : measurement_.bindNull(3);
        measurement_.bind(4, kTime).run();
    }

    PeerDatabase& database_;
    std::map<std::string, int> routines_;
    PeerStatement device_{database_, "INSERT INTO device VALUES (NULL, ?, ?, ?, ?, ?, ?)"};
    PeerStatement value_{database_, "INSERT INTO device_value VALUES (?, ?, ?, ?)"};
    PeerStatement measurement_{database_, "INSERT INTO measurement VALUES (NULL, ?, ?, 1, ?, ?)"};
    PeerStatement condition_{database_, "INSERT INTO measurement_condition VALUES (NULL, ?, ?, ?)"};
    PeerStatement setup_{database_, "INSERT INTO setup VALUES (NULL, ?, ?, ?)"};
    PeerStatement point_{database_, "INSERT INTO point VALUES (NULL, ?, ?, ?, ?, ?, ?, ?)"};
};

template <typename Population>
void add_devices(const Population& population, PeerFiller* filler)
{
    for (std::size_t i = 0; i < population.dies(); ++i) {
        filler->die(population.die(i));
    }
    for (std::size_t i = 0; i < population.devices(); ++i) {
        filler->device(population, i);
    }
}
} // namespace

void fill_peer_database(const std::string& path, const DevicePopulation& population)
{
    PeerDatabase database(path);
    begin(database);
    {
        PeerFiller filler(database);
        filler.defineKeys();
        add_devices(population, &filler);
    }
    finish(database);
}

void fill_peer_database(const std::string& path, const SweepPopulation& population)
{
    PeerDatabase database(path);
    begin(database);
    {
        PeerFiller filler(database);
        add_devices(population, &filler);
        for (std::size_t i = 0; i < population.setups(); ++i) {
            filler.sweep(population, i);
        }
    }
    finish(database);
}
} // namespace bench
