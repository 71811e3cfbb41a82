#include "dbif/host/background_task.h"

#include <system_error>

namespace dbif {
void BackgroundTask::begin(const std::function<void()>& work)
{
    finish();
    try {
        current_ = std::async(std::launch::async, work);
    } catch (const std::system_error&) {
        // The system has no more threads.
        work();
    }
}

void BackgroundTask::finish()
{
    if (current_.valid()) {
        current_.get();
    }
}
} // namespace dbif
