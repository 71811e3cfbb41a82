#include "dbapi/words/text_rules.h"
#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"
#include "dbimport/sweep_files.h"
#include "dbimport/sweep_import.h"
#include "dbsuggest/display_text.h"

#include "tools/dbapi/arguments/request_arguments.h"
#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/output/stored_names.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace dbapi::tool {
namespace {
constexpr std::size_t kMostShownFaults = 20;

constexpr std::size_t kMostShownKeys = 8;
constexpr std::size_t kMostShownSweeps = 5;

struct ImportArguments
{
    std::string connection;
    std::vector<std::string> paths;
    ImportOptions options;
};

/// The first `most` texts, and how many there are besides.
std::string shortened(std::vector<std::string> texts, std::size_t most)
{
    if (texts.size() <= most) {
        return listed(texts, " and ");
    }
    const std::size_t hidden = texts.size() - most;
    texts.resize(most);
    return listed(texts) + " and " + std::to_string(hidden) + " more";
}

/// The keyword that names a new key among those of its table.
std::string keyword_of(const dbif::NewKey& key)
{
    if (key.table != "setup") {
        return key.name;
    }
    constexpr std::string_view kLetters = "DSXM";
    const std::array kinds{
        dbif::ValueKind::Double, dbif::ValueKind::Text, dbif::ValueKind::Complex,
        dbif::ValueKind::Matrix};
    const auto kind = std::find(kinds.begin(), kinds.end(), key.kind) - kinds.begin();
    return key.category + kLetters[static_cast<std::size_t>(kind)] + "." + key.name;
}

/// "New keys: L, W (device); IND.VG, OUTD.ID (setup)."
std::string new_keys_text(const std::vector<dbif::NewKey>& keys)
{
    std::vector<std::string> tables;
    std::map<std::string, std::vector<std::string>> keywords;
    for (const dbif::NewKey& key : keys) {
        if (keywords[key.table].empty()) {
            tables.push_back(key.table);
        }
        keywords[key.table].push_back(keyword_of(key));
    }
    std::string text;
    for (const std::string& table : tables) {
        text += (text.empty() ? "New keys: " : "; ") + shortened(keywords[table], kMostShownKeys) +
                " (" + table + ")";
    }
    return text + ".";
}

/// Which stored sweeps are no longer the latest ones, and on account of which files.
std::string superseding_text(const ImportResult& result)
{
    std::vector<std::string> sweeps;
    for (const SupersedingSweep& sweep : result.superseding) {
        sweeps.push_back(
            (sweep.device.empty() ? "no device" : sweep.device) + " (" + sweep.file + ")");
    }
    return "This supersedes " + counted(result.supersededSetups, "earlier setup") + ": " +
           shortened(sweeps, kMostShownSweeps) + ". Queries find " +
           (result.supersededSetups == 1 ? "it" : "them") + " with \"ALLDATA:\" only.";
}

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
            "faults. Correct them and import again." +
            (result.anonymousFiles > 0 ? "\nWith --allow-anonymous, files need not name a device."
                                       : ""));
}

ImportResult import_files(
    const ImportArguments& given,
    const DBIF_Connection& connection,
    const SweepFiles& found)
{
    const std::string& name = given.connection;
    try {
        ProgressBar progress("Importing " + counted(found.files.size(), "file"), found.bytes);
        return import_sweeps(
            connection, found.files, [&progress](std::size_t bytes) { progress.advance(bytes); },
            given.options);
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

ExitCode import_paths(const ImportArguments& given)
{
    const DBIF_Connection connection = open_for_writing(given.connection);
    const SweepFiles found = find_sweep_files(given.paths);
    if (!found.faults.empty()) {
        fail_for_paths(found.faults);
    }
    const ImportResult result = import_files(given, connection, found);
    if (result.faultCount > 0) {
        fail_for_files(result);
    }
    talk(
        "Imported " + counted(result.files, "file") + " into " + dbapi::quoted(given.connection) +
        ": " + counted(result.setups, "setup") + ", " + counted(result.points, "point") + ", " +
        counted(result.devices, "device") + ".");
    if (!result.newKeys.empty()) {
        talk(new_keys_text(result.newKeys));
    }
    if (result.supersededSetups > 0) {
        talk(superseding_text(result));
    }
    return ExitCode::Done;
}
} // namespace

CommandRunner declare_import(CLI::App& arguments)
{
    const auto given = std::make_shared<ImportArguments>();
    add_connection_argument(arguments, &given->connection);
    arguments
        .add_option(
            "PATH", given->paths, "a file, or a folder for all *.csv in it; one catalogue entry")
        ->required();
    arguments.add_flag(
        "--allow-anonymous", given->options.allowsAnonymous,
        "import also files that name no device");
    return [given] {
        return import_paths(*given);
    };
}
} // namespace dbapi::tool
