#include "dbif/copy/copy_mark.h"

#include "dbif/connection/bulk_cursor.h"
#include "dbif/write/record_identity.h"

namespace dbif {
namespace {
std::string mark_identity()
{
    return RecordIdentity().text("catalog_entry").text("mark of copies").digest();
}
} // namespace

int find_copy_mark(DBIF_Connection& connection)
{
    SqlText sql;
    sql << "SELECT id FROM catalog_entry WHERE identity = " << SqlBlob(mark_identity());
    BulkCursor cursor(connection, sql);
    return cursor.next() ? cursor.integer(0) : 0;
}

int stamp_copy_mark(RowStore& rows, const std::string& stamp)
{
    const int id = find_copy_mark(rows.connection());
    if (id == 0) {
        RecordRow mark;
        mark.time = stamp;
        mark.identity = mark_identity();
        return insert_record(rows, table_info(RecordTable::CatalogEntry), mark);
    }
    set_modified_time(rows.connection(), "catalog_entry", id, stamp);
    return id;
}
} // namespace dbif
