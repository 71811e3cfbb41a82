#include "tests/support/measurement_database.h"

#include "dbif/host/host_string.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

namespace test_support {
MeasurementDatabase::MeasurementDatabase(Engine engine, Schema schema)
    : engine_(engine),
      server_(engine == Engine::MariaDb ? std::make_unique<MariaDbDatabase>() : nullptr),
      connection(open())
{
    if (schema == Schema::Create) {
        connection.initializeSchemaIfMissing();
    }
}

DBIF_Connection MeasurementDatabase::open() const
{
    if (engine_ == Engine::Sqlite) {
        return {"QSQLITE", "", path().c_str(), "", "", 0};
    }
    const MariaDbServer& server = MariaDbServer::instance();
    return {
        "QMYSQL",
        server.host().c_str(),
        server_->name().c_str(),
        server.user().c_str(),
        server.password().c_str(),
        server.port()};
}

DbuiConnection MeasurementDatabase::record(const std::string& name) const
{
    if (engine_ == Engine::Sqlite) {
        return {name, "QSQLITE", "", "", path(), "", ""};
    }
    const MariaDbServer& server = MariaDbServer::instance();
    return {name,
            "QMYSQL",
            server.host(),
            std::to_string(server.port()),
            server_->name(),
            server.user(),
            server.password()};
}

std::string MeasurementDatabase::rows(const std::string& sql)
{
    QSqlQuery query = connection.query(dbif::to_qt(sql), 0, __FILE__, __LINE__);
    std::string text;
    while (query.next()) {
        for (int i = 0; i < query.record().count(); ++i) {
            text += i == 0 ? "" : "|";
            // A NULL number has the text 0 on one engine.
            text += query.isNull(i) ? "" : dbif::to_utf8(query.value(i).toString());
        }
        text += ";";
    }
    return text;
}

void MeasurementDatabase::execute(const std::string& sql)
{
    connection.query(dbif::to_qt(sql), 0, __FILE__, __LINE__);
}

std::string engine_name(const testing::TestParamInfo<Engine>& info)
{
    return info.param == Engine::Sqlite ? "Sqlite" : "MariaDb";
}

dbif::KeyValue number_key(const std::string& name, double number, const std::string& category)
{
    return {name, dbif::ValueKind::Double, category, number, ""};
}

dbif::KeyValue text_key(
    const std::string& name,
    const std::string& text,
    const std::string& category,
    dbif::ValueKind kind)
{
    return {name, kind, category, 0, text};
}

dbif::SetupColumn sweep(const std::string& name, const std::vector<double>& numbers)
{
    dbif::SetupColumn column{name, false, "", {}};
    column.values.numbers = numbers;
    return column;
}

dbif::SetupColumn
text_sweep(const std::string& name, const std::vector<std::optional<std::string>>& texts)
{
    dbif::SetupColumn column{name, false, "", {}};
    column.values.kind = dbif::ValueKind::Text;
    column.values.texts = texts;
    return column;
}
} // namespace test_support
