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
} // namespace test_support
