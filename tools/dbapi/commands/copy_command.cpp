#include "dbapi/query/query_condition.h"
#include "dbapi/words/text_rules.h"
#include "dbif/connection/transaction_guard.h"
#include "dbif/copy/copy_verification.h"
#include "dbsuggest/display_text.h"

#include "tools/dbapi/arguments/request_arguments.h"
#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/output/call_failure.h"
#include "tools/dbapi/output/data_output.h"
#include "tools/dbapi/output/note_output.h"
#include "tools/dbapi/output/stored_names.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <memory>
#include <string>

namespace dbapi::tool {
namespace {
struct CopyOptions
{
    DataRequest request;
    std::string target;
    OutputOptions output;
};

dbif::CopySelection selected(DBIF_Connection& source, const DataRequest& request)
{
    QueryCondition built;
    try {
        built = build_condition(source, request.query);
    } catch (const FaultError& error) {
        throw_call_failure(request, error.fault());
    }
    return dbif::select_for_copy(source, built.condition.get(), built.latestOnly);
}

std::string hexadecimal(std::uint64_t number)
{
    constexpr int kDigits = 16;
    std::array<char, kDigits + 1> text{};
    std::snprintf(text.data(), text.size(), "%016llx", static_cast<unsigned long long>(number));
    return text.data();
}

/// The report of the comparison; whether all tables are equal.
bool report(const CopyOptions& options, const std::vector<dbif::CopiedTable>& tables)
{
    DataTable table{
        {{"from", options.request.connection},
         {"to", options.target},
         {"query", options.request.query}},
        "tables",
        {{"table", {}},
         {"rows", {}},
         {"rows_copied", {}},
         {"checksum", {}},
         {"checksum_copied", {}},
         {"result", {}}}};
    bool areEqual = true;
    for (const dbif::CopiedTable& copied : tables) {
        const std::array<std::string, 6> row{
            copied.name,
            std::to_string(copied.sourceRows),
            std::to_string(copied.targetRows),
            hexadecimal(copied.sourceChecksum),
            hexadecimal(copied.targetChecksum),
            copied.isEqual() ? "equal" : "DIFFERENT"};
        for (std::size_t i = 0; i < row.size(); ++i) {
            table.columns[i].values.push_back(row.at(i));
        }
        areEqual = areEqual && copied.isEqual();
    }
    write_data(table, options.output);
    return areEqual;
}

/// A bar for `count` steps of which the done ones are told.
dbif::CopyProgress shown_by(ProgressBar& bar)
{
    return [&bar, shown = std::size_t{0}](std::size_t done) mutable {
        bar.advance(done - shown);
        shown = done;
    };
}

ExitCode copy(const CopyOptions& options)
{
    const DataRequest& request = options.request;
    if (request.connection == options.target) {
        throw CommandFailure(
            ExitCode::WrongUsage,
            "FROM and TO are the same connection. Name the connection to copy into as TO.");
    }
    DBIF_Connection source = open_known(request.connection);
    DBIF_Connection target = open_for_writing(options.target);
    // The source is read as it is now, however long the copy takes.
    DConHelper reading(source);
    source.beginTransaction();
    reading.arm();
    const dbif::CopySelection selection = selected(source, request);
    tell_notes(request.query);
    if (selection.isEmpty()) {
        tell_error(
            request.query.empty()
                ? "nothing found: " + dbapi::quoted(request.connection) + " has no records to copy."
                : "nothing found: the query selects no record to copy. dbapi explain " +
                      request.connection + " with the same query tells which term leaves nothing.");
        return ExitCode::NothingFound;
    }
    const std::size_t count = selection.measurements.size();
    dbif::CopyOutcome outcome;
    std::vector<dbif::CopiedTable> tables;
    {
        ProgressBar bar("Copying " + counted(count, "measurement"), count);
        outcome = dbif::copy_records(source, target, selection, shown_by(bar));
    }
    {
        ProgressBar bar("Comparing " + counted(count, "measurement"), count);
        tables = dbif::compare_copies(source, target, selection, outcome.places, shown_by(bar));
    }
    if (!report(options, tables)) {
        throw CommandFailure(
            ExitCode::Data,
            dbapi::quoted(options.target) +
                " differs from what was copied. Another program may have changed it meanwhile; otherwise the "
                "disk or the server is at fault. Nothing of the source was changed: copy into a new database.");
    }
    talk(
        "Copied " + counted(outcome.copied, "measurement") + " from " +
        dbapi::quoted(request.connection) + " to " + dbapi::quoted(options.target) + "; " +
        std::to_string(outcome.present) + (outcome.present == 1 ? " was" : " were") +
        " there already. All counts and checksums are equal.");
    return ExitCode::Done;
}
} // namespace

CommandRunner declare_copy(CLI::App& arguments)
{
    const auto options = std::make_shared<CopyOptions>();
    arguments.add_option("FROM", options->request.connection, "a stored connection")->required();
    arguments.add_option("TO", options->target, "the stored connection to copy into")->required();
    add_query_option(
        arguments, &options->request.query,
        "which records, like '$LOT=S130'; without it, all of them");
    add_output_options(arguments, &options->output);
    return [options] {
        return copy(*options);
    };
}
} // namespace dbapi::tool
