#include "dbapi/wall/column_search.h"

namespace dbapi {
bool search_key(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& /*category*/,
    const std::string& datatype,
    QSharedPointer<DBIF_CatalogEntryColumn>* column)
{
    return searchForColumn<DBIF_CatalogEntryColumn>(connection, keyname, datatype, column);
}

bool search_key(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& /*category*/,
    const std::string& datatype,
    QSharedPointer<DBIF_MeasurementColumn>* column)
{
    return searchForColumn<DBIF_MeasurementColumn>(connection, keyname, datatype, column);
}

bool search_key(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    QSharedPointer<DBIF_DeviceColumn>* column)
{
    if (!category.empty()) {
        return searchForColumn2<DBIF_DeviceColumn>(connection, keyname, category, datatype, column);
    }
    const std::array kCategories{
        &DBIF_DeviceColumn::ID_CATEGORY,          &DBIF_DeviceColumn::PHYSICAL_CATEGORY,
        &DBIF_DeviceColumn::CALIBRATION_CATEGORY, &DBIF_DeviceColumn::NODE_CATEGORY,
        &DBIF_DeviceColumn::TECHNOLOGY_CATEGORY,  &DBIF_DeviceColumn::IS_MEASUREMENT_CATEGORY};
    for (const QString* candidate : kCategories) {
        if (searchForColumn2<DBIF_DeviceColumn>(
                connection, keyname, dbif::to_utf8(*candidate), datatype, column)) {
            return true;
        }
    }
    return false;
}

bool search_key(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    QSharedPointer<DBIF_MeasurementConditionColumn>* column)
{
    return searchForColumn2<DBIF_MeasurementConditionColumn>(
        connection, keyname, category, datatype, column);
}

bool search_key(
    DBIF_Connection& connection,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype,
    QSharedPointer<DBIF_SetupColumn>* column)
{
    const auto search = [&](bool isInput) {
        return searchForColumn3<DBIF_SetupColumn>(connection, keyname, datatype, isInput, column);
    };
    if (category.empty()) {
        return search(true) || search(false);
    }
    const std::string direction = dbapi_convert_to_short_category_name(category);
    return (direction == "IN" && search(true)) || (direction == "OUT" && search(false));
}
} // namespace dbapi
