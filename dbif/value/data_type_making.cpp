#include "dbif/host/host_number.h"
#include "dbif/host/host_string.h"
#include "dbif/value/complex_values.h"
#include "dbif/value/data_type.h"

#include <limits>
#include <memory>

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
