#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace dbapi {
/// One fault of a file, and its line; line 0 is the file as a whole.
struct FileFault
{
    std::size_t line = 0;
    std::string text;
};

/// The faults of one file. All are counted, but only the first ones are kept, and long ones are
/// cut: a file of a million bad lines must fill neither the memory nor the screen.
class FileFaults
{
public:
    static constexpr std::size_t kMostKept = 50;
    /// In bytes, of one fault.
    static constexpr std::size_t kLongestText = 600;

    void add(std::size_t line, std::string text)
    {
        if (wantsNext()) {
            // A key name out of a file may be of any length.
            if (text.size() > kLongestText) {
                std::size_t end = kLongestText;
                while ((static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U && end > 0) {
                    --end;
                }
                text.resize(end);
                text += "...";
            }
            kept_.push_back({line, std::move(text)});
        } else {
            countOnly();
        }
    }

    /// Tells whether the next fault is kept, so that its text is worth composing.
    [[nodiscard]] bool wantsNext() const { return kept_.size() < kMostKept; }

    void countOnly() { ++notKept_; }

    [[nodiscard]] bool isEmpty() const { return kept_.empty(); }

    [[nodiscard]] std::size_t count() const { return kept_.size() + notKept_; }

    [[nodiscard]] const std::vector<FileFault>& kept() const { return kept_; }

private:
    std::vector<FileFault> kept_;
    std::size_t notKept_ = 0;
};
} // namespace dbapi
