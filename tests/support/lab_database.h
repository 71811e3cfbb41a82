#pragma once

#include "tests/support/measurement_database.h"

#include <string>
#include <vector>

namespace test_support {
/// A small measurement database, stored as the connection "lab":
///
///     lot A: n1 (W 5u, L 0.15u) measured at 25 and 125 degrees, n2 (W 10u, vth) measured at 25
///     without a setup; lot B: d3 (no W), and lonely (W 0.13u, an ulp off), both not measured.
///
/// The measurement of n1 at 25 degrees also has a key vth, and its setup a point without ID.
class LabDatabase : public MeasurementDatabase
{
public:
    explicit LabDatabase(Engine engine);

    /// Adds a measurement of n1 like the one at 25 degrees, with one point: VG 7, ID 7u.
    void supersedeFirstSetup();
};

/// Stores a database as a connection.
void store_connection(const MeasurementDatabase& database, const std::string& name);

/// "a|b;c|d;": cells of a row joined by "|", each row ended by ";".
std::string joined(const std::vector<std::vector<std::string>>& columns);
std::string joined(const std::vector<std::string>& column);
} // namespace test_support
