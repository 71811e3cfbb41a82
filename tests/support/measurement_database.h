#pragma once

#include "dbif/connection/connection.h"
#include "dbif/host/host_string.h"
#include "dbif/write/record_writer.h"
#include "dbui/connection_record.h"

#include "tests/support/mariadb_server.h"
#include "tests/support/temp_directory.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace test_support {
enum class Engine { Sqlite, MariaDb };

/// A new measurement database on one of the engines, which goes away with this object.
class MeasurementDatabase
{
public:
    enum class Schema { Create, Leave };

    explicit MeasurementDatabase(Engine engine, Schema schema = Schema::Create);

    /// Another connection to it.
    [[nodiscard]] DBIF_Connection open() const;

    /// The record of a stored connection that leads to it.
    [[nodiscard]] DbuiConnection record(const std::string& name) const;

    [[nodiscard]] Engine engine() const { return engine_; }

    /// The path of the SQLite file.
    [[nodiscard]] std::string path() const { return folder_.file("data.db"); }

    [[nodiscard]] const TempDirectory& folder() const { return folder_; }

    /// The rows of a statement, cells joined by "|", rows by a semicolon.
    [[nodiscard]] std::string rows(const std::string& sql);
    void execute(const std::string& sql);

    /// Commits what `add` writes.
    template <typename Add>
    void write(const Add& add)
    {
        dbif::RecordWriter writer(connection);
        add(writer);
        writer.commit();
    }

private:
    Engine engine_;
    TempDirectory folder_;
    std::unique_ptr<MariaDbDatabase> server_;

public:
    DBIF_Connection connection;
};

/// A test that runs on both engines: `INSTANTIATE_ON_ENGINES(Suite)` behind `TEST_P(Suite, ...)`.
class EngineTest : public testing::TestWithParam<Engine>
{
protected:
    MeasurementDatabase database{GetParam()};
};

/// The names by which ctest knows which tests need a server.
std::string engine_name(const testing::TestParamInfo<Engine>& info);

#define INSTANTIATE_ON_ENGINES(suite)                                                              \
    INSTANTIATE_TEST_SUITE_P(                                                                      \
        On, suite, testing::Values(test_support::Engine::Sqlite, test_support::Engine::MariaDb),   \
        test_support::engine_name)

dbif::KeyValue number_key(const std::string& name, double number, const std::string& category = "");
dbif::KeyValue text_key(
    const std::string& name,
    const std::string& text,
    const std::string& category = "",
    dbif::ValueKind kind = dbif::ValueKind::Text);
dbif::SetupColumn sweep(const std::string& name, const std::vector<double>& numbers);
dbif::SetupColumn
text_sweep(const std::string& name, const std::vector<std::optional<std::string>>& texts);

/// The text of the exception that `work` throws; "nothing thrown" when it throws none.
template <typename Work>
std::string thrown_by(const Work& work)
{
    try {
        work();
    } catch (const DBIF_Exception& exception) {
        return dbif::to_utf8(exception.error().text());
    }
    return "nothing thrown";
}
} // namespace test_support
