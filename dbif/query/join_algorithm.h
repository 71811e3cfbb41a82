#pragma once

#include "dbif/query/query.h"

/// Computes no joins: the tables of the query stand side by side in its FROM. Has no state, so that
/// any number of queries may share one.
class DBIF_NullQueryJoinAlgorithm : public DBIF_QueryJoinAlgorithm
{
public:
    void computeJoins(DBIF_Query& query) override;
};

/// Joins the record tables of a query along the links of their records: from the
/// highest table whose records lead to all of them up to each, with absent parents kept as NULL. A
/// data table counts as its record table, and a table that is none of the schema is left unjoined.
/// Has no state, so that any number of queries may share one.
class DBIF_VantoJoinAlgorithm : public DBIF_QueryJoinAlgorithm
{
public:
    void computeJoins(DBIF_Query& query) override;
};
