#include "dbif/retrieval/result_source.h"

#include "dbif/host/exception.h"
#include "dbif/host/host_string.h"

namespace dbif {
namespace {
[[noreturn]] void throw_unknown(const QString& table, const QString& column)
{
    throw_error(
        "The measurement database has no column \"" + to_utf8(column) + "\" in a table \"" +
            to_utf8(table) + "\".",
        __FILE__, __LINE__);
}
} // namespace

ResultSource find_source(DBIF_Connection& connection, const QString& table, const QString& column)
{
    const std::string tableName = to_utf8(table);
    const std::string columnName = to_utf8(column);
    ResultSource source;
    if (const TableFacts* keyed = find_data_table(tableName)) {
        const KeyDefinition* definition =
            ColumnStore::of(connection).find(connection, keyed->table, columnName);
        if (definition == nullptr) {
            throw_unknown(table, column);
        }
        source.table = keyed->table;
        source.isKey = true;
        source.key = *definition;
        return source;
    }
    if (const TableFacts* fixed = find_table(tableName)) {
        if (const FixedColumnFacts* found = find_fixed_column(*fixed, columnName)) {
            source.table = fixed->table;
            source.fixed = *found;
            return source;
        }
    }
    throw_unknown(table, column);
}

TableSet tables_of(const std::vector<ResultSource>& sources)
{
    TableSet tables;
    for (const ResultSource& source : sources) {
        tables.add(source.table);
    }
    return tables;
}
} // namespace dbif
