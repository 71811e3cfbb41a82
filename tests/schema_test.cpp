#include "dbif/retrieval/query_run.h"
#include "dbif/retrieval/vanto_query.h"
#include "dbif/schema/schema.h"

#include "tests/support/measurement_database.h"

#include <gmock/gmock.h>

#include <set>

using namespace test_support; // NOLINT(google-build-using-namespace)
using testing::HasSubstr;

namespace {
class Schema : public testing::TestWithParam<Engine>
{
protected:
    std::string refusal()
    {
        return thrown_by([&] { database.connection.initializeSchemaIfMissing(); });
    }

    MeasurementDatabase database{GetParam(), MeasurementDatabase::Schema::Leave};
};

class SqliteFile : public testing::Test
{
protected:
    static DBIF_Connection
    open(const std::string& file, dbif::MissingFile missing = dbif::MissingFile::Create)
    {
        return {"QSQLITE", "", file.c_str(), "", "", 0, missing};
    }

    /// Names of the files in the folder.
    [[nodiscard]] std::set<std::string> files() const
    {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
            names.insert(entry.path().filename());
        }
        return names;
    }

    /// The number of devices the file holds, or why it cannot be read.
    static std::string devices(const std::string& file)
    {
        DBIF_Connection connection = open(file, dbif::MissingFile::Fail);
        std::string found;
        const std::string refusal = thrown_by([&] {
            connection.initializeSchemaIfMissing();
            DBIF_VantoQuery query(connection);
            query.addColumn(QStringLiteral("device"), QStringLiteral("id"), false);
            found = std::to_string(dbif::run_query(query).rows) + " devices";
        });
        return found.empty() ? refusal : found;
    }

    void createWithDevice() const
    {
        DBIF_Connection connection = open(path);
        connection.initializeSchemaIfMissing();
        dbif::RecordWriter writer(connection);
        writer.findOrAddDevice(0, {.name = "a"});
        writer.commit();
    }

    TempDirectory folder;
    const std::string path = folder.file("data.db");
};
} // namespace

TEST_P(Schema, IsCreatedOnceInAnEmptyDatabase)
{
    EXPECT_EQ(refusal(), "nothing thrown");
    database.write([](dbif::RecordWriter& writer) { writer.findOrAddDie({.lot = "a"}); });
    EXPECT_EQ(refusal(), "nothing thrown");
    EXPECT_EQ(database.rows("SELECT lot FROM die"), "a;");
    EXPECT_EQ(database.rows("SELECT count(*) FROM latest_setup"), "0;");
    EXPECT_EQ(database.rows("SELECT id, schema_version FROM database_info"), "1|1;");
}

TEST_P(Schema, RefusesWhatItDidNotWrite)
{
    database.execute("CREATE TABLE recipes (name INTEGER)");
    EXPECT_THAT(
        refusal(),
        HasSubstr(
            "\" holds other tables, but no measurement schema: it belongs to another program. Name an empty or a new database."));
    database.execute("DROP TABLE recipes");
    EXPECT_EQ(refusal(), "nothing thrown");
    database.execute("UPDATE database_info SET schema_version = 2");
    EXPECT_THAT(
        refusal(),
        HasSubstr(
            "was written by a newer version of this program: its schema has version 2, and this program reads versions up to 1."));
    for (const char* version : {"0", "-1"}) {
        database.execute(std::string("UPDATE database_info SET schema_version = ") + version);
        EXPECT_THAT(refusal(), HasSubstr("does not tell the version of the schema. Make a backup"));
    }
    if (GetParam() == Engine::Sqlite) {
        database.execute("UPDATE database_info SET schema_version = 'abc'");
        EXPECT_THAT(refusal(), HasSubstr("does not tell the version of the schema."));
    }
    database.execute("UPDATE database_info SET schema_version = 1");
    if (GetParam() == Engine::Sqlite) {
        database.execute("DELETE FROM database_info");
        EXPECT_THAT(refusal(), HasSubstr("\" holds an incomplete measurement schema"));
    }
    database.execute("INSERT INTO die (id, lot) VALUES (1, 'A')");
    database.execute("DELETE FROM database_info");
    EXPECT_THAT(refusal(), HasSubstr("is damaged: its table \"database_info\""));
}

