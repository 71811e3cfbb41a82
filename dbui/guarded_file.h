#pragma once

#include <QtGlobal>

#include <cstddef>
#include <string>

/// A small file that several processes read and rewrite: read and replaced whole, one writer at a
/// time. Paths are bytes as the system takes them.
namespace dbui {
/// The content found at a path.
struct FileContent
{
    enum class State { Missing, Unreadable, TooLarge, Read };
    State state = State::Missing;
    std::string bytes;
};

/// Larger files are not read.
inline constexpr std::size_t kLargestFile = std::size_t{4} << 20;

/// The content of a regular file. A reader needs no lock, because a file is only ever replaced
/// whole.
FileContent read_whole_file(const std::string& path);

/// The path behind symbolic links, also where the last link points to nothing yet.
std::string follow_links(const std::string& path);

/// Replaces the file, or makes it. It gets the owner and the mode of the file at `model`, usually
/// the one that it replaces; access for its owner only where there is none. Whatever happens, power
/// failures included, the path leads to the whole old or the whole new content. On failure the old
/// one stays. The caller holds the lock; `path` is no link.
bool replace_file(const std::string& path, const std::string& bytes, const std::string& model);

/// Why the file at the path cannot be replaced or made, in the system's words and with the name of
/// the file that is in the way; empty when nothing is. Tries it, but for the last step, so it waits
/// for the lock.
std::string fault_of_replacing(const std::string& path);

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

    /// Why it is not held.
    [[nodiscard]] const std::string& fault() const { return fault_; }

private:
    int descriptor_ = -1;
    std::string fault_;
};
} // namespace dbui
