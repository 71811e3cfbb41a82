#include "dbapi/words/text_rules.h"
#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"
#include "dbimport/sweep_files.h"
#include "dbimport/sweep_import.h"
#include "dbsuggest/display_text.h"
#include "dbsuggest/stored_names.h"

#include "tools/dbapi/arguments/request_arguments.h"
#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace dbapi::tool {
namespace {
constexpr std::size_t kMostShownFaults = 20;

struct ImportOptions
{
    std::string connection;
    std::vector<std::string> paths;
};

[[noreturn]] void fail_for_paths(const std::vector<std::string>& faults)
{
    std::string text = "nothing was imported.";
    for (const std::string& fault : faults) {
        text += "\n" + fault;
    }
    throw CommandFailure(ExitCode::File, text);
}

[[noreturn]] void fail_for_files(const ImportResult& result)
{
    const std::size_t shown = std::min(result.faults.size(), kMostShownFaults);
    for (std::size_t i = 0; i < shown; ++i) {
        const ImportFault& fault = result.faults[i];
        const std::string line = fault.line == 0 ? "" : ":" + std::to_string(fault.line);
        tell_error(fault.file + line + ": " + fault.text);
    }
    const std::size_t hidden = result.faultCount - shown;
    if (hidden > 0) {
        tell_error("... and " + counted(hidden, "more fault") + ".");
    }
    throw CommandFailure(
        result.hasUnreadableFile ? ExitCode::File : ExitCode::Data,
        "nothing was imported: " + counted(result.faultyFiles, "file") + " of " +
            std::to_string(result.files) + (result.faultyFiles == 1 ? " has " : " have ") +
            "faults. Correct them and import again.");
}

ImportResult
import_files(const std::string& name, const DBIF_Connection& connection, const SweepFiles& found)
{
    try {
        ProgressBar progress("Importing " + counted(found.files.size(), "file"), found.bytes);
        return import_sweeps(
            connection, found.files, [&progress](std::size_t bytes) { progress.advance(bytes); });
    } catch (const DBIF_Exception& exception) {
        const bool isConnection = exception.error().type() == QSqlError::ConnectionError;
        throw CommandFailure(
            isConnection ? ExitCode::Connection : ExitCode::Data,
            "nothing was imported: the database of the connection " + dbapi::quoted(name) +
                " reports an error. " +
                dbif::trimmed(convert_sql_error_to_string(exception.error()).str()) +
                "\nWhat the connection may do: dbapi connection test " + name);
    }
}

ExitCode import_paths(const ImportOptions& options)
{
    const DBIF_Connection connection = open_stored(options.connection);
    const SweepFiles found = find_sweep_files(options.paths);
    if (!found.faults.empty()) {
        fail_for_paths(found.faults);
    }
    const ImportResult result = import_files(options.connection, connection, found);
    if (result.faultCount > 0) {
        fail_for_files(result);
    }
    talk(
        "Imported " + counted(result.files, "file") + " into " + dbapi::quoted(options.connection) +
        ": " + counted(result.setups, "setup") + ", " + counted(result.points, "point") + ", " +
        counted(result.devices, "device") + ".");
    return ExitCode::Done;
}
} // namespace

CommandRunner declare_import(CLI::App& arguments)
{
    const auto options = std::make_shared<ImportOptions>();
    add_connection_argument(arguments, &options->connection);
    arguments
        .add_option(
            "PATH", options->paths, "a file, or a folder for all *.csv in it; one catalogue entry")
        ->required();
    return [options] {
        return import_paths(*options);
    };
}
} // namespace dbapi::tool
