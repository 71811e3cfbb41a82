#include "dbif/engine/sqlite_file_watch.h"

#include <cstring>
#include <sqlite3.h>
#include <tuple>

namespace dbif {
namespace {
std::optional<struct stat> status_of(const std::string& path)
{
    struct stat status
    {};

    return stat(path.c_str(), &status) == 0 ? std::optional(status) : std::nullopt;
}

bool is_same_inode(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

auto time_of(const struct stat& status)
{
    return std::make_tuple(status.st_mtim.tv_sec, status.st_mtim.tv_nsec);
}

bool has_same_content(const struct stat& a, const struct stat& b)
{
    return a.st_size == b.st_size && time_of(a) == time_of(b);
}

/// SQLite's own access to the file. A descriptor of ours would drop SQLite's locks when it closes.
sqlite3_file* file_of(sqlite3* handle)
{
    sqlite3_file* file = nullptr;
    sqlite3_file_control(handle, "main", SQLITE_FCNTL_FILE_POINTER, static_cast<void*>(&file));
    return file != nullptr && file->pMethods != nullptr ? file : nullptr;
}

template <typename Number>
Number number_at(const volatile char* bytes)
{
    std::array<char, sizeof(Number)> copy{};
    for (std::size_t i = 0; i < copy.size(); ++i) {
        copy[i] = bytes[i];
    }
    Number number = 0;
    std::memcpy(&number, copy.data(), sizeof number);
    return number;
}

bool is_in_wal_mode(sqlite3* handle)
{
    bool isWal = false;
    const auto note = [](void* result, int, char** values, char**) {
        *static_cast<bool*>(result) = std::strcmp(values[0], "wal") == 0;
        return 0;
    };
    sqlite3_exec(handle, "PRAGMA journal_mode", note, &isWal, nullptr);
    return isWal;
}
} // namespace

SqliteFileWatch::SqliteFileWatch(sqlite3* handle, std::string path, SqlSession& session)
    : handle_(handle), path_(std::move(path)), session_(session)
{
    accept();
}

FileState SqliteFileWatch::state()
{
    // The log is looked at before the file: a checkpoint in between then shows as a later one.
    const std::optional<LogState> logBefore = logState();
    const std::optional<struct stat> file = status_of(path_);
    if (!file.has_value() || !file_.has_value() || !is_same_inode(*file, *file_)) {
        return FileState::Replaced;
    }
    if (has_same_content(*file, *file_)) {
        log_ = logBefore;
        return FileState::Same;
    }
    const std::optional<LogState> log = logState();
    if (wroteSqlite(*file, log)) {
        accept();
        return FileState::Same;
    }
    if (!log.has_value() || log->checkpointed == log->frames) {
        return FileState::Replaced;
    }
    // The log must not be written into a file that it may not belong to, whatever happened.
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    const auto logFile = logFileStatus();
    const bool isOverwritten = file->st_size != file_->st_size || header() != header_;
    return isOverwritten && !log->isInCheckpoint() && logFile.has_value() && logFile->st_size > 0
               ? FileState::Overwritten
               : FileState::Replaced;
}

/// SQLite writes the file of a database in WAL mode at checkpoints only, and these show in the
/// log's state. In other modes each of its writes changes the token.
bool SqliteFileWatch::wroteSqlite(const struct stat& file, const std::optional<LogState>& log) const
{
    if (!isWal_ || !log.has_value()) {
        return !(session_.changeToken() == token_);
    }
    if (*log == log_) {
        // The checkpoint is under way, or was broken off. It writes the first page first.
        return log->isInCheckpoint() && file.st_size <= log->databaseSize && header() == header_;
    }
    if (log->isInCheckpoint()) {
        return true;
    }
    if (log->checkpointed == log->frames && log->frames > 0) {
        return file.st_size == log->databaseSize;
    }
    // Without a checkpoint since the log began anew, the file is older than what the log holds.
    const auto logFile = logFileStatus();
    return log->checkpointBegun > 0 || (logFile.has_value() && time_of(file) <= time_of(*logFile));
}

void SqliteFileWatch::accept()
{
    token_ = session_.changeToken();
    isWal_ = is_in_wal_mode(handle_);
    log_ = logState();
    file_ = status_of(path_);
    header_ = header();
}

std::optional<struct stat> SqliteFileWatch::logFileStatus() const
{
    return status_of(sqlite3_filename_wal(sqlite3_db_filename(handle_, "main")));
}

/// Read from the index of the log that all connections share; its layout is part of SQLite's file
/// format.
std::optional<SqliteFileWatch::LogState> SqliteFileWatch::logState() const
{
    constexpr int kRegionSize = 32768;
    sqlite3_file* file = isWal_ ? file_of(handle_) : nullptr;
    if (file == nullptr || file->pMethods->iVersion < 2) {
        return std::nullopt;
    }
    volatile void* region = nullptr;
    if (file->pMethods->xShmMap(file, 0, kRegionSize, 0, &region) != SQLITE_OK ||
        region == nullptr) {
        return std::nullopt;
    }
    const auto* bytes = static_cast<const volatile char*>(region);
    const auto pageSize = number_at<std::uint16_t>(bytes + 14);
    LogState log;
    log.frames = number_at<std::uint32_t>(bytes + 16);
    // 1 stands for 65536.
    log.databaseSize = static_cast<std::int64_t>(number_at<std::uint32_t>(bytes + 20)) *
                       (pageSize == 1 ? 65536 : pageSize);
    log.salt = {number_at<std::uint32_t>(bytes + 32), number_at<std::uint32_t>(bytes + 36)};
    log.checkpointed = number_at<std::uint32_t>(bytes + 96);
    log.checkpointBegun = number_at<std::uint32_t>(bytes + 128);
    return log;
}

SqliteFileWatch::Header SqliteFileWatch::header() const
{
    Header bytes{};
    if (sqlite3_file* file = file_of(handle_); file != nullptr) {
        file->pMethods->xRead(file, bytes.data(), static_cast<int>(bytes.size()), 0);
    }
    return bytes;
}
} // namespace dbif
