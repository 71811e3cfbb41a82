#pragma once

#include "dbapi/words/fault.h"
#include "dbsuggest/known_keys.h"

#include <string>
#include <vector>

namespace dbapi {
/// The text that would be right in the place of a fault.
struct Advice
{
    /// The rule that was broken, in a sentence; empty where the keyword is just another one.
    std::string reason;
    /// The keyword, or table, in the place of the faulty piece, in advice without a reason.
    std::string keyword;
    /// The whole query string or keyword, ready to be copied: the library reads it without a fault
    /// and without a note (`notes_on_query`). Empty where none is known.
    std::string corrected;
};

/// What may have been meant, the likeliest first; empty when nothing can be told. `keys` are those
/// of the database that was asked, which is asked to check what is advised.
std::vector<Advice> advice_for(const Fault& fault, const KnownKeys& keys);
} // namespace dbapi
