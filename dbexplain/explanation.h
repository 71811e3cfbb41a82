#pragma once

#include "dbapi/query/query_syntax.h"
#include "dbif/condition/condition.h"
#include "dbif/engine/read_trace.h"
#include "dbif/schema/schema_names.h"
#include "dbif/value/table_column.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// The result of `explain` (see explain.h), as plain data: all texts are UTF-8, all times seconds.

namespace dbapi {
/// The category that a fixed column is shown with.
inline constexpr const char* kFixedColumn = "fixed column";
/// The data type that an id is shown with.
inline constexpr const char* kWholeNumber = "whole number";

/// The key that a keyword of the request or of the query stands for.
struct KeyExplanation
{
    /// The keyword as it was written.
    std::string keyword;
    /// Tells whether the request asks for its values, and whether the query compares it.
    bool isAsked = false;
    bool isCompared = false;
    /// The key or fixed column.
    dbif::TableColumn column;
    /// Words for people: the category ("INPUT", "fixed column" or nothing), the data type
    /// ("DOUBLE", "whole number"), and the rule by which this key was chosen ("the only key of its
    /// name").
    std::string category;
    std::string datatype;
    std::string rule;

    /// The name of the key or column, and of its record table ("device").
    [[nodiscard]] std::string keyName() const { return std::string(column.name()); }

    [[nodiscard]] std::string tableName() const
    {
        return std::string(dbif::table_info(column.table()).name);
    }

    [[nodiscard]] bool isFixed() const { return !column.isKey(); }

    /// Tells whether its values are real numbers or ids.
    [[nodiscard]] bool isNumber() const;
    /// Tells whether it has a value for each point of a setup.
    [[nodiscard]] bool isOnPoints() const;
};

/// How much a condition selects.
struct KeptCount
{
    /// Records of `Explanation::table`.
    std::size_t records = 0;
    /// The points of setups that satisfy the condition, where it is decided on points.
    std::optional<std::size_t> points;
};

/// A node of the query's tree, with what it selects.
struct NodeExplanation
{
    QueryNode::Kind kind = QueryNode::Kind::True;
    /// The node as it was understood: "W from 1e-06 to 5e-06", "AND".
    std::string text;
    /// The piece of the query that it was read from.
    std::string written;
    /// The keyword of a term, and its value as written; both are empty for other nodes.
    std::string keyword;
    std::string value;
    /// The condition that the node stands for.
    std::shared_ptr<const DBIF_QueryCondition> condition;
    /// Tells whether the points of setups have to be read to decide it.
    bool isOnPoints = false;
    /// The records that the node selects by itself. The root always has it; the others have nothing
    /// when the query has too many parts to count each.
    std::optional<KeptCount> alone;
    /// Those that an operand of AND selects together with the operands before it (the first one: as
    /// `alone`); nothing for other nodes.
    std::optional<KeptCount> soFar;
    /// The operands of AND, OR and NOT, in the order of the query.
    std::vector<NodeExplanation> operands;

    /// Tells whether its operands have been counted, too.
    [[nodiscard]] bool isCountedInParts() const
    {
        return operands.empty() || operands.front().alone.has_value();
    }
};

/// Why a read gives no row, in sentences, and what would give some.
struct NothingFound
{
    enum class Cause {
        None,      ///< there are rows
        NoRecords, ///< the table has no record at all
        NoValues,  ///< there are records, but none has a value of the keywords
        Query      ///< the query selects no record
    };

    Cause cause = Cause::None;
    /// One sentence or two for each part of the query that is to blame; empty when there are rows.
    std::vector<std::string> reasons;
    /// Other reads that would give rows, or show why not: stored values near the one that was
    /// compared, the query without one of its terms.
    std::vector<std::string> suggestions;
};

/// The read that is explained, as it ran.
struct ReadExplanation
{
    std::size_t rows = 0;
    /// The time of the whole read; asking the engine for plans is not in it.
    double seconds = 0;
    /// The steps, each without the steps within it, in the order in which they first began.
    std::vector<dbif::TracedStep> steps;
    /// The statements that ran, with their plans. Those that differ only in numbers are one entry.
    std::vector<dbif::TracedStatement> statements;
    /// The number of points that were looked at; nothing when no condition was decided on points.
    std::optional<dbif::TracedPoints> points;
};

/// A number of records of a table, in words: "1 setup", "12 measurement conditions".
std::string records_text(std::size_t count, dbif::RecordTable table);

/// All that `explain` tells about a read.
struct Explanation
{
    /// The request.
    std::string connection;
    std::vector<std::string> keywords;
    std::string query;
    /// The database engine: "SQLite", "MySQL".
    std::string engine;
    /// False when the query begins with "ALLDATA:"; and what that means for superseded records, in
    /// sentences.
    bool latestOnly = true;
    std::string whyLatest;
    /// The keys of the requested keywords, then those of the other keywords in the query. A keyword
    /// that stands for no key, as one alone in braces may, is left out.
    std::vector<KeyExplanation> keys;
    /// The table whose records are counted: the one in which the tables of the keywords meet.
    dbif::RecordTable table = dbif::RecordTable::Setup;
    /// How many of its records count, and how many there are together with superseded ones.
    std::size_t records = 0;
    std::size_t recordsInAll = 0;
    /// Tells whether a row of the result is a point of a setup, and not a record.
    bool isOfPoints = false;
    /// The tree of the query; nothing for an empty query.
    std::optional<NodeExplanation> tree;
    /// Parts of the query string that the grammar passes over, so that they select nothing.
    std::vector<IgnoredText> ignored;
    ReadExplanation read;
    NothingFound nothing;

    /// The key of a keyword, which lives as long as this object; null for a keyword that stands for
    /// none.
    [[nodiscard]] const KeyExplanation* keyOf(const std::string& keyword) const;
    /// The number of records the whole query selects.
    [[nodiscard]] std::size_t keptRecords() const;
};
} // namespace dbapi
