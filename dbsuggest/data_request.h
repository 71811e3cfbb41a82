#pragma once

#include <string>
#include <vector>

namespace dbapi {
/// The arguments that calls for data share, in UTF-8.
struct DataRequest
{
    /// The name of a stored connection.
    std::string connection;
    /// The keys whose values are asked for, in the order of the result.
    std::vector<std::string> keywords;
    /// Which records are meant; empty for all.
    std::string query;
};
} // namespace dbapi
