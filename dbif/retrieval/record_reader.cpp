#include "dbif/retrieval/record_reader.h"

#include "dbif/condition/id_list.h"
#include "dbif/connection/bulk_cursor.h"
#include "dbif/connection/managed_connection.h"
#include "dbif/engine/read_trace.h"
#include "dbif/host/background_task.h"
#include "dbif/retrieval/rows_by_id.h"
#include "dbif/value/complex_values.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>
#include <map>
#include <utility>

namespace dbif {
namespace {
using Kind = ResultColumn::Kind;

/// The number of ids in one IN list.
constexpr std::size_t kIdsPerStatement = 500;
/// One look-up by id costs about as much as passing over this many values of a key.
constexpr std::size_t kPassedPerLookUp = 8;

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

void append_cell(BulkCursor& cursor, int at, ResultColumn* column)
{
    if (column->kind == Kind::Text) {
        column->texts.emplace_back(cursor.text(at));
    } else if (column->kind == Kind::Complex) {
        column->complexNumbers.push_back(read_complex(cursor.text(at)).value_or(kNoComplex));
    } else {
        column->numbers.push_back(cursor.number(at));
    }
}

/// The column of a data table that holds the key's values.
SqlText value_column(const KeyDefinition& definition)
{
    return definition.kind == ValueKind::Double ? SqlText("number") : SqlText("text");
}

ResultColumn empty_column(Kind kind, std::size_t rows)
{
    ResultColumn column;
    column.kind = kind;
    if (kind == Kind::Text) {
        column.texts.resize(rows);
    } else if (kind == Kind::Complex) {
        column.complexNumbers.resize(rows, kNoComplex);
    } else {
        column.numbers.resize(rows, kNoNumber);
    }
    return column;
}

/// Puts values beside the rows of their records. They come in any order of rows, and each step to
/// another row waits for memory, so that many values are placed while the next are read.
template <typename T>
class ValuePlacer
{
public:
    ValuePlacer(const RowsById& rows, std::vector<T>* values, RowMask* hasValue)
        : rows_(rows), values_(values), hasValue_(hasValue)
    {}

    void add(int id, T value)
    {
        Batch& batch = batches_.at(current_);
        batch.emplace_back(id, std::move(value));
        if (batch.size() == kBatchValues) {
            placing_.begin([this, &batch] { place(&batch); });
            current_ = 1 - current_;
        }
    }

    void finish()
    {
        placing_.finish();
        place(&batches_.at(current_));
    }

private:
    using Batch = std::vector<std::pair<int, T>>;

    static constexpr std::size_t kBatchValues = 1U << 16U;

    void place(Batch* batch)
    {
        for (std::pair<int, T>& entry : *batch) {
            rows_.forRows(entry.first, [&](std::uint32_t row) {
                (*hasValue_)[row] = 1;
                (*values_)[row] = entry.second;
            });
        }
        batch->clear();
    }

    const RowsById& rows_;
    std::vector<T>* values_;
    RowMask* hasValue_;
    std::array<Batch, 2> batches_;
    std::size_t current_ = 0;
    /// Ends before the batches do.
    BackgroundTask placing_;
};

/// Puts the values of a statement of ids and values beside the rows; `read` gives the value of the
/// cursor's row.
template <typename T, typename Read>
void place_values(
    BulkCursor& cursor,
    const RowsById& rows,
    const Read& read,
    std::vector<T>* values,
    RowMask* hasValue)
{
    ValuePlacer<T> placer(rows, values, hasValue);
    while (cursor.next()) {
        if (!cursor.isNull(1)) {
            placer.add(cursor.integer(0), read());
        }
    }
    placer.finish();
}

/// The same for numbers, which say themselves whether they are a value: each question to a cursor
/// costs a good part of a step.
void place_numbers(
    BulkCursor& cursor,
    const RowsById& rows,
    std::vector<double>* numbers,
    RowMask* hasValue)
{
    ValuePlacer<double> placer(rows, numbers, hasValue);
    while (cursor.next()) {
        const double number = cursor.number(1);
        if (!std::isnan(number)) {
            placer.add(cursor.integer(0), number);
        }
    }
    placer.finish();
}

void place_values(
    DBIF_Connection& connection,
    const SqlText& sql,
    const RowsById& rows,
    ResultColumn* column,
    RowMask* hasValue)
{
    BulkCursor cursor(connection, sql);
    if (column->kind == Kind::Text) {
        const auto text = [&] {
            return std::string(cursor.text(1));
        };
        place_values(cursor, rows, text, &column->texts, hasValue);
    } else if (column->kind == Kind::Complex) {
        const auto number = [&] {
            return read_complex(cursor.text(1)).value_or(kNoComplex);
        };
        place_values(cursor, rows, number, &column->complexNumbers, hasValue);
    } else {
        place_numbers(cursor, rows, &column->numbers, hasValue);
    }
}
} // namespace

QueryResult read_cells(
    DBIF_Connection& connection,
    const SqlText& sql,
    const std::vector<Kind>& kinds,
    const std::vector<bool>& isCounted,
    RowMask* hasValue)
{
    QueryResult result;
    result.columns.resize(kinds.size());
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        result.columns[i].kind = kinds[i];
    }
    BulkCursor cursor(connection, sql);
    while (cursor.next()) {
        bool isMarked = false;
        for (std::size_t i = 0; i < kinds.size(); ++i) {
            append_cell(cursor, static_cast<int>(i), &result.columns[i]);
            isMarked = isMarked || (isCounted[i] && !cursor.isNull(static_cast<int>(i)));
        }
        hasValue->push_back(isMarked ? 1 : 0);
        ++result.rows;
    }
    return result;
}

