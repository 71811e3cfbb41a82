#pragma once

#include <QtGlobal>

#include <functional>
#include <future>

namespace dbif {
/// Runs one task at a time in a background thread, or in the calling thread when the system has no
/// more threads.
class BackgroundTask
{
    Q_DISABLE_COPY_MOVE(BackgroundTask)

public:
    BackgroundTask() = default;

    /// Waits for the task; what it throws is lost.
    ~BackgroundTask() = default;

    /// Waits for the task before, then starts `work` and returns. What the task before threw is
    /// thrown again, and `work` is not started then. `work` must not touch a database connection
    /// that the calling thread uses meanwhile.
    void begin(const std::function<void()>& work);

    /// Waits until the task is done. Throws again what it threw.
    void finish();

private:
    /// Made by `std::async`, so that its destructor waits.
    std::future<void> current_;
};
} // namespace dbif
