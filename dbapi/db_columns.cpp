#include "dbapi/db_columns.h"

#include "dbapi/call/connection_access.h"
#include "dbapi/call/public_call.h"
#include "dbapi/read/keyword_read.h"
#include "dbif/host/error_text.h"
#include "dbif/schema/table_graph.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <new>
#include <utility>

namespace dbapi {
namespace {
using Order = ColumnOptions::Order;
using Parts = dbif::ColumnStream::Parts;

constexpr std::size_t kAllRows = std::numeric_limits<std::size_t>::max();
/// The most rows that are read ahead of those that are given: two blocks of setups.
constexpr std::size_t kRowsAhead = 1U << 19U;

Fault fault_of(Fault::Kind kind, std::string text)
{
    return {kind, std::move(text), Fault::Where::Nowhere, {}, 0, 0, {}};
}

Fault cancelled_fault()
{
    return fault_of(Fault::Kind::Cancelled, "Error: The read was cancelled.\n");
}

void check_options(const ColumnOptions& options)
{
    if (options.limit < -1) {
        throw FaultError(argument_fault(
            "Error: The limit is " + std::to_string(options.limit) +
            ". It is a number of rows, or -1 for all.\n"));
    }
    if (options.distinct && (options.withIds || options.withPoints)) {
        throw FaultError(argument_fault(
            "Error: Distinct rows stand for several records, so that no ids stand beside them.\n"));
    }
    if (options.descending && options.order != Order::Sorted) {
        throw FaultError(argument_fault(
            "Error: Only sorted rows can be descending. Leave one of the two options out.\n"));
    }
}

/// The read of the keywords, in no order. One keyword alone fails as the calls for one keyword do,
/// without a word about the others.
dbif::ColumnRead read_of_asked(
    DBIF_Connection connection,
    const std::vector<std::string>& keywords,
    const std::string& query,
    const ColumnOptions& options)
{
    if (keywords.size() != 1) {
        return read_of_keywords(std::move(connection), keywords, query, options.allData);
    }
    Selection selection = select_on(std::move(connection), query);
    selection.latestOnly = selection.latestOnly && !options.allData;
    return read_of_keyword(selection, keywords.front(), false, UNSORTED);
}

/// The read with what the options add to it.
dbif::ColumnRead read_with_options(dbif::ColumnRead read, const ColumnOptions& options)
{
    const std::size_t asked = read.columns.size();
    read.withPoints = options.withPoints && read.isOnPoints();
    const dbif::RecordTable records = read.isOnPoints()
                                          ? dbif::RecordTable::Setup
                                          : dbif::meeting_table(dbif::tables_of(read.columns));
    const bool isById = options.order == Order::Stored && !read.isOnPoints() && !options.distinct;
    if (options.withIds || isById) {
        read.columns.push_back(dbif::TableColumn::id(records));
        read.uncounted = 1;
        read.hidden = options.withIds ? 0 : 1;
    }
    if (isById) {
        read.order = {{asked, true}};
    }
    for (std::size_t place = 0; options.order == Order::Sorted && place < asked; ++place) {
        read.order.push_back({place, !options.descending});
    }
    read.distinct = options.distinct;
    read.limit = options.limit;
    return read;
}

std::vector<ValueColumn>
described_columns(const dbif::ColumnRead& read, const std::vector<std::string>& keywords)
{
    std::vector<ValueColumn> columns;
    for (std::size_t i = 0; i < read.columns.size() - read.hidden; ++i) {
        columns.push_back(
            described_column(i < keywords.size() ? keywords[i] : "id", read.columns[i]));
    }
    if (read.withPoints) {
        ValueColumn& point = columns.emplace_back();
        point.keyword = "point";
        point.name = "point";
        point.table = "setup";
        point.type = ValueColumn::Type::Integer;
    }
    return columns;
}

ColumnTable table_of(const std::vector<ValueColumn>& columns, dbif::QueryResult result)
{
    ColumnTable table;
    table.rows = result.rows;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        table.columns.push_back(with_values_of(columns[i], &result.columns[i]));
    }
    return table;
}

std::size_t bytes_of_row(const std::vector<ValueColumn>& columns)
{
    // A text or a matrix counts as a small one.
    std::size_t bytes = 0;
    for (const ValueColumn& column : columns) {
        switch (column.type) {
        case ValueColumn::Type::Number:
        case ValueColumn::Type::Integer:
        case ValueColumn::Type::Time:
            bytes += sizeof(double);
            break;
        case ValueColumn::Type::Complex:
            bytes += sizeof(std::complex<double>);
            break;
        case ValueColumn::Type::Text:
            bytes += sizeof(std::string) + sizeof(std::int32_t);
            break;
        case ValueColumn::Type::Matrix:
            bytes += sizeof(dbif::ComplexMatrix) + 4 * sizeof(std::complex<double>);
            break;
        }
    }
    return bytes;
}

/// The bytes that a read needs at most: twice the rows where they are put into order.
std::size_t bytes_needed(std::size_t rows, std::size_t rowBytes, bool isOrdered)
{
    const std::size_t bytes = isOrdered ? 2 * rowBytes + sizeof(std::uint64_t) : rowBytes;
    return rows > kAllRows / bytes ? kAllRows : rows * bytes;
}

/// Tells the caller of a read how far it is, and ends it where the caller says so.
class ProgressReport
{
public:
    explicit ProgressReport(const ColumnOptions& options)
        : call_(options.progress),
          interrupted_(options.interrupted),
          allowedBytes_(options.mostBytes)
    {}

