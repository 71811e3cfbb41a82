#include "dbapi/db_curves.h"

#include "dbapi/call/public_call.h"
#include "dbapi/key/wanted_key.h"
#include "dbapi/read/keyword_read.h"
#include "dbif/condition/column_condition.h"
#include "dbif/condition/id_list.h"
#include "dbif/connection/bulk_cursor.h"
#include "dbif/connection/column_store.h"
#include "dbif/connection/transaction_guard.h"
#include "dbif/host/error_text.h"
#include "dbif/query/record_query.h"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <set>
#include <unordered_map>

namespace dbapi {
namespace {
/// Builtin keynames that may tell setups apart, the most telling first; the last one always does.
constexpr std::array kIdentities{"$DEVNAME",     "$TEMP",    "$LOT",     "$WAFER",
                                 "$DIE",         "$SUBSITE", "$DEVID",   "$BLOCK",
                                 "$ROUTINENAME", "$SETNAME", "$SETPATH", "$SETDBID"};

using Kind = dbif::ResultColumn::Kind;

/// A read of curves: the keywords, and the read of their columns.
struct Asked
{
    const std::vector<std::string>& keywords;
    dbif::ColumnRead read;

    [[nodiscard]] const dbif::TableColumn& column(std::size_t keyword) const
    {
        return read.columns[keyword];
    }
};

/// Refuses a keyword whose values cannot be drawn.
void check_axis(const Asked& asked, std::size_t keyword, bool isHeight)
{
    const dbif::ValueKind kind = asked.column(keyword).kind();
    const auto refuse = [&](const std::string& complaint) {
        const std::string& written = asked.keywords[keyword];
        throw FaultError(
            {Fault::Kind::Argument,
             "Error: The keyword \"" + written + "\" " + complaint,
             Fault::Where::Keyword,
             written,
             0,
             written.size(),
             {}});
    };
    if (kind == dbif::ValueKind::Matrix) {
        refuse("holds matrices, which no curve shows.\n");
    }
    if (isHeight && kind == dbif::ValueKind::Text) {
        refuse("holds texts, and a curve rises by numbers. Put it first, or between the "
               "others to tell curves apart.\n");
    }
}

/// The condition of the query, and that points have x and y.
dbif::ConditionTree with_both_axes(const dbif::ColumnRead& read, std::size_t y)
{
    std::vector<dbif::ConditionTree> parts{read.condition};
    for (const dbif::TableColumn* column : {&read.columns.front(), &read.columns[y]}) {
        if (column->isOnPoints()) {
            parts.push_back(DBIF_SingleColumnCondition(*column, NOT_NULL, "0").tree(false));
        }
    }
    return dbif::ConditionTree::joined(dbif::ConditionTree::Kind::And, parts);
}

/// The statement that selects the setups that have the key and that the query, as far as it can be
/// decided without points, selects.
dbif::SqlText setups_with(const dbif::TableColumn& key, const dbif::ColumnRead& read)
{
    const dbif::ConditionTree both = dbif::ConditionTree::joined(
        dbif::ConditionTree::Kind::And,
        {read.condition, DBIF_SingleColumnCondition(key, NOT_NULL, "0").tree(false)});
    return dbif::RecordQuery(read.connection, {dbif::RecordTable::Setup}, both, read.latestOnly)
        .selectIds();
}

/// The inputs, beside the keywords themselves, of setups that have the keyword which is on points.
std::vector<dbif::TableColumn> other_inputs(const dbif::ColumnRead& read)
{
    std::set<int> taken;
    const dbif::TableColumn* onPoints = nullptr;
    for (const dbif::TableColumn& column : read.columns) {
        if (column.isOnPoints()) {
            taken.insert(column.key().id);
            onPoints = &column;
        }
    }
    DBIF_Connection connection = read.connection;
    dbif::SqlText sql =
        "SELECT DISTINCT setup_column_id FROM setup_association WHERE setup_id IN (";
    dbif::BulkCursor cursor(connection, sql << setups_with(*onPoints, read) << ")");
    std::set<int> present;
    while (cursor.next()) {
        present.insert(cursor.integer(0));
    }
    std::vector<dbif::TableColumn> inputs;
    for (const dbif::KeyDefinition& key :
         dbif::ColumnStore::of(connection).all(connection, dbif::RecordTable::Setup)) {
        if (key.isInput() && present.contains(key.id) && !taken.contains(key.id)) {
            inputs.emplace_back(dbif::RecordTable::Setup, key);
        }
    }
    return inputs;
}

bool is_number(const dbif::ResultColumn& column)
{
    return column.kind == Kind::Double || column.kind == Kind::Integer;
}

using Role = CurveRows::Parameter::Kind;

Role role_of(const dbif::TableColumn& column)
{
    if (!column.isOnPoints()) {
        return Role::OfRecord;
    }
    return column.key().isInput() ? Role::Input : Role::Output;
}

CurveRows read_rows(const Asked& asked)
{
    const std::size_t asks = asked.keywords.size();
    dbif::ColumnRead read = asked.read;
    std::vector<dbif::TableColumn> inputs;
    const bool isSwept = read.columns.front().isOnPoints();
    if (read.isOnPoints()) {
        inputs = other_inputs(read);
        read.condition = with_both_axes(read, asks - 1);
        read.columns.insert(read.columns.end(), inputs.begin(), inputs.end());
    }
    if (isSwept) {
        read.columns.push_back(dbif::TableColumn::id(dbif::RecordTable::Setup));
    }
    std::vector<dbif::ResultColumn> columns = dbif::read_columns(std::move(read)).columns;

    CurveRows rows;
    const auto addParameter = [&](std::size_t column, const std::string& name, Role role) {
        const bool isNumber = is_number(columns[column]);
        rows.parameters.push_back({{name, isNumber}, role, std::move(columns[column])});
    };
    for (std::size_t i = 1; i + 1 < asks; ++i) {
        addParameter(i, asked.keywords[i], role_of(asked.column(i)));
    }
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        addParameter(asks + i, inputs[i].key().name, Role::Input);
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
void add_identities(const DBIF_Connection& connection, CurveSet* set)
{
    std::set<int> setups;
    for (const Curve& curve : set->curves) {
        setups.insert(curve.setup);
    }
    const dbif::IdList ids(
        connection, dbif::RecordTable::Setup, std::vector<int>(setups.begin(), setups.end()));
    dbif::ColumnRead read(connection, {dbif::TableColumn::id(dbif::RecordTable::Setup)});
    read.latestOnly = false;
    read.condition = ids.condition();
    for (const char* identity : kIdentities) {
        read.columns.push_back(*fixed_candidate(std::get<WantedKey>(wanted_key(identity))).column);
    }
    const dbif::QueryResult result = dbif::read_columns(std::move(read));
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
        add_identities(asked.read.connection, &curves);
    }
    return curves;
}

/// Runs a read of curves or of a sample as a public call.
template <typename Read>
bool run_read(
    const std::string& connectionName,
    const std::vector<std::string>& keywords,
    const std::string& query,
    std::string* errors,
    const Read& read)
{
    dbif::clear_error(errors);
    return run_call_without_exceptions(connectionName, query, errors, [&] {
        const Asked asked{keywords, read_of_keywords(connectionName, keywords, query)};
        const dbif::ReadTransaction transaction(asked.read.connection);
        read(asked);
    });
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
        return fail_call(argument_fault("Error: A curve needs two keywords at least.\n"), errors);
    }
    return run_read(connectionName, keywords, query, errors, [&](const Asked& asked) {
        check_axis(asked, 0, false);
        check_axis(asked, keywords.size() - 1, true);
        *curves = read_curves(asked);
    });
}

bool db_get_value_sample(
    const std::string& connectionName,
    const std::string& keyword,
    ValueSample* sample,
    const std::string& query,
    std::string* errors)
{
    *sample = {};
    return run_read(connectionName, {keyword}, query, errors, [&](const Asked& asked) {
        check_axis(asked, 0, false);
        dbif::ResultColumn values = std::move(dbif::read_columns(asked.read).columns.front());
        sample->isOfPoints = asked.read.isOnPoints();
        sample->values = axis_numbers(std::move(values), &sample->axis);
    });
}
} // namespace dbapi