INSTANTIATE_ON_ENGINES(Schema);

TEST(SchemaOnMariaDb, IsMadeAnewWhereItsCreationWasInterrupted)
{
    MeasurementDatabase database(Engine::MariaDb, MeasurementDatabase::Schema::Leave);
    const auto refusal = [&database] {
        return thrown_by([&] { database.connection.initializeSchemaIfMissing(); });
    };
    EXPECT_EQ(refusal(), "nothing thrown");
    const std::string all = "SELECT count(*) FROM information_schema.tables WHERE table_schema = "
                            "DATABASE()";
    const std::string complete = database.rows(all.c_str());
    // Late, early, and while what was left is dropped.
    for (const std::vector<const char*>& lost :
         {std::vector<const char*>{"TABLE setup_data"},
          {"TABLE multi_table", "VIEW latest_setup"},
          {"TABLE multi_table_column"}}) {
        database.execute("DELETE FROM database_info");
        for (const char* part : lost) {
            database.execute((std::string("DROP ") + part).c_str());
        }
        EXPECT_EQ(refusal(), "nothing thrown");
        EXPECT_EQ(database.rows(all.c_str()), complete);
    }

    // Tables of others stay.
    database.execute("DELETE FROM database_info");
    database.execute("CREATE TABLE recipes (name INTEGER)");
    EXPECT_THAT(refusal(), HasSubstr("\" holds an incomplete measurement schema"));
    EXPECT_EQ(database.rows("SELECT count(*) FROM recipes"), "0;");
}

TEST(SchemaOfEngines, IsTheSameOnSqliteAndMariaDb)
{
    MeasurementDatabase lite(Engine::Sqlite);
    MeasurementDatabase server(Engine::MariaDb);
    EXPECT_EQ(
        lite.rows("SELECT t.name, c.name FROM sqlite_master t JOIN pragma_table_info(t.name) c "
                  "WHERE t.name NOT LIKE 'sqlite!_%' ESCAPE '!' ORDER BY t.name, c.cid"),
        server.rows("SELECT table_name, column_name FROM information_schema.columns "
                    "WHERE table_schema = DATABASE() ORDER BY table_name, ordinal_position"));
}

TEST_F(SqliteFile, IsCreatedOnlyWhenAsked)
{
    EXPECT_FALSE(open(path, dbif::MissingFile::Fail).isValid());
    EXPECT_EQ(files(), std::set<std::string>());
    createWithDevice();
    EXPECT_EQ(devices(path), "1 devices");
    EXPECT_EQ(files(), (std::set<std::string>{"data.db"}));

    const std::string empty = folder.file("empty.db");
    write_file(empty, "");
    EXPECT_THAT(devices(empty), HasSubstr("is empty (0 bytes)."));
    EXPECT_FALSE(open("").isValid());
    EXPECT_FALSE(open(folder.file("no/such/folder.db")).isValid());
}

TEST_F(SqliteFile, IsLeftAloneWhenItIsNoDatabase)
{
    const std::string other = folder.file("notes.txt");
    write_file(other, std::string(5000, 'n'));
    EXPECT_THAT(
        devices(other),
        HasSubstr("The SQLite file \"" + other + "\" does not open: file is not a database."));
    EXPECT_EQ(read_file(other), std::string(5000, 'n'));
    EXPECT_EQ(devices(folder.path()), "\"" + folder.path() + "\" is a folder, not an SQLite file.");
    EXPECT_EQ(files(), (std::set<std::string>{"notes.txt"}));
}

TEST_F(SqliteFile, IsNotWrittenByReading)
{
    createWithDevice();
    const std::string bytes = read_file(path);
    const auto time = std::filesystem::last_write_time(path);
    EXPECT_EQ(devices(path), "1 devices");
    EXPECT_EQ(std::filesystem::last_write_time(path), time);
    EXPECT_EQ(read_file(path), bytes);
    EXPECT_EQ(files(), (std::set<std::string>{"data.db"}));
}