    /// Before the first row.
    void begin(
        dbif::ColumnStream* stream,
        const std::vector<ValueColumn>& columns,
        bool needsAllRows,
        std::size_t batchRows)
    {
        if (!call_ && allowedBytes_ == 0) {
            tell(0);
            return;
        }
        progress_.mostRows = stream->mostRows();
        const std::size_t batch =
            batchRows > kAllRows - kRowsAhead ? kAllRows : batchRows + kRowsAhead;
        progress_.mostBytes = bytes_needed(
            needsAllRows ? progress_.mostRows : std::min(batch, progress_.mostRows),
            bytes_of_row(columns), needsAllRows);
        if (allowedBytes_ > 0 && progress_.mostBytes > allowedBytes_) {
            throw FaultError(fault_of(
                Fault::Kind::Memory,
                "Error: The result has up to " + std::to_string(progress_.mostRows) +
                    " rows, for which about " + std::to_string(progress_.mostBytes) +
                    " bytes of memory are needed; " + std::to_string(allowedBytes_) +
                    " are allowed. Read it in batches and in stored order, or select less.\n"));
        }
        tell(0);
    }

    void tell(std::size_t rows)
    {
        progress_.rows = rows;
        if ((interrupted_ && interrupted_()) || (call_ && !call_(progress_))) {
            throw FaultError(cancelled_fault());
        }
    }

private:
    std::function<bool(const ReadProgress&)> call_;
    std::function<bool()> interrupted_;
    std::size_t allowedBytes_;
    ReadProgress progress_;
};

/// Runs a part of a read; what fails in it comes out as a `FaultError`.
template <typename Run>
auto with_faults(const Run& run)
{
    try {
        return run();
    } catch (const DBIF_Exception& exception) {
        throw FaultError(database_fault(exception));
    } catch (const std::bad_alloc&) {
        throw FaultError(fault_of(
            Fault::Kind::Memory, "Error: There is not enough memory for the result. Read it in "
                                 "batches and in stored order, or select less.\n"));
    }
}

/// A connection of the reader's own: what else the process does with the stored one is not in its
/// transaction.
DBIF_Connection connection_of_reader(const std::string& name)
{
    DbuiConnection record;
    if (!dbapi_get_connection_info(name, &record)) {
        throw FaultError(
            connection_fault("Error: Database connection name \"" + name + "\" was not found.\n"));
    }
    DBIF_Connection* opened = nullptr;
    std::string reason;
    if (!open_connection_of(record, &opened, &reason)) {
        throw FaultError(connection_fault(reason));
    }
    const std::unique_ptr<DBIF_Connection> connection(opened);
    return *connection;
}
} // namespace

