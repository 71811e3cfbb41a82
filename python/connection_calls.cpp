#include "dbapi/call/call_cache.h"
#include "dbapi/call/connection_access.h"
#include "dbapi/call/public_call.h"
#include "dbapi/call/selection.h"
#include "dbapi/db_connections.h"
#include "dbapi/words/text_rules.h"
#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"
#include "dbsuggest/nearest_text.h"
#include "dbui/connection_open.h"
#include "dbui/connections_file.h"
#include "dbui/connections_path.h"
#include "dbui/diagnosis/connection_diagnosis.h"

#include "python/bindings.h"
#include "python/library_call.h"
#include "python/python_texts.h"
#include "python/writing_connection.h"

#include <filesystem>
#include <set>
#include <system_error>

namespace dbapi::python {
namespace {
/// A call that keeps no fault, and whose failures are those of connections.
template <typename Run>
void change_connections(const Run& run)
{
    call_library({}, [&run](std::string* errors) {
        if (!run(errors)) {
            throw FaultError(connection_fault(*errors));
        }
        return true;
    });
}

/// The fault of a name that no connection has, with those that have one like it.
Fault unknown_connection(const std::string& name)
{
    std::set<std::string> names;
    db_get_connections(&names);
    return connection_fault(
        "There is no stored connection " + dbapi::quoted(name) + "." +
        suggestion(nearest_texts(name, names, 3)) +
        (names.empty() ? " None is stored yet: dbapi.connections.add(" + dbapi::quoted(name) +
                             ", sqlite=\"FILE\") stores one, and dbapi.connect(sqlite=\"FILE\") "
                             "opens a file without."
                       : ""));
}

DbuiConnection record_of(const std::string& name)
{
    DbuiConnection record;
    if (!dbapi_get_connection_info(name, &record)) {
        throw FaultError(unknown_connection(name));
    }
    return record;
}

void check_opens(const py::object& connection)
{
    const std::string name = text_of(connection, "The connection");
    call_library(name, [&name](std::string* errors) {
        record_of(name);
        return run_call_without_exceptions(
            name, std::string(), errors, [&name] { connection_for_call(name); });
    });
}

/// Closes the database that the library keeps open, if it is this one.
void close_kept(const std::string& name)
{
    DbapiCache& kept = make_cache();
    if (kept.get_connection_name() == name) {
        kept.clearDataConnection();
        kept.clearQueryData();
    }
}

void release(const py::object& connection)
{
    const std::string name = text_of(connection, "The connection");
    call_library(name, [&name](std::string*) {
        close_kept(name);
        return true;
    });
}

void create_file(const py::object& path)
{
    const std::string file = text_of(path, "The path");
    change_connections([&file](std::string* errors) {
        DBIF_Connection connection = dbui::blank_connection();
        const DbuiConnection record("", "QSQLITE", "", "", file, "", "");
        if (!dbui::open_connection(record, dbif::MissingFile::Create, &connection, errors)) {
            return false;
        }
        if (!connection.isValid()) {
            dbapi_build_error_string_from_qsqlerror(connection.lastError(), errors);
        }
        return connection.isValid();
    });
}

void add_sqlite(const py::object& name, const py::object& path)
{
    const std::string nameText = text_of(name, "The name");
    const std::string file = text_of(path, "The path");
    change_connections(
        [&](std::string* errors) { return db_create_sqlite_connection(nameText, file, errors); });
}

void add_mysql(
    const py::object& name,
    const py::object& database,
    const py::object& host,
    const py::object& user,
    const py::object& password,
    const py::object& port)
{
    const std::string nameText = text_of(name, "The name");
    const std::string databaseText = text_of(database, "The database");
    const std::string hostText = text_of(host, "The host");
    const std::string userText = text_of(user, "The user");
    const std::string passwordText = text_of(password, "The password");
    const std::string portText = text_of(port, "The port");
    change_connections([&](std::string* errors) {
        return db_create_mysql_connection(
            nameText, databaseText, hostText, userText, passwordText, portText, errors);
    });
}

void remove(const py::object& name)
{
    const std::string text = text_of(name, "The name");
    change_connections([&text](std::string* errors) {
        record_of(text);
        return db_remove_connection(text, errors);
    });
}

/// Of each connection its name, driver, database, host, port and user; never the password.
py::list stored()
{
    std::vector<DbuiConnection> records;
    change_connections([&records](std::string* errors) {
        std::error_code ignored;
        return dbui_get_connections_from_file(&records, errors) ||
               !std::filesystem::exists(dbui_connections_file(), ignored);
    });
    py::list list;
    for (const DbuiConnection& record : records) {
        list.append(py::make_tuple(
            text_object(record.get_connectionName()), text_object(record.get_dbDriverName()),
            text_object(record.get_databaseName()), text_object(record.get_hostname()),
            text_object(record.get_port_as_string()), text_object(record.get_databaseUsername())));
    }
    return list;
}

/// Of each layer of a connection its name, the outcome, what was found and what to do about it.
py::list diagnose(const py::object& name)
{
    const std::string text = text_of(name, "The name");
    std::vector<dbui::DiagnosisStep> steps;
    change_connections([&](std::string*) {
        steps = dbui::diagnose_connection(record_of(text));
        return true;
    });
    py::list list;
    for (const dbui::DiagnosisStep& step : steps) {
        list.append(py::make_tuple(
            name_of(step.layer), name_of(step.outcome), text_object(step.detail),
            text_object(step.advice)));
    }
    return list;
}
} // namespace

DBIF_Connection writing_connection(const std::string& name)
{
    // The last to close an SQLite file empties its log, which one that only reads cannot.
    close_kept(name);
    DBIF_Connection connection = dbui::blank_connection();
    std::string errors;
    if (!dbui::open_connection(record_of(name), dbif::MissingFile::Fail, &connection, &errors)) {
        throw FaultError(connection_fault(not_opened(name, errors)));
    }
    if (!connection.isValid()) {
        dbapi_build_error_string_from_qsqlerror(connection.lastError(), &errors);
        throw FaultError(connection_fault(not_opened(name, errors)));
    }
    return connection;
}

void bind_connections(py::module_& module)
{
    module.def("check_opens", &check_opens, py::arg("connection"));
    module.def("release", &release, py::arg("connection"));
    module.def("create_file", &create_file, py::arg("path"));
    module.def("add_sqlite", &add_sqlite, py::arg("name"), py::arg("path"));
    module.def(
        "add_mysql", &add_mysql, py::arg("name"), py::arg("database"), py::arg("host"),
        py::arg("user"), py::arg("password"), py::arg("port"));
    module.def("remove_connection", &remove, py::arg("name"));
    module.def("stored_connections", &stored);
    module.def("diagnose", &diagnose, py::arg("name"));
}
} // namespace dbapi::python
