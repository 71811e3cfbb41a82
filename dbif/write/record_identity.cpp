#include "dbif/write/record_identity.h"

#include "dbif/host/host_number.h"

#include <QByteArray>

namespace dbif {
RecordIdentity& RecordIdentity::text(std::string_view part)
{
    const std::string size = std::to_string(part.size()) + ":";
    hash_.addData(QByteArrayView(size.data(), static_cast<qsizetype>(size.size())));
    hash_.addData(QByteArrayView(part.data(), static_cast<qsizetype>(part.size())));
    return *this;
}

RecordIdentity& RecordIdentity::missing()
{
    hash_.addData(QByteArrayView("-", 1));
    return *this;
}

RecordIdentity& RecordIdentity::textOrMissing(const std::optional<std::string>& part)
{
    return part.has_value() ? text(*part) : missing();
}

RecordIdentity& RecordIdentity::number(const std::optional<double>& part)
{
    return part.has_value() ? text(double_text(*part)) : missing();
}

std::string RecordIdentity::digest() const
{
    constexpr int kDigestBytes = 16;
    const QByteArray bytes = hash_.result().first(kDigestBytes);
    return {bytes.constData(), kDigestBytes};
}
} // namespace dbif
