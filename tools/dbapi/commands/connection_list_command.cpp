#include "dbui/connection_record.h"

#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/output/data_output.h"
#include "tools/dbapi/output/stored_names.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <utility>

namespace dbapi::tool {
namespace {
/// Whatever is stored of each connection but its password. Two of one name, which a file written by
/// hand may have, are both shown.
ExitCode list_connections(const OutputOptions& output)
{
    DataTable table;
    table.rowsName = "connections";
    for (const char* heading : {"name", "driver", "database", "host", "port", "user"}) {
        table.columns.push_back({heading, {}});
    }
    for (const DbuiConnection& record : stored_connections()) {
        std::size_t column = 0;
        for (std::string text :
             {record.get_connectionName(), record.get_dbDriverName(), record.get_databaseName(),
              record.get_hostname(), record.get_port_as_string(), record.get_databaseUsername()}) {
            table.columns[column++].values.push_back(std::move(text));
        }
    }
    write_data(table, output);
    if (table.rows() == 0) {
        tell_error(
            "no connection is stored yet. dbapi connection add NAME --sqlite FILE stores one.");
        return ExitCode::NothingFound;
    }
    return ExitCode::Done;
}
} // namespace

CommandRunner declare_connection_list(CLI::App& arguments)
{
    const auto output = std::make_shared<OutputOptions>();
    add_output_options(arguments, output.get());
    return [output] {
        return list_connections(*output);
    };
}
} // namespace dbapi::tool
