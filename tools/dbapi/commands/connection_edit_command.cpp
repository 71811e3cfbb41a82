#include "dbapi/words/text_rules.h"
#include "dbui/connection_registry.h"
#include "dbui/diagnosis/connection_diagnosis.h"

#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/commands/connection_options.h"
#include "tools/dbapi/output/stored_names.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>

namespace dbapi::tool {
namespace {
/// What is not given stays as it is.
struct EditOptions
{
    std::string name;
    std::optional<std::string> file;
    std::optional<std::string> database;
    std::optional<std::string> host;
    std::optional<std::string> port;
    std::optional<std::string> user;
    bool asksPassword = false;
    bool readsPassword = false;
    bool isUntested = false;

    [[nodiscard]] bool namesServer() const { return database || host || port || user; }

    [[nodiscard]] bool changesPassword() const { return asksPassword || readsPassword; }
};

constexpr const char* kServerDriver = "QMYSQL";

/// Refuses options that do not go with the kind of connection that there will be.
void check_kind(const EditOptions& options, const DbuiConnection& before)
{
    if (!options.file && !options.namesServer() && !options.changesPassword()) {
        throw CommandFailure(
            ExitCode::WrongUsage, "there is nothing to change: give what is to be different.\n"
                                  "See: dbapi connection edit --help");
    }
    const bool wasServer = before.get_dbDriverName() == kServerDriver;
    const bool isServer = !options.file && (wasServer || options.database);
    if (!isServer && (options.namesServer() || options.changesPassword())) {
        throw CommandFailure(
            ExitCode::WrongUsage,
            "the connection " + dbapi::quoted(options.name) +
                (options.file ? " would lead" : " leads") +
                " to an SQLite file, which has no server, user or password. To lead it to a "
                "server, give --mysql DATABASE, --host and --user.");
    }
    if (isServer && !wasServer && (!options.host || !options.user)) {
        throw CommandFailure(
            ExitCode::WrongUsage, "a server needs --host and --user beside --mysql DATABASE.");
    }
}

DbuiConnection changed_record(const EditOptions& options, const DbuiConnection& before)
{
    if (options.file) {
        check_folder(*options.file);
        return {before.get_connectionName(),  "QSQLITE", "", "",
                absolute_path(*options.file), "",        ""};
    }
    const std::string host = options.host.value_or(before.get_hostname());
    const std::string user = options.user.value_or(before.get_databaseUsername());
    const bool wasServer = before.get_dbDriverName() == kServerDriver;
    // Another server, or another user, is not told the password of the one before.
    const bool asksPassword =
        options.changesPassword() || !wasServer || options.host || options.user;
    return {
        before.get_connectionName(),
        kServerDriver,
        host,
        options.port.value_or(before.get_port_as_string()),
        options.database.value_or(before.get_databaseName()),
        user,
        asksPassword ? read_password(user, host, options.readsPassword)
                     : before.get_databasePassword()};
}

/// Throws `CommandFailure` when the record leads to no database that can be read.
void check_that_it_works(const DbuiConnection& record)
{
    using dbui::DiagnosisStep;
    for (const DiagnosisStep& step : dbui::diagnose_connection(record)) {
        if (step.outcome == DiagnosisStep::Outcome::Failed &&
            step.layer != DiagnosisStep::Layer::Writing) {
            throw CommandFailure(
                ExitCode::Connection,
                "nothing was changed, for the connection would not work: " + step.detail + "\n" +
                    step.advice + "\nWith --untested, it is changed all the same.");
        }
    }
}

ExitCode edit_connection(const EditOptions& options)
{
    const DbuiConnection before = stored_connection(options.name);
    check_kind(options, before);
    const DbuiConnection after = changed_record(options, before);
    check_record(after);
    if (!options.isUntested) {
        check_that_it_works(after);
    }
    std::string error;
    if (!dbui_update_connection(before, after, false, &error)) {
        throw_storing_failure(error, "");
    }
    talk(
        "Changed the connection " + dbapi::quoted(options.name) + ": it leads to " +
        target_of(after) + ".");
    return ExitCode::Done;
}
} // namespace

CommandRunner declare_connection_edit(CLI::App& arguments)
{
    const auto options = std::make_shared<EditOptions>();
    const auto add = [&arguments](
                         const char* name, std::optional<std::string>* value, const char* type,
                         const char* description) {
        return arguments.add_option(name, *value, description)->type_name(type);
    };
    arguments.add_option("NAME", options->name, "a stored connection")->required();
    CLI::Option* sqlite = add("--sqlite", &options->file, "FILE", "an SQLite file instead");
    add("--mysql", &options->database, "DATABASE", "another database of a MySQL server")
        ->excludes(sqlite);
    add("--host", &options->host, "HOST", "another server")->excludes(sqlite);
    add("--port", &options->port, "PORT", "another port")->check(port_fault)->excludes(sqlite);
    add("--user", &options->user, "USER", "another user")->excludes(sqlite);
    CLI::Option* asks =
        arguments.add_flag("--password", options->asksPassword, "ask for another password")
            ->excludes(sqlite);
    arguments
        .add_flag(
            "--password-stdin", options->readsPassword,
            "read another password from standard input, not from the terminal")
        ->excludes(sqlite)
        ->excludes(asks);
    arguments.add_flag(
        "--untested", options->isUntested, "store it even when its database does not open");
    return [options] {
        return edit_connection(*options);
    };
}
} // namespace dbapi::tool
