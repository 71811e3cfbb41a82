#include "dbexplain/explain.h"

#include "dbapi/call/public_call.h"
#include "dbapi/query/query_condition.h"
#include "dbexplain/key_explanation.h"
#include "dbexplain/nothing_found.h"
#include "dbexplain/query_explanation.h"
#include "dbexplain/read_explanation.h"
#include "dbif/connection/column_store.h"
#include "dbif/connection/managed_connection.h"
#include "dbif/schema/table_graph.h"

#include <algorithm>

namespace dbapi {
namespace {
/// The table that the read gives rows of: where the asked keys meet, or else the compared ones.
dbif::RecordTable counted_table(const Explanation& explanation)
{
    dbif::TableSet tables;
    for (const KeyExplanation& key : explanation.keys) {
        if (key.isAsked || explanation.keywords.empty()) {
            tables.add(key.column.table());
        }
    }
    return tables.isEmpty() ? dbif::RecordTable::Setup : dbif::meeting_table(tables);
}

std::string why_latest(const Explanation& explanation)
{
    const dbif::RecordTable table = explanation.table;
    const std::size_t superseded = explanation.recordsInAll - explanation.records;
    if (!explanation.latestOnly) {
        return "They count: the query begins with \"ALLDATA:\".";
    }
    std::string text;
    switch (table) {
    case dbif::RecordTable::Setup:
        text = "They do not count: of setups that were measured again the same way, only the "
               "latest is read.";
        break;
    case dbif::RecordTable::Measurement:
    case dbif::RecordTable::MeasurementCondition:
        text = "They do not count: of measurements that were made again, only the latest is read.";
        break;
    default:
        return "There are none of this table, and conditions on measurements and setups look at "
               "the latest only. \"ALLDATA:\" in front of the query makes the others count too.";
    }
    text += superseded == 0 ? " At present there is none"
                            : " That leaves out " + records_text(superseded, table);
    return text + ". \"ALLDATA:\" in front of the query makes all count.";
}

/// Counts the records, those that the query selects and the parts that it is made of.
void count_records(const DBIF_Connection& given, const QueryTree& tree, Explanation* explanation)
{
    DBIF_Connection connection = given;
    RecordCounter counter(connection, explanation->table, explanation->latestOnly);
    explanation->records = counter.count(nullptr).records;
    explanation->recordsInAll =
        explanation->latestOnly
            ? RecordCounter(connection, explanation->table, false).count(nullptr).records
            : explanation->records;
    if (tree.root != nullptr) {
        explanation->tree = explain_tree(connection, tree, explanation->keys);
        counter.countTree(&*explanation->tree);
    }
}
} // namespace

Explanation explain(const DataRequest& request)
{
    Explanation explanation;
    explanation.connection = request.connection;
    explanation.keywords = request.keywords;
    explanation.query = request.query;
    DBIF_Connection connection = kept_connection(request.connection);
    explanation.engine = connection.inner().dialect().name();
    const QueryTree tree = parse_query(request.query);
    const QueryCondition built = build_condition(connection, tree);
    explanation.latestOnly = tree.latestOnly;
    explanation.ignored = tree.ignored;
    explanation.keys = explain_keys(
        connection, request.keywords,
        tree.root == nullptr ? std::set<std::string>() : keywords_of(*tree.root), *built.condition,
        tree.latestOnly);
    explanation.table = counted_table(explanation);
    explanation.isOfPoints =
        std::any_of(explanation.keys.begin(), explanation.keys.end(), [](const auto& key) {
            return key.isAsked && key.isOnPoints();
        });

    // The read finds nothing prepared: neither condition nor keys.
    dbif::ColumnStore::of(connection).refresh();
    explain_read(connection, request, explanation.table, &explanation.read);
    count_records(connection, tree, &explanation);
    explanation.whyLatest = why_latest(explanation);
    explanation.nothing = explain_nothing(connection, explanation);
    return explanation;
}
} // namespace dbapi
