#pragma once

#include <string>
#include <vector>

namespace test_support {
using Arguments = std::vector<std::string>;

/// The exit status of a program and what it wrote.
struct Outcome
{
    int code = -1;
    std::string data;
    std::string talk;
};

/// Runs the command `dbapi`.
Outcome dbapi(const Arguments& arguments, const std::string& input = {});

/// Runs a program with a terminal of 20 rows and 80 columns for all three streams, on which `input`
/// is typed. Data and messages come together.
Outcome run_on_terminal(Arguments program, const std::string& input = {});
/// The same with the command `dbapi`.
Outcome dbapi_on_terminal(Arguments arguments, const std::string& input = {});
} // namespace test_support
