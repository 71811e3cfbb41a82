#pragma once

#include "dbapi/read/value_column.h"
#include "dbapi/words/fault.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace dbapi {
// The values of keywords as columns of numbers, complex numbers, matrices, texts, ids and times,
// for the records that a query string selects (see db_values.h). A row is one record of the lowest
// table among the keywords with its parents or, when one of them is a key of setups, one point. A
// row without any value is left out.

/// The state of a read that goes on.
struct ReadProgress
{
    std::size_t rows = 0;
    /// The number of rows that there can be at most: conditions on points, and points without a
    /// value, make them fewer.
    std::size_t mostRows = 0;
    /// About how many bytes the read holds at most: all its rows where they are sorted, otherwise
    /// those of a batch and of the setups that are being read.
    std::size_t mostBytes = 0;
};

struct ColumnOptions
{
    enum class Order {
        Sorted, ///< ascending by all keywords in their order, no value first, as db_values.h sorts
        Stored, ///< by the ids of the records that are rows; points as they stand in their setup
        None    ///< as it comes fastest
    };

    Order order = Order::Sorted;
    /// Sorted rows come the other way round: the largest first, no value last. Only with `Sorted`.
    bool descending = false;
    /// Each row once. Not together with `withIds` and `withPoints`.
    bool distinct = false;
    /// The largest number of rows; -1 for all.
    long long limit = -1;
    /// Superseded measurements and setups count too, as with "ALLDATA:" in the query string.
    bool allData = false;
    /// A last column with the id of each row's record; of a point's setup.
    bool withIds = false;
    /// A column "point" behind all others with the place of each row's point in its setup, from 1
    /// up: the order in which it was measured. None where rows are records.
    bool withPoints = false;
    /// Refuses, before a row is read, what may need more bytes than this; 0 refuses nothing.
    std::size_t mostBytes = 0;
    /// Called before the first row and then from time to time, in the thread that made the call;
    /// false cancels the read. Costs a statement that counts the rows. What it throws passes to the
    /// caller.
    std::function<bool(const ReadProgress&)> progress;
    /// Asked from time to time, in the thread that made the call; true cancels the read. Costs
    /// nothing beside the calls, and changes nothing in how the read is made. What it throws passes
    /// to the caller.
    std::function<bool()> interrupted;
};

/// Reads all rows. `table` is emptied first and filled on success only. On failure `errors`
/// receives the text, or the standard error stream does when it is null, and `db_get_last_fault`
/// tells the fault: of the kind `Cancelled` when `progress` or `interrupted` ended
/// the read, `Memory` when there is
/// too little memory, and database errors too are faults here.
bool db_get_columns(
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    ColumnTable* table,
    const std::string& query,
    const ColumnOptions& options,
    std::string* errors);

/// Gives the rows of one read batch by batch. What it holds in memory does not grow with the number
/// of rows, unless they are sorted or distinct: these are read and held as a whole by the first
/// `next`.
///
/// The reader has a connection of its own, and one read transaction from its first statement until
/// its end: what others write meanwhile it does not see, and stored connections may change or go
/// away. As long as it is there, an SQLite file's log is not emptied, and a server keeps old
/// versions of what changes; so a reader is to be read to its end, or deleted, and not to be kept.
/// It may be used in any thread, by one at a time.
class ColumnReader
{
public:
    ColumnReader(const ColumnReader&) = delete;
    ColumnReader& operator=(const ColumnReader&) = delete;
    ~ColumnReader();

    /// The columns, with what their keywords stand for and without rows.
    [[nodiscard]] const std::vector<ValueColumn>& columns() const;

    /// The next rows: as many as a batch has, fewer in the last one, and none after that. False
    /// when the read failed: the database was closed, the file replaced, the read cancelled. Then
    /// `batch` is empty and `errors` (when it is not null) receives the text, now and from every
    /// later call.
    bool next(ColumnTable* batch, std::string* errors);

    /// Why `next` gave false; null as long as it did not.
    [[nodiscard]] const Fault* fault() const;

    /// Ends the read: `next` gives false as soon as it notices. May be called in any thread, while
    /// `next` runs.
    void cancel() noexcept;

private:
    friend bool db_open_column_reader(
        const std::string& connectionName,
        const std::vector<std::string>& keywords,
        std::size_t batchRows,
        std::unique_ptr<ColumnReader>* reader,
        const std::string& query,
        const ColumnOptions& options,
        std::string* errors);

    struct Reading;
    explicit ColumnReader(std::unique_ptr<Reading> reading);
    std::unique_ptr<Reading> reading_;
};

/// Begins a read in batches of so many rows; no row is read yet. `reader` is null on failure, and
/// errors are given as by `db_get_columns`.
bool db_open_column_reader(
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    std::size_t batchRows,
    std::unique_ptr<ColumnReader>* reader,
    const std::string& query,
    const ColumnOptions& options,
    std::string* errors);
} // namespace dbapi
