#pragma once

#include "dbsuggest/data_request.h"

#include <string>
#include <vector>

namespace dbapi {
/// Reads the values of the request's keywords, one list per keyword. Several keywords stand side by
/// side; one alone leaves out the records that have no value. Each value or row once when
/// `isDistinct`. False on failure, with the library's error text, which may be empty.
bool read_values(
    const DataRequest& request,
    bool isDistinct,
    std::vector<std::vector<std::string>>* values,
    std::string* errors);
} // namespace dbapi
