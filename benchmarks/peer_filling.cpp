#include "benchmarks/peer_filling.h"

#include "dbif/connection/managed_connection.h"

#include <map>

namespace bench {
namespace {
constexpr std::string_view kTime = "2026-01-31T12:34:56.789";

struct PeerTable
{
    const char* name;
    std::vector<const char*> columns;
    const char* definition;
    /// Tells whether its rows stand in the order of its primary key of several columns.
    bool isClustered = false;
};

enum TablePlace : std::size_t {
    Catalog,
    Routine,
    Die,
    Device,
    Key,
    Value,
    Measurement,
    Condition,
    Setup,
    Point
};

/// The tables, those that others refer to first; by `TablePlace`.
const std::vector<PeerTable>& tables()
{
    static const std::vector<PeerTable> all{
        {"catalog_entry",
         {"id", "application", "modified_time"},
         "id INTEGER PRIMARY KEY, application VARCHAR(64), modified_time CHAR(23)"},
        {"routine",
         {"id", "name", "modified_time"},
         "id INTEGER PRIMARY KEY, name VARCHAR(64), modified_time CHAR(23)"},
        {"die",
         {"id", "lot", "wafer", "die", "modified_time"},
         "id INTEGER PRIMARY KEY, lot VARCHAR(64), wafer VARCHAR(64), die VARCHAR(64), "
         "modified_time CHAR(23)"},
        {"device",
         {"id", "die_id", "name", "device_type", "parent_subsite_name", "position_within_subsite",
          "modified_time"},
         "id INTEGER PRIMARY KEY, die_id INTEGER REFERENCES die (id), name VARCHAR(64), "
         "device_type VARCHAR(64), parent_subsite_name VARCHAR(64), "
         "position_within_subsite VARCHAR(64), modified_time CHAR(23)"},
        {"device_key",
         {"id", "name", "category"},
         "id INTEGER PRIMARY KEY, name VARCHAR(64) UNIQUE, category VARCHAR(64)"},
        {"device_value",
         {"device_id", "key_id", "number", "text"},
         "device_id INTEGER REFERENCES device (id), key_id INTEGER REFERENCES device_key (id), "
         "number REAL, text VARCHAR(64), PRIMARY KEY (device_id, key_id)",
         true},
        {"measurement",
         {"id", "device_id", "routine_id", "catalog_entry_id", "temperature", "modified_time"},
         "id INTEGER PRIMARY KEY, device_id INTEGER REFERENCES device (id), "
         "routine_id INTEGER REFERENCES routine (id), "
         "catalog_entry_id INTEGER REFERENCES catalog_entry (id), temperature REAL, "
         "modified_time CHAR(23)"},
        {"measurement_condition",
         {"id", "measurement_id", "name", "modified_time"},
         "id INTEGER PRIMARY KEY, measurement_id INTEGER REFERENCES measurement (id), "
         "name VARCHAR(64), modified_time CHAR(23)"},
        {"setup",
         {"id", "measurement_condition_id", "name", "modified_time"},
         "id INTEGER PRIMARY KEY, "
         "measurement_condition_id INTEGER REFERENCES measurement_condition (id), "
         "name VARCHAR(64), modified_time CHAR(23)"},
        {"point",
         {"id", "setup_id", "vg", "vd", "vb", "i_d", "i_g", "i_b"},
         "id INTEGER PRIMARY KEY, setup_id INTEGER REFERENCES setup (id), "
         "vg REAL, vd REAL, vb REAL, i_d REAL, i_g REAL, i_b REAL"}};
    return all;
}

constexpr std::array kIndexes{
    "catalog_entry_by_time ON catalog_entry (modified_time)",
    "routine_by_time ON routine (modified_time)",
    "die_by_time ON die (modified_time)",
    "die_by_lot ON die (lot)",
    "device_by_time ON device (modified_time)",
    "device_by_die ON device (die_id)",
    "device_by_name ON device (name)",
    "device_value_by_number ON device_value (key_id, number)",
    "device_value_by_text ON device_value (key_id, text)",
    "measurement_by_time ON measurement (modified_time)",
    "measurement_by_device ON measurement (device_id)",
    "measurement_by_temperature ON measurement (temperature)",
    "measurement_condition_by_time ON measurement_condition (modified_time)",
    "measurement_condition_by_measurement ON measurement_condition (measurement_id)",
    "setup_by_time ON setup (modified_time)",
    "setup_by_condition ON setup (measurement_condition_id)",
    "setup_by_name ON setup (name)",
    "point_by_setup ON point (setup_id)"};

void run(DBIF_Connection& connection, const std::string& sql)
{
    connection.query(QString::fromStdString(sql), 0, __FILE__, __LINE__);
}

/// Fills the tables, which are empty. Records are numbered from 1.
class PeerFiller
{
public:
    /// Rows are inserted as the library inserts its own: the speed of filling is not measured.
    explicit PeerFiller(DBIF_Connection& connection)
    {
        for (const PeerTable& table : tables()) {
            const std::vector<dbif::SqlName> columns(table.columns.begin(), table.columns.end());
            tables_.push_back(
                {connection.inner().session().inserter(dbif::SqlName(table.name), columns), 0});
        }
        row(Catalog).text("benchmarks").text(kTime).endRow();
    }

