#include "dbif/write/record_writer.h"

#include "dbif/connection/bulk_cursor.h"
#include "dbif/connection/managed_connection.h"
#include "dbif/host/exception.h"
#include "dbif/host/host_string.h"
#include "dbif/schema/schema_names.h"
#include "dbif/write/key_writer.h"
#include "dbif/write/record_identity.h"
#include "dbif/write/shared_records.h"
#include "dbif/write/write_transaction.h"

#include <QtGlobal>

#include <algorithm>
#include <cmath>
#include <set>

namespace dbif {
namespace {
/// The number of rows after which the planner's statistics are collected anew.
constexpr std::size_t kRowsWorthAnalyzing = 10'000;

/// The identity of a measurement, and what its setups inherit from it.
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

/// The fields of a record as columns, once their texts are checked.
template <typename Fields>
FixedTexts columns_of(const Fields& fields)
{
    FixedTexts columns;
    for_each_field(fields, [&columns](std::string_view column, const std::string& text) {
        const std::string table(table_info(Fields::kTable).name);
        check_text(text, "The value of \"" + table + "." + std::string(column) + "\"");
        columns.emplace(column, text);
    });
    return columns;
}

std::optional<std::string> column_of(const FixedTexts& columns, const std::string& name)
{
    const auto found = columns.find(name);
    return found == columns.end() ? std::nullopt : std::optional(found->second);
}

std::string user_name()
{
    const QString user = qEnvironmentVariable("USER", qEnvironmentVariable("LOGNAME"));
    return to_utf8(user);
}

/// The digest of a record's own columns behind that of its parent.
std::string
identity_of(const TableInfo& f, const std::string& parentDigest, const FixedTexts& columns)
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

/// Adds the keys as they are stored: their order does not count, and a missing value counts as no
/// key.
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
        : connection_(connection),
          transaction_(connection),
          rows_(connection),
          keys_(rows_),
          shared_(rows_, keys_)
    {}

    ~Work() = default;

    /// Inserts a record: links, fixed texts, time and user, identity.
    int insert(
        const TableInfo& f,
        const std::vector<int>& links,
        const FixedTexts& columns,
        const std::optional<double>& number,
        const std::string& identity)
    {
        const int id = insert_record(rows_, f, row(links, columns, number, identity));
        stamped_ = {f.table, id};
        return id;
    }

