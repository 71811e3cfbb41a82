#include "dbapi/text_rules.h"
#include "dbif/error_text.h"
#include "dbif/host_string.h"
#include "dbui/connection_open.h"

#include "tools/dbapi/command_table.h"
#include "tools/dbapi/data_output.h"
#include "tools/dbapi/stored_names.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace dbapi::tool {
namespace {
/// What a connection leads to, in words.
std::string target_of(const DbuiConnection& record)
{
    if (record.get_hostname().empty()) {
        return record.get_dbDriverName() + ", file " + dbapi::quoted(record.get_databaseName());
    }
    const std::string port = record.get_port_as_string();
    return record.get_dbDriverName() + ", database " + dbapi::quoted(record.get_databaseName()) +
           " at " + record.get_hostname() + (port.empty() ? "" : ":" + port) + " as user " +
           dbapi::quoted(record.get_databaseUsername());
}

struct TestOptions
{
    std::string name;
    OutputOptions output;
};

/// The checks of a connection, each of which needs the one before.
class ConnectionTest
{
public:
    void pass(const std::string& check, const std::string& detail) { add(check, "ok", detail); }

    void fail(const std::string& check, const std::string& detail, ExitCode code)
    {
        add(check, "failed", detail);
        code_ = code;
    }

    ExitCode finish(const OutputOptions& output)
    {
        write_data(table_, output);
        return code_;
    }

private:
    void add(const std::string& check, const std::string& result, const std::string& detail)
    {
        table_.columns[0].values.push_back(check);
        table_.columns[1].values.push_back(result);
        table_.columns[2].values.push_back(detail);
    }

    DataTable table_{
        .asked = {},
        .rowsName = "checks",
        .columns = {{"check", {}}, {"result", {}}, {"detail", {}}}};
    ExitCode code_ = ExitCode::Done;
};

ExitCode test_connection(const TestOptions& options)
{
    const DbuiConnection record = stored_connection(options.name);
    ConnectionTest test;
    test.pass("record", target_of(record));
    DBIF_Connection connection = dbui::blank_connection();
    std::string error;
    const bool isOurs = dbui_make_dbif_connection_object_by_name(options.name, &connection, &error);
    if (!isOurs) {
        test.pass("open", "the database opens");
        test.fail("schema", dbif::trimmed(error), ExitCode::Data);
    } else if (!connection.isValid()) {
        error = convert_sql_error_to_string(connection.lastError()).str();
        test.fail("open", dbif::trimmed(error), ExitCode::Connection);
    } else {
        test.pass("open", "the database opens");
        test.pass("schema", "it is a measurement database that this version reads");
    }
    return test.finish(options.output);
}
} // namespace

CommandRunner declare_connection_test(CLI::App& arguments)
{
    const auto options = std::make_shared<TestOptions>();
    arguments.add_option("NAME", options->name, "a stored connection")->required();
    add_output_options(arguments, &options->output);
    return [options] {
        return test_connection(*options);
    };
}
} // namespace dbapi::tool
