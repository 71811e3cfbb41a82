#include "dbapi/db_values.h"

#include "tests/support/lab_database.h"

#include <gtest/gtest.h>

#include <iostream>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

namespace {
using test_support::Engine;
using test_support::sweep;

constexpr int kReaders = 8;
constexpr int kReadsEach = 25;
constexpr int kImports = 20;
constexpr int kSetups = 30;
constexpr std::size_t kPoints = 500;

/// Every import measures the same sweeps anew; all its values are the import's number.
void import_once(const DBIF_Connection& connection, int number)
{
    dbif::RecordWriter writer(connection);
    const std::vector<double> values(kPoints, number);
    const int device = writer.findOrAddDevice(0, {.name = "n"});
    for (int i = 0; i < kSetups; ++i) {
        const int condition =
            writer.addCondition(writer.addMeasurement({0, device, 0, 25.0, {}}), {});
        writer.addSetup(
            condition, {.name = std::to_string(i)}, {sweep("a", values), sweep("b", values)},
            "file");
    }
    writer.commit();
}

/// Tells whether the rows are those of one import, whole.
std::string fault_of(const std::vector<std::vector<std::string>>& columns)
{
    if (columns.size() != 2 || columns[0].size() != kSetups * kPoints) {
        return "a read has " + std::to_string(columns.empty() ? 0 : columns[0].size()) + " rows";
    }
    std::set<std::string> values(columns[0].begin(), columns[0].end());
    values.insert(columns[1].begin(), columns[1].end());
    return values.size() == 1 ? "" : "a read mixes imports";
}

bool read_many_times()
{
    for (int i = 0; i < kReadsEach; ++i) {
        std::vector<std::vector<std::string>> columns;
        std::string fault;
        try {
            // Another query string each time, so that nothing is answered from before.
            if (dbapi::db_get_values_for_keywords(
                    "lab", {"OUTD.a", "OUTD.b"}, &columns, "$TEMP<" + std::to_string(100 + i),
                    &fault)) {
                fault = fault_of(columns);
            }
        } catch (const DBIF_Exception& exception) {
            fault = exception.what();
        }
        if (!fault.empty()) {
            std::cerr << fault << '\n';
            return false;
        }
    }
    return true;
}

class ConcurrentAccess : public test_support::EngineTest
{};
} // namespace

TEST_P(ConcurrentAccess, ReadersSeeWholeImportsWhileOneWrites)
{
    test_support::store_connection(database, "lab");
    import_once(database.connection, 0);
    std::vector<pid_t> children;
    for (int i = 0; i <= kReaders; ++i) {
        const pid_t child = fork();
        if (child == 0 && i < kReaders) {
            _exit(read_many_times() ? 0 : 1);
        }
        if (child == 0) {
            const DBIF_Connection own = database.open();
            const std::string fault = test_support::thrown_by([&own] {
                for (int number = 1; number <= kImports; ++number) {
                    import_once(own, number);
                }
            });
            _exit(fault == "nothing thrown" ? 0 : 1);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(
        database.rows("SELECT (SELECT count(*) FROM setup), (SELECT count(*) FROM latest_setup)"),
        std::to_string((kImports + 1) * kSetups) + "|" + std::to_string(kSetups) + ";");
}

INSTANTIATE_ON_ENGINES(ConcurrentAccess);
