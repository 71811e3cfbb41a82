#pragma once

#include "dbapi/call/selection.h"
#include "dbapi/key/key_resolution.h"
#include "dbif/condition/condition.h"
#include "dbif/connection/connection.h"
#include "dbif/retrieval/column_read.h"
#include "dbif/value/table_column.h"

#include <string>
#include <vector>

// From keywords to the read of their columns, for all calls that give values.

namespace dbapi {
/// The column that each keyword names, in their order, resolved in one step. Throws `FaultError`
/// for the first that names none, and `DBIF_Exception` on a database error.
std::vector<dbif::TableColumn> columns_for_keywords(
    DBIF_Connection& connection,
    const std::vector<std::string>& keywords,
    const DBIF_QueryCondition* condition,
    bool latestOnly);

/// A read of columns from selected records, in no order.
dbif::ColumnRead read_of(const Selection& selection, const std::vector<dbif::TableColumn>& columns);

/// The read that gives the values of one column, one for each record of the read that has a value.
/// `UNSORTED` leaves them as they are stored.
dbif::ColumnRead values_read(dbif::ColumnRead read, bool distinct, SortOrder order);

/// The read that gives the values of one keyword, one for each selected record that has a value:
/// sorted by them, unless `order` says otherwise. Throws `FaultError`; its text is empty for a
/// column that the table does not have.
dbif::ColumnRead read_of_keyword(
    const Selection& selection,
    const std::string& keyword,
    bool distinct,
    SortOrder order = ASCENDING);

/// A read of several keywords of a connection side by side, in no order; a row for each selected
/// record that has one of the values. Throws `FaultError`.
dbif::ColumnRead read_of_keywords(
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    const std::string& query);
} // namespace dbapi
