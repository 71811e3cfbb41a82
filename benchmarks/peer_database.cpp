#include "benchmarks/peer_database.h"

namespace bench {
void PeerDatabase::readNewestTime()
{
    texts(R"(
SELECT max(latest) FROM (SELECT max(modified_time) AS latest FROM catalog_entry
    UNION ALL SELECT max(modified_time) FROM routine
    UNION ALL SELECT max(modified_time) FROM die
    UNION ALL SELECT max(modified_time) FROM device
    UNION ALL SELECT max(modified_time) FROM measurement
    UNION ALL SELECT max(modified_time) FROM measurement_condition
    UNION ALL SELECT max(modified_time) FROM setup) AS times)");
}
} // namespace bench
