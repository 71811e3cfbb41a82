// Lets DuckDB read Arrow streams of this library, and join them with a table of its own:
//
//     duckdb_check LIBDUCKDB DATABASE
//
// DATABASE is a new SQLite file, which is filled. Ends with 0 when all answers are as they should
// be. The functions of DuckDB are found at run time, because its package is no part of Debian.

#include "dbapi/db_arrow.h"
#include "dbapi/db_connections.h"
#include "dbif/write/record_writer.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <iostream>

namespace {
/// As DuckDB's C interface declares them.
struct DuckResult
{
    std::uint64_t columns;
    std::uint64_t rows;
    std::uint64_t changed;
    void* data;
    char* error;
    void* internal;
};

template <typename Function>
Function* found(void* library, const char* name)
{
    void* function = dlsym(library, name);
    if (function == nullptr) {
        std::cerr << "There is no " << name << ".\n";
        std::exit(2);
    }
    return reinterpret_cast<Function*>(function);
}

class DuckDb
{
public:
    explicit DuckDb(const char* path) : library_(dlopen(path, RTLD_NOW))
    {
        if (library_ == nullptr) {
            std::cerr << dlerror() << '\n';
            std::exit(2);
        }
        void* database = nullptr;
        const bool isOpen =
            found<int(const char*, void**)>(library_, "duckdb_open")(nullptr, &database) == 0 &&
            found<int(void*, void**)>(library_, "duckdb_connect")(database, &connection_) == 0;
        if (!isOpen) {
            std::exit(2);
        }
        std::cout << "DuckDB " << found<const char*()>(library_, "duckdb_library_version")()
                  << '\n';
    }

    void scan(const char* name, ArrowArrayStream* stream)
    {
        if (found<int(void*, const char*, void*)>(library_, "duckdb_arrow_scan")(
                connection_, name, stream) != 0) {
            std::cerr << "DuckDB takes no stream.\n";
            std::exit(1);
        }
    }

