#pragma once

#include <QCryptographicHash>

#include <optional>
#include <string>
#include <string_view>

namespace dbif {
/// The digest that identifies a record: 16 bytes of SHA-256 over its parts, each with its length,
/// so that "ab", "c" and "a", "bc" differ. A missing part equals a missing part and differs from an
/// empty one.
class RecordIdentity
{
public:
    RecordIdentity& text(std::string_view part);
    RecordIdentity& missing();
    RecordIdentity& textOrMissing(const std::optional<std::string>& part);
    RecordIdentity& number(const std::optional<double>& part);
    [[nodiscard]] std::string digest() const;

private:
    QCryptographicHash hash_{QCryptographicHash::Sha256};
};
} // namespace dbif
