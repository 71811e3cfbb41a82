#include "dbif/condition/id_list.h"

#include "dbif/connection/bulk_cursor.h"
#include "dbif/host/host_string.h"

#include <QUuid>

#include <algorithm>
#include <span>

namespace dbif {
namespace {
constexpr std::size_t kMostListedIds = 500;
} // namespace

SqlText id_sequence(const std::vector<int>& ids, std::size_t first, std::size_t count)
{
    return listed(std::span(ids).subspan(first, count));
}

IdList::IdList(DBIF_Connection connection, RecordTable table, const std::vector<int>& ids)
    : connection_(std::move(connection))
{
    if (ids.empty()) {
        return;
    }
    RecordIds records;
    if (ids.size() <= kMostListedIds) {
        records = {id_sequence(ids, 0, ids.size()), false};
    } else {
        temporaryTable_ = "selected_" + to_utf8(QUuid::createUuid().toString(QUuid::Id128));
        const SqlName name(temporaryTable_);
        connection_.execute(connection_.dialect().createIdTable(name), __FILE__, __LINE__);
        const auto inserter = connection_.session().inserter(name, {SqlName("id")});
        for (const int id : ids) {
            inserter->integer(id).endRow();
        }
        inserter->flush();
        records.sql << "SELECT id FROM " << name;
    }
    condition_ = ConditionTree::comparison({table, std::move(records)});
}

IdList::~IdList()
{
    if (!temporaryTable_.empty()) {
        connection_.executeWhenIdle(connection_.dialect().dropIdTable(SqlName(temporaryTable_)));
    }
}

std::size_t highest_id(DBIF_Connection& connection, RecordTable table)
{
    SqlText sql;
    sql << "SELECT max(id) FROM " << SqlName(table_info(table).name);
    BulkCursor cursor(connection, sql);
    return cursor.next() ? static_cast<std::size_t>(cursor.integer(0)) : 0;
}
} // namespace dbif
