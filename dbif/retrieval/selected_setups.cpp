#include "dbif/retrieval/selected_setups.h"

#include "dbif/condition/condition_simplification.h"
#include "dbif/condition/condition_sql.h"
#include "dbif/condition/id_list.h"
#include "dbif/connection/bulk_cursor.h"
#include "dbif/connection/managed_connection.h"
#include "dbif/host/exception.h"
#include "dbif/query/record_query.h"

#include <algorithm>

namespace dbif {
namespace {
using Kind = ConditionTree::Kind;

/// SQLite gives a row 2,000 columns at most.
constexpr std::size_t kMostFlags = 1900;

/// The part of a condition that has to be decided on points; the rest is decided by SQL.
ConditionTree point_part(const ConditionTree& condition)
{
    std::vector<ConditionTree> onPoints;
    for (const ConditionTree& part : condition.conjuncts()) {
        if (part.hasPoints()) {
            onPoints.push_back(part);
        }
    }
    return ConditionTree::joined(Kind::And, onPoints);
}

/// Adds a key to those that are read, unless it is there already; false when it is not defined.
bool add_key(
    DBIF_Connection& connection,
    const KeyDefinition& key,
    std::vector<KeyDefinition>* columns)
{
    if (place_of_key(*columns, key.key) < columns->size()) {
        return true;
    }
    const KeyDefinition* definition =
        key.id != 0 ? &key
                    : ColumnStore::of(connection).find(connection, RecordTable::Setup, key.key);
    if (definition != nullptr) {
        columns->push_back(*definition);
    }
    return definition != nullptr;
}

/// The condition that a setup has one of the keys.
ConditionTree has_one_of(const std::vector<KeyDefinition>& keys, bool isLookedUp)
{
    SqlText sql = "SELECT setup_id AS id FROM setup_association WHERE setup_column_id IN (";
    ColumnComparison comparison(
        RecordTable::Setup, RecordIds{sql << listed(keys, &KeyDefinition::id) << ")"});
    comparison.isLookedUp = isLookedUp;
    return ConditionTree::comparison(std::move(comparison));
}

/// Finds terms on points that nearly all setups may satisfy: to look such a term up for each setup
/// costs more than to decide it on the points alone.
class WeakTerms
{
public:
    explicit WeakTerms(DBIF_Connection& connection)
        : connection_(connection), all_(highest_id(connection, RecordTable::Setup))
    {}

    [[nodiscard]] bool has(const ConditionTree& term)
    {
        return term.kind() == Kind::Comparison && term.comparison().isOnPoints() &&
               term.comparison().comparator != IS_NULL && doSatisfy(term.comparison(), kNearlyAll);
    }

    /// Tells whether so many eighths of all setups have the key.
    [[nodiscard]] bool has(const KeyDefinition& key, std::size_t eighths)
    {
        ColumnComparison presence(TableColumn(RecordTable::Setup, key));
        presence.comparator = NOT_NULL;
        return doSatisfy(presence, eighths);
    }

    /// In eighths.
    static constexpr std::size_t kNearlyAll = 7;

private:
    bool doSatisfy(const ColumnComparison& comparison, std::size_t eighths)
    {
        constexpr std::size_t kFewSetups = 1000;
        const std::size_t most = all_ / 8 * eighths;
        SqlText sql = records_with_key("1", comparison, connection_);
        sql << " LIMIT 1 OFFSET " << static_cast<long long>(most);
        return most > kFewSetups && BulkCursor(connection_, sql).next();
    }

