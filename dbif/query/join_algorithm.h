#pragma once

#include "dbif/query/query.h"

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