Kind key_column_kind(ValueKind kind)
{
    switch (kind) {
    case ValueKind::Double:
        return Kind::Double;
    case ValueKind::Complex:
        return Kind::Complex;
    case ValueKind::Matrix:
    case ValueKind::Text:
        break;
    }
    return Kind::Text;
}

ResultColumn read_key_values(
    DBIF_Connection& connection,
    RecordTable table,
    const KeyDefinition& definition,
    const SqlText& idSelect)
{
    const TableInfo& f = table_info(table);
    const SqlText value = value_column(definition);
    SqlText sql;
    sql << "SELECT " << value << " FROM " << SqlName(f.dataTable()) << " WHERE "
        << SqlName(f.columnLink()) << " = " << definition.id;
    if (!idSelect.isEmpty()) {
        // The sign keeps the planner on the records: without statistics SQLite would rather pass
        // over all that have a value of the key.
        sql << " AND +" << value << " IS NOT NULL AND " << SqlName(f.linkColumn()) << " IN ("
            << idSelect << ")";
    } else {
        // An index yields them in this order.
        sql << " AND " << value << " IS NOT NULL ORDER BY " << value;
    }
    ResultColumn column = empty_column(key_column_kind(definition.kind), 0);
    BulkCursor cursor(connection, sql);
    if (column.kind == Kind::Double) {
        while (cursor.next()) {
            column.numbers.push_back(cursor.number(0));
        }
    } else {
        while (cursor.next()) {
            append_cell(cursor, 0, &column);
        }
    }
    return column;
}

namespace {
/// The number of ids there could be from the first to the last.
std::size_t width_of(const std::vector<int>& ids)
{
    return ids.empty() ? 0 : static_cast<std::size_t>(ids.back() - ids.front()) + 1;
}

/// Reads the values of one key for the rows. Few records are looked up by id, many by one pass over
/// the key; no row is joined.
ResultColumn read_key_beside(
    DBIF_Connection& connection,
    RecordTable table,
    const KeyDefinition& definition,
    const RowsById& rows,
    RowMask* hasValue)
{
    const TraceStep step(connection.inner().trace(), "read the keys of the records");
    const TableInfo& f = table_info(table);
    ResultColumn column = empty_column(key_column_kind(definition.kind), hasValue->size());
    const std::vector<int>& ids = rows.distinctIds();
    SqlText sql;
    sql << "SELECT " << SqlName(f.linkColumn()) << ", " << value_column(definition) << " FROM "
        << SqlName(f.dataTable()) << " WHERE " << SqlName(f.columnLink()) << " = " << definition.id;
    const std::size_t highest = ids.size() > kIdsPerStatement ? highest_id(connection, table) : 0;
    if (ids.size() > kIdsPerStatement &&
        kPassedPerLookUp * ids.size() > std::min(highest, width_of(ids))) {
        if (width_of(ids) < highest / 2) {
            sql << " AND " << SqlName(f.linkColumn()) << " BETWEEN " << ids.front() << " AND "
                << ids.back();
        }
        const SqlText value = value_column(definition);
        if (!connection.inner().dialect().whereHasValue(SqlName(value.utf8())).isEmpty()) {
            // Texts are then read from their own index, which holds all that is asked.
            sql << " AND " << value << " IS NOT NULL";
        }
        place_values(connection, sql, rows, &column, hasValue);
        return column;
    }
    for (std::size_t first = 0; first < ids.size(); first += kIdsPerStatement) {
        SqlText some = sql;
        some << " AND " << SqlName(f.linkColumn()) << " IN ("
             << id_sequence(ids, first, std::min(kIdsPerStatement, ids.size() - first)) << ")";
        place_values(connection, some, rows, &column, hasValue);
    }
    return column;
}

Kind fixed_column_kind(const FixedColumnInfo& fixed)
{
    switch (fixed.kind) {
    case FixedKind::Id:
        return Kind::Integer;
    case FixedKind::Number:
        return Kind::Double;
    case FixedKind::Text:
        break;
    }
    return Kind::Text;
}
} // namespace