    /// The rows, cells joined by "|", rows by a semicolon; or the error.
    std::string rows(const char* sql)
    {
        DuckResult result{};
        if (found<int(void*, const char*, DuckResult*)>(library_, "duckdb_query")(
                connection_, sql, &result) != 0) {
            return found<const char*(DuckResult*)>(library_, "duckdb_result_error")(&result);
        }
        using Varchar = char*(DuckResult*, std::uint64_t, std::uint64_t);
        const auto cell = found<Varchar>(library_, "duckdb_value_varchar");
        const auto count = found<std::uint64_t(DuckResult*)>(library_, "duckdb_row_count");
        const auto width = found<std::uint64_t(DuckResult*)>(library_, "duckdb_column_count");
        std::string text;
        for (std::uint64_t row = 0; row < count(&result); ++row) {
            for (std::uint64_t column = 0; column < width(&result); ++column) {
                char* value = cell(&result, column, row);
                text += (column == 0 ? "" : "|") + std::string(value == nullptr ? "NULL" : value);
                std::free(value);
            }
            text += ";";
        }
        found<void(DuckResult*)>(library_, "duckdb_destroy_result")(&result);
        return text;
    }

private:
    void* library_;
    void* connection_ = nullptr;
};

dbif::SetupColumn swept(const char* name, dbif::SweepArray values)
{
    dbif::SetupColumn column;
    column.name = name;
    column.values = std::move(values);
    return column;
}

/// 300 setups of a device each, with 100 points: every tenth without a number or a matrix.
void fill(const std::string& path)
{
    DBIF_Connection connection("QSQLITE", "", path.c_str(), "", "", 0);
    connection.initializeSchemaIfMissing();
    dbif::RecordWriter writer(connection);
    for (int setup = 0; setup < 300; ++setup) {
        const std::string name = "d" + std::to_string(setup % 3);
        const int device =
            writer.findOrAddDevice(writer.findOrAddDie({.lot = "L"}), {.name = name}, {});
        const int measurement =
            writer.addMeasurement({writer.addCatalogEntry({}), device, 0, 25, {}});
        dbif::SweepArray x{dbif::ValueKind::Double, {}, {}, {}, {}};
        dbif::SweepArray y{dbif::ValueKind::Complex, {}, {}, {}, {}};
        dbif::SweepArray m{dbif::ValueKind::Matrix, {}, {}, {}, {}};
        for (int point = 0; point < 100; ++point) {
            x.numbers.push_back(point % 10 == 0 ? std::numeric_limits<double>::quiet_NaN() : point);
            y.complexNumbers.emplace_back(point, -point);
            m.matrices.push_back(
                point % 10 == 0 ? dbif::ComplexMatrix()
                                : dbif::ComplexMatrix{2, 1, {{1.0 * point, 0}, {0, 1.0 * setup}}});
        }
        writer.addSetup(
            writer.addCondition(measurement, {}), {.name = "s", .path = std::to_string(setup)},
            {swept("x", x), swept("y", y), swept("m", m)}, std::to_string(setup));
    }
    writer.commit();
}

ArrowArrayStream open_stream()
{
    dbapi::ColumnOptions options;
    options.order = dbapi::ColumnOptions::Order::Stored;
    options.withIds = true;
    std::unique_ptr<dbapi::ColumnReader> reader;
    std::string errors;
    if (!dbapi::db_open_column_reader(
            "check", {"$DEVNAME", "x", "y", "m", "$DEVTIME"}, 1000, &reader, "", options,
            &errors)) {
        std::cerr << errors;
        std::exit(1);
    }
    ArrowArrayStream stream{};
    dbapi::db_export_arrow_stream(std::move(reader), &stream);
    return stream;
}

int failures = 0;

/// Reads a whole stream. Statements on a stream itself have to take all its columns: this function
/// of DuckDB's C interface asks the stream for some of them, which no Arrow stream can give.
void take(DuckDb& duck, const char* sql)
{
    ArrowArrayStream stream = open_stream();
    duck.scan("stream", &stream);
    std::cout << sql << "\n        " << duck.rows(sql) << '\n';
    if (stream.release != nullptr) {
        stream.release(&stream);
    }
}

void expect(DuckDb& duck, const char* sql, const std::string& expected)
{
    const std::string rows = duck.rows(sql);
    std::cout << (rows == expected ? "ok      " : "FAILED  ") << sql << "\n        " << rows
              << '\n';
    failures += rows == expected ? 0 : 1;
}
} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        return 2;
    }
    std::string errors;
    if (!dbapi::db_create_sqlite_connection("check", argv[2], &errors)) {
        std::cerr << errors;
        return 1;
    }
    fill(argv[2]);
    DuckDb duck(argv[1]);
    duck.rows("CREATE TABLE own (device VARCHAR, width DOUBLE)");
    duck.rows("INSERT INTO own VALUES ('d0', 1.5), ('d2', 2.5)");
    take(duck, "CREATE TABLE lab AS SELECT * FROM stream");
    take(
        duck, "CREATE TABLE joined AS SELECT * FROM stream JOIN own ON own.device = "
              "stream.\"$DEVNAME\"");
    expect(
        duck, "SELECT COUNT(*), COUNT(x), SUM(x), COUNT(m) FROM lab",
        "30000|27000|1350000.0|27000;");
    expect(
        duck,
        "SELECT width, COUNT(*), MAX(x), COUNT(DISTINCT \"$DEVNAME\") FROM joined GROUP BY width "
        "ORDER BY width",
        "1.5|10000|99.0|1;2.5|10000|99.0|1;");
    expect(
        duck, "SELECT y::VARCHAR, m::VARCHAR, x FROM lab WHERE id = 42 AND y[1] IN (10, 11)",
        "[10.0, -10.0]|NULL|NULL;[11.0, -11.0]|[[[11.0, 0.0]], [[0.0, 41.0]]]|11.0;");
    expect(
        duck, "SELECT COUNT(DISTINCT id), MIN(id), MAX(id), SUM(m[2][1][2]) FROM lab",
        "300|1|300|4036500.0;");
    expect(
        duck,
        "SELECT COUNT(*) FROM lab WHERE \"$DEVTIME\" BETWEEN TIMESTAMPTZ '2020-01-01' AND "
        "TIMESTAMPTZ '2200-01-01'",
        "30000;");
    expect(
        duck, "SELECT typeof(y), typeof(m), typeof(id) FROM lab LIMIT 1",
        "DOUBLE[2]|DOUBLE[2][][]|BIGINT;");
    return failures == 0 ? 0 : 1;
}
