#pragma once

#include "dbif/connection/column_store.h"
#include "dbif/connection/connection.h"
#include "dbif/engine/sql_text.h"
#include "dbif/query/query.h"
#include "dbif/schema/schema_names.h"
#include "dbif/schema/table_graph.h"

#include <vector>

namespace dbif {
/// Where the values of one result column come from: a fixed column, or a key.
struct ResultSource
{
    RecordTable table = RecordTable::CatalogEntry;
    bool isKey = false;
    FixedColumnFacts fixed;
    KeyDefinition key;

    [[nodiscard]] bool isIdOf(RecordTable records) const
    {
        return !isKey && table == records && fixed.name == "id";
    }

    [[nodiscard]] bool isOnPoints() const { return isKey && table == RecordTable::Setup; }
};

/// The source of a query's column; throws `DBIF_Exception` naming it when there is none.
ResultSource find_source(DBIF_Connection& connection, const QString& table, const QString& column);

TableSet tables_of(const std::vector<ResultSource>& sources);
} // namespace dbif
