#include "dbui/connections_path.h"

#include "dbif/host/error_text.h"
#include "dbif/host/host_environment.h"

#include <filesystem>
#include <memory>
#include <system_error>

namespace {
constexpr const char* kContext = "vanto";

std::string connections_directory()
{
    using Expanded = std::unique_ptr<char, decltype(&gmem_ee_free)>;
    using Value = std::unique_ptr<char, decltype(&astr_free_string)>;

    const Expanded standard(
        astr_expand_environment_value(kContext, "$HOME/tarsier/config"), gmem_ee_free);
    astr_set_environment(kContext);
    const Value chosen(astr_environment_value("VANTO_DB_CONNECTIONS_DIRECTORY"), astr_free_string);
    if (chosen) {
        return chosen.get();
    }
    return standard ? standard.get() : std::string();
}
} // namespace

std::string dbui_connections_file()
{
    return connections_directory() + "/" + "vanto_db_connections" + ".xml";
}

bool dbui_make_path_if_required(const std::string& filePath, std::string* error)
{
    dbif::clear_error(error);
    std::error_code failure;
    if (std::filesystem::exists(filePath, failure)) {
        return true;
    }
    const std::filesystem::path directory =
        std::filesystem::absolute(filePath, failure).parent_path();
    std::filesystem::create_directories(directory, failure);
    if (std::filesystem::is_directory(directory, failure)) {
        return true;
    }
    if (error == nullptr) {
        return true; // published behaviour: whoever does not ask learns of it when the file cannot
                     // be written
    }
    dbif::deliver_error(error, "Failed to create directory path \"" + directory.string() + "\"!\n");
    return false;
}
