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

/// The published name of a data type, and back; nothing for a text that names none.
const QString& datatype_name(ValueKind kind);
std::optional<ValueKind> value_kind(const QString& datatype);
} // namespace dbif

/// One value read from the database. Whoever receives it owns it.
class DBIF_DataType
{
public:
    DBIF_DataType() = default;
    DBIF_DataType(const DBIF_DataType&) = default;
    DBIF_DataType& operator=(const DBIF_DataType&) = default;
    DBIF_DataType(DBIF_DataType&&) = default;
    DBIF_DataType& operator=(DBIF_DataType&&) = default;
    virtual ~DBIF_DataType() = default;

    virtual void print(std::ostream& out) const;
    /// The value's text; empty when there is no value.
    [[nodiscard]] virtual QString toString() const = 0;
    /// The value as it is written into SQL.
    [[nodiscard]] virtual QString asQueryValue() const;

    /// The value object of a database value (a packed complex number or matrix comes as its text).
    /// An unknown data type reads as text. The caller owns the result.
    static DBIF_DataType* toDataType(const QVariant& value, const QString& datatype);
};

/// A real number; NaN is 'no value'.
class DBIF_Double : public DBIF_DataType
{
public:
    explicit DBIF_Double(double number) : number_(number) {}

    [[nodiscard]] double number() const { return number_; }

    [[nodiscard]] QString toString() const override;
    [[nodiscard]] QString asQueryValue() const override;

private:
    double number_;
};

/// A text.
class DBIF_Text : public DBIF_DataType
{
public:
    explicit DBIF_Text(QString text) : text_(std::move(text)) {}

    [[nodiscard]] QString toString() const override { return text_; }

private:
    QString text_;
};
