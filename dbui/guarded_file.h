#pragma once

#include <QtGlobal>

#include <string>

/// A small file that several processes read and rewrite: read and replaced whole, one writer at a
/// time. Paths are bytes as the system takes them.
namespace dbui {
/// What stands at a path.
struct FileContent
{
    enum class State { Missing, Unreadable, Read };
    State state = State::Missing;
    std::string bytes;
};

/// The content of a regular file. A reader needs no lock, because a file is only ever replaced
/// whole.
FileContent read_whole_file(const std::string& path);

/// The path behind symbolic links, also where the last link points to nothing yet.
std::string follow_links(const std::string& path);

/// Replaces the file, or makes it, with access for its owner only. Whatever happens, power failures
/// included, the path leads to the whole old or the whole new content. On failure the old one
/// stays. The caller holds the lock; `path` is no link.
bool replace_file(const std::string& path, const std::string& bytes);

/// The sole right to rewrite the file at `path`, among all processes that ask for it in this way,
/// for as long as the object lives. It is given up when the process dies, however it dies. One
/// thread does not ask twice.
class FileLock
{
    Q_DISABLE_COPY_MOVE(FileLock)

public:
    /// Waits up to 10 s.
    explicit FileLock(const std::string& path);
    ~FileLock();

    [[nodiscard]] bool is_held() const { return descriptor_ >= 0; }

private:
    int descriptor_ = -1;
};
} // namespace dbui
