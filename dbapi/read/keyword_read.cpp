#include "dbapi/read/keyword_read.h"

#include "dbapi/call/call_cache.h"
#include "dbapi/words/database_fault.h"
#include "dbif/condition/column_condition.h"
#include "dbif/engine/read_trace.h"

#include <set>
#include <utility>

namespace dbapi {
namespace {
/// Resolves the keyword, through the cache where the answer does not depend on the condition.
Resolution resolve(const Selection& selection, const std::string& keyword)
{
    DBIF_Connection connection = selection.connection;
    const dbif::TraceStep step(connection.trace(), "resolve the keywords");
    DbapiCache* kept = cache();
    const bool isCached =
        kept != nullptr && kept->is_validCache() && *kept->connection == connection;
    if (isCached) {
        const auto known = kept->resolvedKeywords.find(keyword);
        if (known != kept->resolvedKeywords.end()) {
            return known->second;
        }
    }
    Resolution resolution =
        resolve_keyword(connection, keyword, selection.condition.get(), selection.latestOnly);
    if (isCached && resolution.isFound() && resolution.holdsAlways()) {
        kept->resolvedKeywords.emplace(keyword, resolution);
    }
    return resolution;
}

/// A name of a catalogue entry's fixed column always means that column, also where a keyword says
/// that it means a key of the same name.
dbif::TableColumn column_of_values(const dbif::TableColumn& resolved)
{
    const dbif::RecordTable table = resolved.table();
    const dbif::FixedColumnInfo* fixed =
        resolved.isKey() && table == dbif::RecordTable::CatalogEntry
            ? dbif::find_fixed_column(dbif::table_info(table), resolved.name())
            : nullptr;
    return fixed == nullptr ? resolved : dbif::TableColumn(table, *fixed);
}

Fault no_column(const std::string& keyword, std::string text)
{
    return {Fault::Kind::UnknownKey,
            std::move(text),
            Fault::Where::Keyword,
            keyword,
            0,
            keyword.size(),
            {}};
}
} // namespace

std::vector<dbif::TableColumn> columns_for_keywords(
    DBIF_Connection& connection,
    const std::vector<std::string>& keywords,
    const DBIF_QueryCondition* condition,
    bool latestOnly)
{
    const dbif::TraceStep step(connection.trace(), "resolve the keywords");
    const Resolutions resolutions = resolve_keywords(
        connection, std::set<std::string>(keywords.begin(), keywords.end()), condition, latestOnly);
    std::vector<dbif::TableColumn> columns;
    for (const std::string& keyword : keywords) {
        const Resolution& resolution = resolutions.at(keyword);
        if (!resolution.isUnique()) {
            throw FaultError(resolution.fault);
        }
        if (!resolution.isFound()) {
            throw FaultError(no_column(keyword, resolution_failure(keyword, {})));
        }
        columns.push_back(resolution.column());
    }
    return columns;
}

dbif::ColumnRead read_of(const Selection& selection, const std::vector<dbif::TableColumn>& columns)
{
    dbif::ColumnRead read(selection.connection, columns);
    read.condition = selection.condition->tree(false);
    read.latestOnly = selection.latestOnly;
    return read;
}

dbif::ColumnRead values_read(dbif::ColumnRead read, bool distinct, SortOrder order)
{
    const dbif::TableColumn& column = read.columns.front();
    if (!column.isKey()) {
        // The rows that are read for a key have a value anyway.
        const DBIF_SingleColumnCondition present(column, NOT_NULL, "0");
        read.condition = dbif::ConditionTree::joined(
            dbif::ConditionTree::Kind::And, {present.tree(false), read.condition});
    }
    read.distinct = distinct;
    if (order != UNSORTED) {
        read.order = {{0, order == ASCENDING}};
    }
    return read;
}

dbif::ColumnRead read_of_keyword(
    const Selection& selection,
    const std::string& keyword,
    bool distinct,
    SortOrder order)
{
    const Resolution resolution = resolve(selection, keyword);
    if (!resolution.isFound()) {
        throw FaultError(resolution.isUnique() ? no_column(keyword, {}) : resolution.fault);
    }
    const dbif::TableColumn column = column_of_values(resolution.column());
    return values_read(read_of(selection, {column}), distinct, order);
}

dbif::ColumnRead read_of_keywords(
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    const std::string& query)
{
    DBIF_Connection connection = connection_for_call(connectionName);
    if (keywords.empty()) {
        throw FaultError(
            argument_fault("Error: No keywords provided to return database values for.\n"));
    }
    const std::string heading =
        "Error: Failed to resolve keywords to valid database unique key names. \n"
        "Error(s) reported: \n";
    try {
        const Selection selection = select_on(connection, query);
        return read_of(
            selection, columns_for_keywords(
                           connection, keywords, selection.condition.get(), selection.latestOnly));
    } catch (const FaultError& error) {
        throw FaultError(error.fault().under(heading));
    } catch (const DBIF_Exception& exception) {
        throw FaultError(database_fault(exception).under(heading));
    }
}
} // namespace dbapi
