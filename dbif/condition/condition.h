#pragma once

#include "dbif/connection/connection.h"

#include <QSet>
#include <QString>
#include <QStringList>

namespace dbif {
class ConditionTree;
}

/// A list of texts that holds each text once, in the order in which they came.
class DBIF_UniqueStringList : public QStringList
{
public:
    void add(const QString& text)
    {
        if (!contains(text)) {
            append(text);
        }
    }
};

/// A condition on records of the measurement database. Whoever makes a condition owns it; compounds
/// and queries keep clones.
class DBIF_QueryCondition
{
public:
    DBIF_QueryCondition() = default;
    DBIF_QueryCondition(const DBIF_QueryCondition&) = default;
    DBIF_QueryCondition& operator=(const DBIF_QueryCondition&) = default;
    DBIF_QueryCondition(DBIF_QueryCondition&&) = default;
    DBIF_QueryCondition& operator=(DBIF_QueryCondition&&) = default;

    /// A parenthesised SQL expression over qualified columns of the record tables. A comparison
    /// with something absent is not true. A condition on points of a setup selects every setup
    /// whose bounds allow it.
    [[nodiscard]] virtual QString generateSelectionCriteria(DBIF_Connection connection) const;
    /// A deep copy, which the caller owns.
    [[nodiscard]] virtual DBIF_QueryCondition* clone() const = 0;
    /// Adds every table that the condition refers to.
    virtual void addTableToSet(QSet<QString>& tables) const;
    /// Adds the columns of `table` that the condition refers to.
    virtual void columnSetFor(QString table, DBIF_UniqueStringList& columns) const;
    virtual ~DBIF_QueryCondition() = default;

    /// The condition (or its negation) as the layer works with it.
    [[nodiscard]] virtual dbif::ConditionTree tree(bool negated) const = 0;
};
