#include "dbapi/db_records.h"

#include "tools/dbapi/arguments/request_arguments.h"
#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/output/call_failure.h"
#include "tools/dbapi/output/data_output.h"
#include "tools/dbapi/output/note_output.h"
#include "tools/dbapi/output/stored_names.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace dbapi::tool {
namespace {
struct IdsOptions
{
    DataRequest request;
    std::string table;
    OutputOptions output;
};

ExitCode show_ids(const IdsOptions& options)
{
    const DataRequest& request = options.request;
    known_connection(request.connection);
    std::set<int> ids;
    std::string errors;
    if (!dbapi_get_table_ids_from_query_for_tablename(
            request.connection, options.table, &ids, request.query, &errors)) {
        throw_call_failure(request, errors);
    }
    tell_notes(request.query);
    DataTable table{
        {{"connection", request.connection}, {"table", options.table}, {"query", request.query}},
        "ids",
        {{"id", {}, DataColumn::Content::Numbers}}};
    for (const int id : ids) {
        table.columns.front().values.push_back(std::to_string(id));
    }
    write_data(table, options.output);
    if (ids.empty()) {
        tell_error(
            request.query.empty()
                ? "nothing found: the table " + options.table + " has no records. dbapi import " +
                      request.connection + " PATH reads files into the database."
                : "nothing found: the query selects no record of the table " + options.table +
                      ". dbapi explain " + request.connection +
                      " with the same query tells which term leaves nothing.");
        return ExitCode::NothingFound;
    }
    return ExitCode::Done;
}
} // namespace

CommandRunner declare_ids(CLI::App& arguments)
{
    const auto options = std::make_shared<IdsOptions>();
    add_connection_argument(arguments, &options->request.connection);
    add_table_argument(arguments, &options->table);
    add_query_option(arguments, &options->request.query);
    add_output_options(arguments, &options->output);
    return [options] {
        return show_ids(*options);
    };
}
} // namespace dbapi::tool
