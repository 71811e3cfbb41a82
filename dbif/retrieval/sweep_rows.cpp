#include "dbif/retrieval/sweep_rows.h"

#include "dbif/retrieval/selected_setups.h"
#include "dbif/sweep/sweep_reader.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace dbif {
namespace {
using Kind = ResultColumn::Kind;

/// So many rows grow step by step.
constexpr std::size_t kFewRows = 10'000;

/// Collects the rows of points.
class RowCollector
{
public:
    /// `columns` are those that are read, the keys of `sources` among them.
    RowCollector(
        const std::vector<TableColumn>& sources,
        const std::vector<KeyDefinition>& columns,
        SelectedSetups& setups)
        : setups_(setups)
    {
        std::size_t recordSource = 0;
        for (const TableColumn& source : sources) {
            outputs_.push_back(
                source.isOnPoints()
                    ? pointOutput(source.key(), place_of_key(columns, source.key().key))
                    : recordOutput(&setups.column(recordSource++)));
        }
    }

    void add(const SweepPoints& points)
    {
        isKept_.assign(points.count, setups_.hasRecordValue(points.place) ? 1 : 0);
        bool hasAnyKey = false;
        for (const Output& output : outputs_) {
            if (output.record == nullptr && points.columns[output.column].isPresent()) {
                hasAnyKey = true;
                mark_values(points.columns[output.column], &isKept_);
            }
        }
        if (!hasAnyKey) {
            return;
        }
        if (setups_.isDecidedOnPoints()) {
            const PointMask mask = setups_.satisfying(points);
            for (std::size_t point = 0; point < points.count; ++point) {
                isKept_[point] = isKept_[point] & mask[point];
            }
        }
        listKept();
        reserveRows(points.place);
        for (Output& output : outputs_) {
            output.record != nullptr ? appendRecord(points.place, &output)
                                     : appendPoints(points.columns[output.column], &output.values);
        }
    }

    [[nodiscard]] std::size_t size() const { return outputs_.front().values.size(); }

    /// Sets the number of rows that are going to be collected, if there are as many.
    void setWanted(std::size_t rows) { wanted_ = rows; }

    /// Hands the rows over, and begins anew.
    QueryResult take()
    {
        QueryResult result;
        result.rows = size();
        for (Output& output : outputs_) {
            ResultColumn next;
            next.kind = output.values.kind;
            next.dictionary = output.values.dictionary;
            result.columns.push_back(std::exchange(output.values, std::move(next)));
        }
        capacity_ = 0;
        return result;
    }

private:
    struct Output
    {
        /// For a key of setups: its place among the columns that are read.
        std::size_t column = 0;
        /// For a column of records: a value per setup.
        ResultColumn* record = nullptr;
        ResultColumn values;
    };

    static Output pointOutput(const KeyDefinition& key, std::size_t column)
    {
        Output output;
        output.column = column;
        output.values.kind = key_column_kind(key.kind);
        return output;
    }

    static Output recordOutput(ResultColumn* record)
    {
        Output output;
        output.record = record;
        if (record->kind != Kind::Text) {
            output.values.kind = record->kind;
            return output;
        }
        // Each setup's text is stored once; the rows refer to it.
        output.values.kind = Kind::SharedText;
        output.values.dictionary =
            std::make_shared<const std::vector<std::string>>(std::move(record->texts));
        return output;
    }

    static void mark_values(const SweepSlice& values, PointMask* isKept)
    {
        if (std::find(isKept->begin(), isKept->end(), 0) == isKept->end()) {
            return;
        }
        if (values.array->kind == ValueKind::Double) {
            const std::span<const double> numbers = values.numbers();
            for (std::size_t point = 0; point < numbers.size(); ++point) {
                (*isKept)[point] |= static_cast<std::uint8_t>(!std::isnan(numbers[point]));
            }
            return;
        }
        for (std::size_t point = 0; point < isKept->size(); ++point) {
            (*isKept)[point] |= static_cast<std::uint8_t>(values.hasValue(point));
        }
    }

    /// Lists the points that are kept, unless all are.
    void listKept()
    {
        areAllKept_ = std::find(isKept_.begin(), isKept_.end(), 0) == isKept_.end();
        if (areAllKept_) {
            return;
        }
        // The loop has no branches, which a processor could not predict.
        kept_.resize(isKept_.size());
        std::size_t count = 0;
        for (std::size_t point = 0; point < isKept_.size(); ++point) {
            kept_[count] = point;
            count += isKept_[point];
        }
        kept_.resize(count);
    }

    [[nodiscard]] std::size_t keptCount() const
    {
        return areAllKept_ ? isKept_.size() : kept_.size();
    }

    template <typename Use>
    void forKept(const Use& use) const
    {
        for (std::size_t i = 0; i < keptCount(); ++i) {
            use(areAllKept_ ? i : kept_[i]);
        }
    }

    /// Makes room for the rows of all setups when there is none for those of this one, supposing
    /// that the others have as many as those so far: columns that grow step by step are copied, and
    /// their memory is touched twice. Memory that is reserved in vain costs nothing.
    void reserveRows(std::size_t place)
    {
        const std::size_t rows = size() + keptCount();
        if (rows < kFewRows || rows <= capacity_) {
            return;
        }
        const double all = static_cast<double>(rows) / static_cast<double>(place + 1) *
                           static_cast<double>(setups_.ids().size());
        const std::size_t expected = std::min(wanted_, static_cast<std::size_t>(1.02 * all));
        capacity_ = expected > rows ? expected : 2 * rows;
        for (Output& output : outputs_) {
            output.values.reserve(capacity_);
        }
    }

