#pragma once

#include "benchmarks/comparison.h"

#include <QtGlobal>

#include <array>
#include <charconv>
#include <set>
#include <string>
#include <variant>

namespace bench {
/// The value of a statement's only parameter, if it has one.
using PeerValue = std::variant<std::monostate, long long, std::string>;

/// A database read without the library, as a hand-written program would read it: through the
/// database's C client. Each call prepares its statement anew. Members throw `std::runtime_error`
/// on a database error.
class PeerDatabase
{
    Q_DISABLE_COPY_MOVE(PeerDatabase)

public:
    PeerDatabase() = default;
    virtual ~PeerDatabase() = default;

    /// All rows, column by column, as text: a number as `std::to_chars` writes the double, nothing
    /// for NULL.
    virtual Values texts(const std::string& sql, const PeerValue& value = {}) = 0;
    /// The same as numbers, NaN for NULL.
    virtual Numbers numbers(const std::string& sql) = 0;
    /// All rows of a statement that yields ids.
    virtual std::set<int> ids(const std::string& sql, const PeerValue& value = {}) = 0;

    /// Asks for the newest modification time.
    void readNewestTime();
};

inline std::string number_text(double number)
{
    std::array<char, 32> digits{};
    const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    return {digits.data(), end};
}

/// The loops that both peers share, for a statement of either client.
template <typename Statement>
Values texts_of(Statement& statement)
{
    const int columns = statement.columns();
    Values values(static_cast<std::size_t>(columns));
    while (statement.step()) {
        for (int column = 0; column < columns; ++column) {
            values[static_cast<std::size_t>(column)].push_back(statement.text(column));
        }
    }
    return values;
}

template <typename Statement>
Numbers numbers_of(Statement& statement)
{
    const int columns = statement.columns();
    Numbers numbers(static_cast<std::size_t>(columns));
    while (statement.step()) {
        for (int column = 0; column < columns; ++column) {
            numbers[static_cast<std::size_t>(column)].push_back(statement.number(column));
        }
    }
    return numbers;
}

template <typename Statement>
std::set<int> ids_of(Statement& statement)
{
    std::set<int> ids;
    while (statement.step()) {
        ids.insert(ids.end(), statement.integer(0));
    }
    return ids;
}
} // namespace bench
