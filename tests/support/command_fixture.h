#pragma once

#include "dbif/host_string.h"

#include "tests/support/temp_directory.h"

#include <QProcess>

#include <gtest/gtest.h>

#include <filesystem>
#include <pty.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace test_support {
using Arguments = std::vector<std::string>;

/// How the program ended, and what it wrote.
struct Outcome
{
    int code = -1;
    std::string data;
    std::string talk;
};

inline Outcome dbapi(const Arguments& arguments, const std::string& input = {})
{
    QStringList list;
    for (const std::string& argument : arguments) {
        list << dbif::to_qt(argument);
    }
    QProcess process;
    process.start(QStringLiteral(DBAPI_COMMAND), list);
    process.write(QByteArray::fromStdString(input));
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(120'000));
    return {
        process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
        process.readAllStandardOutput().toStdString(),
        process.readAllStandardError().toStdString()};
}

/// Runs a program with a terminal of 20 rows for all three streams, on which `input` is typed. Data
/// and talk come together.
inline Outcome run_on_terminal(Arguments program, const std::string& input = {})
{
    std::vector<char*> pointers;
    for (std::string& argument : program) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    const winsize size{.ws_row = 20, .ws_col = 80, .ws_xpixel = 0, .ws_ypixel = 0};
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
    if (child == 0) {
        setenv("TERM", "xterm", 1);
        execv(pointers.front(), pointers.data());
        _exit(127);
    }
    Outcome outcome;
    char byte = 0;
    bool isTyped = input.empty();
    while (read(terminal, &byte, 1) == 1) {
        outcome.data += byte;
        // Typed only once it is asked for: what the terminal shows before, it echoes.
        if (!isTyped && outcome.data.ends_with("(it is not shown): ")) {
            isTyped = write(terminal, input.data(), input.size()) > 0;
        }
    }
    close(terminal);
    int status = 0;
    waitpid(child, &status, 0);
    outcome.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
}

inline Outcome dbapi_on_terminal(Arguments arguments, const std::string& input = {})
{
    arguments.insert(arguments.begin(), DBAPI_COMMAND);
    return run_on_terminal(std::move(arguments), input);
}

/// A folder with the stored connection "lab" to an empty SQLite database.
class Command : public testing::Test
{
protected:
    Command() { EXPECT_EQ(dbapi({"connection", "add", "lab", "--sqlite", database}).code, 0); }

    /// Writes a file of annotated CSV, and returns its path.
    std::string sweep(const std::string& name, const std::string& text)
    {
        std::filesystem::create_directories(folder.file("sweeps"));
        write_file(folder.file("sweeps/" + name), text);
        return folder.file("sweeps/" + name);
    }

    std::string lines(Arguments arguments)
    {
        arguments.insert(arguments.end(), {"--format", "lines"});
        return dbapi(arguments).data;
    }

    TempDirectory folder;
    const std::string database = folder.file("lab.db");
};
} // namespace test_support