    void appendRecord(std::size_t place, Output* output) const
    {
        switch (output->values.kind) {
        case Kind::SharedText:
            appendSame(static_cast<std::uint32_t>(place), &output->values.codes);
            return;
        case Kind::Complex:
            appendSame(output->record->complexNumbers[place], &output->values.complexNumbers);
            return;
        default:
            appendSame(output->record->numbers[place], &output->values.numbers);
        }
    }

    template <typename T>
    void appendSame(const T& value, std::vector<T>* values) const
    {
        values->insert(values->end(), keptCount(), value);
    }

    void appendPoints(const SweepSlice& points, ResultColumn* column) const
    {
        switch (column->kind) {
        case Kind::Double:
            points.isPresent()
                ? appendKept(points.array->numbers, points.first, &column->numbers)
                : appendSame(std::numeric_limits<double>::quiet_NaN(), &column->numbers);
            return;
        case Kind::Complex:
            points.isPresent()
                ? appendKept(points.array->complexNumbers, points.first, &column->complexNumbers)
                : appendSame(kNoComplex, &column->complexNumbers);
            return;
        default:
            forKept([&](std::size_t point) {
                column->texts.push_back(points.isPresent() ? points.text(point) : std::string());
            });
        }
    }

    template <typename T>
    void appendKept(const std::vector<T>& from, std::size_t first, std::vector<T>* values) const
    {
        const auto begin = from.begin() + static_cast<std::ptrdiff_t>(first);
        if (areAllKept_) {
            values->insert(
                values->end(), begin, begin + static_cast<std::ptrdiff_t>(isKept_.size()));
            return;
        }
        for (const std::size_t point : kept_) {
            values->push_back(begin[static_cast<std::ptrdiff_t>(point)]);
        }
    }

    SelectedSetups& setups_;
    std::vector<Output> outputs_;
    /// The points of the setup being added that give a row, by mark and, unless all do, by place.
    PointMask isKept_;
    std::vector<std::size_t> kept_;
    bool areAllKept_ = false;
    std::size_t wanted_ = 0;
    /// The number of rows that the columns have room for.
    std::size_t capacity_ = 0;
};
} // namespace

class SweepRows::Reading
{
    Q_DISABLE_COPY_MOVE(Reading)

public:
    Reading(
        DBIF_Connection& connection,
        const std::vector<TableColumn>& sources,
        std::size_t uncounted,
        const ConditionTree& condition,
        bool latestOnly)
        : columns_(keysOf(sources)),
          setups_(connection, recordsOf(sources), uncounted, columns_, condition, latestOnly),
          collector_(sources, withConditionKeys(connection), setups_),
          reader_(connection, setups_.ids(), columns_, SetupsWithoutColumns::Empty)
    {}

    ~Reading() = default;

    bool readOn(std::size_t wanted)
    {
        collector_.setWanted(wanted);
        return reader_.next([this](const SweepPoints& points) { collector_.add(points); });
    }

    [[nodiscard]] RowCollector& collector() { return collector_; }

private:
    static std::vector<KeyDefinition> keysOf(const std::vector<TableColumn>& sources)
    {
        std::vector<KeyDefinition> keys;
        for (const TableColumn& source : sources) {
            if (source.isOnPoints() && place_of_key(keys, source.key().key) == keys.size()) {
                keys.push_back(source.key());
            }
        }
        return keys;
    }

    static std::vector<TableColumn> recordsOf(std::vector<TableColumn> sources)
    {
        std::erase_if(sources, [](const TableColumn& source) { return source.isOnPoints(); });
        return sources;
    }

    const std::vector<KeyDefinition>& withConditionKeys(DBIF_Connection& connection)
    {
        setups_.addConditionKeys(connection, &columns_);
        return columns_;
    }

    /// Those that are read.
    std::vector<KeyDefinition> columns_;
    SelectedSetups setups_;
    RowCollector collector_;
    SweepReader reader_;
};

SweepRows::SweepRows(
    DBIF_Connection& connection,
    const std::vector<TableColumn>& sources,
    std::size_t uncounted,
    const ConditionTree& condition,
    bool latestOnly)
    : reading_(std::make_unique<Reading>(connection, sources, uncounted, condition, latestOnly))
{}

SweepRows::~SweepRows() = default;

bool SweepRows::readOn(std::size_t wanted)
{
    return reading_->readOn(wanted);
}

std::size_t SweepRows::size() const
{
    return reading_->collector().size();
}

QueryResult SweepRows::take()
{
    return reading_->collector().take();
}

std::vector<int> ids_with_points(
    DBIF_Connection& connection,
    RecordTable table,
    const ConditionTree& condition,
    bool latestOnly)
{
    SelectedSetups setups(connection, {TableColumn::id(table)}, 0, {}, condition, latestOnly);
    std::vector<KeyDefinition> columns;
    setups.addConditionKeys(connection, &columns);
    std::vector<int> ids;
    const std::vector<double>& idOfSetup = setups.column(0).numbers;
    const auto add = [&](const SweepPoints& points) {
        const PointMask mask = setups.satisfying(points);
        const double found = idOfSetup[points.place];
        if (!std::isnan(found) && std::find(mask.begin(), mask.end(), 1) != mask.end()) {
            ids.push_back(static_cast<int>(found));
        }
    };
    // A setup without any of the keys may have points that satisfy, for it lacks them.
    read_sweeps(connection, setups.ids(), columns, SetupsWithoutColumns::Counted, add);
    return ids;
}
} // namespace dbif
