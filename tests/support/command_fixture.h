#pragma once

#include "dbif/host_string.h"

#include "tests/support/temp_directory.h"

#include <QProcess>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
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
