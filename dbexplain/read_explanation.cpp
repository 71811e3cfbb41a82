#include "dbexplain/read_explanation.h"

#include "dbapi/db_fault.h"
#include "dbapi/db_records.h"
#include "dbexplain/value_reading.h"
#include "dbif/connection/traced_connection.h"

#include <set>

namespace dbapi {
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
            request.connection, std::string(dbif::table_info(table).name), &ids, request.query,
            errors);
        *rows = ids.size();
        return isRead;
    }
    std::vector<std::vector<std::string>> values;
    const bool isRead = read_values(request, false, &values, errors);
    *rows = values.empty() ? 0 : values.front().size();
    return isRead;
}
} // namespace

void explain_read(
    const DBIF_Connection& connection,
    const DataRequest& request,
    dbif::RecordTable table,
    ReadExplanation* explanation)
{
    dbif::ReadTrace trace(dbif::ReadTrace::Plans::Read);
    {
        const dbif::TracedConnection traced(connection, &trace);
        const dbif::TraceStep whole(&trace, "everything else");
        std::string errors;
        if (!read(request, table, &explanation->rows, &errors)) {
            Fault fault = argument_fault(errors);
            db_get_last_fault(&fault);
            throw FaultError(std::move(fault));
        }
    }
    explanation->steps = trace.steps();
    explanation->statements = trace.statements();
    if (trace.pointDecisions() > 0) {
        explanation->points = trace.points();
    }
    for (const dbif::TracedStep& step : explanation->steps) {
        explanation->seconds += step.seconds;
    }
}
} // namespace dbapi
