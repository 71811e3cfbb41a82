#include "dbapi/db_arrow.h"

#include "dbapi/arrow_layout.h"

#include <cerrno>
#include <new>
#include <string>
#include <utility>

namespace dbapi {
namespace {
SharedColumns shared_columns_of(ColumnTable table)
{
    SharedColumns columns;
    for (ValueColumn& column : table.columns) {
        columns.push_back(std::make_shared<const ValueColumn>(std::move(column)));
    }
    return columns;
}

std::vector<const ValueColumn*> pointers_to(const SharedColumns& columns)
{
    std::vector<const ValueColumn*> pointers;
    for (const auto& column : columns) {
        pointers.push_back(column.get());
    }
    return pointers;
}

/// The tables behind a stream, and its last error.
class Stream
{
public:
    Stream() = default;
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
    virtual ~Stream() = default;

    static Stream& of(ArrowArrayStream* stream)
    {
        return *static_cast<Stream*>(stream->private_data);
    }

    virtual void describe(ArrowSchema* out) = 0;
    /// Leaves `out` as it is at the end; the number of an error on failure, whose text is `error`.
    virtual int next(ArrowArray* out) = 0;

    /// Runs a callback, out of which nothing is thrown.
    template <typename Run>
    int guarded(const Run& run) noexcept
    {
        try {
            error.clear();
            return run();
        } catch (const std::bad_alloc&) {
            return fail(ENOMEM, "Error: There is not enough memory.\n");
        } catch (const std::exception& exception) {
            return fail(EIO, exception.what());
        } catch (...) {
            return fail(EIO, "Error: The progress of the read was interrupted.\n");
        }
    }

    std::string error;

private:
    int fail(int code, const char* text) noexcept
    {
        try {
            error = text;
        } catch (...) {
            error.clear();
        }
        return code;
    }
};

/// The batches of a reader.
class ReaderStream : public Stream
{
public:
    explicit ReaderStream(std::unique_ptr<ColumnReader> reader) : reader_(std::move(reader)) {}

    void describe(ArrowSchema* out) override
    {
        std::vector<const ValueColumn*> columns;
        for (const ValueColumn& column : reader_->columns()) {
            columns.push_back(&column);
        }
        make_table_schema(columns, out);
    }

    int next(ArrowArray* out) override
    {
        ColumnTable batch;
        if (!reader_->next(&batch, &error)) {
            switch (reader_->fault()->kind) {
            case Fault::Kind::Cancelled:
                return ECANCELED;
            case Fault::Kind::Memory:
                return ENOMEM;
            default:
                return EIO;
            }
        }
        if (batch.rows > 0) {
            const std::size_t rows = batch.rows;
            make_table_array(shared_columns_of(std::move(batch)), rows, out);
        }
        return 0;
    }

private:
    std::unique_ptr<ColumnReader> reader_;
};

/// Columns that are in memory, as one batch.
class ColumnsStream : public Stream
{
public:
    ColumnsStream(SharedColumns columns, std::size_t rows)
        : columns_(std::move(columns)), rows_(rows)
    {}

    void describe(ArrowSchema* out) override { make_table_schema(pointers_to(columns_), out); }

    int next(ArrowArray* out) override
    {
        if (!isGiven_) {
            make_table_array(columns_, rows_, out);
            isGiven_ = true;
        }
        return 0;
    }

private:
    SharedColumns columns_;
    std::size_t rows_;
    bool isGiven_ = false;
};

int get_schema(ArrowArrayStream* stream, ArrowSchema* out)
{
    *out = {};
    Stream& self = Stream::of(stream);
    return self.guarded([&] {
        self.describe(out);
        return 0;
    });
}

int get_next(ArrowArrayStream* stream, ArrowArray* out)
{
    // An array that is released is the end of the stream.
    *out = {};
    Stream& self = Stream::of(stream);
    return self.guarded([&] { return self.next(out); });
}

const char* get_last_error(ArrowArrayStream* stream)
{
    const Stream& self = Stream::of(stream);
    return self.error.empty() ? nullptr : self.error.c_str();
}

void release_stream(ArrowArrayStream* stream)
{
    delete &Stream::of(stream);
    stream->release = nullptr;
}

void export_stream(std::unique_ptr<Stream> made, ArrowArrayStream* stream)
{
    *stream = {&get_schema, &get_next, &get_last_error, &release_stream, made.release()};
}
} // namespace

void db_export_arrow_stream(std::unique_ptr<ColumnReader> reader, ArrowArrayStream* stream)
{
    export_stream(std::make_unique<ReaderStream>(std::move(reader)), stream);
}

void db_export_arrow_columns(SharedColumns columns, std::size_t rows, ArrowArrayStream* stream)
{
    export_stream(std::make_unique<ColumnsStream>(std::move(columns), rows), stream);
}

void db_export_arrow_table(ColumnTable table, ArrowSchema* schema, ArrowArray* array)
{
    const std::size_t rows = table.rows;
    const SharedColumns columns = shared_columns_of(std::move(table));
    make_table_schema(pointers_to(columns), schema);
    try {
        make_table_array(columns, rows, array);
    } catch (...) {
        schema->release(schema);
        throw;
    }
}
} // namespace dbapi
