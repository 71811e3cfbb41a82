#include "tools/dbapi/output/value_output.h"

#include "tools/dbapi/output/call_failure.h"
#include "tools/dbapi/output/note_output.h"

#include <memory>
#include <utility>

namespace dbapi::tool {
namespace {
using Order = ColumnOptions::Order;

/// The rows of a batch: enough for all processors to write, and few beside what is read ahead.
constexpr std::size_t kBatchRows = 1U << 18U;

/// All rows are sorted or compared before the first is known, so that batches would save nothing.
std::size_t write_at_once(
    const DataRequest& request,
    const ColumnOptions& options,
    const DataHeading& heading,
    const OutputOptions& output)
{
    ColumnTable table;
    std::string errors;
    if (!db_get_columns(
            request.connection, request.keywords, &table, request.query, options, &errors)) {
        throw_call_failure(request, errors);
    }
    tell_notes(request.query);
    std::vector<ValueColumn> columns;
    for (const ValueColumn& column : table.columns) {
        ValueColumn& described = columns.emplace_back();
        described.keyword = column.keyword;
        described.type = column.type;
    }
    bool isGiven = false;
    const auto give = [&](ColumnTable* batch) {
        *batch = std::move(table);
        return !std::exchange(isGiven, true);
    };
    return write_batches(heading, columns, give, output);
}

std::size_t write_as_read(
    const DataRequest& request,
    const ColumnOptions& options,
    const DataHeading& heading,
    const OutputOptions& output)
{
    std::unique_ptr<ColumnReader> reader;
    std::string errors;
    if (!db_open_column_reader(
            request.connection, request.keywords, kBatchRows, &reader, request.query, options,
            &errors)) {
        throw_call_failure(request, errors);
    }
    tell_notes(request.query);
    const auto read = [&](ColumnTable* batch) {
        if (!reader->next(batch, &errors)) {
            throw_call_failure(request, *reader->fault());
        }
        return batch->rows > 0;
    };
    return write_batches(heading, reader->columns(), read, output);
}
} // namespace

std::size_t
write_values(const DataRequest& request, const ColumnOptions& order, const OutputOptions& output)
{
    ColumnOptions options = order;
    if (output.limit.has_value()) {
        options.limit = static_cast<long long>(*output.limit);
    }
    if (output.isCount && !options.distinct) {
        options.order = Order::None;
        options.descending = false;
    }
    const DataHeading heading{{{"connection", request.connection}, {"query", request.query}}, ""};
    const bool isAtOnce =
        options.order == Order::Sorted || options.distinct || needs_all_rows(heading, output);
    return isAtOnce ? write_at_once(request, options, heading, output)
                    : write_as_read(request, options, heading, output);
}
} // namespace dbapi::tool
