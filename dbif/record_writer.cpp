#include "dbif/record_writer.h"

#include "dbif/bulk_cursor.h"
#include "dbif/exception.h"
#include "dbif/host_string.h"
#include "dbif/key_writer.h"
#include "dbif/newest_time.h"
#include "dbif/record_identity.h"
#include "dbif/schema_names.h"

#include <QtGlobal>

#include <algorithm>
#include <cmath>
#include <set>

namespace dbif {
namespace {
/// After so many rows the planner's statistics are collected anew.
constexpr std::size_t kRowsWorthAnalyzing = 10'000;

/// What identifies a measurement, and what its setups inherit.
struct MeasurementContext
{
    std::string digest;
    int setups = 0;
};

struct ConditionContext
{
    int measurement = 0;
    std::string digest;
};

std::optional<std::string> column_of(const FixedTexts& columns, const std::string& name)
{
    const auto found = columns.find(name);
    return found == columns.end() ? std::nullopt : std::optional(found->second);
}

void check_columns(const TableFacts& f, const FixedTexts& columns)
{
    for (const auto& [name, text] : columns) {
        const bool isKnown = std::any_of(
            f.fixedColumns.begin(), f.fixedColumns.end(),
            [&name = name](const FixedColumnFacts& column) {
                return column.name == name && column.kind == FixedKind::Text &&
                       name != "modified_time" && name != "user";
            });
        if (!isKnown) {
            throw_error(
                "\"" + name + "\" of the table \"" + std::string(f.name) + "\" cannot be written.",
                __FILE__, __LINE__);
        }
        check_text(text, "The value of \"" + std::string(f.name) + "." + name + "\"");
    }
}

std::string user_name()
{
    const QString user = qEnvironmentVariable("USER", qEnvironmentVariable("LOGNAME"));
    return to_utf8(user);
}

/// The digest of a record's own columns behind that of its parent.
std::string
identity_of(const TableFacts& f, const std::string& parentDigest, const FixedTexts& columns)
{
    RecordIdentity identity;
    identity.text(f.name).text(parentDigest);
    for (const std::string_view column : f.identity) {
        if (!column.ends_with("_id")) {
            identity.textOrMissing(column_of(columns, std::string(column)));
        }
    }
    return identity.digest();
}

/// Adds the keys as they are stored: in any order, a missing one like none.
void add_keys(const std::vector<KeyValue>& keys, RecordIdentity* identity)
{
    std::set<std::string> parts;
    for (const KeyValue& key : keys) {
        if (!is_missing(key)) {
            RecordIdentity part;
            part.text(column_key(key.category, key.kind, key.name)).text(canonical_text(key));
            parts.insert(part.digest());
        }
    }
    for (const std::string& part : parts) {
        identity->text(part);
    }
}

/// Refuses what a setup cannot hold, before anything of it is written.
void check_sweep(const std::vector<SetupColumn>& sweep)
{
    std::set<std::string> keys;
    for (const SetupColumn& column : sweep) {
        const std::string what = "The key \"" + column.name + "\"";
        if (column.values.size() != sweep.front().values.size()) {
            throw_error("The columns of a setup have different lengths.", __FILE__, __LINE__);
        }
        if (!keys.insert(column_key(column.isInput ? "IN" : "", column.values.kind, column.name))
                 .second) {
            throw_error(what + " is given twice. Give it once.", __FILE__, __LINE__);
        }
        if (!is_finite(column.values)) {
            throw_error(
                what + " has an infinite value. Only finite numbers can be stored.", __FILE__,
                __LINE__);
        }
        check_text(column.header, "The header of the key \"" + column.name + "\"");
        for (const std::optional<std::string>& text : column.values.texts) {
            check_text(text.value_or(std::string()), "A value of the key \"" + column.name + "\"");
        }
    }
}

std::optional<std::string> data_origin(const std::vector<KeyValue>& keys)
{
    for (const KeyValue& key : keys) {
        if (key.name == "DataOrigin" && key.kind == ValueKind::Text) {
            return key.text;
        }
    }
    return std::nullopt;
}
} // namespace

class RecordWriter::Work
{
    Q_DISABLE_COPY_MOVE(Work)

public:
    explicit Work(const DBIF_Connection& connection)
        : connection_(connection), rows_(connection), keys_(rows_)
    {
        connection_.beginWriteTransaction();
        isOpen_ = true;
        // The row that every writer changes: it keeps a second one waiting (or, on a cluster, makes
        // its commit fail).
        connection_.execute(
            SqlText("UPDATE database_info SET writes = writes + 1 WHERE id = 1"), __FILE__,
            __LINE__);
        // Later than every stored time, whatever the clock says, so that readers notice.
        const QDateTime newest = newest_time(connection_);
        QDateTime now = QDateTime::currentDateTimeUtc();
        if (newest.isValid() && now <= newest) {
            now = newest.addMSecs(1);
        }
        stamp_ = stored_time(now);
    }

