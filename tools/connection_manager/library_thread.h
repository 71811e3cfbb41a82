#pragma once

#include <functional>

namespace connection_manager {
/// Runs the work in the one thread in which the windows use databases, after all work that was
/// given before. What was given up goes on there until its server answers or its time is over, and
/// keeps no window waiting. The program waits for this thread when it ends.
void run_in_library_thread(const std::function<void()>& work);
} // namespace connection_manager
