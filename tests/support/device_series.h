#pragma once

#include "dbif/connection/connection.h"

#include <cstddef>

namespace test_support {
/// Devices on dies of 50 lots, each with ten keys and one measurement; every fifth measurement has
/// a condition with a setup of few points.
inline constexpr std::size_t kSeriesDevices = 100'000;

/// Writes them as an import does: in one transaction through the library's writer. The records of
/// a table have the ids from 1 in this order:
///
/// - device n: name "dev<n>", BATCH "B<n / 100>", SERIAL "SN<n>", VTH different for each, W, L and
///   NF, MODEL and PROCESS with few values;
/// - measurement n, of device n: a temperature of three, of one in a thousand 77, GAIN different
///   for each, RUN "R<n / 100>";
/// - condition n, of measurement 5n: VD with a hundred values, MODE with two;
/// - setup n, of condition n: name "sweep<n % 1000>", the keys VG and ID.
void write_device_series(const DBIF_Connection& connection);
} // namespace test_support
