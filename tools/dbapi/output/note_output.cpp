#include "tools/dbapi/output/note_output.h"

#include "dbsuggest/fault_lines.h"
#include "dbsuggest/query_notes.h"

#include "tools/dbapi/output/terminal.h"

namespace dbapi::tool {
void tell_notes(const std::string& query)
{
    for (const QueryNote& note : notes_on_query(query)) {
        tell_error("note: " + note_lines(query, note));
    }
}
} // namespace dbapi::tool
