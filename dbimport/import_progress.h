#pragma once

#include <cstddef>
#include <functional>

namespace dbapi {
/// Is told, while files are read, how many bytes were read since it was last called. It is called
/// in the thread that made the call which it was given to, and must not throw.
using ImportProgress = std::function<void(std::size_t bytes)>;
} // namespace dbapi
