#pragma once

#include "dbif/connection/connection.h"

#include <QSet>
#include <QString>
#include <QStringList>

namespace dbif {
class ConditionTree;
}

/// A list of texts that holds each text once, in the order in which they came. Only `add` looks for
/// a text that is there already; the list is searched from its beginning.
class DBIF_UniqueStringList : public QStringList
{
public:
    /// Appends the text unless the list has it.
    void add(const QString& text)
    {
        if (!contains(text)) {
            append(text);
        }
    }
};

/// A condition on records of the measurement database. A condition does not change once it is made,
/// and needs no connection until its SQL is generated. Whoever makes a condition owns it; compounds
/// and queries keep copies of their own.
class DBIF_QueryCondition
{
public:
    DBIF_QueryCondition() = default;
    DBIF_QueryCondition(const DBIF_QueryCondition&) = default;
    DBIF_QueryCondition& operator=(const DBIF_QueryCondition&) = default;
    DBIF_QueryCondition(DBIF_QueryCondition&&) = default;
    DBIF_QueryCondition& operator=(DBIF_QueryCondition&&) = default;

    /// A parenthesised SQL expression over qualified columns of the record tables ("(1 = 1)" where
    /// every record satisfies it), for the engine of `connection`. A comparison with an absent
    /// value is not true. A condition on points of a setup selects every setup whose bounds allow
    /// it; which points satisfy it is decided when a query is run. Throws `DBIF_Exception` on a
    /// database error.
    [[nodiscard]] virtual QString generateSelectionCriteria(DBIF_Connection connection) const;
    /// A deep copy, which the caller owns.
    [[nodiscard]] virtual DBIF_QueryCondition* clone() const = 0;
    /// Adds every table that the condition refers to: the data table ("device_data") of a key, the
    /// record table ("device") of a fixed column. What the set holds already stays.
    virtual void addTableToSet(QSet<QString>& tables) const;
    /// Adds the columns of `table`, as `addTableToSet` names it, that the condition refers to:
    /// unique keys of a data table, names of fixed columns.
    virtual void columnSetFor(QString table, DBIF_UniqueStringList& columns) const;
    virtual ~DBIF_QueryCondition() = default;

    /// The condition, or its negation, as the tree from which these libraries generate SQL. The
    /// tree has no NOT: a negation is pushed into its comparisons.
    [[nodiscard]] virtual dbif::ConditionTree tree(bool negated) const = 0;
};
