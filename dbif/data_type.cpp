#include "dbif/data_type.h"

#include "dbif/complex_values.h"
#include "dbif/host_number.h"
#include "dbif/host_string.h"
#include "dbif/sql_text.h"

#include <array>
#include <cmath>
#include <limits>
#include <memory>

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

namespace {
double number_of(const QVariant& value)
{
    if (value.isNull()) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    return isNumber ? number : dbif::read_engineering_number(dbif::to_utf8(value.toString()));
}
} // namespace

DBIF_DataType* DBIF_DataType::toDataType(const QVariant& value, const QString& datatype)
{
    switch (dbif::value_kind(datatype).value_or(dbif::ValueKind::Text)) {
    case dbif::ValueKind::Double:
        return std::make_unique<DBIF_Double>(number_of(value)).release();
    case dbif::ValueKind::Complex:
        return std::make_unique<DBIF_ComplexNumber>(
                   dbif::read_complex(dbif::to_utf8(value.toString())).value_or(dbif::kNoComplex))
            .release();
    case dbif::ValueKind::Matrix:
        return std::make_unique<DBIF_ComplexMatrix>(
                   dbif::read_matrix(dbif::to_utf8(value.toString()))
                       .value_or(dbif::ComplexMatrix()))
            .release();
    case dbif::ValueKind::Text:
        break;
    }
    return std::make_unique<DBIF_Text>(value.toString()).release();
}

QString DBIF_Double::toString() const
{
    return std::isnan(number_) ? QString() : dbif::to_qt(dbif::double_text(number_));
}

QString DBIF_Double::asQueryValue() const
{
    return std::isnan(number_) ? QStringLiteral("NULL") : toString();
}
