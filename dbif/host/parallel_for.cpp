#include "dbif/host/parallel_for.h"

#include <algorithm>
#include <future>
#include <system_error>
#include <thread>
#include <vector>

namespace dbif {
void parallel_for(
    std::size_t count,
    std::size_t grain,
    const std::function<void(std::size_t first, std::size_t last)>& work)
{
    // More would mostly wait for memory.
    constexpr std::size_t kMostParts = 8;
    // Asking takes as long as a small read.
    static const std::size_t processors = std::max(1U, std::thread::hardware_concurrency());
    const std::size_t parts =
        std::clamp<std::size_t>(count / grain, 1, std::min(processors, kMostParts));
    const auto limit = [&](std::size_t part) {
        return count / parts * part + std::min(part, count % parts);
    };
    std::vector<std::future<void>> others;
    others.reserve(parts - 1);
    std::size_t part = 1;
    try {
        for (; part < parts; ++part) {
            others.push_back(std::async(std::launch::async, work, limit(part), limit(part + 1)));
        }
    } catch (const std::system_error&) {
        // The system has no more threads: the rest is done here.
        work(limit(part), count);
    }
    work(0, limit(1));
    for (std::future<void>& other : others) {
        other.get();
    }
}
} // namespace dbif