    ~Work()
    {
        if (isOpen_) {
            connection_.rollbackTransaction();
            ColumnStore::of(connection_).refresh();
        }
    }

    /// Inserts a record: links, fixed texts, time and user, identity.
    int insert(
        const TableFacts& f,
        const std::vector<int>& links,
        const FixedTexts& columns,
        const std::optional<double>& number,
        const std::string& identity)
    {
        check_columns(f, columns);
        std::vector<std::string> names{"id"};
        for (const ParentLink& link : f.parents) {
            names.emplace_back(link.column);
        }
        for (const FixedColumnFacts& column : f.fixedColumns.subspan(1)) {
            names.emplace_back(column.name);
        }
        names.emplace_back("identity");

        const int id = rows_.nextId(std::string(f.name));
        RowInserter& row = rows_.into(std::string(f.name), names);
        row.integer(id);
        for (const int link : links) {
            link == 0 ? row.null() : row.integer(link);
        }
        for (const FixedColumnFacts& column : f.fixedColumns.subspan(1)) {
            insertFixed(column, columns, number, row);
        }
        (identity.empty() ? row.null() : row.blob(identity)).endRow();
        return id;
    }

    /// The id of the record of that identity; 0 when there is none.
    int find(const TableFacts& f, const std::string& identity)
    {
        auto& known = known_[f.table];
        const auto found = known.find(identity);
        if (found != known.end()) {
            return found->second;
        }
        SqlText sql;
        sql << "SELECT id FROM " << SqlName(f.name) << " WHERE identity = " << SqlBlob(identity);
        BulkCursor cursor(connection_, sql);
        return cursor.next() ? known[identity] = cursor.integer(0) : 0;
    }

    /// Adds what the stored record lacks; throws where it differs. Whether something was added.
    bool
    completeColumns(const TableFacts& f, int id, const FixedTexts& columns, const std::string& what)
    {
        check_columns(f, columns);
        rows_.flush();
        bool hasChanged = false;
        for (const auto& [name, text] : columns) {
            SqlText sql;
            sql << "SELECT " << SqlName(name) << " FROM " << SqlName(f.name)
                << " WHERE id = " << id;
            std::optional<std::string> stored;
            {
                BulkCursor cursor(connection_, sql);
                if (cursor.next() && !cursor.isNull(0)) {
                    stored = std::string(cursor.text(0));
                }
            }
            if (!stored.has_value()) {
                SqlText update;
                update << "UPDATE " << SqlName(f.name) << " SET " << SqlName(name) << " = "
                       << SqlLiteral(text) << " WHERE id = " << id;
                connection_.execute(update, __FILE__, __LINE__);
                hasChanged = true;
            } else if (*stored != text) {
                throw_error(
                    what + " is stored with " + name + " \"" + *stored + "\", but here it has \"" +
                        text +
                        "\". Stored values are not overwritten: correct the value, or give the record another name.",
                    __FILE__, __LINE__);
            }
        }
        return hasChanged;
    }

