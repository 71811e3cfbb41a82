#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace dbapi::tool {
/// What is wrong with a file, and in which line; line 0 is the file as a whole.
struct FileFault
{
    std::size_t line = 0;
    std::string text;
};

/// The faults of one file. All are counted, but only the first ones kept: a file of a million bad
/// lines must not fill the memory.
class FileFaults
{
public:
    static constexpr std::size_t kMostKept = 50;

    void add(std::size_t line, std::string text)
    {
        if (wantsNext()) {
            kept_.push_back({line, std::move(text)});
        } else {
            countOnly();
        }
    }

    /// Whether the next fault is kept, so that its text is worth composing.
    [[nodiscard]] bool wantsNext() const { return kept_.size() < kMostKept; }

    void countOnly() { ++notKept_; }

    [[nodiscard]] bool isEmpty() const { return kept_.empty(); }

    [[nodiscard]] std::size_t count() const { return kept_.size() + notKept_; }

    [[nodiscard]] const std::vector<FileFault>& kept() const { return kept_; }

private:
    std::vector<FileFault> kept_;
    std::size_t notKept_ = 0;
};
} // namespace dbapi::tool
