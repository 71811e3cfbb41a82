#pragma once

#include "tests/support/run_command.h"
#include "tests/support/temp_directory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace test_support {
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
