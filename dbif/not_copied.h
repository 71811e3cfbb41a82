#pragma once

namespace dbif {
/// Base of classes whose objects stay what and where they are: neither copied nor moved.
class NotCopied
{
public:
    NotCopied(const NotCopied&) = delete;
    NotCopied& operator=(const NotCopied&) = delete;
    NotCopied(NotCopied&&) = delete;
    NotCopied& operator=(NotCopied&&) = delete;

protected:
    NotCopied() = default;
    ~NotCopied() = default;
};
} // namespace dbif
