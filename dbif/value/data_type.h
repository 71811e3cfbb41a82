#pragma once

#include "dbif/schema/schema_names.h"

#include <QString>
#include <QVariant>

#include <optional>
#include <ostream>
#include <string>

namespace dbif {
/// The data types of keys, in the order in which a key given without one is looked for.
enum class ValueKind { Text, Double, Complex, Matrix };

/// The published name of a data type: "TEXT", "DOUBLE", "COMPLEX" or "MATRIX".
const QString& datatype_name(ValueKind kind);
/// The data type of exactly this name; nothing for a text that names none.
std::optional<ValueKind> value_kind(const QString& datatype);
} // namespace dbif

/// One value read from the database, which may be 'no value'. It does not change once it is made.
/// Whoever receives a value by pointer owns it and deletes it.
class DBIF_DataType
{
public:
    DBIF_DataType() = default;
    DBIF_DataType(const DBIF_DataType&) = default;
    DBIF_DataType& operator=(const DBIF_DataType&) = default;
    DBIF_DataType(DBIF_DataType&&) = default;
    DBIF_DataType& operator=(DBIF_DataType&&) = default;
    virtual ~DBIF_DataType() = default;

    /// Writes the text of the value, in UTF-8, without a line end.
    virtual void print(std::ostream& out) const;
    /// The value's text; empty when there is no value.
    [[nodiscard]] virtual QString toString() const = 0;
    /// The value as it is written into SQL: a quoted literal, unless a class below says otherwise.
    [[nodiscard]] virtual QString asQueryValue() const;

    /// Makes the value object of a database value. `datatype` is one of the published names; any
    /// other text reads as text. A number comes as a number or as a text in engineering notation, a
    /// complex number or matrix as its text; what cannot be read so becomes 'no value'. Never null;
    /// the caller owns the result.
    static DBIF_DataType* toDataType(const QVariant& value, const QString& datatype);
};

/// A real number; NaN is 'no value'.
class DBIF_Double : public DBIF_DataType
{
public:
    /// NaN makes 'no value'.
    explicit DBIF_Double(double number) : number_(number) {}

    /// The number; NaN for 'no value'.
    [[nodiscard]] double number() const { return number_; }

    /// The shortest decimal text that reads back to the same number.
    [[nodiscard]] QString toString() const override;
    /// The same text, unquoted; "NULL" for 'no value'.
    [[nodiscard]] QString asQueryValue() const override;

private:
    double number_;
};

/// A text; an empty one stands for 'no value' too.
class DBIF_Text : public DBIF_DataType
{
public:
    explicit DBIF_Text(QString text) : text_(std::move(text)) {}

    [[nodiscard]] QString toString() const override { return text_; }

private:
    QString text_;
};
