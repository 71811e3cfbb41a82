#include "tools/dbapi/output/column_contents.h"

#include "dbsuggest/known_keys.h"

#include "tools/dbapi/output/data_output.h"
#include "tools/dbapi/output/stored_names.h"

namespace dbapi::tool {
void set_contents(const std::string& connection, const OutputOptions& options, DataTable* table)
{
    if (!is_typed(chosen_format(options))) {
        return;
    }
    KnownKeys keys(open_known(connection));
    for (DataColumn& column : table->columns) {
        const std::optional<dbif::ValueKind> kind = keys.kindOf(column.heading);
        if (kind.has_value()) {
            column.content = *kind == dbif::ValueKind::Double ? DataColumn::Content::Numbers
                                                              : DataColumn::Content::Texts;
        }
    }
}
} // namespace dbapi::tool
