#pragma once

#include <QtGlobal>

#include <functional>
#include <future>

namespace dbif {
/// Does one piece of work at a time beside the thread that gives it.
class BackgroundTask
{
    Q_DISABLE_COPY_MOVE(BackgroundTask)

public:
    BackgroundTask() = default;

    /// Waits for what is being done.
    ~BackgroundTask() = default;

    /// Begins a piece of work, when the one before is done. What that threw is thrown again.
    void begin(const std::function<void()>& work);

    /// Waits until all is done. Throws like `begin`.
    void finish();

private:
    /// Of `std::async`: its destructor waits.
    std::future<void> current_;
};
} // namespace dbif
