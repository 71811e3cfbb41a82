#include "dbapi/dbapi.h"
#include "dbapi/words/text_rules.h"
#include "dbif/host/host_string.h"
#include "dbui/connections_file.h"
#include "dbui/diagnosis/connection_diagnosis.h"
#include "dbui/record_fault.h"

#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/output/stored_names.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

namespace dbapi::tool {
namespace {
struct AddOptions
{
    std::string name;
    std::string file;
    std::string database;
    std::string host;
    std::string port;
    std::string user;
    bool readsPassword = false;
};

/// Never from the command line, which every user of the machine can read.
std::string password_for(const AddOptions& options)
{
    if (options.readsPassword) {
        std::string line;
        std::getline(std::cin, line);
        if (line.ends_with('\r')) {
            line.pop_back();
        }
        return line;
    }
    return is_terminal(stdin)
               ? ask_secretly(
                     "Password of " + options.user + " at " + options.host + " (it is not shown): ")
               : std::string();
}

/// Whoever uses the connection later may stand in another folder.
std::string absolute_path(const std::string& file)
{
    std::error_code error;
    const std::filesystem::path path = std::filesystem::absolute(file, error);
    return error ? file : path.lexically_normal().string();
}

/// The database is made where there is none, but not the folder that it is to stand in.
void check_folder(const std::string& file)
{
    const std::filesystem::path folder = std::filesystem::path(absolute_path(file)).parent_path();
    std::error_code ignored;
    if (!std::filesystem::is_directory(folder, ignored)) {
        throw CommandFailure(
            ExitCode::File, "there is no folder " + dbapi::quoted(folder.string()) +
                                " for the database. Make it first.");
    }
}

void check_options(const AddOptions& options)
{
    // As typed: the blanks that are taken off around a text may be line ends.
    const DbuiConnection typed(
        options.name, "", options.host, options.port,
        options.database.empty() ? options.file : options.database, options.user, "");
    if (const std::string fault = dbui::fault_of_record(typed); !fault.empty()) {
        throw CommandFailure(
            ExitCode::WrongUsage,
            dbif::trimmed(fault) + " Choose another one, or rename the file.");
    }
    if (dbif::trimmed(options.name).empty()) {
        throw CommandFailure(ExitCode::WrongUsage, "a connection needs a name");
    }
    if (options.file.empty() == options.database.empty()) {
        throw CommandFailure(ExitCode::WrongUsage, "give either --sqlite FILE or --mysql DATABASE");
    }
    if (stored_names().count(dbif::trimmed(options.name)) > 0) {
        throw CommandFailure(
            ExitCode::Connection,
            "there is a connection " + dbapi::quoted(options.name) +
                " already. Choose another name, or remove it: dbapi connection remove " +
                options.name);
    }
}

/// Tells first why the list of connections cannot be written: nothing else was tried then.
[[noreturn]] void throw_failure(const std::string& errors, const std::string& advice)
{
    const std::string fault = dbui::fault_of_saving();
    if (!fault.empty()) {
        throw CommandFailure(ExitCode::File, dbif::trimmed(errors) + "\n" + fault);
    }
    throw CommandFailure(ExitCode::Connection, dbif::trimmed(errors) + advice);
}

using dbui::DiagnosisStep;

/// The advice of the layer that fails. From the schema on, the error itself says what to do.
std::string advice_of_diagnosis(const DbuiConnection& record)
{
    for (const DiagnosisStep& step : dbui::diagnose_connection(record)) {
        if (step.outcome == DiagnosisStep::Outcome::Failed) {
            return step.layer == DiagnosisStep::Layer::Schema ? "" : "\n" + step.advice;
        }
    }
    return {};
}

std::string advice_for_server(const AddOptions& options, const std::string& password)
{
    return advice_of_diagnosis(
        {"", "QMYSQL", options.host, options.port, options.database, options.user, password});
}

/// The advice for a file that SQLite does not open.
std::string advice_for_file(const std::string& file)
{
    if (std::error_code ignored; !std::filesystem::exists(file, ignored)) {
        return "\nCheck that you may write in its folder, or name a file in another one.";
    }
    return advice_of_diagnosis({"", "QSQLITE", "", "", file, "", ""});
}

ExitCode add_connection(const AddOptions& options)
{
    check_options(options);
    if (options.database.empty()) {
        check_folder(options.file);
    }
    const bool isFile = options.database.empty();
    const std::string password = isFile ? std::string() : password_for(options);
    std::string errors;
    const bool isAdded =
        isFile ? db_create_sqlite_connection(options.name, absolute_path(options.file), &errors)
               : db_create_mysql_connection(
                     options.name, options.database, options.host, options.user, password,
                     options.port, &errors);
    if (!isAdded) {
        throw_failure(
            errors, isFile ? advice_for_file(absolute_path(options.file))
                           : advice_for_server(options, dbif::trimmed(password)));
    }
    const std::string target =
        isFile ? "the SQLite file " + dbapi::quoted(absolute_path(options.file))
               : "the MySQL database " + dbapi::quoted(options.database) + " at " + options.host;
    talk(
        "Added the connection " + dbapi::quoted(dbif::trimmed(options.name)) + " to " + target +
        ".");
    return ExitCode::Done;
}
} // namespace

CommandRunner declare_connection_add(CLI::App& arguments)
{
    const auto options = std::make_shared<AddOptions>();
    arguments.add_option("NAME", options->name, "the name of the connection")->required();
    CLI::Option* sqlite =
        arguments.add_option("--sqlite", options->file, "an SQLite file")->type_name("FILE");
    CLI::Option* mysql =
        arguments.add_option("--mysql", options->database, "a database of a MySQL server")
            ->type_name("DATABASE")
            ->excludes(sqlite);
    CLI::Option* host =
        arguments.add_option("--host", options->host, "the server")->type_name("HOST");
    CLI::Option* user =
        arguments.add_option("--user", options->user, "its user")->type_name("USER");
    arguments.add_option("--port", options->port, "its port (3306)")
        ->type_name("PORT")
        ->check(CLI::Range(1, 65535).description(""))
        ->needs(mysql);
    arguments
        .add_flag(
            "--password-stdin", options->readsPassword,
            "read the password from standard input, not from the terminal")
        ->needs(mysql);
    mysql->needs(host)->needs(user);
    host->needs(mysql);
    user->needs(mysql);
    return [options] {
        return add_connection(*options);
    };
}
} // namespace dbapi::tool
