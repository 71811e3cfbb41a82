#include "dbif/sweep_rows.h"

#include "dbif/condition_sql.h"
#include "dbif/point_filter.h"
#include "dbif/read_trace.h"
#include "dbif/record_query.h"
#include "dbif/record_reader.h"
#include "dbif/sweep_reader.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace dbif {
namespace {
using Kind = ResultColumn::Kind;

/// The part of a condition that has to be decided on points; the rest is decided by SQL.
ConditionTree point_part(const ConditionTree& condition)
{
    const std::vector<ConditionTree> parts = condition.kind() == ConditionTree::Kind::And
                                                 ? condition.operands()
                                                 : std::vector<ConditionTree>{condition};
    std::vector<ConditionTree> onPoints;
    for (const ConditionTree& part : parts) {
        if (part.any([](const ColumnComparison& comparison) { return comparison.isOnPoints(); })) {
            onPoints.push_back(part);
        }
    }
    return ConditionTree::joined(ConditionTree::Kind::And, onPoints);
}

/// Each column is read once, however often it is asked for.
bool has_key(const std::vector<KeyDefinition>& columns, const std::string& key)
{
    return std::any_of(columns.begin(), columns.end(), [&key](const KeyDefinition& column) {
        return column.key == key;
    });
}

/// The selected setups, in the order of their ids, with what is known of each before its points are
/// read.
class SelectedSetups
{
    Q_DISABLE_COPY_MOVE(SelectedSetups)

public:
    /// `sources` are record columns to read beside each setup.
    SelectedSetups(
        DBIF_Connection& connection,
        const std::vector<ResultSource>& sources,
        const ConditionTree& condition,
        bool latestOnly)
        : pointPart_(point_part(condition)), trace_(connection.trace())
    {
        const TraceStep step(trace_, "select the setups");
        TableSet tables = tables_of(sources);
        tables.add(RecordTable::Setup);
        const RecordCells cells(sources);
        std::vector<SqlText> expressions = cells.expressions();
        expressions.emplace_back("setup.id");
        expressions.emplace_back(
            "(SELECT max(points) FROM setup_association WHERE setup_association.setup_id = setup.id)");
        // Comparisons on records that stand beside ones on points are decided by SQL, setup by
        // setup.
        pointPart_.forEachComparison([&](const ColumnComparison& comparison) {
            if (!comparison.isOnPoints() && flags_.emplace(&comparison, flags_.size()).second) {
                tables.add(comparison.table);
                SqlText flag;
                expressions.push_back(
                    flag << "CASE WHEN "
                         << criteria(ConditionTree::comparison(comparison), connection)
                         << " THEN 1 ELSE 0 END");
            }
        });
        const RecordQuery query(connection, tables, condition, latestOnly);
        SqlText sql = query.select(expressions, false);
        sql << "\nORDER BY setup.id";
        cells_ = cells.read(connection, sql, &hasRecordValue_, 2 + flags_.size());
        firstFlag_ = sources.size() + 2;
        const std::vector<double>& ids = cells_.columns[sources.size()].numbers;
        const std::vector<double>& points = cells_.columns[sources.size() + 1].numbers;
        for (std::size_t i = 0; i < ids.size(); ++i) {
            places_.push_back(
                {static_cast<int>(ids[i]),
                 std::isnan(points[i]) ? 0 : static_cast<std::size_t>(points[i])});
        }
    }

    ~SelectedSetups()
    {
        if (trace_ != nullptr && isDecidedOnPoints()) {
            decided_.setups = places_.size();
            trace_->decided(decided_);
        }
    }

    [[nodiscard]] const std::vector<SweepPlace>& places() const { return places_; }

    /// The column of a source, a value per setup.
    [[nodiscard]] ResultColumn& column(std::size_t source) { return cells_.columns[source]; }

    [[nodiscard]] bool hasRecordValue(std::size_t place) const { return hasRecordValue_[place]; }

    [[nodiscard]] bool isDecidedOnPoints() const
    {
        return pointPart_.kind() != ConditionTree::Kind::True;
    }

