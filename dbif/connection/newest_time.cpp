#include "dbif/connection/newest_time.h"

#include "dbif/host/host_string.h"

namespace dbif {
QDateTime newest_time(DBIF_Connection& connection)
{
    static const QString kStatement =
        QStringLiteral("SELECT max(latest_time) FROM \n"
                       "(\n"
                       " SELECT max(modified_time) AS latest_time FROM catalog_entry\n"
                       " UNION ALL\n"
                       " SELECT max(modified_time) AS latest_time FROM device\n"
                       " UNION ALL\n"
                       " SELECT max(modified_time) AS latest_time FROM die\n"
                       " UNION ALL\n"
                       " SELECT max(modified_time) AS latest_time FROM measurement\n"
                       " UNION ALL\n"
                       " SELECT max(modified_time) AS latest_time FROM measurement_condition\n"
                       " UNION ALL\n"
                       " SELECT max(modified_time) AS latest_time FROM routine\n"
                       " UNION ALL\n"
                       " SELECT max(modified_time) AS latest_time FROM setup\n"
                       ") AS maxOfAllTimes\n");
    return connection.queryDateTime(kStatement, 0, __FILE__, __LINE__);
}

std::string stored_time(const QDateTime& time)
{
    return to_utf8(time.toUTC().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz")));
}
} // namespace dbif
