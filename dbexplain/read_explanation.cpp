#include "dbexplain/read_explanation.h"

#include "dbapi/db_records.h"
#include "dbexplain/value_reading.h"
#include "dbif/connection/traced_connection.h"

#include <set>

namespace dbapi::tool {
namespace {
bool read(
    const DataRequest& request,
    dbif::RecordTable table,
    std::size_t* rows,
    std::string* errors)
{
    if (request.keywords.empty()) {
        std::set<int> ids;
        const bool isRead = dbapi_get_table_ids_from_query_for_tablename(
            request.connection, std::string(dbif::facts(table).name), &ids, request.query, errors);
        *rows = ids.size();
        return isRead;
    }
    std::vector<std::vector<std::string>> values;
    const bool isRead = read_values(request, false, &values, errors);
    *rows = values.empty() ? 0 : values.front().size();
    return isRead;
}
} // namespace

bool explain_read(
    const DBIF_Connection& connection,
    const DataRequest& request,
    dbif::RecordTable table,
    ReadExplanation* explanation,
    std::string* errors)
{
    dbif::ReadTrace trace(dbif::ReadTrace::Plans::Read);
    bool isRead = false;
    {
        const dbif::TracedConnection traced(connection, &trace);
        const dbif::TraceStep whole(&trace, "everything else");
        isRead = read(request, table, &explanation->rows, errors);
    }
    if (!isRead) {
        return false;
    }
    explanation->steps = trace.steps();
    explanation->statements = trace.statements();
    if (trace.pointDecisions() > 0) {
        explanation->points = trace.points();
    }
    for (const dbif::TracedStep& step : explanation->steps) {
        explanation->seconds += step.seconds;
    }
    return true;
}
} // namespace dbapi::tool
