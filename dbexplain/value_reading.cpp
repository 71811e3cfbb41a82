#include "dbexplain/value_reading.h"

#include "dbapi/db_values.h"

namespace dbapi {
bool read_values(
    const DataRequest& request,
    bool isDistinct,
    std::vector<std::vector<std::string>>* values,
    std::string* errors)
{
    if (request.keywords.size() > 1) {
        const auto call =
            isDistinct ? db_get_distinct_values_for_keywords : db_get_values_for_keywords;
        return call(request.connection, request.keywords, values, request.query, errors);
    }
    const auto call =
        isDistinct ? db_get_distinct_values_for_keyword_as_text : db_get_values_for_keyword_as_text;
    values->resize(1);
    return call(
        request.connection, request.keywords.front(), &values->front(), request.query, errors);
}
} // namespace dbapi
