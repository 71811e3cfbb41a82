#include "dbapi/db_records.h"

#include "tools/dbapi/arguments/request_arguments.h"
#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/output/call_failure.h"
#include "tools/dbapi/output/column_contents.h"
#include "tools/dbapi/output/data_output.h"
#include "tools/dbapi/output/note_output.h"
#include "tools/dbapi/output/stored_names.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <utility>

namespace dbapi::tool {
namespace {
struct RecordOptions
{
    DataRequest request;
    std::string table;
    int id = 0;
    std::string keyword;
    OutputOptions output;
};

ExitCode show_record(RecordOptions options)
{
    DataRequest& request = options.request;
    known_connection(request.connection);
    request.keywords = {options.keyword};
    std::vector<std::string> values;
    std::string errors;
    if (!dbapi_get_text_key_values_for_table_id_for_tablename(
            request.connection, options.table, options.id, options.keyword, &values, request.query,
            &errors)) {
        throw_call_failure(request, errors);
    }
    tell_notes(request.query);
    const bool isEmpty = values.empty();
    const std::string id = std::to_string(options.id);
    DataTable table{
        {{"connection", request.connection},
         {"table", options.table},
         {"id", id},
         {"query", request.query}},
        "",
        {{options.keyword, std::move(values)}}};
    set_contents(request.connection, options.output, &table);
    write_data(table, options.output);
    if (isEmpty) {
        tell_error(
            "nothing found: the " + options.table + " with id " + id + " has no value of " +
            options.keyword + ", or there is no such record.");
        return ExitCode::NothingFound;
    }
    return ExitCode::Done;
}
} // namespace

CommandRunner declare_record(CLI::App& arguments)
{
    const auto options = std::make_shared<RecordOptions>();
    add_connection_argument(arguments, &options->request.connection);
    add_table_argument(arguments, &options->table);
    add_id_argument(arguments, &options->id, "the record's id; dbapi ids lists them");
    arguments.add_option("KEYWORD", options->keyword, "a key or builtin keyname")->required();
    add_query_option(arguments, &options->request.query, "narrows the values further");
    add_output_options(arguments, &options->output);
    return [options] {
        return show_record(*options);
    };
}
} // namespace dbapi::tool
