#include "benchmarks/comparison_run.h"
#include "benchmarks/device_rows.h"
#include "benchmarks/point_rows.h"
#include "benchmarks/resource_rows.h"

#include <QtGlobal>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sys/utsname.h>
#include <unistd.h>

namespace {
constexpr const char* kUsage =
    R"(usage: dbapi_benchmarks [--engine=sqlite|mysql] [--size=small|full] [--data=FOLDER]
                        [--time=wall|cpu] [flags of Google Benchmark]

Measures the library beside the same reads in hand-written SQL and prints a table. Ends with 1 when
a target is missed or two results differ. The databases are made in FOLDER (else in the folder that
the environment variable DBAPI_BENCHMARK_DATA names, else in the build tree) and kept for later runs.

  --engine=sqlite  on SQLite files
  --engine=mysql   on a MariaDB server, which is started for the run
  --size=small     1e4 and 1e5 devices, 1e6 points
  --size=full      1e4, 1e5 and 1e6 devices, 1e7 points (5 GB of files, 7 GB on a server)
  --time=cpu       count processor time, on a machine that has other work; not that of a server
)";

struct Options
{
    bench::EngineKind engine = bench::EngineKind::Sqlite;
    bool isFull = false;
    bool isProcessorTime = false;
    std::string data = DATA_DIRECTORY;
    /// When given, only the memory of a read from this database is measured.
    std::string peakMemory;
    bool isWrong = false;
};

/// Reads one "--name=value"; false when there is no such flag.
bool take_flag(const std::string& flag, Options* options)
{
    const std::size_t equals = std::min(flag.find('='), flag.size() - 1);
    const std::string name = flag.substr(0, equals + 1);
    const std::string value = flag.substr(equals + 1);
    if (flag == "--engine=sqlite" || flag == "--engine=mysql") {
        options->engine = value == "mysql" ? bench::EngineKind::MySql : bench::EngineKind::Sqlite;
    } else if (flag == "--size=small" || flag == "--size=full") {
        options->isFull = value == "full";
    } else if (flag == "--time=wall" || flag == "--time=cpu") {
        options->isProcessorTime = value == "cpu";
    } else if (name == "--data=" && !value.empty()) {
        options->data = value;
    } else if (name == "--peak-memory=") {
        options->peakMemory = value;
    } else {
        return false;
    }
    return true;
}

Options options_of(int argc, char** argv)
{
    Options options;
    if (const char* folder = std::getenv("DBAPI_BENCHMARK_DATA")) {
        options.data = folder;
    }
    for (int i = 1; i < argc; ++i) {
        options.isWrong = !take_flag(argv[i], &options) || options.isWrong;
    }
    // The processor time of a server is not that of this process.
    const bool isServer = options.engine == bench::EngineKind::MySql;
    options.isWrong = options.isWrong || (options.isProcessorTime && isServer);
    return options;
}

/// A line of a system file that begins with `key`, without it.
std::string system_line(const char* path, const std::string& key)
{
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line)) {
        if (line.starts_with(key)) {
            return line.substr(line.find_first_not_of(" \t:", key.size()));
        }
    }
    return "unknown";
}

void print_machine(const std::string& engine, bool isProcessorTime)
{
    utsname system{};
    uname(&system);
    std::cout << system_line("/proc/cpuinfo", "model name") << ", " << sysconf(_SC_NPROCESSORS_ONLN)
              << " cores, memory " << system_line("/proc/meminfo", "MemTotal") << ", "
              << system.sysname << ' ' << system.release << ", " << engine << ", " << BUILD_TYPE
              << "; " << (isProcessorTime ? "processor" : "wall") << " time\n\n";
}

/// A folder for the stored connections of this run, so that nobody's own are touched.
class ConnectionsFolder
{
    Q_DISABLE_COPY_MOVE(ConnectionsFolder)

public:
    ConnectionsFolder()
    {
        path_ = (std::filesystem::temp_directory_path() / "dbapi_benchmarks_XXXXXX").string();
        if (mkdtemp(path_.data()) == nullptr) {
            throw std::runtime_error("cannot make the folder " + path_);
        }
        setenv("VANTO_DB_CONNECTIONS_DIRECTORY", path_.c_str(), 1);
    }

    ~ConnectionsFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

private:
    std::string path_;
};

bool run(const Options& options)
{
    using bench::Comparison;
    const bench::DataStore store(options.data, options.engine);
    const std::size_t points = options.isFull ? 10'000'000 : 1'000'000;
    const std::size_t largest = options.isFull ? 1'000'000 : 100'000;
    std::vector<Comparison> rows = bench::point_rows(store, points);
    std::vector<Comparison> smaller;
    for (std::size_t devices = 10'000; devices <= largest; devices *= 10) {
        const bool isLargest = devices == largest;
        for (Comparison& row : bench::device_rows(store, devices, isLargest)) {
            (isLargest ? rows : smaller).push_back(std::move(row));
        }
    }
    rows.insert(rows.end(), smaller.begin(), smaller.end());
    if (options.engine == bench::EngineKind::Sqlite) {
        for (Comparison& row : bench::resource_rows(store, points)) {
            rows.push_back(std::move(row));
        }
    }
    std::vector<bench::Growth> growths;
    for (const char* name : {"cached_value/", "value_by_id/"}) {
        growths.push_back({name + std::to_string(10'000), name + std::to_string(largest)});
    }
    print_machine(store.engine().description(), options.isProcessorTime);
    return bench::run_comparisons(rows, growths);
}
} // namespace

int main(int argc, char** argv)
{
    // Removes the flags that it knows.
    benchmark::Initialize(&argc, argv);
    const Options options = options_of(argc, argv);
    if (options.isWrong) {
        std::cerr << kUsage;
        return 2;
    }
    try {
        const ConnectionsFolder folder;
        if (!options.peakMemory.empty()) {
            return bench::print_peak_memory(options.peakMemory);
        }
        if (options.isProcessorTime) {
            bench::count_processor_time();
        }
        return run(options) ? 0 : 1;
    } catch (const std::exception& exception) {
        std::cerr << "dbapi_benchmarks: " << exception.what() << '\n';
        return 2;
    }
}