    /// The digest of a stored record; empty for 0, no record.
    std::string digestOf(RecordTable table, int id)
    {
        const auto known = digests_.find({table, id});
        if (id == 0 || known != digests_.end()) {
            return id == 0 ? std::string() : known->second;
        }
        const TableFacts& f = facts(table);
        SqlText sql;
        sql << "SELECT identity FROM " << SqlName(f.name) << " WHERE id = " << id;
        BulkCursor cursor(connection_, sql);
        if (!cursor.next()) {
            throwMissing(table, id);
        }
        return digests_[{table, id}] = std::string(cursor.text(0));
    }

    MeasurementContext& measurement(int id)
    {
        const auto found = measurements_.find(id);
        if (found == measurements_.end()) {
            throwMissing(RecordTable::Measurement, id);
        }
        return found->second;
    }

    const ConditionContext& condition(int id)
    {
        const auto found = conditions_.find(id);
        if (found == conditions_.end()) {
            throwMissing(RecordTable::MeasurementCondition, id);
        }
        return found->second;
    }

    void touch(const TableFacts& f, int id)
    {
        SqlText sql;
        sql << "UPDATE " << SqlName(f.name) << " SET modified_time = " << SqlLiteral(stamp_)
            << " WHERE id = " << id;
        connection_.execute(sql, __FILE__, __LINE__);
    }

    int findOrAdd(
        const TableFacts& f,
        const std::string& parentDigest,
        const std::vector<int>& links,
        const FixedTexts& columns,
        bool* isNew)
    {
        const std::string identity = identity_of(f, parentDigest, columns);
        int id = find(f, identity);
        *isNew = id == 0;
        if (id == 0) {
            id = insert(f, links, columns, std::nullopt, identity);
            known_[f.table][identity] = id;
        } else if (f.table != RecordTable::Die) { // a die has no columns but its identity
            const std::string what = "The " + std::string(f.name) + " \"" +
                                     column_of(columns, "name").value_or("") + "\"";
            if (completeColumns(f, id, columns, what)) {
                touch(f, id);
            }
        }
        digests_[{f.table, id}] = identity;
        return id;
    }

    /// Marks the setups that the new ones supersede, and the measurements that thereby lose their
    /// last one.
    void supersedeSetups()
    {
        if (firstSetup_ == 0) {
            return;
        }

        struct Superseded
        {
            int setup, newSetup, measurement, newMeasurement;
        };

        std::vector<Superseded> older;
        SqlText sql;
        sql << "SELECT old.id, new.id, old_condition.measurement_id, new_condition.measurement_id FROM setup AS new"
            << connection_.dialect().orderedJoin()
            << "setup AS old ON old.identity = new.identity JOIN measurement_condition AS old_condition ON "
               "old_condition.id = old.measurement_condition_id JOIN measurement_condition AS new_condition ON "
               "new_condition.id = new.measurement_condition_id WHERE old.superseded_by IS NULL AND new.id >= "
            << firstSetup_ << " AND old.id < " << firstSetup_;
        {
            BulkCursor cursor(connection_, sql);
            while (cursor.next()) {
                older.push_back(
                    {cursor.integer(0), cursor.integer(1), cursor.integer(2), cursor.integer(3)});
            }
        }
        for (const Superseded& by : older) {
            SqlText mark;
            mark << "UPDATE setup SET superseded_by = " << by.newSetup
                 << " WHERE id = " << by.setup;
            connection_.execute(mark, __FILE__, __LINE__);
            SqlText markMeasurement;
            markMeasurement
                << "UPDATE measurement SET superseded_by = " << by.newMeasurement
                << " WHERE id = " << by.measurement
                << " AND superseded_by IS NULL AND NOT EXISTS (SELECT 1 FROM setup JOIN "
                   "measurement_condition ON measurement_condition.id = setup.measurement_condition_id "
                   "WHERE measurement_condition.measurement_id = "
                << by.measurement << " AND setup.superseded_by IS NULL)";
            connection_.execute(markMeasurement, __FILE__, __LINE__);
        }
    }

