#pragma once

#include <memory>
#include <sqlite3.h>
#include <stdexcept>
#include <string>

namespace test_support {
/// Runs SQL on an SQLite file as another program would, making the file when there is none.
inline void run_on_file(const std::string& path, const std::string& sql)
{
    sqlite3* opened = nullptr;
    sqlite3_open(path.c_str(), &opened);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> database(opened, &sqlite3_close);
    if (sqlite3_exec(opened, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(opened) + std::string(" in: ") + sql);
    }
}

/// Puts the content of one file into another by SQLite's own backup, as a restore does.
inline void copy_content(const std::string& from, const std::string& to)
{
    using Database = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;
    const auto open = [](const std::string& path) {
        sqlite3* opened = nullptr;
        sqlite3_open(path.c_str(), &opened);
        return Database(opened, &sqlite3_close);
    };
    const Database source = open(from);
    const Database target = open(to);
    sqlite3_backup* backup = sqlite3_backup_init(target.get(), "main", source.get(), "main");
    sqlite3_backup_step(backup, -1);
    if (sqlite3_backup_finish(backup) != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(target.get()));
    }
}
} // namespace test_support
