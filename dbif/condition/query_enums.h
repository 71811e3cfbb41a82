#pragma once

/// How a condition compares a column with its value. 7 is the negation of `NOT_NULL`; these
/// libraries make it when they push NOT into a comparison, and hosts have no need of it. `IN` and
/// `NOT_IN` take a list of values.
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

/// How a compound condition joins its operands: `AND` and `OR` take two, `NOT` takes one.
enum Operator { AND = 0, OR = 1, NOT = 2 };

/// The order of the values that a retrieval returns. `UNSORTED` leaves them as they are read.
enum SortOrder { ASCENDING = 0, DESCENDING = 1, UNSORTED = 2 };
