#include "tools/dbapi/commands/connection_options.h"

#include "dbapi/words/text_rules.h"
#include "dbif/host/host_string.h"
#include "dbui/connections_file.h"
#include "dbui/diagnosis/connection_diagnosis.h"
#include "dbui/record_fault.h"

#include "tools/dbapi/arguments/command_failure.h"
#include "tools/dbapi/output/terminal.h"

#include <charconv>
#include <filesystem>
#include <iostream>

namespace dbapi::tool {
std::string absolute_path(const std::string& file)
{
    std::error_code error;
    const std::filesystem::path path = std::filesystem::absolute(file, error);
    return error ? file : path.lexically_normal().string();
}

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

void check_record(const DbuiConnection& typed)
{
    if (const std::string fault = dbui::fault_of_record(typed); !fault.empty()) {
        throw CommandFailure(
            ExitCode::WrongUsage,
            dbif::trimmed(fault) + " Choose another one, or rename the file.");
    }
    if (dbif::trimmed(typed.get_connectionName()).empty()) {
        throw CommandFailure(ExitCode::WrongUsage, "a connection needs a name");
    }
}

std::string target_of(const DbuiConnection& record)
{
    const std::string database = dbapi::quoted(record.get_databaseName());
    return record.get_hostname().empty()
               ? "the SQLite file " + database
               : "the MySQL database " + database + " at " + record.get_hostname();
}

std::string port_fault(const std::string& given)
{
    constexpr int kHighestPort = 65535;
    int port = 0;
    const char* end = given.data() + given.size();
    const auto read = std::from_chars(given.data(), end, port);
    return read.ec == std::errc() && read.ptr == end && port > 0 && port <= kHighestPort
               ? std::string()
               : dbapi::quoted(given) + " is no port; it is a whole number from 1 to 65535";
}

std::string read_password(const std::string& user, const std::string& host, bool fromInput)
{
    if (fromInput) {
        std::string line;
        std::getline(std::cin, line);
        if (line.ends_with('\r')) {
            line.pop_back();
        }
        return line;
    }
    return is_terminal(stdin)
               ? ask_secretly("Password of " + user + " at " + host + " (it is not shown): ")
               : std::string();
}

std::string advice_of_diagnosis(const DbuiConnection& record)
{
    using dbui::DiagnosisStep;
    for (const DiagnosisStep& step : dbui::diagnose_connection(record)) {
        if (step.outcome == DiagnosisStep::Outcome::Failed) {
            return step.layer == DiagnosisStep::Layer::Schema ? "" : "\n" + step.advice;
        }
    }
    return {};
}

void throw_storing_failure(const std::string& errors, const std::string& advice)
{
    const std::string fault = dbui::fault_of_saving();
    if (!fault.empty()) {
        throw CommandFailure(ExitCode::File, dbif::trimmed(dbif::trimmed(errors) + "\n" + fault));
    }
    throw CommandFailure(ExitCode::Connection, dbif::trimmed(errors) + advice);
}
} // namespace dbapi::tool