bool db_get_columns(
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    ColumnTable* table,
    const std::string& query,
    const ColumnOptions& options,
    std::string* errors)
{
    *table = {};
    dbif::clear_error(errors);
    return run_call(connectionName, query, errors, [&] {
        check_options(options);
        *table = with_faults([&] {
            dbif::ColumnRead read = read_with_options(
                read_of_asked(connection_for_call(connectionName), keywords, query, options),
                options);
            const std::vector<ValueColumn> columns = described_columns(read, keywords);
            const bool isOrdered = read.needsAllRows();
            ProgressReport report(options);
            if (options.progress || options.interrupted) {
                read.progress = [&report](std::size_t rows) {
                    report.tell(rows);
                };
            }
            // In parts there is more to say about the progress.
            dbif::ColumnStream stream(std::move(read), options.progress ? Parts::Many : Parts::One);
            report.begin(&stream, columns, isOrdered, kAllRows);
            return table_of(columns, stream.next(kAllRows));
        });
    });
}

struct ColumnReader::Reading
{
    Reading(const ColumnOptions& options, std::size_t rows) : report(options), batchRows(rows) {}

    /// `next` without faults being kept.
    ColumnTable read()
    {
        if (isCancelled) {
            throw FaultError(cancelled_fault());
        }
        if (!hasBegun) {
            hasBegun = true;
            report.begin(stream.get(), columns, needsAllRows, batchRows);
        }
        return stream == nullptr ? ColumnTable{columns, 0}
                                 : table_of(columns, stream->next(batchRows));
    }

    ProgressReport report;
    std::size_t batchRows;
    bool needsAllRows = false;
    bool hasBegun = false;
    std::atomic<bool> isCancelled = false;
    std::vector<ValueColumn> columns;
    std::unique_ptr<dbif::ColumnStream> stream;
    std::optional<Fault> fault;
};

ColumnReader::ColumnReader(std::unique_ptr<Reading> reading) : reading_(std::move(reading)) {}

ColumnReader::~ColumnReader() = default;

const std::vector<ValueColumn>& ColumnReader::columns() const
{
    return reading_->columns;
}

bool ColumnReader::next(ColumnTable* batch, std::string* errors)
{
    *batch = {};
    if (!reading_->fault.has_value()) {
        try {
            *batch = with_faults([this] { return reading_->read(); });
            if (batch->rows < reading_->batchRows) {
                // Nothing is left: others need not wait until the reader is deleted.
                reading_->stream.reset();
            }
        } catch (const FaultError& error) {
            reading_->fault = error.fault();
            reading_->stream.reset();
        } catch (...) {
            // The caller's own `progress` threw it.
            reading_->fault = cancelled_fault();
            reading_->stream.reset();
            throw;
        }
    }
    if (reading_->fault.has_value() && errors != nullptr) {
        *errors = reading_->fault->text;
    }
    return !reading_->fault.has_value();
}

const Fault* ColumnReader::fault() const
{
    return reading_->fault.has_value() ? &*reading_->fault : nullptr;
}

void ColumnReader::cancel() noexcept
{
    reading_->isCancelled = true;
}

bool db_open_column_reader(
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    std::size_t batchRows,
    std::unique_ptr<ColumnReader>* reader,
    const std::string& query,
    const ColumnOptions& options,
    std::string* errors)
{
    reader->reset();
    dbif::clear_error(errors);
    const DbapiCacheHelper call;
    try {
        check_options(options);
        if (batchRows == 0) {
            throw FaultError(argument_fault("Error: A batch has a row at least.\n"));
        }
        with_faults([&] {
            dbif::ColumnRead read = read_with_options(
                read_of_asked(connection_of_reader(connectionName), keywords, query, options),
                options);
            auto reading = std::make_unique<ColumnReader::Reading>(options, batchRows);
            reading->columns = described_columns(read, keywords);
            reading->needsAllRows = read.needsAllRows();
            read.progress = [state = reading.get()](std::size_t rows) {
                if (state->isCancelled) {
                    throw FaultError(cancelled_fault());
                }
                state->report.tell(rows);
            };
            reading->stream = std::make_unique<dbif::ColumnStream>(std::move(read), Parts::Many);
            reader->reset(new ColumnReader(std::move(reading)));
        });
        return true;
    } catch (const FaultError& error) {
        return fail_call(error.fault(), errors);
    }
}
} // namespace dbapi
