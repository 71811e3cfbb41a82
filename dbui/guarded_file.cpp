#include "dbui/guarded_file.h"

#include <QtGlobal>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace {
constexpr mode_t kOwnerOnly = 0600;
constexpr int kMostLinks = 40; // as many as the kernel follows

/// A file descriptor that closes itself.
class Descriptor
{
    Q_DISABLE_COPY_MOVE(Descriptor)

public:
    explicit Descriptor(int number) : number_(number) {}

    ~Descriptor()
    {
        if (number_ >= 0) {
            close(number_);
        }
    }

    [[nodiscard]] bool is_open() const { return number_ >= 0; }

    [[nodiscard]] int number() const { return number_; }

private:
    int number_;
};

bool write_all(int file, const std::string& bytes)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t written = write(file, bytes.data() + done, bytes.size() - done);
        if (written < 0 && errno != EINTR) {
            return false;
        }
        done += written < 0 ? 0 : static_cast<std::size_t>(written);
    }
    return true;
}

bool read_all(int file, std::string* bytes)
{
    std::array<char, 1 << 14> block{};
    while (true) {
        const ssize_t got = read(file, block.data(), block.size());
        if (got > 0) {
            bytes->append(block.data(), static_cast<std::size_t>(got));
        } else if (got == 0 || errno != EINTR) {
            return got == 0;
        }
    }
}

/// A new file with the content, safely on the disk.
bool write_new_file(const std::string& path, const std::string& bytes)
{
    // A file of this name is what a killed writer left. It is not written into: it may be a link by
    // now.
    unlink(path.c_str());
    const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kOwnerOnly));
    return file.is_open() && write_all(file.number(), bytes) && fsync(file.number()) == 0;
}

/// Makes a rename in the directory last. Some network file systems cannot; the rename stands all
/// the same.
void sync_directory_of(const std::string& path)
{
    const std::string directory = std::filesystem::path(path).parent_path().string();
    const Descriptor folder(
        open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.is_open()) {
        fsync(folder.number());
    }
}
} // namespace

namespace dbui {
FileContent read_whole_file(const std::string& path)
{
    // Without O_NONBLOCK a named pipe at the path would hold the caller for good.
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file.is_open()) {
        return {errno == ENOENT ? FileContent::State::Missing : FileContent::State::Unreadable, {}};
    }
    struct stat status = {};
    FileContent content;
    const bool read = fstat(file.number(), &status) == 0 && S_ISREG(status.st_mode) &&
                      read_all(file.number(), &content.bytes);
    content.state = read ? FileContent::State::Read : FileContent::State::Unreadable;
    return content;
}

std::string follow_links(const std::string& path)
{
    std::filesystem::path followed = path;
    std::error_code failure;
    for (int i = 0; i < kMostLinks && std::filesystem::is_symlink(followed, failure); ++i) {
        // An absolute target replaces the whole path here.
        followed = followed.parent_path() / std::filesystem::read_symlink(followed, failure);
    }
    return followed.string();
}

bool replace_file(const std::string& path, const std::string& bytes)
{
    const std::string fresh = path + ".new";
    if (!write_new_file(fresh, bytes) || std::rename(fresh.c_str(), path.c_str()) != 0) {
        unlink(fresh.c_str());
        return false;
    }
    sync_directory_of(path);
    return true;
}

FileLock::FileLock(const std::string& path)
{
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::seconds kLongestWait(10);
    constexpr std::chrono::milliseconds kPause(1); // short, to get a turn beside a busy writer

    // The kernel gives the lock up with the process, so the file may stay: one that goes away could
    // be locked by two processes, each holding another file of the same name.
    const int file = open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kOwnerOnly);
    const Clock::time_point deadline = Clock::now() + kLongestWait;
    while (file >= 0 && flock(file, LOCK_EX | LOCK_NB) != 0) {
        if ((errno != EWOULDBLOCK && errno != EINTR) || Clock::now() >= deadline) {
            close(file);
            return;
        }
        std::this_thread::sleep_for(kPause);
    }
    descriptor_ = file;
}

FileLock::~FileLock()
{
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}
} // namespace dbui
