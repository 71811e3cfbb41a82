#pragma once

#include <functional>
#include <sys/wait.h>
#include <unistd.h>

namespace test_support {
/// Runs the work in a process of its own, which ends with 0 when the work gives true.
inline pid_t start_child(const std::function<bool()>& work)
{
    const pid_t child = fork();
    if (child == 0) {
        _exit(work() ? 0 : 1);
    }
    return child;
}

/// Waits until the child stops or ends.
inline int status_of(pid_t child)
{
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

inline constexpr uid_t kNobody = 65534;

/// Access rights do not bind the administrator: a child whose work is about them calls this first.
inline void become_nobody()
{
    if (geteuid() == 0 && setuid(kNobody) != 0) {
        _exit(2);
    }
}
} // namespace test_support