namespace {
std::size_t record_count(DBIF_Connection& connection, RecordTable table)
{
    SqlText sql = "SELECT COUNT(*) FROM ";
    BulkCursor cursor(connection, sql << SqlName(table_info(table).name));
    return static_cast<std::size_t>(cursor.next() ? cursor.integer(0) : 0);
}
} // namespace

std::optional<QueryResult> read_keys_of_all(
    DBIF_Connection& connection,
    RecordTable table,
    const std::vector<TableColumn>& keys,
    RowMask* hasValue)
{
    const std::size_t records = record_count(connection, table);
    const std::size_t highest = records > kIdsPerStatement ? highest_id(connection, table) : 0;
    if (highest == 0 || highest > 2 * records) {
        return std::nullopt;
    }
    QueryResult result;
    result.rows = highest;
    hasValue->assign(highest, 0);
    const RowsById rows = RowsById::consecutive(highest);
    for (const TableColumn& key : keys) {
        result.columns.push_back(read_key_beside(connection, table, key.key(), rows, hasValue));
    }
    return result;
}

RecordCells::RecordCells(const std::vector<TableColumn>& sources, std::size_t uncounted)
    : sources_(sources), counted_(sources.size() - uncounted)
{
    std::map<RecordTable, std::size_t> idCells;
    for (const TableColumn& source : sources) {
        if (!source.isKey()) {
            cells_.push_back(
                add(source.table(), source.fixed().name, fixed_column_kind(source.fixed())));
            continue;
        }
        if (!idCells.contains(source.table())) {
            idCells[source.table()] = add(source.table(), "id", Kind::Integer);
        }
        cells_.push_back(idCells[source.table()]);
    }
}

std::size_t RecordCells::add(RecordTable table, std::string_view column, Kind kind)
{
    expressions_.push_back(qualified(table_info(table).name, column));
    kinds_.push_back(kind);
    return expressions_.size() - 1;
}

QueryResult RecordCells::read(
    DBIF_Connection& connection,
    const SqlText& sql,
    RowMask* hasValue,
    std::size_t furtherIntegers) const
{
    std::vector<Kind> kinds = kinds_;
    kinds.insert(kinds.end(), furtherIntegers, Kind::Integer);
    std::vector<bool> isCounted(kinds.size(), false);
    for (std::size_t i = 0; i < counted_; ++i) {
        isCounted[cells_[i]] = !sources_[i].isKey();
    }
    QueryResult cells = read_cells(connection, sql, kinds, isCounted, hasValue);
    QueryResult result;
    result.rows = cells.rows;
    std::map<std::size_t, RowsById> rows;
    for (std::size_t i = 0; i < sources_.size(); ++i) {
        ResultColumn& cell = cells.columns[cells_[i]];
        if (sources_[i].isKey()) {
            const RowsById& ofRecords = rows.try_emplace(cells_[i], cell.numbers).first->second;
            result.columns.push_back(read_key_beside(
                connection, sources_[i].table(), sources_[i].key(), ofRecords, hasValue));
        } else {
            result.columns.push_back(std::move(cell));
        }
    }
    std::move(
        cells.columns.begin() + static_cast<std::ptrdiff_t>(kinds_.size()), cells.columns.end(),
        std::back_inserter(result.columns));
    return result;
}
} // namespace dbif