    /// The definitions of the keys that the condition looks at, added to `columns`.
    void addConditionKeys(DBIF_Connection& connection, std::vector<KeyDefinition>* columns) const
    {
        pointPart_.forEachComparison([&](const ColumnComparison& comparison) {
            if (!comparison.isOnPoints() || has_key(*columns, comparison.column)) {
                return;
            }
            if (const KeyDefinition* definition =
                    ColumnStore::of(connection)
                        .find(connection, RecordTable::Setup, comparison.column)) {
                columns->push_back(*definition);
            }
        });
    }

    [[nodiscard]] PointMask satisfying(std::size_t place, const SweepArrays& arrays)
    {
        const TraceStep step(trace_, "decide the points in memory");
        PointMask mask = satisfying_points(
            pointPart_, places_[place].points, arrays, [&](const ColumnComparison& comparison) {
                return cells_.columns[firstFlag_ + flags_.at(&comparison)].numbers[place] != 0;
            });
        if (trace_ != nullptr) {
            const auto kept = static_cast<std::size_t>(std::count(mask.begin(), mask.end(), 1));
            decided_.points += mask.size();
            decided_.keptPoints += kept;
            decided_.keptSetups += kept > 0 ? 1 : 0;
        }
        return mask;
    }

private:
    ConditionTree pointPart_;
    std::unordered_map<const ColumnComparison*, std::size_t> flags_;
    std::size_t firstFlag_ = 0;
    QueryResult cells_;
    RowMask hasRecordValue_;
    std::vector<SweepPlace> places_;
    ReadTrace* trace_;
    TracedPoints decided_;
};

/// Collects the rows of points.
class RowCollector
{
public:
    RowCollector(const std::vector<ResultSource>& sources, SelectedSetups& setups) : setups_(setups)
    {
        std::size_t recordSource = 0;
        std::size_t points = 0;
        for (const SweepPlace& place : setups.places()) {
            points += place.points;
        }
        for (const ResultSource& source : sources) {
            Output output = source.isOnPoints() ? pointOutput(source.key)
                                                : recordOutput(&setups.column(recordSource++));
            if (!setups.isDecidedOnPoints()) {
                output.column.reserve(points);
            }
            outputs_.push_back(std::move(output));
        }
    }

    void add(std::size_t place, SweepArrays& arrays)
    {
        const std::size_t points = setups_.places()[place].points;
        const PointMask mask =
            setups_.isDecidedOnPoints() ? setups_.satisfying(place, arrays) : PointMask(points, 1);
        PointMask isKept(points, setups_.hasRecordValue(place) ? 1 : 0);
        bool hasAnyKey = false;
        for (const Output& output : outputs_) {
            if (const SweepArray* array = find(output, arrays)) {
                hasAnyKey = true;
                mark_values(*array, &isKept);
            }
        }
        if (!hasAnyKey) {
            return;
        }
        for (std::size_t point = 0; point < points; ++point) {
            isKept[point] = isKept[point] & mask[point];
        }
        for (Output& output : outputs_) {
            append(place, find(output, arrays), isKept, &output);
        }
    }

    QueryResult finish()
    {
        QueryResult result;
        for (Output& output : outputs_) {
            result.rows = output.column.size();
            result.columns.push_back(std::move(output.column));
        }
        return result;
    }

private:
    struct Output
    {
        /// Of a key of setups.
        std::string key;
        /// Of a column of records: a value per setup.
        ResultColumn* record = nullptr;
        ResultColumn column;
    };

    static Output pointOutput(const KeyDefinition& key)
    {
        Output output;
        output.key = key.key;
        output.column.kind = point_column_kind(key.kind);
        return output;
    }

    static Output recordOutput(ResultColumn* record)
    {
        Output output;
        output.record = record;
        if (record->kind != Kind::Text) {
            output.column.kind = record->kind;
            return output;
        }
        // Each setup's text stands once; the rows refer to it.
        output.column.kind = Kind::SharedText;
        output.column.dictionary = std::move(record->texts);
        return output;
    }

    static Kind point_column_kind(ValueKind kind)
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

    static const SweepArray* find(const Output& output, const SweepArrays& arrays)
    {
        const auto found = output.record != nullptr ? arrays.end() : arrays.find(output.key);
        return found == arrays.end() ? nullptr : &found->second;
    }

