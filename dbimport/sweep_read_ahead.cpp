#include "dbimport/sweep_read_ahead.h"

#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"

#include <algorithm>
#include <iterator>
#include <system_error>
#include <utility>

namespace dbapi {
namespace {
/// The bytes of files that may be read ahead; what is read of them takes half of it as numbers, and
/// several times of it as texts.
constexpr std::size_t kMostBytes = 1U << 22U;
constexpr std::size_t kMostFiles = 256;
constexpr std::size_t kMostThreads = 4;
/// `progress` is called once this many bytes were read while a file is waited for.
constexpr std::size_t kBytesWorthTelling = 1U << 18U;

/// Ends the reading of a file that nobody waits for any more.
struct Abandoned
{};

ReadSweep read_sweep(const std::string& file, const ImportProgress& progress)
{
    ReadSweep read{read_annotated_csv(file, progress), {}};
    try {
        read.columns = dbif::pack_sweep(std::exchange(read.csv.columns, {}));
    } catch (const DBIF_Exception& exception) {
        read.csv.faults.add(0, dbif::trimmed(convert_sql_error_to_string(exception.error()).str()));
    }
    return read;
}

std::size_t thread_count(std::size_t files)
{
    // The thread that stores has most to do, and a core of its own.
    const std::size_t cores = std::max(2U, std::thread::hardware_concurrency());
    return std::min({cores - 1, kMostThreads, files});
}
} // namespace

SweepReadAhead::SweepReadAhead(const std::vector<std::string>& files, ImportProgress progress)
    : files_(files), progress_(std::move(progress))
{
    const std::size_t count = thread_count(files.size());
    threads_.reserve(count);
    try {
        std::generate_n(std::back_inserter(threads_), count, [this] {
            return std::thread(&SweepReadAhead::readFiles, this);
        });
    } catch (const std::system_error&) { // NOLINT(bugprone-empty-catch)
        // The system has no more threads: those that there are read, or `next` itself does.
    }
}

SweepReadAhead::~SweepReadAhead()
{
    {
        const std::lock_guard lock(mutex_);
        isAbandoned_ = true;
    }
    roomChanged_.notify_all();
    for (std::thread& thread : threads_) {
        thread.join();
    }
}

ReadSweep SweepReadAhead::next()
{
    if (threads_.empty()) {
        return read_sweep(files_[toTake_++], progress_);
    }
    std::unique_lock lock(mutex_);
    bytesAhead_ -= std::exchange(bytesTaken_, 0);
    const auto isRead = [this] {
        const auto found = ahead_.find(toTake_);
        return found != ahead_.end() && found->second.isRead;
    };
    isAwaited_ = true;
    // The threads are woken for many files at once.
    if (!isRead() || (bytesAhead_ < kMostBytes / 2 && toRead_ - toTake_ < kMostFiles / 2)) {
        roomChanged_.notify_all();
    }
    do {
        readChanged_.wait(lock, [&] { return isRead() || bytesUntold_ >= kBytesWorthTelling; });
        const std::size_t bytes = std::exchange(bytesUntold_, 0);
        if (bytes > 0 && progress_) {
            lock.unlock();
            progress_(bytes);
            lock.lock();
        }
    } while (!isRead());
    Ahead taken = std::move(ahead_.extract(toTake_++).mapped());
    isAwaited_ = false;
    bytesTaken_ = taken.bytes;
    lock.unlock();
    if (taken.failure) {
        std::rethrow_exception(taken.failure);
    }
    return std::move(taken.sweep);
}

bool SweepReadAhead::hasRoomFor(std::size_t file) const
{
    return (isAwaited_ && file == toTake_) || bytesAhead_ < kMostBytes;
}

bool SweepReadAhead::claim(std::size_t* file)
{
    std::unique_lock lock(mutex_);
    roomChanged_.wait(lock, [this] {
        return isAbandoned_ || toRead_ == files_.size() ||
               (hasRoomFor(toRead_) && toRead_ - toTake_ < kMostFiles);
    });
    if (isAbandoned_ || toRead_ == files_.size()) {
        return false;
    }
    *file = toRead_++;
    ahead_[*file];
    return true;
}

void SweepReadAhead::count(std::size_t file, std::size_t bytes)
{
    std::unique_lock lock(mutex_);
    ahead_.at(file).bytes += bytes;
    bytesAhead_ += bytes;
    bytesUntold_ += bytes;
    if (isAwaited_ && bytesUntold_ >= kBytesWorthTelling) {
        readChanged_.notify_one();
    }
    roomChanged_.wait(lock, [&] { return isAbandoned_ || hasRoomFor(file); });
    if (isAbandoned_) {
        throw Abandoned();
    }
}

void SweepReadAhead::readFiles()
{
    try {
        for (std::size_t file = 0; claim(&file);) {
            read(file);
        }
    } catch (const Abandoned&) {
        return;
    }
}

void SweepReadAhead::read(std::size_t file)
{
    ReadSweep sweep;
    std::exception_ptr failure;
    try {
        sweep = read_sweep(files_[file], [=, this](std::size_t bytes) { count(file, bytes); });
    } catch (const Abandoned&) {
        throw;
    } catch (...) {
        failure = std::current_exception();
    }
    const std::lock_guard lock(mutex_);
    Ahead& ahead = ahead_.at(file);
    ahead.sweep = std::move(sweep);
    ahead.failure = failure;
    ahead.isRead = true;
    if (isAwaited_ && file == toTake_) {
        readChanged_.notify_one();
    }
}
} // namespace dbapi
