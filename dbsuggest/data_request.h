#pragma once

#include <string>
#include <vector>

namespace dbapi {
/// What a data call is given.
struct DataRequest
{
    std::string connection;
    std::vector<std::string> keywords;
    std::string query;
};
} // namespace dbapi
