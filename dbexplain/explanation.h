#pragma once

#include "dbapi/key/key_resolution.h"
#include "dbapi/query/query_syntax.h"
#include "dbif/condition/condition.h"
#include "dbif/engine/read_trace.h"
#include "dbif/schema/schema_names.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace dbapi {
/// The category that a fixed column is shown with.
inline constexpr const char* kFixedColumn = "fixed column";
/// The data type that an id is shown with.
inline constexpr const char* kWholeNumber = "whole number";

/// What a keyword stands for.
struct KeyExplanation
{
    std::string keyword;
    /// Whether its values are asked for, and whether the query compares it.
    bool isAsked = false;
    bool isCompared = false;
    /// Which key, and by which rule; always a found one.
    Resolution found;
    /// For people: "INPUT", "fixed column" or nothing; "DOUBLE", "whole number" and so on.
    std::string category;
    std::string datatype;
    std::string rule;

    [[nodiscard]] std::string keyName() const { return std::string(found.column().name()); }

    [[nodiscard]] std::string tableName() const
    {
        return std::string(dbif::table_info(found.column().table()).name);
    }

    [[nodiscard]] bool isFixed() const { return !found.column().isKey(); }

    [[nodiscard]] bool isNumber() const;
    /// Whether it has a value per point of a setup.
    [[nodiscard]] bool isOnPoints() const;
};

/// How much a condition keeps: records of the table that is counted, and the points that were found
/// for it when it is decided on points.
struct KeptCount
{
    std::size_t records = 0;
    std::optional<std::size_t> points;
};

/// A node of the query's tree, with what it keeps.
struct NodeExplanation
{
    QueryNode::Kind kind = QueryNode::Kind::True;
    /// As it was understood: "W from 1e-06 to 5e-06", "AND"; and as it stands in the query.
    std::string text;
    std::string written;
    /// The keyword of a term, and its value as written.
    std::string keyword;
    std::string value;
    std::shared_ptr<const DBIF_QueryCondition> condition;
    bool isOnPoints = false;
    /// By itself, and, for an operand of AND, together with the operands before it; nothing when
    /// the query is too large to count every part of it.
    std::optional<KeptCount> alone;
    std::optional<KeptCount> soFar;
    std::vector<NodeExplanation> operands;

    /// Whether its operands have been counted, too.
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
    std::vector<std::string> reasons;
    std::vector<std::string> suggestions;
};

/// The read that is explained, as it ran.
struct ReadExplanation
{
    std::size_t rows = 0;
    double seconds = 0;
    std::vector<dbif::TracedStep> steps;
    std::vector<dbif::TracedStatement> statements;
    std::optional<dbif::TracedPoints> points;
};

/// "1 setup", "12 measurement conditions".
std::string records_text(std::size_t count, dbif::RecordTable table);

struct Explanation
{
    std::string connection;
    std::string engine;
    std::vector<std::string> keywords;
    std::string query;
    bool latestOnly = true;
    std::string whyLatest;
    std::vector<KeyExplanation> keys;
    /// The table whose records are counted, how many of them count, and how many there are with
    /// superseded ones.
    dbif::RecordTable table = dbif::RecordTable::Setup;
    std::size_t records = 0;
    std::size_t recordsInAll = 0;
    /// Whether a row is a point of a setup, and not a record.
    bool isOfPoints = false;
    /// Nothing for the empty query.
    std::optional<NodeExplanation> tree;
    /// Parts of the query that select nothing.
    std::vector<IgnoredText> ignored;
    ReadExplanation read;
    NothingFound nothing;

    /// The key of a keyword; null for one that stands for none.
    [[nodiscard]] const KeyExplanation* keyOf(const std::string& keyword) const;
    /// How many records the whole query keeps.
    [[nodiscard]] std::size_t keptRecords() const;
};
} // namespace dbapi
