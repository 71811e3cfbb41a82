#pragma once

/// How a condition compares a column with its value. 7 is the negation of `NOT_NULL`; only the
/// layer itself makes it, when it pushes NOT into a comparison.
enum Comparator {
    EQUAL = 0,
    NOT_EQUAL = 1,
    LESS = 2,
    LESS_EQUAL = 3,
    GREATER = 4,
    GREATER_EQUAL = 5,
    NOT_NULL = 6,
    IS_NULL = 7,
    IN = 8,
    NOT_IN = 9
};

/// How a compound condition joins its operands; `NOT` takes one.
enum Operator { AND = 0, OR = 1, NOT = 2 };

/// The order of the values that a retrieval returns.
enum SortOrder { ASCENDING = 0, DESCENDING = 1, UNSORTED = 2 };
