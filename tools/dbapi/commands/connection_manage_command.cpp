#include "tools/dbapi/commands/command_declarations.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <unistd.h>

namespace dbapi::tool {
namespace {
constexpr const char* kProgram = "dbapi-connections";

bool has_display()
{
    for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY"}) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != '\0') {
            return true;
        }
    }
    return false;
}

/// Becomes the window's program: the one beside this one, or else the one that the path finds.
[[noreturn]] void become_manager()
{
    std::error_code ignored;
    const std::string beside =
        (std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path() / kProgram)
            .string();
    execl(beside.c_str(), kProgram, nullptr);
    execlp(kProgram, kProgram, nullptr);
    throw CommandFailure(
        ExitCode::File, std::string("the program ") + kProgram + " does not start: " +
                            std::strerror(errno) + ". It is installed together with this one.");
}

ExitCode manage_connections()
{
    if (!has_display()) {
        throw CommandFailure(
            ExitCode::WrongUsage, "there is no display to show a window on. Use dbapi connection "
                                  "add, list, test and remove.");
    }
    become_manager();
}
} // namespace

CommandRunner declare_connection_manage(CLI::App& /*arguments*/)
{
    return manage_connections;
}
} // namespace dbapi::tool
