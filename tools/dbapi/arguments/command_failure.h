#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace dbapi::tool {
/// The exit status of the command, by which scripts tell failures apart.
enum class ExitCode {
    Done = 0,
    NothingFound = 1,
    WrongUsage = 2, ///< wrong arguments, keyword or query
    Connection = 3,
    Data = 4, ///< data or schema
    File = 5
};

/// Why a command gives up: the text says what is wrong and what to do.
class CommandFailure : public std::runtime_error
{
public:
    CommandFailure(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code)
    {}

    [[nodiscard]] ExitCode code() const { return code_; }

private:
    ExitCode code_;
};
} // namespace dbapi::tool
