#include "dbif/write_retry.h"

#include "tests/support/measurement_database.h"

#include <gmock/gmock.h>

namespace {
using dbif::RecordWriter;
using test_support::Engine;
using test_support::MeasurementDatabase;
using test_support::thrown_by;
using testing::HasSubstr;

/// The error that the client reports under a code.
DBIF_Exception server_error(const char* code)
{
    return {
        QStringLiteral("INSERT"),
        QSqlError(
            {}, QStringLiteral("conflict"), QSqlError::StatementError, QString::fromLatin1(code)),
        {},
        0};
}

/// How often a work that fails with the code is begun.
int attempts(const DBIF_Connection& connection, const char* code, std::string* text)
{
    int count = 0;
    *text = thrown_by([&] {
        dbif::write_with_retries(connection, [&] {
            ++count;
            throw server_error(code);
        });
    });
    return count;
}
} // namespace

TEST(WriteRetry, RepeatsOnlyWhatMaySucceedMariaDb)
{
    MeasurementDatabase database(Engine::MariaDb);
    std::string text;
    EXPECT_EQ(attempts(database.connection, "1213", &text), 5);
    EXPECT_THAT(text, HasSubstr("conflict (tried 5 times; these records are not stored."));
    EXPECT_EQ(attempts(database.connection, "1064", &text), 1);
    EXPECT_EQ(text, "conflict");
}

TEST(WriteRetry, StoresOnceWhenTheConnectionIsLostMariaDb)
{
    MeasurementDatabase database(Engine::MariaDb);
    // Lost before anything is written, in the middle, and when all is sent but the commit.
    for (int lostAt = 0; lostAt < 3; ++lostAt) {
        int attempt = 0;
        dbif::write_with_retries(database.connection, [&] {
            const auto loseHere = [&](int place) {
                if (place == lostAt && attempt == 1) {
                    const std::string id = database.rows("SELECT connection_id()");
                    MariaDbServer::instance().execute("KILL " + id.substr(0, id.size() - 1));
                }
            };
            ++attempt;
            RecordWriter writer(database.connection);
            loseHere(0);
            const int device = writer.findOrAddDevice(0, {.name = "n" + std::to_string(lostAt)});
            const int condition =
                writer.addCondition(writer.addMeasurement({0, device, 0, {}, {}}), {});
            loseHere(1);
            // More than waits in a batch.
            writer.addSetup(
                condition, {}, {test_support::sweep("id", std::vector<double>(200'000, 1))}, "f");
            loseHere(2);
            writer.commit();
        });
        EXPECT_EQ(attempt, 2) << lostAt;
    }
    EXPECT_EQ(
        database.rows(
            "SELECT (SELECT count(*) FROM device), (SELECT count(*) FROM measurement), (SELECT count(*) FROM setup)"),
        "3|3|3;");
}
