#pragma once

#include <cstddef>
#include <functional>

namespace dbif {
/// Calls `work(first, last)` for parts that together are all of [0, count), at the same time as far
/// as the machine has processors, and returns when all are done. A part has at least `grain`
/// places, unless there are fewer: so much work as makes up for a thread. What a part throws is
/// thrown again. Parts must not touch the same data; database connections are for one thread only.
void parallel_for(
    std::size_t count,
    std::size_t grain,
    const std::function<void(std::size_t first, std::size_t last)>& work);
} // namespace dbif
