#pragma once

#include "dbif/connection/connection.h"
#include "dbif/connection/managed_connection.h"
#include "dbif/engine/native_statement.h"

#include <memory>
#include <optional>
#include <string_view>

namespace dbif {
/// Reads the rows of one statement through the database's own client: `while (cursor.next())`.
/// Numbers are read as doubles, never by way of text. Every member throws `DBIF_Exception` on a
/// database error.
class BulkCursor
{
public:
    BulkCursor(const DBIF_Connection& connection, const SqlText& sql)
        : statement_(connection.inner().prepare(sql))
    {}

    bool next() { return statement_->step(); }

    [[nodiscard]] bool isNull(int column) { return statement_->isNull(column); }

    /// The whole number in the column; 0 when there is none.
    [[nodiscard]] int integer(int column) { return static_cast<int>(statement_->integer(column)); }

    /// The number in the column; NaN when there is none.
    [[nodiscard]] double number(int column) { return statement_->number(column); }

    /// The bytes in the column, valid until `next`; empty when there are none.
    [[nodiscard]] std::string_view text(int column) { return statement_->text(column); }

private:
    std::unique_ptr<NativeStatement> statement_;
};
} // namespace dbif
