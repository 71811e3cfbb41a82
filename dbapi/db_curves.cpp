#include "dbapi/db_curves.h"

#include "dbapi/call/public_call.h"
#include "dbapi/keyword_query.h"
#include "dbapi/words/builtin_keynames.h"
#include "dbif/condition/compound_condition.h"
#include "dbif/condition/id_list.h"
#include "dbif/connection/bulk_cursor.h"
#include "dbif/connection/column_store.h"
#include "dbif/connection/transaction_guard.h"
#include "dbif/host/error_text.h"
#include "dbif/host/host_string.h"
#include "dbif/query/dynamic_column.h"
#include "dbif/query/record_query.h"
#include "dbif/record/record_tables.h"
#include "dbif/retrieval/query_run.h"
#include "dbif/retrieval/result_source.h"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <set>
#include <unordered_map>

namespace dbapi {
namespace {
/// What may tell setups apart, the most telling first; the last one always does.
constexpr std::array kIdentities{"$DEVNAME",     "$TEMP",    "$LOT",     "$WAFER",
                                 "$DIE",         "$SUBSITE", "$DEVID",   "$BLOCK",
                                 "$ROUTINENAME", "$SETNAME", "$SETPATH", "$SETDBID"};

using Kind = dbif::ResultColumn::Kind;

/// A read of curves: what was asked for, and where it comes from.
struct Asked
{
    const KeywordQuery& query;
    const std::vector<std::string>& keywords;
    std::vector<dbif::ResultSource> sources;

