#include "dbapi/db_arrow.h"
#include "dbapi/db_columns.h"

#include "python/arrow_capsules.h"
#include "python/bindings.h"
#include "python/column_arrays.h"
#include "python/library_call.h"
#include "python/python_texts.h"
#include "python/read_options.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace dbapi::python {
namespace {
/// All rows: their number, and the columns.
py::tuple read_columns(
    const py::object& connection,
    const py::sequence& keywords,
    const py::object& query,
    const ReadArguments& arguments)
{
    const std::string name = text_of(connection, "The connection");
    const std::vector<std::string> texts = texts_of(keywords, "A keyword");
    const std::string queryText = text_of(query, "The query");
    const ColumnOptions options = column_options(arguments);
    ColumnTable table;
    call_library(name, [&](std::string* errors) {
        return db_get_columns(name, texts, &table, queryText, options, errors);
    });
    return py::make_tuple(table.rows, column_list(&table));
}

/// A reader of batches. Threads may share it: one at a time has its lock, which stands beside that
/// of the library.
class BatchReader
{
public:
    BatchReader(
        const py::object& connection,
        const py::sequence& keywords,
        const py::object& query,
        std::size_t rows,
        const ReadArguments& arguments)
        : connection_(text_of(connection, "The connection"))
    {
        const std::vector<std::string> texts = texts_of(keywords, "A keyword");
        const std::string queryText = text_of(query, "The query");
        ColumnOptions options = column_options(arguments);
        options.interrupted = [check = options.interrupted, isClosed = isClosed_] {
            return check() || *isClosed;
        };
        call_library(connection_, [&](std::string* errors) {
            return db_open_column_reader(
                connection_, texts, rows, &reader_, queryText, options, errors);
        });
    }

    BatchReader(const BatchReader&) = delete;
    BatchReader& operator=(const BatchReader&) = delete;

    ~BatchReader()
    {
        // What it was read with is taken down without the interpreter's lock.
        const py::gil_scoped_release withoutInterpreter;
        reader_.reset();
    }

    /// The rows of the next batch and its columns; no rows at the end.
    py::tuple next()
    {
        ColumnTable batch;
        std::optional<Failure> failure;
        {
            const Turn turn(this);
            if (*isClosed_ || reader_ == nullptr) {
                failure = closed();
            } else if (!reader_->next(&batch, nullptr)) {
                failure = *isClosed_ ? closed() : Failure{*reader_->fault(), {}, {}};
            }
        }
        if (failure.has_value()) {
            raise_failure(*failure);
        }
        return py::make_tuple(batch.rows, column_list(&batch));
    }

    /// Ends the read, also one that goes on in another thread or called this in its callback: it
    /// notices soon.
    void close()
    {
        *isClosed_ = true;
        if (owner_ != std::this_thread::get_id()) {
            const Turn turn(this);
            reader_.reset();
        }
    }

    [[nodiscard]] bool isClosed() const { return *isClosed_; }

    /// Hands the reader over as an Arrow stream.
    py::capsule stream()
    {
        std::unique_ptr<ColumnReader> reader;
        {
            const Turn turn(this);
            reader = std::move(reader_);
        }
        if (reader == nullptr) {
            raise_failure(closed());
        }
        return stream_capsule(std::move(reader));
    }

private:
    /// While it lives, this thread has the reader and not the interpreter's lock.
    class Turn
    {
    public:
        explicit Turn(BatchReader* reader) : reader_(reader)
        {
            if (reader->owner_ == std::this_thread::get_id()) {
                raise_fault(connection_fault(
                    "These batches are being read by this thread, whose callback cannot go on "
                    "reading them."));
            }
            withoutInterpreter_.emplace();
            reader->mutex_.lock();
            reader->owner_ = std::this_thread::get_id();
        }

        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

        ~Turn()
        {
            reader_->owner_ = std::thread::id();
            reader_->mutex_.unlock();
        }

    private:
        BatchReader* reader_;
        std::optional<py::gil_scoped_release> withoutInterpreter_;
    };

    static Failure closed()
    {
        return {
            connection_fault("These batches are closed, or their connection is, or they were "
                             "handed over as a stream. Ask a connection for new ones."),
            {},
            {}};
    }

    std::string connection_;
    std::unique_ptr<ColumnReader> reader_;
    std::mutex mutex_;
    std::atomic<std::thread::id> owner_;
    /// The read looks at it, too.
    std::shared_ptr<std::atomic<bool>> isClosed_ = std::make_shared<std::atomic<bool>>(false);
};

ReadArguments read_arguments(
    py::object order,
    bool distinct,
    py::object limit,
    bool allData,
    bool withIds,
    py::object mostBytes,
    py::object progress)
{
    return {std::move(order),     distinct,           std::move(limit), allData, withIds,
            std::move(mostBytes), std::move(progress)};
}
} // namespace

void bind_column_reading(py::module_& module)
{
    py::class_<ReadArguments>(
        module, "ReadArguments", "How a read is asked for.", plain_metaclass())
        .def(
            py::init(&read_arguments), py::arg("order"), py::arg("distinct"), py::arg("limit"),
            py::arg("all_data"), py::arg("ids"), py::arg("max_bytes"), py::arg("progress"));
    module.def(
        "read_columns", &read_columns, py::arg("connection"), py::arg("keywords"), py::arg("query"),
        py::arg("arguments"), "All rows: how many, and their columns.");
    py::class_<BatchReader>(
        module, "BatchReader", "A read whose rows come batch by batch.", plain_metaclass())
        .def(
            py::init<
                const py::object&, const py::sequence&, const py::object&, std::size_t,
                const ReadArguments&>(),
            py::arg("connection"), py::arg("keywords"), py::arg("query"), py::arg("rows"),
            py::arg("arguments"))
        .def("next", &BatchReader::next, "The rows of the next batch, none at the end.")
        .def("close", &BatchReader::close, "Ends the read.")
        .def_property_readonly("closed", &BatchReader::isClosed)
        .def("stream", &BatchReader::stream, "The rest as a capsule of an Arrow stream.");
}
} // namespace dbapi::python
