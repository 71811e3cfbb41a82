#include "dbapi/dbapi.h"
#include "dbapi/words/text_rules.h"
#include "dbif/host/host_string.h"

#include "tools/dbapi/commands/command_declarations.h"
#include "tools/dbapi/commands/connection_options.h"
#include "tools/dbapi/output/stored_names.h"
#include "tools/dbapi/output/terminal.h"

#include <CLI/CLI.hpp>
#include <filesystem>
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

void check_options(const AddOptions& options)
{
    // As typed: the blanks that are taken off around a text may be line ends.
    const DbuiConnection typed(
        options.name, "", options.host, options.port,
        options.database.empty() ? options.file : options.database, options.user, "");
    check_record(typed);
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
    const std::string password =
        isFile ? std::string() : read_password(options.user, options.host, options.readsPassword);
    std::string errors;
    const bool isAdded =
        isFile ? db_create_sqlite_connection(options.name, absolute_path(options.file), &errors)
               : db_create_mysql_connection(
                     options.name, options.database, options.host, options.user, password,
                     options.port, &errors);
    if (!isAdded) {
        throw_storing_failure(
            errors, isFile ? advice_for_file(absolute_path(options.file))
                           : advice_for_server(options, dbif::trimmed(password)));
    }
    const DbuiConnection added(
        "", "", isFile ? "" : options.host, "",
        isFile ? absolute_path(options.file) : options.database, "", "");
    talk(
        "Added the connection " + dbapi::quoted(dbif::trimmed(options.name)) + " to " +
        target_of(added) + ".");
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
        ->check(port_fault)
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
