#include "benchmarks/resource_rows.h"

#include "dbapi/dbapi.h"
#include "dbimport/sweep_files.h"
#include "dbimport/sweep_import.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <malloc.h>
#include <sstream>
#include <stdexcept>

namespace bench {
namespace {
namespace fs = std::filesystem;

constexpr const char* kKey = "IB";

/// The largest resident size so far of this process.
double peak_bytes()
{
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        if (word == "VmHWM:") {
            double kilobytes = 0;
            status >> kilobytes;
            return kilobytes * 1024;
        }
    }
    throw std::runtime_error("the system does not tell the peak memory");
}

/// What the texts take on the heap, with the allocator's own word for each.
double bytes_of(const std::vector<std::string>& texts)
{
    std::size_t bytes = texts.size() * sizeof(std::string);
    for (const std::string& text : texts) {
        const char* inside = reinterpret_cast<const char*>(&text);
        if (text.data() < inside || text.data() >= inside + sizeof(text)) {
            bytes += malloc_usable_size(const_cast<char*>(text.data())) + sizeof(std::size_t);
        }
    }
    return static_cast<double>(bytes);
}

struct Memory
{
    double peak = 0;
    double result = 0;
    double values = 0;
};

Memory memory_of_read(const std::string& path)
{
    // Another process, because the peak of this one is that of all that it did before.
    const std::string program = fs::read_symlink("/proc/self/exe");
    const std::string command = "'" + program + "' --peak-memory='" + path + "'";
    FILE* pipe = popen(command.c_str(), "r");
    Memory memory;
    const bool isRead =
        pipe != nullptr &&
        std::fscanf(pipe, "%lf %lf %lf", &memory.peak, &memory.result, &memory.values) == 3;
    if (pipe == nullptr || pclose(pipe) != 0 || !isRead) {
        throw std::runtime_error("cannot run " + command);
    }
    return memory;
}

std::string path_of(const DataStore& store, const std::string& database)
{
    return store.engine().place(database).database;
}

Comparison memory_row(const DataStore& store, std::size_t points)
{
    Comparison row;
    row.title = "peak memory of that read, beside the result, 16 bytes a value and 64 MiB";
    row.id = "peak_memory/" + std::to_string(points);
    row.unit = Unit::Bytes;
    row.target = 1;
    row.turns = 1;
    const auto memory = std::make_shared<Memory>();
    row.ours = [=] {
        *memory = memory_of_read(path_of(store, store.sweeps(points).library));
        return memory->peak;
    };
    row.peer = [=] {
        return memory->result + 16 * memory->values + 64 * 1024 * 1024;
    };
    return row;
}

/// Has the system keep the files of a folder in memory, so that no disk is measured.
void load_into_cache(const std::string& folder)
{
    std::vector<char> buffer(1U << 20U);
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        while (file.read(buffer.data(), static_cast<std::streamsize>(buffer.size()))) {
        }
    }
}

double import_seconds(const std::string& folder, const std::string& path)
{
    fs::remove(path);
    DBIF_Connection connection("QSQLITE", "", path.c_str(), "", "", 0);
    connection.initializeSchemaIfMissing();
    const double start = seconds_now();
    const std::vector<std::string> files = dbapi::find_sweep_files({folder}).files;
    const dbapi::ImportResult result = dbapi::import_sweeps(connection, files);
    const double passed = seconds_now() - start;
    if (result.faultCount != 0) {
        throw std::runtime_error("the import failed: " + result.faults.front().text);
    }
    return passed;
}

Comparison import_row(const DataStore& store, std::size_t points)
{
    Comparison row;
    row.title = "import from CSV, beside a million points a second";
    row.id = "import/" + std::to_string(points);
    row.target = 1;
    row.turns = 3;
    row.prepare = [=] {
        load_into_cache(store.sweepFiles(points));
    };
    row.ours = [=] {
        return import_seconds(store.sweepFiles(points), store.file("imported.db"));
    };
    row.peer = [points] {
        return static_cast<double>(points) / 1e6;
    };
    return row;
}

Comparison size_row(const DataStore& store, std::size_t points)
{
    Comparison row;
    row.title = "size of the database";
    row.id = "size/" + std::to_string(points);
    row.unit = Unit::Bytes;
    row.target = 0.5;
    row.turns = 1;
    row.ours = [=] {
        return static_cast<double>(fs::file_size(path_of(store, store.sweeps(points).library)));
    };
    row.peer = [=] {
        return static_cast<double>(fs::file_size(path_of(store, store.sweeps(points).peer)));
    };
    return row;
}
} // namespace

std::vector<Comparison> resource_rows(const DataStore& store, std::size_t points)
{
    std::vector<Comparison> rows;
    rows.push_back(memory_row(store, points));
    rows.push_back(import_row(store, points));
    rows.push_back(size_row(store, points));
    for (Comparison& row : rows) {
        row.size = std::to_string(points) + " points";
    }
    return rows;
}

int print_peak_memory(const std::string& path)
{
    std::string errors;
    std::vector<std::string> values;
    if (!dbapi::db_create_sqlite_connection("memory", path, &errors) ||
        !dbapi::db_get_values_for_keyword_as_text("memory", kKey, &values, "", &errors)) {
        std::cerr << errors << '\n';
        return 1;
    }
    std::printf("%.0f %.0f %zu\n", peak_bytes(), bytes_of(values), values.size());
    return 0;
}
} // namespace bench
