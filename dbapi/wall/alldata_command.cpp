#include "dbapi/wall/alldata_command.h"

#include "dbapi/words/query_command.h"
#include "dbif/host/error_text.h"

bool dbapi_found_and_removed_alldata_condition_from_query_str(
    const std::string& query,
    std::string* rest,
    std::vector<std::string>* commands,
    std::string* errors)
{
    // `query` and `rest` may be the same string.
    std::string behind;
    bool isAllData = false;
    dbif::clear_error(errors);
    try {
        const dbapi::CommandedQuery split = dbapi::split_query_command(query);
        isAllData = split.isAllData;
        behind = split.isAllData ? split.rest : std::string_view();
    } catch (const dbapi::FaultError& error) {
        dbif::deliver_error(errors, error.fault().text);
    }
    *rest = std::move(behind);
    if (commands != nullptr) {
        commands->assign(isAllData ? 1 : 0, "ALLDATA");
    }
    return isAllData;
}
