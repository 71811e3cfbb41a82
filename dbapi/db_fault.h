#pragma once

#include "dbapi/words/fault.h"

namespace dbapi {
/// Why the last public data call of the process failed: what kind of fault it was, its place in the
/// query string or keyword that the call was given, and, where several keys were meant, these keys.
/// `fault->text` is what the call gave in its error text.
///
/// False, with `fault` unchanged, when that call succeeded, when no call was made yet, and when it
/// failed without a fault of its own (an exception passed out of it). The calls that count are
/// those of db_values.h, db_records.h, db_listing.h, db_setup.h and db_curves.h. `fault` must not
/// be null; what it receives is a copy.
bool db_get_last_fault(Fault* fault);
} // namespace dbapi
