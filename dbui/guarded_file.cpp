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
constexpr mode_t kAccess = 0777;
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

/// Gives a new file the owner and the mode of the one at `model`. Only the administrator can give a
/// file away; what anybody else writes in the place of another's file is their own alone.
bool take_after(int file, const std::string& model)
{
    struct stat status = {};
    if (stat(model.c_str(), &status) != 0) {
        return errno == ENOENT;
    }
    const bool isTheirs = fchown(file, status.st_uid, status.st_gid) == 0;
    return (isTheirs || geteuid() != 0) &&
           fchmod(file, isTheirs ? status.st_mode & kAccess : kOwnerOnly) == 0;
}

/// A new file with the content, safely on the disk; `errno` says why not.
bool write_new_file(const std::string& path, const std::string& bytes, const std::string& model)
{
    // A file of this name is what a killed writer left. It is not written into: it may be a link by
    // now.
    unlink(path.c_str());
    const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kOwnerOnly));
    return file.is_open() && take_after(file.number(), model) && write_all(file.number(), bytes) &&
           fsync(file.number()) == 0;
}

/// Opens the lock file of the path. One that the administrator makes belongs to whoever has the
/// file, or else the folder, so that they can take the lock later.
int open_lock_file(const std::string& path)
{
    const std::string name = path + ".lock";
    const int flags = O_RDWR | O_NOFOLLOW | O_CLOEXEC;
    const int file = open(name.c_str(), flags | O_CREAT | O_EXCL, kOwnerOnly);
    if (file < 0) {
        return errno == EEXIST ? open(name.c_str(), flags) : file;
    }
    struct stat owner = {};
    const std::string folder = std::filesystem::path(path).parent_path().string();
    if (geteuid() == 0 && (stat(path.c_str(), &owner) == 0 || stat(folder.c_str(), &owner) == 0) &&
        fchown(file, owner.st_uid, owner.st_gid) != 0) {
        unlink(name.c_str());
        close(file);
        return -1;
    }
    return file;
}

/// The error of the last system call, with the path.
std::string fault_at(const std::string& path)
{
    return "\"" + path + "\": " + std::generic_category().message(errno);
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
    // Without O_NONBLOCK, opening a named pipe would block for good.
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file.is_open()) {
        return {errno == ENOENT ? FileContent::State::Missing : FileContent::State::Unreadable, {}};
    }
    struct stat status = {};
    FileContent content;
    const bool isFile = fstat(file.number(), &status) == 0 && S_ISREG(status.st_mode);
    if (isFile && static_cast<std::size_t>(status.st_size) > kLargestFile) {
        content.state = FileContent::State::TooLarge;
        return content;
    }
    const bool read = isFile && read_all(file.number(), &content.bytes);
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

bool replace_file(const std::string& path, const std::string& bytes, const std::string& model)
{
    const std::string fresh = path + ".new";
    if (!write_new_file(fresh, bytes, model) || std::rename(fresh.c_str(), path.c_str()) != 0) {
        unlink(fresh.c_str());
        return false;
    }
    sync_directory_of(path);
    return true;
}

std::string fault_of_replacing(const std::string& path)
{
    const FileLock lock(path);
    if (!lock.is_held()) {
        return lock.fault();
    }
    const FileContent old = read_whole_file(path);
    if (old.state == FileContent::State::Unreadable) {
        return "\"" + path + "\" is no file that may be read";
    }
    const std::string fresh = path + ".new";
    std::string fault;
    if (!write_new_file(fresh, old.bytes, path)) {
        fault = fault_at(fresh);
    }
    unlink(fresh.c_str());
    return fault;
}

FileLock::FileLock(const std::string& path)
{
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::seconds kLongestWait(10);
    constexpr std::chrono::milliseconds kPause(1); // short, to get a turn beside a busy writer

    // The kernel gives the lock up with the process, so the file may stay: one that goes away could
    // be locked by two processes, each holding another file of the same name.
    const int file = open_lock_file(path);
    if (file < 0) {
        fault_ = fault_at(path + ".lock");
    }
    const Clock::time_point deadline = Clock::now() + kLongestWait;
    while (file >= 0 && flock(file, LOCK_EX | LOCK_NB) != 0) {
        if ((errno != EWOULDBLOCK && errno != EINTR) || Clock::now() >= deadline) {
            fault_ = "\"" + path + ".lock\": another program holds this lock";
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
