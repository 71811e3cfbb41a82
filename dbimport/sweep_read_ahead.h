#pragma once

#include "dbif/write/packed_sweep.h"
#include "dbimport/annotated_csv.h"

#include <QtGlobal>

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace dbapi {
/// A file that was read, with its columns as they are stored.
struct ReadSweep
{
    /// Without its columns.
    AnnotatedCsv csv;
    std::vector<dbif::PackedColumn> columns;
};

/// Reads files of annotated CSV in threads of its own, ahead of the thread that stores them, which
/// takes them in their order. What was read and not taken yet is limited in number and bytes; only
/// a file that is waited for is read whole whatever its size. Where no thread can be started, each
/// file is read when it is taken.
class SweepReadAhead
{
    Q_DISABLE_COPY_MOVE(SweepReadAhead)

public:
    /// `files` must outlive the object. `progress` is called by `next` only, in its thread.
    SweepReadAhead(const std::vector<std::string>& files, ImportProgress progress);
    /// Gives up what was not taken.
    ~SweepReadAhead();

    /// The next file; there must be one. The one before is over by then. Throws what reading it
    /// threw.
    ReadSweep next();

private:
    /// One file, as far as it was read.
    struct Ahead
    {
        ReadSweep sweep;
        std::exception_ptr failure;
        std::size_t bytes = 0;
        bool isRead = false;
    };

    void readFiles();
    /// Throws `Abandoned`.
    void read(std::size_t file);
    /// Tells whether there is a file to read; waits until there is room for one.
    bool claim(std::size_t* file);
    /// Counts what was read of a file, and waits while there is too much. Throws `Abandoned`.
    void count(std::size_t file, std::size_t bytes);

    [[nodiscard]] bool hasRoomFor(std::size_t file) const;

    const std::vector<std::string>& files_;
    ImportProgress progress_;

    std::mutex mutex_;
    std::condition_variable roomChanged_;
    std::condition_variable readChanged_;
    std::map<std::size_t, Ahead> ahead_;
    /// The next file to read, and the next to take.
    std::size_t toRead_ = 0;
    std::size_t toTake_ = 0;
    /// Tells whether that one is waited for.
    bool isAwaited_ = false;
    /// The bytes of all files in `ahead_`, and those of the one that was taken last.
    std::size_t bytesAhead_ = 0;
    std::size_t bytesTaken_ = 0;
    /// The bytes that `progress` was not told of yet.
    std::size_t bytesUntold_ = 0;
    bool isAbandoned_ = false;

    std::vector<std::thread> threads_;
};
} // namespace dbapi