    static void mark_values(const SweepArray& array, PointMask* isKept)
    {
        for (std::size_t point = 0; point < isKept->size(); ++point) {
            if (array.hasValue(point)) {
                (*isKept)[point] = 1;
            }
        }
    }

    static void
    append(std::size_t place, const SweepArray* array, const PointMask& isKept, Output* output)
    {
        for (std::size_t point = 0; point < isKept.size(); ++point) {
            if (isKept[point] != 0) {
                output->record != nullptr ? appendRecord(place, output)
                                          : appendPoint(array, point, &output->column);
            }
        }
    }

    static void appendRecord(std::size_t place, Output* output)
    {
        switch (output->column.kind) {
        case Kind::SharedText:
            output->column.codes.push_back(static_cast<std::uint32_t>(place));
            return;
        case Kind::Complex:
            output->column.complexNumbers.push_back(output->record->complexNumbers[place]);
            return;
        default:
            output->column.numbers.push_back(output->record->numbers[place]);
        }
    }

    static void appendPoint(const SweepArray* array, std::size_t point, ResultColumn* column)
    {
        switch (column->kind) {
        case Kind::Double:
            column->numbers.push_back(
                array == nullptr ? std::numeric_limits<double>::quiet_NaN()
                                 : array->numbers[point]);
            return;
        case Kind::Complex:
            column->complexNumbers.push_back(
                array == nullptr ? kNoComplex : array->complexNumbers[point]);
            return;
        default:
            column->texts.push_back(array == nullptr ? std::string() : array->text(point));
        }
    }

    SelectedSetups& setups_;
    std::vector<Output> outputs_;
};

/// The condition that a setup has one of the keys.
ConditionTree has_one_of(const std::vector<KeyDefinition>& keys)
{
    SqlText sql = "SELECT setup_id AS id FROM setup_association WHERE setup_column_id IN (";
    for (std::size_t i = 0; i < keys.size(); ++i) {
        sql << (i == 0 ? SqlText() : SqlText(", ")) << keys[i].id;
    }
    ColumnComparison comparison;
    comparison.table = RecordTable::Setup;
    comparison.column = "id";
    comparison.idSelect = sql << ")";
    return ConditionTree::comparison(std::move(comparison));
}
} // namespace

QueryResult read_sweep_rows(
    DBIF_Connection& connection,
    const std::vector<ResultSource>& sources,
    const ConditionTree& condition,
    bool latestOnly)
{
    std::vector<KeyDefinition> columns;
    std::vector<ResultSource> recordSources;
    for (const ResultSource& source : sources) {
        if (!source.isOnPoints()) {
            recordSources.push_back(source);
        } else if (!has_key(columns, source.key.key)) {
            columns.push_back(source.key);
        }
    }
    SelectedSetups setups(
        connection, recordSources,
        ConditionTree::joined(ConditionTree::Kind::And, {has_one_of(columns), condition}),
        latestOnly);
    setups.addConditionKeys(connection, &columns);
    RowCollector collector(sources, setups);
    read_sweeps(
        connection, setups.places(), columns,
        [&collector](std::size_t place, SweepArrays& arrays) { collector.add(place, arrays); });
    return collector.finish();
}

std::vector<int> ids_with_points(
    DBIF_Connection& connection,
    RecordTable table,
    const ConditionTree& condition,
    bool latestOnly)
{
    ResultSource id;
    id.table = table;
    id.fixed = facts(table).fixedColumns.front();
    SelectedSetups setups(connection, {id}, condition, latestOnly);
    std::vector<KeyDefinition> columns;
    setups.addConditionKeys(connection, &columns);
    std::vector<int> ids;
    const std::vector<double>& idOfSetup = setups.column(0).numbers;
    read_sweeps(connection, setups.places(), columns, [&](std::size_t place, SweepArrays& arrays) {
        const PointMask mask = setups.satisfying(place, arrays);
        if (!std::isnan(idOfSetup[place]) && std::find(mask.begin(), mask.end(), 1) != mask.end()) {
            ids.push_back(static_cast<int>(idOfSetup[place]));
        }
    });
    return ids;
}
} // namespace dbif
