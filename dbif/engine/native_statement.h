#pragma once

#include <QtGlobal>

#include <memory>
#include <string_view>

namespace dbif {
/// One prepared statement of a database's own C client. Positions count from 0. Every member throws
/// `DBIF_Exception` when the client reports an error.
class NativeStatement
{
    Q_DISABLE_COPY_MOVE(NativeStatement)

public:
    virtual ~NativeStatement() = default;

    /// Sets the value of a parameter for the next run.
    virtual void bindInteger(int parameter, long long value) = 0;

    /// Moves to the next row, running the statement first where needed; false when there is none
    /// left.
    virtual bool step() = 0;
    /// Drops the rows that are left, so that the statement can run again with other values.
    virtual void reset() = 0;

    /// The cells of the current row. Texts and blobs stay valid until the next `step` or `reset`;
    /// NULL reads as 0, as the number NaN or as an empty text.
    virtual bool isNull(int column) = 0;
    virtual long long integer(int column) = 0;
    virtual double number(int column) = 0;
    virtual std::string_view text(int column) = 0;

protected:
    NativeStatement() = default;
};

/// Inserts rows into one table: a value per column in order, then `endRow`. Rows may be sent in
/// batches, so an error can show as late as `flush`, which has to be called at the end.
class RowInserter
{
    Q_DISABLE_COPY_MOVE(RowInserter)

public:
    virtual ~RowInserter() = default;

    virtual RowInserter& null() = 0;
    virtual RowInserter& integer(long long value) = 0;
    virtual RowInserter& number(double value) = 0;
    virtual RowInserter& text(std::string_view value) = 0;
    virtual RowInserter& blob(std::string_view value) = 0;
    virtual void endRow() = 0;
    virtual void flush() = 0;

protected:
    RowInserter() = default;
};
} // namespace dbif
