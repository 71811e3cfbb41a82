#pragma once

#include <QString>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace dbif {
/// An identifier; written in double quotes only where it is not a plain lower-case word.
struct SqlName
{
    std::string name;

    explicit SqlName(std::string_view given) : name(given) {}
};

/// A text value; written in single quotes, with quotes inside doubled. No stored text holds a zero
/// byte, so one in a literal becomes U+FFFD, which equals nothing.
struct SqlLiteral
{
    std::string text;

    explicit SqlLiteral(std::string_view given) : text(given) {}
};

/// Bytes as a value; written in hexadecimal digits.
struct SqlBlob
{
    std::string bytes;

    explicit SqlBlob(std::string_view given) : bytes(given) {}
};

/// A statement or part of one, UTF-8, put together from string literals of the source code, names,
/// values and numbers. A text that comes from outside does not compile into it: it has to be a
/// `SqlName` or a `SqlLiteral`, which are escaped.
class SqlText
{
public:
    SqlText() = default;

    template <std::size_t N>
    SqlText(const char (&literal)[N]) : text_(literal, N - 1) // NOLINT(google-explicit-constructor)
    {}

    template <std::size_t N>
    SqlText(char (&buffer)[N]) = delete;

    template <std::size_t N>
    SqlText& operator<<(const char (&literal)[N])
    {
        text_.append(literal, N - 1);
        return *this;
    }

    SqlText& operator<<(const SqlText& other)
    {
        text_ += other.text_;
        return *this;
    }

    SqlText& operator<<(const SqlName& name);
    SqlText& operator<<(const SqlLiteral& literal);
    SqlText& operator<<(const SqlBlob& blob);
    /// The shortest decimal text of a finite number.
    SqlText& operator<<(double number);
    SqlText& operator<<(long long number);

    SqlText& operator<<(int number) { return *this << static_cast<long long>(number); }

    [[nodiscard]] bool isEmpty() const { return text_.empty(); }

    [[nodiscard]] const std::string& utf8() const { return text_; }

    [[nodiscard]] QString toQt() const;

private:
    std::string text_;
};

/// The texts that `part` makes of the items, with commas between.
template <typename Items, typename Part = std::identity>
SqlText listed(const Items& items, const Part& part = {})
{
    SqlText sql;
    bool isFirst = true;
    for (const auto& item : items) {
        if (!isFirst) {
            sql << ", ";
        }
        isFirst = false;
        sql << std::invoke(part, item);
    }
    return sql;
}

/// "table.column".
SqlText qualified(std::string_view table, std::string_view column);
} // namespace dbif
