#pragma once

#include "dbexplain/explanation.h"
#include "dbif/connection/connection.h"

#include <set>
#include <string>
#include <vector>

namespace dbapi {
/// The key that each keyword stands for: the asked ones, which are resolved under the query's
/// condition, then the others of the query's terms. A keyword that stands for nothing, as one alone
/// in braces may, is left out.
std::vector<KeyExplanation> explain_keys(
    DBIF_Connection& connection,
    const std::vector<std::string>& asked,
    const std::set<std::string>& compared,
    const DBIF_QueryCondition& condition,
    bool latestOnly);
} // namespace dbapi
