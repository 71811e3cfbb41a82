#include "dbif/write/record_fields.h"

#include <gtest/gtest.h>

#include <set>

namespace {
template <typename Fields>
void expect_all_texts_of_table()
{
    std::set<std::string_view> names;
    for (const auto& [name, member] : Fields::columns()) {
        names.insert(name);
    }
    std::set<std::string_view> stored;
    for (const dbif::FixedColumnInfo& column : dbif::table_info(Fields::kTable).fixedColumns) {
        if (column.kind == dbif::FixedKind::Text && column.name != "modified_time" &&
            column.name != "user") {
            stored.insert(column.name);
        }
    }
    EXPECT_EQ(names, stored);
}
} // namespace

TEST(RecordFields, AreTheFixedTextsOfTheSchema)
{
    expect_all_texts_of_table<dbif::CatalogEntryFields>();
    expect_all_texts_of_table<dbif::RoutineFields>();
    expect_all_texts_of_table<dbif::DieFields>();
    expect_all_texts_of_table<dbif::DeviceFields>();
    expect_all_texts_of_table<dbif::ConditionFields>();
    expect_all_texts_of_table<dbif::SetupFields>();
}
