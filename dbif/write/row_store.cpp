#include "dbif/write/row_store.h"

#include "dbif/host/exception.h"

#include <limits>

namespace dbif {
/// Passes values on and counts their bytes.
class RowStore::Counted final : public RowInserter
{
public:
    Counted(RowStore& store, std::unique_ptr<RowInserter> inserter)
        : store_(store), inserter_(std::move(inserter))
    {}

    RowInserter& null() override { return passed(inserter_->null(), 1); }

    RowInserter& integer(long long value) override { return passed(inserter_->integer(value), 4); }

    RowInserter& number(double value) override { return passed(inserter_->number(value), 8); }

    RowInserter& text(std::string_view value) override
    {
        return passed(inserter_->text(value), value.size());
    }

    RowInserter& blob(std::string_view value) override
    {
        return passed(inserter_->blob(value), value.size());
    }

    void endRow() override
    {
        store_.count(bytes_);
        bytes_ = 0;
        inserter_->endRow();
    }

    void flush() override { inserter_->flush(); }

private:
    RowInserter& passed(RowInserter& /*inserter*/, std::size_t bytes)
    {
        bytes_ += bytes;
        return *this;
    }

    RowStore& store_;
    std::unique_ptr<RowInserter> inserter_;
    std::size_t bytes_ = 0;
};

namespace {
/// What a cluster replicates of a row besides its values: head of the event, digests of its keys.
constexpr std::size_t kBytesAroundRow = 100;

[[noreturn]] void refuse(unsigned long long limit, const char* unit, const char* setting)
{
    throw_error(
        "The records are more than the server takes in one transaction (" + std::to_string(limit) +
            " " + unit + ", the setting " + setting +
            "). Nothing of them is stored: store them in parts, for example fewer files in one import, "
            "or raise the setting on every node of the cluster.",
        __FILE__, __LINE__, QSqlError::TransactionError);
}
} // namespace

RowStore::RowStore(DBIF_Connection connection)
    : connection_(std::move(connection)), limit_(connection_.session().transactionLimit())
{}

int RowStore::nextId(std::string_view table)
{
    auto last = lastId_.find(table);
    if (last == lastId_.end()) {
        SqlText sql;
        sql << "SELECT max(id) FROM " << SqlName(table);
        const auto row = connection_.prepare(sql);
        const long long highest = row->step() && !row->isNull(0) ? row->integer(0) : 0;
        last = lastId_.emplace(std::string(table), highest).first;
    }
    if (last->second >= std::numeric_limits<int>::max()) {
        throw_error(
            "The table \"" + std::string(table) + "\" has given out its last id, " +
                std::to_string(std::numeric_limits<int>::max()) +
                ". Nothing is stored: store in a new database.",
            __FILE__, __LINE__, QSqlError::TransactionError);
    }
    return static_cast<int>(++last->second);
}

RowInserter& RowStore::into(std::string_view table, std::initializer_list<std::string_view> columns)
{
    return into(table, [&] { return std::vector<SqlName>(columns.begin(), columns.end()); });
}

RowInserter&
RowStore::into(std::string_view table, const std::function<std::vector<SqlName>()>& columns)
{
    auto found = inserters_.find(table);
    if (found == inserters_.end()) {
        auto inserter = std::make_unique<Counted>(
            *this, connection_.session().inserter(SqlName(table), columns()));
        found = inserters_.emplace(std::string(table), std::move(inserter)).first;
    }
    return *found->second;
}

void RowStore::flush()
{
    for (auto& [table, inserter] : inserters_) {
        inserter->flush();
    }
}

void RowStore::count(std::size_t bytes)
{
    ++rows_;
    bytes_ += bytes + kBytesAroundRow;
    if (limit_.bytes > 0 && bytes_ > limit_.bytes) {
        refuse(limit_.bytes, "bytes", "wsrep_max_ws_size");
    }
    if (limit_.rows > 0 && rows_ > limit_.rows) {
        refuse(limit_.rows, "rows", "wsrep_max_ws_rows");
    }
}

namespace {
void insert_text(const std::optional<std::string>& text, RowInserter& row)
{
    text.has_value() ? row.text(*text) : row.null();
}

void insert_fixed_column(const FixedColumnInfo& column, const RecordRow& record, RowInserter& row)
{
    if (column.name == "modified_time") {
        row.text(record.time);
        return;
    }
    if (column.name == "user") {
        insert_text(record.user, row);
        return;
    }
    if (column.kind == FixedKind::Number) {
        record.number.has_value() ? row.number(*record.number) : row.null();
        return;
    }
    const auto text = record.columns.find(std::string(column.name));
    text == record.columns.end() ? row.null() : row.text(text->second);
}

std::vector<SqlName> columns_of(const TableInfo& f)
{
    std::vector<SqlName> names{SqlName("id")};
    for (const ParentLink& link : f.parents) {
        names.emplace_back(link.column);
    }
    for (const FixedColumnInfo& column : f.fixedColumns.subspan(1)) {
        names.emplace_back(column.name);
    }
    names.emplace_back("identity");
    return names;
}
} // namespace

int insert_record(RowStore& rows, const TableInfo& f, const RecordRow& record)
{
    const int id = rows.nextId(f.name);
    RowInserter& row = rows.into(f.name, [&f] { return columns_of(f); });
    row.integer(id);
    for (const int link : record.links) {
        link == 0 ? row.null() : row.integer(link);
    }
    for (const FixedColumnInfo& column : f.fixedColumns.subspan(1)) {
        insert_fixed_column(column, record, row);
    }
    (record.identity.empty() ? row.null() : row.blob(record.identity)).endRow();
    return id;
}

void insert_sweep(RowStore& rows, int setup, int column, const SweepRow& sweep)
{
    const auto insertNumber = [](const std::optional<double>& number, RowInserter& row) {
        number.has_value() ? row.number(*number) : row.null();
    };
    RowInserter& row = rows.into(
        "setup_association",
        {"setup_id", "setup_column_id", "vanto_header", "points", "minimum", "maximum"});
    row.integer(setup).integer(column);
    insert_text(sweep.header, row);
    row.integer(sweep.points);
    insertNumber(sweep.minimum, row);
    insertNumber(sweep.maximum, row);
    row.endRow();
    int number = 0;
    for (const std::string& chunk : sweep.chunks) {
        rows.into("setup_data", {"setup_column_id", "setup_id", "chunk", "payload"})
            .integer(column)
            .integer(setup)
            .integer(number++)
            .blob(chunk)
            .endRow();
    }
}

void set_modified_time(
    DBIF_Connection& connection,
    std::string_view table,
    int id,
    const std::string& time)
{
    SqlText sql;
    sql << "UPDATE " << SqlName(table) << " SET modified_time = " << SqlLiteral(time)
        << " WHERE id = " << id;
    connection.execute(sql, __FILE__, __LINE__);
}
} // namespace dbif