    /// The digest of a stored record; empty for 0, no record.
    std::string digestOf(RecordTable table, int id)
    {
        const auto known = digests_.find({table, id});
        if (id == 0 || known != digests_.end()) {
            return id == 0 ? std::string() : known->second;
        }
        const TableInfo& f = table_info(table);
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

    int findOrAdd(
        const TableInfo& f,
        const std::string& parentDigest,
        const std::vector<int>& links,
        const FixedTexts& columns,
        const std::vector<KeyValue>& keys)
    {
        const std::string identity = identity_of(f, parentDigest, columns);
        const SharedRecords::Found found =
            shared_.findOrAdd(f, row(links, columns, std::nullopt, identity), keys);
        if (found.isNew) {
            stamped_ = {f.table, found.id};
        } else if (found.hasChanged) {
            touch(f, found.id);
        }
        digests_[{f.table, found.id}] = identity;
        return found.id;
    }

    /// Adds a setup without its columns.
    int addSetup(int condition, const SetupFields& fields, const std::string& label)
    {
        const ConditionContext& context = this->condition(condition);
        RecordIdentity identity;
        identity.text(context.digest).textOrMissing(fields.name).textOrMissing(fields.path);
        const std::string digest = identity.digest();
        const auto [first, isNew] = setups_.emplace(digest, label);
        if (!isNew) {
            throw_error(
                "\"" + first->second + "\" and \"" + label +
                    "\" hold the same sweep: device, routine, temperature, condition, name and path are equal. Leave "
                    "one out, or give their $SETNAME or $SETPATH different values.",
                __FILE__, __LINE__);
        }
        const int id = insert(
            table_info(RecordTable::Setup), {condition}, columns_of(fields), std::nullopt, digest);
        firstSetup_ = firstSetup_ == 0 ? id : firstSetup_;
        ++measurement(context.measurement).setups;
        return id;
    }

    void insertColumn(int setup, const PackedColumn& column)
    {
        const int id = keys_.define(
            RecordTable::Setup, column.name, column.kind, column.isInput ? "IN" : "OUT");
        const std::optional<SweepBounds>& limits = column.bounds;
        insert_sweep(
            rows_, setup, id,
            {column.header.empty() ? std::nullopt : std::optional(column.header),
             static_cast<long long>(column.points),
             limits.has_value() ? std::optional(limits->minimum) : std::nullopt,
             limits.has_value() ? std::optional(limits->maximum) : std::nullopt, column.chunks});
    }

    void commit()
    {
        rows_.flush();
        superseded_ = supersede_setups(connection_, firstSetup_);
        for (const auto& [id, context] : measurements_) {
            if (context.setups == 0) {
                const std::vector<SupersedingLink> links =
                    supersede_measurements(connection_, id, context.digest);
                supersededMeasurements_.insert(
                    supersededMeasurements_.end(), links.begin(), links.end());
            }
        }
        transaction_.commit(
            stamped_.has_value() ? std::string(table_info(stamped_->first).name) : std::string(),
            stamped_.has_value() ? stamped_->second : 0);
        if (rows_.rows() >= kRowsWorthAnalyzing) {
            analyze();
        }
    }

    DBIF_Connection connection_;
    WriteTransaction transaction_;
    RowStore rows_;
    KeyWriter keys_;
    SharedRecords shared_;
    std::map<std::pair<RecordTable, int>, std::string> digests_;
    std::map<int, MeasurementContext> measurements_;
    std::map<int, ConditionContext> conditions_;
    /// The setups of this transaction: identity to the label of its source.
    std::map<std::string, std::string> setups_;
    int firstSetup_ = 0;
    std::vector<SupersededSetup> superseded_;
    std::vector<SupersedingLink> supersededMeasurements_;

private:
    [[noreturn]] static void throwMissing(RecordTable table, int id)
    {
        throw_error(
            "There is no " + std::string(table_info(table).name) + " " + std::to_string(id) +
                " to add to.",
            __FILE__, __LINE__);
    }

    [[nodiscard]] RecordRow
    row(const std::vector<int>& links,
        const FixedTexts& columns,
        const std::optional<double>& number,
        const std::string& identity) const
    {
        return {links, columns, number, transaction_.stamp(), user_, identity};
    }

    void touch(const TableInfo& f, int id)
    {
        set_modified_time(connection_, f.name, id, transaction_.stamp());
        stamped_ = {f.table, id};
    }

    void analyze()
    {
        std::vector<SqlName> tables;
        for (const RecordTable table : kRecordTables) {
            const TableInfo& f = table_info(table);
            tables.emplace_back(f.name);
            tables.emplace_back(f.columnTable());
            tables.emplace_back(f.dataTable());
        }
        tables.emplace_back("setup_association");
        for (const SqlText& statement : connection_.inner().dialect().analyze(tables)) {
            connection_.inner().execute(statement, __FILE__, __LINE__);
        }
    }

    std::string user_ = user_name();
    /// A record that was written with the stamp.
    std::optional<std::pair<RecordTable, int>> stamped_;
};

RecordWriter::RecordWriter(const DBIF_Connection& connection)
    : work_(std::make_unique<Work>(connection))
{}

RecordWriter::~RecordWriter() = default;

int RecordWriter::addCatalogEntry(
    const CatalogEntryFields& fields,
    const std::vector<KeyValue>& keys)
{
    const int id = work_->insert(
        table_info(RecordTable::CatalogEntry), {}, columns_of(fields), std::nullopt, {});
    work_->keys_.add(RecordTable::CatalogEntry, id, keys);
    return id;
}

int RecordWriter::findOrAddDie(const DieFields& fields)
{
    return work_->findOrAdd(table_info(RecordTable::Die), {}, {}, columns_of(fields), {});
}

int RecordWriter::findOrAddRoutine(const RoutineFields& fields)
{
    return work_->findOrAdd(table_info(RecordTable::Routine), {}, {}, columns_of(fields), {});
}

int RecordWriter::findOrAddDevice(
    int die,
    const DeviceFields& fields,
    const std::vector<KeyValue>& keys)
{
    const std::string dieDigest = work_->digestOf(RecordTable::Die, die);
    return work_->findOrAdd(
        table_info(RecordTable::Device), dieDigest, {die}, columns_of(fields), keys);
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
        table_info(RecordTable::Measurement),
        {measurement.device, measurement.catalogEntry, measurement.routine}, {},
        measurement.temperature, context.digest);
    work_->keys_.add(RecordTable::Measurement, id, measurement.keys);
    work_->measurements_[id] = context;
    return id;
}

int RecordWriter::addCondition(
    int measurement,
    const ConditionFields& fields,
    const std::vector<KeyValue>& keys)
{
    const std::string parentDigest = work_->measurement(measurement).digest;
    const int id = work_->insert(
        table_info(RecordTable::MeasurementCondition), {measurement}, columns_of(fields),
        std::nullopt, {});
    work_->keys_.add(RecordTable::MeasurementCondition, id, keys);
    RecordIdentity identity;
    identity.text(parentDigest).textOrMissing(fields.name);
    add_keys(keys, &identity);
    work_->conditions_[id] = {measurement, identity.digest()};
    return id;
}

int RecordWriter::addSetup(
    int condition,
    const SetupFields& fields,
    const std::vector<SetupColumn>& sweep,
    const std::string& label)
{
    check_sweep(sweep);
    const int id = work_->addSetup(condition, fields, label);
    for (const SetupColumn& column : sweep) {
        work_->insertColumn(id, pack_column(column));
    }
    return id;
}

int RecordWriter::addPackedSetup(
    int condition,
    const SetupFields& fields,
    const std::vector<PackedColumn>& sweep,
    const std::string& label)
{
    const int id = work_->addSetup(condition, fields, label);
    for (const PackedColumn& column : sweep) {
        work_->insertColumn(id, column);
    }
    return id;
}

void RecordWriter::commit()
{
    work_->commit();
}

const std::vector<NewKey>& RecordWriter::newKeys() const
{
    return work_->keys_.newKeys();
}

const std::vector<SupersededSetup>& RecordWriter::supersededSetups() const
{
    return work_->superseded_;
}

const std::vector<SupersedingLink>& RecordWriter::supersededMeasurements() const
{
    return work_->supersededMeasurements_;
}
} // namespace dbif
