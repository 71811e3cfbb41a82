#include "dbif/write/packed_sweep.h"

#include "dbif/connection/column_store.h"
#include "dbif/host/exception.h"
#include "dbif/sweep/sweep_packing.h"
#include "dbif/write/key_writer.h"

#include <set>

namespace dbif {
void check_sweep(const std::vector<SetupColumn>& sweep)
{
    std::set<std::string> keys;
    for (const SetupColumn& column : sweep) {
        const std::string what = "The key \"" + column.name + "\"";
        if (column.values.size() != sweep.front().values.size()) {
            throw_error("The columns of a setup have different lengths.", __FILE__, __LINE__);
        }
        if (!keys.insert(column_key(column.isInput ? "IN" : "", column.values.kind, column.name))
                 .second) {
            throw_error(what + " is given twice. Give it once.", __FILE__, __LINE__);
        }
        if (!is_finite(column.values)) {
            throw_error(
                what + " has an infinite value. Only finite numbers can be stored.", __FILE__,
                __LINE__);
        }
        check_text(column.header, "The header of the key \"" + column.name + "\"");
        for (const std::optional<std::string>& text : column.values.texts) {
            check_text(text.value_or(std::string()), "A value of the key \"" + column.name + "\"");
        }
    }
}

PackedColumn pack_column(const SetupColumn& column)
{
    return {column.name,          column.isInput,        column.header,      column.values.kind,
            column.values.size(), bounds(column.values), pack(column.values)};
}

std::vector<PackedColumn> pack_sweep(std::vector<SetupColumn> sweep)
{
    check_sweep(sweep);
    std::vector<PackedColumn> packed;
    packed.reserve(sweep.size());
    for (SetupColumn& column : sweep) {
        packed.push_back(pack_column(column));
        column = {};
    }
    return packed;
}
} // namespace dbif
