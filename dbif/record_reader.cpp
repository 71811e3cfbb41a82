#include "dbif/record_reader.h"

#include "dbif/bulk_cursor.h"
#include "dbif/complex_values.h"
#include "dbif/id_list.h"
#include "dbif/read_trace.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace dbif {
namespace {
using Kind = ResultColumn::Kind;

/// Ids in one IN list.
constexpr std::size_t kIdsPerStatement = 500;
/// One look-up by id costs about as much as passing over so many values of a key.
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

/// A record's place among the rows: rows of the same record stand side by side in the order of ids.
class RowsById
{
public:
    explicit RowsById(const std::vector<double>& ids)
    {
        places_.reserve(ids.size());
        for (std::size_t row = 0; row < ids.size(); ++row) {
            if (!std::isnan(ids[row])) {
                places_.push_back({static_cast<int>(ids[row]), static_cast<std::uint32_t>(row)});
            }
        }
        const auto byId = [](const Place& a, const Place& b) {
            return a.id < b.id;
        };
        if (!std::is_sorted(places_.begin(), places_.end(), byId)) {
            std::stable_sort(places_.begin(), places_.end(), byId);
        }
        // Ids that stand close together are found through a table, others by searching.
        const std::size_t span =
            places_.empty() ? 0 : static_cast<std::size_t>(places_.back().id) + 1;
        if (span <= 4 * places_.size() + 1024) {
            first_.assign(span + 1, static_cast<std::uint32_t>(places_.size()));
            for (std::size_t i = places_.size(); i-- > 0;) {
                first_[static_cast<std::size_t>(places_[i].id)] = static_cast<std::uint32_t>(i);
            }
        }
    }

    [[nodiscard]] std::vector<int> distinctIds() const
    {
        std::vector<int> ids;
        for (const Place& place : places_) {
            if (ids.empty() || ids.back() != place.id) {
                ids.push_back(place.id);
            }
        }
        return ids;
    }

    /// Calls `use` with every row of the record.
    template <typename Use>
    void forRows(int id, const Use& use) const
    {
        for (std::size_t i = firstPlace(id); i < places_.size() && places_[i].id == id; ++i) {
            use(places_[i].row);
        }
    }

private:
    struct Place
    {
        int id;
        std::uint32_t row;
    };

    [[nodiscard]] std::size_t firstPlace(int id) const
    {
        if (!first_.empty()) {
            const auto at = static_cast<std::size_t>(id);
            return at < first_.size() ? first_[at] : places_.size();
        }
        const auto found = std::lower_bound(
            places_.begin(), places_.end(), id,
            [](const Place& place, int wanted) { return place.id < wanted; });
        return static_cast<std::size_t>(found - places_.begin());
    }

    std::vector<Place> places_;
    std::vector<std::uint32_t> first_;
};

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

/// Puts the one value of `value` into the row.
void place_value(const ResultColumn& value, std::uint32_t row, ResultColumn* column)
{
    if (column->kind == Kind::Text) {
        column->texts[row] = value.texts.front();
    } else if (column->kind == Kind::Complex) {
        column->complexNumbers[row] = value.complexNumbers.front();
    } else {
        column->numbers[row] = value.numbers.front();
    }
}

void place_values(
    DBIF_Connection& connection,
    const SqlText& sql,
    const RowsById& rows,
    ResultColumn* column,
    RowMask* hasValue)
{
    BulkCursor cursor(connection, sql);
    while (cursor.next()) {
        if (cursor.isNull(1)) {
            continue;
        }
        ResultColumn value;
        value.kind = column->kind;
        append_cell(cursor, 1, &value);
        rows.forRows(cursor.integer(0), [&](std::uint32_t row) {
            (*hasValue)[row] = true;
            place_value(value, row, column);
        });
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
        hasValue->push_back(isMarked);
        ++result.rows;
    }
    return result;
}

Kind key_column_kind(const KeyDefinition& definition)
{
    switch (definition.kind) {
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
    const TableFacts& f = facts(table);
    const SqlText value = value_column(definition);
    SqlText sql;
    sql << "SELECT " << value << " FROM " << SqlName(f.dataTable()) << " WHERE "
        << SqlName(f.columnLink()) << " = " << definition.id << " AND " << value << " IS NOT NULL";
    if (!idSelect.isEmpty()) {
        sql << " AND " << SqlName(f.linkColumn()) << " IN (" << idSelect << ")";
    } else {
        // An index has them in this order.
        sql << " ORDER BY " << value;
    }
    ResultColumn column = empty_column(key_column_kind(definition), 0);
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

ResultColumn read_key_beside(
    DBIF_Connection& connection,
    RecordTable table,
    const KeyDefinition& definition,
    const std::vector<double>& ids,
    RowMask* hasValue)
{
    const TraceStep step(connection.trace(), "read the keys of the records");
    const TableFacts& f = facts(table);
    ResultColumn column = empty_column(key_column_kind(definition), ids.size());
    const RowsById rows(ids);
    const std::vector<int> distinct = rows.distinctIds();
    SqlText sql;
    sql << "SELECT " << SqlName(f.linkColumn()) << ", " << value_column(definition) << " FROM "
        << SqlName(f.dataTable()) << " WHERE " << SqlName(f.columnLink()) << " = " << definition.id;
    if (distinct.size() > kIdsPerStatement &&
        kPassedPerLookUp * distinct.size() > highest_id(connection, table)) {
        place_values(connection, sql, rows, &column, hasValue);
        return column;
    }
    for (std::size_t first = 0; first < distinct.size(); first += kIdsPerStatement) {
        SqlText some = sql;
        some << " AND " << SqlName(f.linkColumn()) << " IN ("
             << id_sequence(distinct, first, std::min(kIdsPerStatement, distinct.size() - first))
             << ")";
        place_values(connection, some, rows, &column, hasValue);
    }
    return column;
}

namespace {
Kind fixed_column_kind(const FixedColumnFacts& fixed)
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

RecordCells::RecordCells(const std::vector<ResultSource>& sources) : sources_(sources)
{
    for (const ResultSource& source : sources) {
        const std::string_view column = source.isKey ? "id" : source.fixed.name;
        expressions_.push_back(qualified(facts(source.table).name, column));
        kinds_.push_back(source.isKey ? Kind::Integer : fixed_column_kind(source.fixed));
    }
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
    for (std::size_t i = 0; i < sources_.size(); ++i) {
        isCounted[i] = !sources_[i].isKey;
    }
    QueryResult result = read_cells(connection, sql, kinds, isCounted, hasValue);
    for (std::size_t i = 0; i < sources_.size(); ++i) {
        if (sources_[i].isKey) {
            result.columns[i] = read_key_beside(
                connection, sources_[i].table, sources_[i].key, result.columns[i].numbers,
                hasValue);
        }
    }
    return result;
}
} // namespace dbif