    [[nodiscard]] bool isOnPoints() const
    {
        return std::any_of(sources.begin(), sources.end(), [](const dbif::ResultSource& source) {
            return source.isOnPoints();
        });
    }
};

Asked find_sources(const KeywordQuery& query, const std::vector<std::string>& keywords)
{
    Asked asked{query, keywords, {}};
    for (const QueryColumn& column : query.columns) {
        asked.sources.push_back(dbif::find_source(query.connection, column.table, column.column));
    }
    return asked;
}

/// Why the values of a keyword cannot be drawn; empty when they can.
std::string axis_error(const Asked& asked, std::size_t keyword, bool isHeight)
{
    const dbif::ResultSource& source = asked.sources[keyword];
    if (source.isKey && source.key.kind == dbif::ValueKind::Matrix) {
        return "Error: The keyword \"" + asked.keywords[keyword] +
               "\" holds matrices, which no curve shows.\n";
    }
    const bool isText = source.isKey ? source.key.kind == dbif::ValueKind::Text
                                     : source.fixed.kind == dbif::FixedKind::Text;
    if (isHeight && isText) {
        return "Error: The keyword \"" + asked.keywords[keyword] +
               "\" holds texts, and a curve rises by numbers. Put it first, or between the "
               "others to tell curves apart.\n";
    }
    return {};
}

/// The condition of the query, and that points have x and y.
std::unique_ptr<DBIF_QueryCondition> with_both_axes(const Asked& asked)
{
    std::unique_ptr<DBIF_QueryCondition> condition(asked.query.condition->clone());
    for (const dbif::ResultSource* source : {&asked.sources.front(), &asked.sources.back()}) {
        if (source->isOnPoints()) {
            const DBIF_SingleColumnCondition present =
                DBIF_SetupColumn(source->key, asked.query.connection).notNull();
            condition =
                std::make_unique<DBIF_CompoundQueryCondition>(condition.get(), AND, &present);
        }
    }
    return condition;
}

/// The statement that selects the setups that have the key and that the query, as far as it can be
/// decided without points, selects.
dbif::SqlText setups_with(const dbif::KeyDefinition& key, const KeywordQuery& asked)
{
    const DBIF_SingleColumnCondition present = DBIF_SetupColumn(key, asked.connection).notNull();
    const DBIF_CompoundQueryCondition both(asked.condition, AND, &present);
    return dbif::RecordQuery(
               asked.connection, {dbif::RecordTable::Setup}, both.tree(false), asked.latestOnly)
        .selectIds();
}

/// The inputs, beside the keywords themselves, of setups that have the keyword which is on points.
std::vector<dbif::KeyDefinition> other_inputs(const Asked& asked)
{
    std::set<int> taken;
    const dbif::KeyDefinition* onPoints = nullptr;
    for (const dbif::ResultSource& source : asked.sources) {
        if (source.isOnPoints()) {
            taken.insert(source.key.id);
            onPoints = &source.key;
        }
    }
    DBIF_Connection& connection = asked.query.connection;
    dbif::SqlText sql =
        "SELECT DISTINCT setup_column_id FROM setup_association WHERE setup_id IN (";
    dbif::BulkCursor cursor(connection, sql << setups_with(*onPoints, asked.query) << ")");
    std::set<int> present;
    while (cursor.next()) {
        present.insert(cursor.integer(0));
    }
    std::vector<dbif::KeyDefinition> inputs;
    for (const dbif::KeyDefinition& key :
         dbif::ColumnStore::of(connection).all(connection, dbif::RecordTable::Setup)) {
        if (key.isInput() && present.contains(key.id) && !taken.contains(key.id)) {
            inputs.push_back(key);
        }
    }
    return inputs;
}

bool is_number(const dbif::ResultColumn& column)
{
    return column.kind == Kind::Double || column.kind == Kind::Integer;
}

using Role = CurveRows::Parameter::Kind;

Role role_of(const dbif::ResultSource& source)
{
    if (!source.isOnPoints()) {
        return Role::OfRecord;
    }
    return source.key.isInput() ? Role::Input : Role::Output;
}

CurveRows read_rows(const Asked& asked)
{
    DBIF_VantoQuery query = asked.query.query();
    std::vector<dbif::KeyDefinition> inputs;
    int position = static_cast<int>(asked.keywords.size());
    const bool isSwept = asked.sources.front().isOnPoints();
    if (asked.isOnPoints()) {
        inputs = other_inputs(asked);
        for (const dbif::KeyDefinition& input : inputs) {
            query.addColumnAt(DBIF_Setup::DATA_TABLE_NAME, dbif::to_qt(input.key), position++);
        }
        query.setCondition(with_both_axes(asked).get());
    }
    if (isSwept) {
        query.addColumnAt(DBIF_Setup::MASTER_TABLE_NAME, QStringLiteral("id"), position);
    }
    std::vector<dbif::ResultColumn> columns = dbif::run_query(query).columns;

    CurveRows rows;
    const std::size_t asks = asked.keywords.size();
    const auto addParameter = [&](std::size_t column, const std::string& name, Role role) {
        const bool isNumber = is_number(columns[column]);
        rows.parameters.push_back({{name, isNumber}, role, std::move(columns[column])});
    };
    for (std::size_t i = 1; i + 1 < asks; ++i) {
        addParameter(i, asked.keywords[i], role_of(asked.sources[i]));
    }
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        addParameter(asks + i, inputs[i].name, Role::Input);
    }
    rows.isSwept = isSwept;
    if (isSwept) {
        rows.setups = std::move(columns.back().numbers);
    }
    rows.x = std::move(columns[0]);
    rows.y = std::move(columns[asks - 1]);
    return rows;
}

/// Adds the parameters that tell setups apart.
void add_identities(DBIF_Connection& connection, CurveSet* set)
{
    std::set<int> setups;
    for (const Curve& curve : set->curves) {
        setups.insert(curve.setup);
    }
    const std::map<std::string, std::string> builtins = build_builtin_keywords(false);
    DBIF_VantoQuery query(connection);
    query.addColumn(DBIF_Setup::MASTER_TABLE_NAME, QStringLiteral("id"), false);
    for (const char* identity : kIdentities) {
        const QString column = dbif::to_qt(builtins.at(identity));
        query.addColumn(column.section(u'.', 0, 0), column.section(u'.', 1), false);
    }
    const dbif::IdList ids(
        connection, dbif::RecordTable::Setup, std::vector<int>(setups.begin(), setups.end()));
    const dbif::TreeCondition picked(ids.condition());
    query.setCondition(&picked);
    const dbif::QueryResult result = dbif::run_query(query);
    std::unordered_map<int, std::size_t> rowOf;
    for (std::size_t row = 0; row < result.rows; ++row) {
        rowOf.emplace(static_cast<int>(result.columns[0].numbers[row]), row);
    }
    for (std::size_t i = 0; i < kIdentities.size(); ++i) {
        const dbif::ResultColumn& values = result.columns[i + 1];
        set->parameters.push_back({kIdentities.at(i), is_number(values)});
        for (Curve& curve : set->curves) {
            curve.parameters.push_back(values.text(rowOf.at(curve.setup)));
        }
    }
}

CurveSet read_curves(const Asked& asked)
{
    CurveSet curves = group_into_curves(read_rows(asked));
    if (curves.isSwept && !curves.curves.empty()) {
        add_identities(asked.query.connection, &curves);
    }
    return curves;
}

/// The road that both reads share; `read` says what is wrong with the keywords, or nothing.
template <typename Read>
bool run_read(
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    const std::string& query,
    std::string* errors,
    const Read& read)
{
    dbif::clear_error(errors);
    const PublicCall call(connectionName, query, errors);
    if (!call.hasBegun()) {
        return false;
    }
    std::string reason;
    const auto readInTransaction = [&](const KeywordQuery& found) {
        DConHelper transaction(found.connection);
        if (!found.connection.isInTransaction()) {
            found.connection.beginTransaction();
            transaction.arm();
        }
        reason = read(find_sources(found, keywords));
    };
    bool isFound = false;
    try {
        isFound = with_keyword_query(connectionName, keywords, query, &reason, readInTransaction);
    } catch (const DBIF_Exception& exception) {
        isFound = false;
        dbapi_build_error_string_from_dbif_exception(exception, &reason);
    }
    if (!isFound || !reason.empty()) {
        dbif::deliver_error(errors, reason);
        return false;
    }
    return true;
}
} // namespace

bool db_get_curves(
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    CurveSet* curves,
    const std::string& query,
    std::string* errors)
{
    *curves = {};
    if (keywords.size() < 2) {
        dbif::deliver_error(errors, "Error: A curve needs two keywords at least.\n");
        return false;
    }
    CurveSet found;
    const auto read = [&found](const Asked& asked) {
        std::string error = axis_error(asked, 0, false);
        error = error.empty() ? axis_error(asked, asked.keywords.size() - 1, true) : error;
        found = error.empty() ? read_curves(asked) : CurveSet();
        return error;
    };
    if (!run_read(connectionName, keywords, query, errors, read)) {
        return false;
    }
    *curves = std::move(found);
    return true;
}

bool db_get_value_sample(
    const std::string& connectionName,
    const std::string& keyword,
    ValueSample* sample,
    const std::string& query,
    std::string* errors)
{
    *sample = {};
    ValueSample found;
    const auto read = [&found](const Asked& asked) {
        std::string error = axis_error(asked, 0, false);
        if (error.empty()) {
            std::vector<dbif::ResultColumn> columns = dbif::run_query(asked.query.query()).columns;
            found.isOfPoints = asked.isOnPoints();
            found.values = axis_numbers(std::move(columns.front()), &found.axis);
        }
        return error;
    };
    if (!run_read(connectionName, {keyword}, query, errors, read)) {
        return false;
    }
    *sample = std::move(found);
    return true;
}
} // namespace dbapi
