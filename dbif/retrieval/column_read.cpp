#include "dbif/retrieval/column_read.h"

#include "dbif/condition/condition_sql.h"
#include "dbif/connection/bulk_cursor.h"
#include "dbif/engine/read_trace.h"
#include "dbif/host/exception.h"
#include "dbif/query/record_query.h"
#include "dbif/retrieval/record_rows.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace dbif {
namespace {
/// Records that are selected at a time where the rows are given part by part.
constexpr std::size_t kRecordsPerPart = 1U << 17U;
constexpr std::size_t kAllRows = std::numeric_limits<std::size_t>::max();

bool has_points(const std::vector<TableColumn>& columns)
{
    return std::any_of(columns.begin(), columns.end(), [](const TableColumn& column) {
        return column.isOnPoints();
    });
}

/// Orders by every shown column: equal rows have to stand side by side to be found.
void order_by_all(std::size_t shown, std::vector<SortKey>* order)
{
    for (std::size_t column = 0; column < shown; ++column) {
        const bool isOrdered =
            std::any_of(order->begin(), order->end(), [column](const SortKey& key) {
                return key.column == column;
            });
        if (!isOrdered) {
            order->push_back({column, true});
        }
    }
}

/// The condition, for records whose ids are in a closed range.
ConditionTree with_ids(const ConditionTree& condition, RecordTable table, double first, double last)
{
    ColumnComparison range(TableColumn::id(table));
    range.holdsNumbers = true;
    range.ranges = {{first, last}};
    return ConditionTree::joined(
        ConditionTree::Kind::And, {condition, ConditionTree::comparison(std::move(range))});
}

/// Rows `first` to `last` (not included) of the first columns.
QueryResult
part_of(const QueryResult& rows, std::size_t first, std::size_t last, std::size_t columns)
{
    QueryResult part;
    part.rows = last - first;
    for (std::size_t i = 0; i < columns; ++i) {
        ResultColumn& column = part.columns.emplace_back();
        column.kind = rows.columns[i].kind;
        append_rows(rows.columns[i], first, last, &column);
    }
    return part;
}

std::vector<int> read_ids(DBIF_Connection& connection, const SqlText& sql)
{
    std::vector<int> ids;
    BulkCursor cursor(connection, sql);
    while (cursor.next()) {
        if (!cursor.isNull(0)) {
            ids.push_back(cursor.integer(0));
        }
    }
    return ids;
}
} // namespace

bool ColumnRead::isOnPoints() const
{
    return has_points(columns);
}

bool ColumnRead::needsAllRows() const
{
    const bool isById = order.size() == 1 && order.front().isAscending && !isOnPoints() &&
                        columns[order.front().column].isIdOf(meeting_table(tables_of(columns)));
    return distinct || (!order.empty() && !isById);
}