    /// A measurement without setups supersedes older ones of its identity that have none either.
    void supersedeMeasurements()
    {
        for (const auto& [id, context] : measurements_) {
            if (context.setups > 0) {
                continue;
            }
            SqlText sql;
            sql << "UPDATE measurement SET superseded_by = " << id
                << " WHERE superseded_by IS NULL AND id < " << id
                << " AND identity = " << SqlBlob(context.digest)
                << " AND NOT EXISTS (SELECT 1 FROM setup JOIN measurement_condition ON measurement_condition.id = "
                   "setup.measurement_condition_id WHERE measurement_condition.measurement_id = measurement.id)";
            connection_.execute(sql, __FILE__, __LINE__);
        }
    }

    void insertSweep(int setup, const std::vector<SetupColumn>& sweep)
    {
        for (const SetupColumn& column : sweep) {
            const int id = keys_.define(
                RecordTable::Setup, column.name, column.values.kind, column.isInput ? "IN" : "OUT");
            RowInserter& held = rows_.into(
                "setup_association",
                {"setup_id", "setup_column_id", "vanto_header", "points", "minimum", "maximum"});
            held.integer(setup).integer(id);
            (column.header.empty() ? held.null() : held.text(column.header))
                .integer(static_cast<long long>(column.values.size()));
            const std::optional<SweepBounds> limits = bounds(column.values);
            if (limits.has_value()) {
                held.number(limits->minimum).number(limits->maximum);
            } else {
                held.null().null();
            }
            held.endRow();
            int number = 0;
            for (const std::string& chunk : pack(column.values)) {
                rows_.into("setup_data", {"setup_column_id", "setup_id", "chunk", "payload"})
                    .integer(id)
                    .integer(setup)
                    .integer(number++)
                    .blob(chunk)
                    .endRow();
            }
        }
    }

    void commit()
    {
        rows_.flush();
        supersedeSetups();
        supersedeMeasurements();
        connection_.commitTransaction();
        isOpen_ = false;
        ColumnStore::of(connection_).refresh();
        if (rows_.rows() >= kRowsWorthAnalyzing) {
            analyze();
        }
    }

    DBIF_Connection connection_;
    RowStore rows_;
    KeyWriter keys_;
    std::map<std::pair<RecordTable, int>, std::string> digests_;
    std::map<int, MeasurementContext> measurements_;
    std::map<int, ConditionContext> conditions_;
    /// The setups of this transaction: identity to the label of its source.
    std::map<std::string, std::string> setups_;
    int firstSetup_ = 0;

private:
    [[noreturn]] static void throwMissing(RecordTable table, int id)
    {
        throw_error(
            "There is no " + std::string(facts(table).name) + " " + std::to_string(id) +
                " to add to.",
            __FILE__, __LINE__);
    }

    void insertFixed(
        const FixedColumnFacts& column,
        const FixedTexts& columns,
        const std::optional<double>& number,
        RowInserter& row)
    {
        if (column.name == "modified_time") {
            row.text(stamp_);
        } else if (column.name == "user") {
            row.text(user_name());
        } else if (column.kind == FixedKind::Number) {
            number.has_value() ? row.number(*number) : row.null();
        } else {
            const std::optional<std::string> text = column_of(columns, std::string(column.name));
            text.has_value() ? row.text(*text) : row.null();
        }
    }

    void analyze()
    {
        std::vector<SqlName> tables;
        for (const RecordTable table : kRecordTables) {
            const TableFacts& f = facts(table);
            tables.emplace_back(f.name);
            tables.emplace_back(f.columnTable());
            tables.emplace_back(f.dataTable());
        }
        tables.emplace_back("setup_association");
        for (const SqlText& statement : connection_.dialect().analyze(tables)) {
            connection_.execute(statement, __FILE__, __LINE__);
        }
    }

