#pragma once

#include "dbapi/read/curve_grouping.h"

#include <string>
#include <vector>

namespace dbapi {
/// The curves that the last keyword draws over the first, for the records that the query string
/// selects (see db_values.h); it takes two keywords at least.
///
/// Over a key of setups, a curve is one sweep: points of one setup that agree in the keywords
/// between the two and in the setup's other inputs, in their stored order. Over a key of other
/// records, or a fixed column, there is a curve for each combination of those, whatever the record.
/// The parameters are the keywords between, the other inputs, and what tells setups apart: device,
/// position, temperature, name and id. A setup that sweeps another input than the first keyword is
/// left out when others do sweep it.
///
/// `curves` is emptied first and filled on success only. On failure, also when the last keyword
/// holds texts or one of the two matrices, `errors` receives the text, or the standard error stream
/// does when it is null. A database error is such a text, too; nothing is thrown.
bool db_get_curves(
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    CurveSet* curves,
    const std::string& query,
    std::string* errors);

/// All values of one keyword, one for each record that has it or, for a key of setups, each point.
struct ValueSample
{
    /// The meaning of the numbers, where the keyword holds texts or complex numbers.
    CurveAxis axis;
    std::vector<double> values;
    /// Tells whether there is a value for each point of a setup, and not for each record.
    bool isOfPoints = false;
};

/// The values of a keyword as numbers, in no order. `sample` is emptied first and filled on success
/// only; a keyword that holds matrices is refused. Otherwise as `db_get_curves`.
bool db_get_value_sample(
    const std::string& connectionName,
    const std::string& keyword,
    ValueSample* sample,
    const std::string& query,
    std::string* errors);
} // namespace dbapi
