#include "dbimport/sweep_files.h"

#include "dbapi/words/text_rules.h"
#include "dbif/host/host_string.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <unordered_set>

namespace dbapi {
namespace {
namespace fs = std::filesystem;

bool is_csv_file(const fs::directory_entry& entry)
{
    const std::string name = entry.path().filename().string();
    std::error_code ignored;
    return dbif::upper_case(name).ends_with(".CSV") && name.front() != '.' &&
           !entry.is_directory(ignored);
}

/// A file, and the one place where it stands under whatever names.
struct PlacedFile
{
    std::string path;
    std::string place;

    bool operator<(const PlacedFile& other) const { return path < other.path; }
};

std::string place_of(const fs::path& path)
{
    std::error_code error;
    const fs::path place = fs::canonical(path, error);
    return error ? path.string() : place.string();
}

/// The CSV files of a folder; empty, with the reason in `fault`, when there are none.
std::vector<PlacedFile> csv_files_of(const std::string& folder, std::string* fault)
{
    std::vector<PlacedFile> files;
    std::error_code error;
    const fs::path place = place_of(folder);
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        if (is_csv_file(*entry)) {
            const fs::path& path = entry->path();
            std::error_code ignored;
            const bool isElsewhere = entry->is_symlink(ignored);
            files.push_back(
                {path.string(), isElsewhere ? place_of(path) : (place / path.filename()).string()});
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

std::vector<PlacedFile> files_of(const std::string& path, std::string* fault)
{
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status)) {
        *fault = error && error != std::errc::no_such_file_or_directory
                     ? dbapi::quoted(path) + " cannot be read: " + error.message() + "."
                     : "There is no file or folder " + dbapi::quoted(path) + ".";
        return {};
    }
    return fs::is_directory(status) ? csv_files_of(path, fault)
                                    : std::vector<PlacedFile>{{path, place_of(path)}};
}

std::uintmax_t size_of(const std::string& file)
{
    std::error_code error;
    const std::uintmax_t size = fs::file_size(file, error);
    return error ? 0 : size;
}

/// `places`: those of the files that were found before.
void add_new_files(
    const std::vector<PlacedFile>& files,
    std::unordered_set<std::string>* places,
    SweepFiles* found)
{
    for (const PlacedFile& file : files) {
        if (places->insert(file.place).second) {
            found->files.push_back(file.path);
            found->bytes += size_of(file.path);
        }
    }
}
} // namespace

SweepFiles find_sweep_files(const std::vector<std::string>& paths)
{
    SweepFiles found;
    std::unordered_set<std::string> places;
    for (const std::string& path : paths) {
        std::string fault;
        add_new_files(files_of(path, &fault), &places, &found);
        if (!fault.empty()) {
            found.faults.push_back(fault);
        }
    }
    return found;
}
} // namespace dbapi
