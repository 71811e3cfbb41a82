#pragma once

#include "dbif/query.h"

/// Computes how the tables of a query are joined.
class DBIF_QueryJoinAlgorithm
{
public:
    DBIF_QueryJoinAlgorithm() = default;
    virtual ~DBIF_QueryJoinAlgorithm() = default;
    DBIF_QueryJoinAlgorithm(const DBIF_QueryJoinAlgorithm&) = delete;
    DBIF_QueryJoinAlgorithm& operator=(const DBIF_QueryJoinAlgorithm&) = delete;

    /// Adds joins to the query, one for each table behind the first.
    virtual void computeJoins(DBIF_Query& query) = 0;
};

/// Computes no joins.
class DBIF_NullQueryJoinAlgorithm : public DBIF_QueryJoinAlgorithm
{
public:
    void computeJoins(DBIF_Query& query) override;
};

/// Joins the record tables of a query along the links of their records: from the table where they
/// meet up to each of them, absent parents kept as NULL.
class DBIF_VantoJoinAlgorithm : public DBIF_QueryJoinAlgorithm
{
public:
    void computeJoins(DBIF_Query& query) override;
};
