#include "tests/support/run_command.h"

#include "dbif/host/host_string.h"

#include <QProcess>

#include <gtest/gtest.h>

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace test_support {
Outcome dbapi(const Arguments& arguments, const std::string& input)
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

Outcome run_on_terminal(Arguments program, const std::string& input)
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
        // The password is typed only once it is asked for: the terminal echoes what is typed
        // before.
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

Outcome dbapi_on_terminal(Arguments arguments, const std::string& input)
{
    arguments.insert(arguments.begin(), DBAPI_COMMAND);
    return run_on_terminal(std::move(arguments), input);
}
} // namespace test_support
