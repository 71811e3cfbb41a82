#include "dbif/value/data_type.h"

#include "dbif/engine/sql_text.h"
#include "dbif/host/host_number.h"
#include "dbif/host/host_string.h"

#include <array>
#include <cmath>

namespace dbif {
namespace {
struct NamedKind
{
    ValueKind kind;
    const QString* name;
};

const std::array<NamedKind, 4>& named_kinds()
{
    static const std::array<NamedKind, 4> kinds{
        {{ValueKind::Text, &TEXT_DATATYPE},
         {ValueKind::Double, &DOUBLE_DATATYPE},
         {ValueKind::Complex, &COMPLEX_NUMBER_DATATYPE},
         {ValueKind::Matrix, &COMPLEX_MATRIX_DATATYPE}}};
    return kinds;
}
} // namespace

const QString& datatype_name(ValueKind kind)
{
    return *named_kinds().at(static_cast<std::size_t>(kind)).name;
}

std::optional<ValueKind> value_kind(const QString& datatype)
{
    for (const NamedKind& named : named_kinds()) {
        if (*named.name == datatype) {
            return named.kind;
        }
    }
    return std::nullopt;
}
} // namespace dbif

void DBIF_DataType::print(std::ostream& out) const
{
    out << dbif::to_utf8(toString());
}

QString DBIF_DataType::asQueryValue() const
{
    dbif::SqlText text;
    text << dbif::SqlLiteral(dbif::to_utf8(toString()));
    return text.toQt();
}

QString DBIF_Double::toString() const
{
    return std::isnan(number_) ? QString() : dbif::to_qt(dbif::double_text(number_));
}

QString DBIF_Double::asQueryValue() const
{
    return std::isnan(number_) ? QStringLiteral("NULL") : toString();
}