    std::string stamp_;
    bool isOpen_ = false;
    std::map<RecordTable, std::map<std::string, int>> known_;
};

RecordWriter::RecordWriter(const DBIF_Connection& connection)
    : work_(std::make_unique<Work>(connection))
{}

RecordWriter::~RecordWriter() = default;

int RecordWriter::addCatalogEntry(const FixedTexts& columns, const std::vector<KeyValue>& keys)
{
    const int id = work_->insert(facts(RecordTable::CatalogEntry), {}, columns, std::nullopt, {});
    work_->keys_.add(RecordTable::CatalogEntry, id, keys);
    return id;
}

int RecordWriter::findOrAddDie(const FixedTexts& columns)
{
    bool isNew = false;
    return work_->findOrAdd(facts(RecordTable::Die), {}, {}, columns, &isNew);
}

int RecordWriter::findOrAddRoutine(const FixedTexts& columns)
{
    bool isNew = false;
    return work_->findOrAdd(facts(RecordTable::Routine), {}, {}, columns, &isNew);
}

int RecordWriter::findOrAddDevice(
    int die,
    const FixedTexts& columns,
    const std::vector<KeyValue>& keys)
{
    const std::string dieDigest = work_->digestOf(RecordTable::Die, die);
    bool isNew = false;
    const int id = work_->findOrAdd(facts(RecordTable::Device), dieDigest, {die}, columns, &isNew);
    if (isNew) {
        work_->keys_.add(RecordTable::Device, id, keys);
    } else if (work_->keys_.addMissing(
                   RecordTable::Device, id, keys,
                   "The device \"" + column_of(columns, "name").value_or("") + "\"")) {
        work_->touch(facts(RecordTable::Device), id);
    }
    return id;
}

int RecordWriter::addMeasurement(const MeasurementRecord& measurement)
{
    if (measurement.temperature.has_value() && !std::isfinite(*measurement.temperature)) {
        throw_error("The temperature is not a finite number.", __FILE__, __LINE__);
    }
    RecordIdentity identity;
    identity.text(work_->digestOf(RecordTable::Device, measurement.device))
        .text(work_->digestOf(RecordTable::Routine, measurement.routine))
        .number(measurement.temperature)
        .textOrMissing(data_origin(measurement.keys));
    MeasurementContext context;
    context.digest = identity.digest();
    const int id = work_->insert(
        facts(RecordTable::Measurement),
        {measurement.device, measurement.catalogEntry, measurement.routine}, {},
        measurement.temperature, context.digest);
    work_->keys_.add(RecordTable::Measurement, id, measurement.keys);
    work_->measurements_[id] = context;
    return id;
}

int RecordWriter::addCondition(
    int measurement,
    const FixedTexts& columns,
    const std::vector<KeyValue>& keys)
{
    const std::string parentDigest = work_->measurement(measurement).digest;
    const int id = work_->insert(
        facts(RecordTable::MeasurementCondition), {measurement}, columns, std::nullopt, {});
    work_->keys_.add(RecordTable::MeasurementCondition, id, keys);
    RecordIdentity identity;
    identity.text(parentDigest).textOrMissing(column_of(columns, "name"));
    add_keys(keys, &identity);
    work_->conditions_[id] = {measurement, identity.digest()};
    return id;
}

int RecordWriter::addSetup(
    int condition,
    const FixedTexts& columns,
    const std::vector<SetupColumn>& sweep,
    const std::string& label)
{
    check_sweep(sweep);
    const ConditionContext& context = work_->condition(condition);
    RecordIdentity identity;
    identity.text(context.digest)
        .textOrMissing(column_of(columns, "name"))
        .textOrMissing(column_of(columns, "path"));
    const std::string digest = identity.digest();
    const auto [first, isNew] = work_->setups_.emplace(digest, label);
    if (!isNew) {
        throw_error(
            "\"" + first->second + "\" and \"" + label +
                "\" hold the same sweep: device, routine, temperature, condition, name and path are equal. Leave one "
                "out, or give their $SETNAME or $SETPATH different values.",
            __FILE__, __LINE__);
    }
    const int id =
        work_->insert(facts(RecordTable::Setup), {condition}, columns, std::nullopt, digest);
    work_->firstSetup_ = work_->firstSetup_ == 0 ? id : work_->firstSetup_;
    work_->insertSweep(id, sweep);
    ++work_->measurement(context.measurement).setups;
    return id;
}

void RecordWriter::commit()
{
    work_->commit();
}
} // namespace dbif