    DBIF_Connection& connection_;
    std::size_t all_;
};

/// The condition by which SQL selects the setups. Where nothing but points selects them, terms that
/// nearly all setups satisfy are left out; with terms on records, finding such terms would take
/// longer than it saves.
ConditionTree selecting_condition(
    DBIF_Connection& connection,
    const std::vector<KeyDefinition>& keys,
    bool readsRecords,
    const ConditionTree& condition)
{
    // A setup without the key costs little where nothing is read beside it: less than to look the
    // key up for each of the others.
    const std::size_t enough = readsRecords ? WeakTerms::kNearlyAll : 2;
    std::vector<ConditionTree> terms = condition.conjuncts();
    const bool isAllOnPoints =
        !condition.any([](const ColumnComparison& comparison) { return !comparison.isOnPoints(); });
    bool isKeyWeak = false;
    if (isAllOnPoints) {
        WeakTerms weak(connection);
        std::erase_if(terms, [&weak](const ConditionTree& term) { return weak.has(term); });
        // A remaining term selects only some setups, so that counting all of them is pointless.
        isKeyWeak = ConditionTree::joined(Kind::And, terms).kind() == Kind::True &&
                    std::any_of(keys.begin(), keys.end(), [&](const KeyDefinition& key) {
                        return weak.has(key, enough);
                    });
    }
    if (!keys.empty() && !isKeyWeak) {
        // Beside a term that selects some setups, it is looked up for those only.
        const bool isLookedUp = isAllOnPoints && condition.kind() != Kind::True &&
                                !connection.inner().dialect().weighsSubSelects();
        terms.insert(terms.begin(), has_one_of(keys, isLookedUp));
    }
    return ConditionTree::joined(Kind::And, terms);
}
} // namespace

std::size_t place_of_key(const std::vector<KeyDefinition>& columns, const std::string& key)
{
    const auto found =
        std::find_if(columns.begin(), columns.end(), [&key](const KeyDefinition& column) {
            return column.key == key;
        });
    return static_cast<std::size_t>(found - columns.begin());
}

SelectedSetups::SelectedSetups(
    DBIF_Connection& connection,
    const std::vector<TableColumn>& sources,
    std::size_t uncounted,
    const std::vector<KeyDefinition>& keys,
    const ConditionTree& condition,
    bool latestOnly)
    : pointPart_(point_part(simplified(condition, RecordTable::Setup))),
      trace_(connection.inner().trace())
{
    const TraceStep step(trace_, "select the setups");
    select(
        connection, sources, uncounted,
        selecting_condition(connection, keys, !sources.empty(), condition), latestOnly);
}

SelectedSetups::~SelectedSetups()
{
    if (trace_ != nullptr && isDecidedOnPoints()) {
        decided_.setups = setups_.size();
        trace_->decided(decided_);
    }
}

void SelectedSetups::select(
    DBIF_Connection& connection,
    const std::vector<TableColumn>& sources,
    std::size_t uncounted,
    const ConditionTree& condition,
    bool latestOnly)
{
    TableSet tables = tables_of(sources);
    tables.add(RecordTable::Setup);
    const RecordCells cells(sources, uncounted);
    std::vector<SqlText> expressions = cells.expressions();
    expressions.emplace_back("setup.id");
    // Comparisons on records that stand beside ones on points are decided by SQL, setup by setup.
    pointPart_.forEachComparison([&](const ColumnComparison& comparison) {
        if (!comparison.isOnPoints() && flags_.emplace(&comparison, flags_.size()).second) {
            tables.add(comparison.column.table());
            SqlText flag;
            expressions.push_back(
                flag << "CASE WHEN " << criteria(ConditionTree::comparison(comparison), connection)
                     << " THEN 1 ELSE 0 END");
        }
    });
    if (flags_.size() > kMostFlags) {
        throw_error(
            "The condition has " + std::to_string(flags_.size()) +
                " different comparisons of records beside ones of points, and " +
                std::to_string(kMostFlags) +
                " is the most. Write the values of one keyword as a list, or ask in several queries.",
            __FILE__, __LINE__);
    }
    const RecordQuery query(connection, tables, condition, latestOnly);
    SqlText sql = query.select(expressions, false);
    sql << "\nORDER BY setup.id";
    cells_ = cells.read(connection, sql, &hasRecordValue_, 1 + flags_.size());
    firstFlag_ = sources.size() + 1;
    const std::vector<double>& ids = cells_.columns[sources.size()].numbers;
    setups_.reserve(ids.size());
    for (const double id : ids) {
        setups_.push_back(static_cast<int>(id));
    }
}

void SelectedSetups::addConditionKeys(
    DBIF_Connection& connection,
    std::vector<KeyDefinition>* columns)
{
    pointPart_.forEachComparison([&](const ColumnComparison& comparison) {
        if (comparison.isOnPoints() && add_key(connection, comparison.column.key(), columns)) {
            columns_.emplace(&comparison, place_of_key(*columns, comparison.column.key().key));
        }
    });
}

PointMask SelectedSetups::satisfying(const SweepPoints& points)
{
    const TraceStep step(trace_, "decide the points in memory");
    const auto valuesOf = [&](const ColumnComparison& comparison) {
        const auto column = columns_.find(&comparison);
        return column == columns_.end() ? SweepSlice() : points.columns[column->second];
    };
    const auto holdsForRecord = [&](const ColumnComparison& comparison) {
        return cells_.columns[firstFlag_ + flags_.at(&comparison)].numbers[points.place] != 0;
    };
    PointMask mask = satisfying_points(pointPart_, points.count, valuesOf, holdsForRecord);
    if (trace_ != nullptr) {
        const auto kept = static_cast<std::size_t>(std::count(mask.begin(), mask.end(), 1));
        decided_.points += mask.size();
        decided_.keptPoints += kept;
        decided_.keptSetups += kept > 0 ? 1 : 0;
    }
    return mask;
}
} // namespace dbif
