#include "tools/dbapi/sweep_files.h"

#include "dbapi/text_rules.h"
#include "dbif/host_string.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

namespace dbapi::tool {
namespace {
namespace fs = std::filesystem;

bool is_csv_file(const fs::directory_entry& entry)
{
    const std::string name = entry.path().filename().string();
    std::error_code ignored;
    return dbif::upper_case(name).ends_with(".CSV") && name.front() != '.' &&
           !entry.is_directory(ignored);
}

/// The CSV files of a folder; empty, with the reason in `fault`, when there are none.
std::vector<std::string> csv_files_of(const std::string& folder, std::string* fault)
{
    std::vector<std::string> files;
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        if (is_csv_file(*entry)) {
            files.push_back(entry->path().string());
        }
    }
    if (error) {
        *fault =
            "The folder " + dbapi::quoted(folder) + " cannot be read: " + error.message() + ".";
        return {};
    }
    if (files.empty()) {
        *fault = "The folder " + dbapi::quoted(folder) +
                 " holds no *.csv file. Folders below it are not searched.";
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<std::string> files_of(const std::string& path, std::string* fault)
{
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status)) {
        *fault = error && error != std::errc::no_such_file_or_directory
                     ? dbapi::quoted(path) + " cannot be read: " + error.message() + "."
                     : "There is no file or folder " + dbapi::quoted(path) + ".";
        return {};
    }
    return fs::is_directory(status) ? csv_files_of(path, fault) : std::vector<std::string>{path};
}

/// The files that were not found before.
class NewFiles
{
public:
    bool add(const std::string& file)
    {
        std::error_code error;
        const fs::path place = fs::canonical(file, error);
        return known_.insert(error ? file : place.string()).second;
    }

private:
    std::set<std::string> known_;
};

std::uintmax_t size_of(const std::string& file)
{
    std::error_code error;
    const std::uintmax_t size = fs::file_size(file, error);
    return error ? 0 : size;
}

void add_new_files(const std::vector<std::string>& files, NewFiles* newFiles, SweepFiles* found)
{
    for (const std::string& file : files) {
        if (newFiles->add(file)) {
            found->files.push_back(file);
            found->bytes += size_of(file);
        }
    }
}
} // namespace

SweepFiles find_sweep_files(const std::vector<std::string>& paths)
{
    SweepFiles found;
    NewFiles newFiles;
    for (const std::string& path : paths) {
        std::string fault;
        add_new_files(files_of(path, &fault), &newFiles, &found);
        if (!fault.empty()) {
            found.faults.push_back(fault);
        }
    }
    return found;
}
} // namespace dbapi::tool
