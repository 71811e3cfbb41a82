#pragma once

#include "dbif/copy/record_content.h"

#include <functional>
#include <string>

namespace dbif {
/// The digest of a record's own columns: number, texts, identity, and, where `withTime`, time and
/// user. Links are left out, because ids differ between databases.
std::string record_digest(const RecordContent& record, bool withTime);

/// The digest of a record with its keys.
std::string keyed_digest(const RecordContent& record, bool withTime);

/// The digest of a key of a record.
std::string key_digest(const KeyValue& key);

/// The digest of what a setup says of one of its keys.
std::string sweep_digest(const SweepContent& sweep);

/// Brings a measurement's conditions, and the setups of each, into an order that does not depend on
/// ids, and returns its digest: of all that it holds, the payload by its checksums.
std::string order_and_digest(MeasurementContent* measurement);
} // namespace dbif
