#pragma once

#include "dbif/retrieval/result_column.h"

#include <cstddef>
#include <vector>

namespace dbif {
/// The column by which rows are sorted, and the direction.
struct SortKey
{
    std::size_t column;
    bool isAscending;
};

/// Sorts the rows: rows without a value first, numbers as numbers, complex ones by real then
/// imaginary part, texts byte by byte.
void sort_rows(const std::vector<SortKey>& keys, QueryResult* result);
/// Keeps the first of each run of equal rows.
void remove_repeated_rows(QueryResult* result);
} // namespace dbif
