#include "dbapi/wall/column_search.h"

#include "dbapi/words/vocabulary.h"
#include "dbif/connection/column_store.h"

namespace dbapi {
namespace {
/// The categories under which a key may stand, in the order in which they are tried.
std::vector<std::string> categories_of(dbif::KeyKind keys, bool isDevice, const std::string& given)
{
    if (keys == dbif::KeyKind::Plain) {
        return {""};
    }
    if (keys == dbif::KeyKind::Direction) {
        const std::string direction = dbapi_convert_to_short_category_name(given);
        if (direction.empty()) {
            return {"IN", "OUT"};
        }
        return direction == "IN" || direction == "OUT" ? std::vector{direction}
                                                       : std::vector<std::string>();
    }
    if (!isDevice || !given.empty()) {
        return {given};
    }
    std::vector<std::string> categories;
    for (const QString* category :
         {&DBIF_DeviceColumn::ID_CATEGORY, &DBIF_DeviceColumn::PHYSICAL_CATEGORY,
          &DBIF_DeviceColumn::CALIBRATION_CATEGORY, &DBIF_DeviceColumn::NODE_CATEGORY,
          &DBIF_DeviceColumn::TECHNOLOGY_CATEGORY, &DBIF_DeviceColumn::IS_MEASUREMENT_CATEGORY}) {
        categories.push_back(dbif::to_utf8(*category));
    }
    return categories;
}

const dbif::KeyDefinition* find_key(
    DBIF_Connection& connection,
    const dbif::TableInfo& table,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype)
{
    const bool isDevice = table.table == dbif::RecordTable::Device;
    const std::vector<std::string> datatypes =
        datatype.empty() ? all_datatypes() : std::vector{datatype};
    for (const std::string& tried : categories_of(table.keys, isDevice, category)) {
        for (const std::string& word : datatypes) {
            const auto kind = dbif::value_kind(dbif::to_qt(word));
            const dbif::KeyDefinition* key =
                kind.has_value()
                    ? dbif::ColumnStore::of(connection)
                          .find(connection, table.table, dbif::column_key(tried, *kind, keyname))
                    : nullptr;
            if (key != nullptr) {
                return key;
            }
        }
    }
    return nullptr;
}
} // namespace

const std::vector<std::string>& all_datatypes()
{
    static const std::vector<std::string> datatypes{
        dbif::to_utf8(TEXT_DATATYPE), dbif::to_utf8(DOUBLE_DATATYPE),
        dbif::to_utf8(COMPLEX_NUMBER_DATATYPE), dbif::to_utf8(COMPLEX_MATRIX_DATATYPE)};
    return datatypes;
}

std::optional<dbif::TableColumn> find_column(
    DBIF_Connection& connection,
    const std::string& tablename,
    const std::string& keyname,
    const std::string& category,
    const std::string& datatype)
{
    const dbif::TableInfo* table = dbif::find_table(tablename);
    if (table == nullptr) {
        return std::nullopt;
    }
    if (dbapi_is_category_fixed(category)) {
        const dbif::FixedColumnInfo* fixed = dbif::find_fixed_column(*table, keyname);
        return fixed == nullptr ? std::nullopt
                                : std::optional<dbif::TableColumn>({table->table, *fixed});
    }
    const dbif::KeyDefinition* key =
        table->keys == dbif::KeyKind::None
            ? nullptr
            : find_key(connection, *table, keyname, category, datatype);
    return key == nullptr ? std::nullopt : std::optional<dbif::TableColumn>({table->table, *key});
}
} // namespace dbapi