    int routine(const std::string& name)
    {
        const auto [found, isNew] =
            routines_.try_emplace(name, static_cast<int>(routines_.size()) + 1);
        if (isNew) {
            row(Routine).text(name).text(kTime).endRow();
        }
        return found->second;
    }

    void die(const DieData& die)
    {
        row(Die).text(die.lot).text(die.wafer).text(die.die).text(kTime).endRow();
    }

    template <typename Population>
    void device(const Population& population, std::size_t place)
    {
        const DeviceData data = population.device(place);
        row(Device)
            .integer(static_cast<long long>(data.die) + 1)
            .text(data.name)
            .text(data.type)
            .text(data.subsite)
            .text(data.position)
            .text(kTime)
            .endRow();
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
        row(Condition).integer(id).text(data.condition).text(kTime).endRow();
        row(Setup).integer(id).text(data.setup).text(kTime).endRow();
        for (std::size_t i = 0; i < data.points; ++i) {
            dbif::RowInserter& point = row(Point).integer(id);
            for (const std::vector<double>& column : data.columns) {
                column.empty() ? point.null() : point.number(column[i]);
            }
            point.endRow();
        }
    }

    void defineKeys()
    {
        for (const DeviceKey& key : kNumberKeys) {
            row(Key).text(key.name).text(key.category).endRow();
        }
        for (const DeviceKey& key : kTextKeys) {
            row(Key).text(key.name).text(key.category).endRow();
        }
    }

    void finish()
    {
        for (Table& table : tables_) {
            table.inserter->flush();
        }
    }

private:
    struct Table
    {
        std::unique_ptr<dbif::RowInserter> inserter;
        long long rows;
    };

    /// Begins a row of a table that has an id of its own.
    dbif::RowInserter& row(TablePlace place)
    {
        return tables_[place].inserter->integer(++tables_[place].rows);
    }

    void keys(long long device, const DeviceData& data)
    {
        dbif::RowInserter& value = *tables_[Value].inserter;
        long long key = 1;
        for (const double number : data.numbers) {
            value.integer(device).integer(key++).number(number).null().endRow();
        }
        for (const std::string& text : data.texts) {
            value.integer(device).integer(key++).null().text(text).endRow();
        }
    }

    void measurement(std::size_t device, std::optional<double> temperature, int routine)
    {
        dbif::RowInserter& measurement = row(Measurement)
                                             .integer(static_cast<long long>(device) + 1)
                                             .integer(routine)
                                             .integer(1);
        temperature ? measurement.number(*temperature) : measurement.null();
        measurement.text(kTime).endRow();
    }

    std::map<std::string, int> routines_;
    std::vector<Table> tables_;
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

/// Creates the schema, calls `add`, then makes the indexes and the statistics.
template <typename Add>
void fill(DBIF_Connection& connection, const Add& add)
{
    if (connection.inner().dialect().isServer()) {
        // Foreign keys are not checked, as on SQLite: rows of different tables are sent in batches,
        // not always parents first.
        run(connection, "SET SESSION foreign_key_checks = 0");
    }
    std::vector<dbif::SqlName> names;
    for (const PeerTable& table : tables()) {
        const dbif::SqlText options = connection.inner().dialect().tableOptions(
            connection.inner().database(), table.isClustered);
        run(connection, std::string("CREATE TABLE ") + table.name + " (" + table.definition + ")" +
                            options.utf8());
        names.emplace_back(table.name);
    }
    connection.inner().beginWriteTransaction();
    PeerFiller filler(connection);
    add(&filler);
    filler.finish();
    connection.inner().commitTransaction();
    for (const char* index : kIndexes) {
        run(connection, std::string("CREATE INDEX ") + index);
    }
    for (const dbif::SqlText& statement : connection.inner().dialect().analyze(names)) {
        connection.inner().execute(statement, __FILE__, __LINE__);
    }
}
} // namespace

void fill_peer_database(DBIF_Connection connection, const DevicePopulation& population)
{
    fill(connection, [&](PeerFiller* filler) {
        filler->defineKeys();
        add_devices(population, filler);
    });
}

void fill_peer_database(DBIF_Connection connection, const SweepPopulation& population)
{
    fill(connection, [&](PeerFiller* filler) {
        add_devices(population, filler);
        for (std::size_t i = 0; i < population.setups(); ++i) {
            filler->sweep(population, i);
        }
    });
}
} // namespace bench