std::vector<int> matching_ids(
    DBIF_Connection connection,
    RecordTable table,
    const ConditionTree& condition,
    bool latestOnly)
{
    // Selects the records for which it is true without looking at points, and those that have a
    // setup with a point that makes it true.
    const ConditionTree withoutPoints = condition.mapped([](const ConditionTree& comparison) {
        return comparison.comparison().isOnPoints() ? ConditionTree::constant(false) : comparison;
    });
    std::vector<int> ids;
    if (withoutPoints.kind() != ConditionTree::Kind::False) {
        ids = read_ids(
            connection, RecordQuery(connection, {table}, withoutPoints, latestOnly).selectIds());
    }
    if (condition.hasPoints()) {
        const std::vector<int> more = ids_with_points(connection, table, condition, latestOnly);
        ids.insert(ids.end(), more.begin(), more.end());
    }
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

ColumnStream::ColumnStream(ColumnRead read, Parts parts)
    : read_(std::move(read)),
      parts_(parts),
      transaction_(read_.connection),
      base_(meeting_table(tables_of(read_.columns))),
      left_(read_.limit < 0 ? kAllRows : static_cast<std::size_t>(read_.limit))
{}

ColumnStream::~ColumnStream() = default;

void ColumnStream::begin()
{
    if (hasBegun_) {
        return;
    }
    hasBegun_ = true;
    if (read_.condition.hasPoints() && !read_.isOnPoints()) {
        const TraceStep picking(
            read_.connection.inner().trace(), "pick the records by their points");
        picked_ = std::make_unique<IdList>(
            read_.connection, base_,
            matching_ids(read_.connection, base_, read_.condition, read_.latestOnly));
        read_.condition = picked_->condition();
    }
    if (parts_ == Parts::Many) {
        highestId_ = highest_id(read_.connection, base_);
    }
}

std::size_t ColumnStream::mostRows()
{
    begin();
    DBIF_Connection& connection = read_.connection;
    const SqlText ids =
        RecordQuery(connection, tables_of(read_.columns), read_.condition, read_.latestOnly)
            .selectIds();
    SqlText sql;
    if (read_.isOnPoints()) {
        std::vector<int> keys;
        for (const TableColumn& column : read_.columns) {
            if (column.isOnPoints()) {
                keys.push_back(column.key().id);
            }
        }
        sql << "SELECT SUM(points) FROM (SELECT MAX(points) AS points FROM setup_association "
               "WHERE setup_column_id IN ("
            << listed(keys) << ") AND setup_id IN (" << ids << ") GROUP BY setup_id) AS setups";
    } else {
        sql << "SELECT COUNT(*) FROM (" << ids << ") AS records";
    }
    BulkCursor cursor(connection, sql);
    const double most = cursor.next() && !cursor.isNull(0) ? cursor.number(0) : 0;
    return std::min(left_, static_cast<std::size_t>(most));
}

QueryResult ColumnStream::next(std::size_t rows)
{
    rows = std::min(rows, left_);
    {
        const TraceStep step(read_.connection.inner().trace(), "read the records");
        begin();
        const bool needsAll = read_.needsAllRows();
        while ((needsAll || available() < rows) && readOn(needsAll ? kAllRows : rows)) {
            report();
        }
        holdPoints();
        if (needsAll && !isArranged_) {
            arrange();
        }
    }
    checkFile();
    QueryResult result = take(std::min(rows, held_.rows - given_));
    left_ -= result.rows;
    taken_ += result.rows;
    return result;
}

std::size_t ColumnStream::available() const
{
    return held_.rows - given_ + (points_ == nullptr ? 0 : points_->size());
}

std::size_t ColumnStream::shownColumns() const
{
    return read_.columns.size() - read_.hidden + (read_.withPoints ? 1 : 0);
}

void ColumnStream::report() const
{
    if (read_.progress) {
        read_.progress(std::min(taken_ + available(), taken_ + left_));
    }
}

bool ColumnStream::readOn(std::size_t wanted)
{
    while (points_ != nullptr || nextId_ <= highestId_) {
        if (points_ != nullptr) {
            if (points_->readOn(wanted)) {
                return true;
            }
            holdPoints();
            points_.reset();
        } else if (read_.isOnPoints()) {
            points_ = std::make_unique<SweepRows>(
                read_.connection, read_.columns, read_.uncounted, nextCondition(), read_.latestOnly,
                read_.withPoints);
        } else {
            QueryResult rows = read_record_rows(
                read_.connection, read_.columns, read_.uncounted, nextCondition(), read_.latestOnly,
                read_.distinct);
            if (!read_.needsAllRows()) {
                sort_rows(read_.order, &rows);
            }
            hold(std::move(rows));
            return true;
        }
    }
    return false;
}

ConditionTree ColumnStream::nextCondition()
{
    const std::size_t first = nextId_;
    nextId_ = parts_ == Parts::One ? highestId_ + 1 : first + kRecordsPerPart;
    // Most databases have one part, and its statement is as simple as it can be.
    return nextId_ > highestId_ && first == 0
               ? read_.condition
               : with_ids(
                     read_.condition, base_, static_cast<double>(first),
                     static_cast<double>(nextId_ - 1));
}

void ColumnStream::holdPoints()
{
    // The columns and their kinds are known even where there are no rows.
    if (points_ != nullptr && (points_->size() > 0 || held_.columns.empty())) {
        hold(points_->take());
    }
}

void ColumnStream::hold(QueryResult rows)
{
    if (given_ == held_.rows) {
        held_ = std::move(rows);
        given_ = 0;
        return;
    }
    if (given_ > 0) {
        held_ = part_of(held_, given_, held_.rows, held_.columns.size());
        given_ = 0;
    }
    for (std::size_t i = 0; i < held_.columns.size(); ++i) {
        append_rows(rows.columns[i], 0, rows.rows, &held_.columns[i]);
    }
    held_.rows += rows.rows;
}

void ColumnStream::arrange()
{
    isArranged_ = true;
    const TraceStep sorting(read_.connection.inner().trace(), "sort the rows");
    const std::size_t shown = shownColumns();
    if (read_.distinct) {
        order_by_all(shown, &read_.order);
    }
    sort_rows(read_.order, &held_);
    held_.columns.resize(shown);
    if (read_.distinct) {
        remove_repeated_rows(&held_);
    }
}

void ColumnStream::checkFile() const
{
    if (parts_ == Parts::Many && read_.connection.inner().fileState() != FileState::Same) {
        throw_error(
            "The database file was replaced or overwritten while it was read. Read it anew.",
            __FILE__, __LINE__, QSqlError::ConnectionError);
    }
}

QueryResult ColumnStream::take(std::size_t rows)
{
    const std::size_t shown = shownColumns();
    QueryResult result;
    if (given_ == 0 && rows == held_.rows) {
        QueryResult none = part_of(held_, 0, 0, held_.columns.size());
        result = std::exchange(held_, std::move(none));
        result.columns.resize(shown);
    } else {
        result = part_of(held_, given_, given_ + rows, shown);
        given_ += rows;
    }
    return result;
}

QueryResult read_columns(ColumnRead read)
{
    ColumnStream stream(std::move(read), ColumnStream::Parts::One);
    return stream.next(kAllRows);
}
} // namespace dbif
