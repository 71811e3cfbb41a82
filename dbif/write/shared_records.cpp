#include "dbif/write/shared_records.h"

#include "dbif/connection/bulk_cursor.h"
#include "dbif/host/exception.h"

namespace dbif {
namespace {
/// So many records are looked up one by one; after them all identities are read in one go.
constexpr int kSingleLookups = 200;
/// What is known of so many records is kept in memory.
constexpr std::size_t kMostKnown = 100'000;

std::string described(const TableInfo& f, const FixedTexts& columns)
{
    const auto name = columns.find("name");
    return "The " + std::string(f.name) + " \"" + (name == columns.end() ? "" : name->second) +
           "\"";
}
} // namespace

SharedRecords::Found SharedRecords::findOrAdd(
    const TableInfo& f,
    const RecordRow& record,
    const std::vector<KeyValue>& keys)
{
    Known* stored = find(f, record.identity);
    if (stored == nullptr) {
        forgetSome();
        ++knownRecords_;
        const int id = insert_record(rows_, f, record);
        Known& added = tables_[f.table].known[record.identity];
        added = {id, record.columns, StoredKeys()};
        keys_.add(f.table, id, keys, &*added.keys);
        return {id, true, false};
    }
    const std::string what = described(f, record.columns);
    bool hasChanged = completeColumns(f, *stored, record.columns, what);
    if (!keys.empty()) {
        if (!stored->keys.has_value()) {
            stored->keys = keys_.read(f.table, stored->id);
        }
        hasChanged =
            keys_.addMissing(f.table, stored->id, keys, what, &*stored->keys) || hasChanged;
    }
    return {stored->id, false, hasChanged};
}

SharedRecords::Known* SharedRecords::find(const TableInfo& f, const std::string& identity)
{
    Table& table = tables_[f.table];
    const auto found = table.known.find(identity);
    if (found != table.known.end()) {
        return &found->second;
    }
    const int id = lookUp(f, table, identity);
    if (id == 0) {
        return nullptr;
    }
    forgetSome();
    ++knownRecords_;
    return &table.known.emplace(identity, readRecord(f, id)).first->second;
}

int SharedRecords::lookUp(const TableInfo& f, Table& table, const std::string& identity)
{
    SqlText sql;
    if (!table.stored.has_value() && ++table.lookups > kSingleLookups) {
        table.stored.emplace();
        sql << "SELECT id, identity FROM " << SqlName(f.name);
        BulkCursor cursor(rows_.connection(), sql);
        while (cursor.next()) {
            table.stored->emplace(cursor.text(1), cursor.integer(0));
        }
    }
    if (table.stored.has_value()) {
        const auto found = table.stored->find(identity);
        return found == table.stored->end() ? 0 : found->second;
    }
    sql << "SELECT id FROM " << SqlName(f.name) << " WHERE identity = " << SqlBlob(identity);
    BulkCursor cursor(rows_.connection(), sql);
    return cursor.next() ? cursor.integer(0) : 0;
}

SharedRecords::Known SharedRecords::readRecord(const TableInfo& f, int id)
{
    Known known{id, {}, std::nullopt};
    const std::span columns = f.fixedColumns.subspan(1);
    SqlText sql = "SELECT ";
    sql << listed(columns, [](const FixedColumnInfo& column) { return SqlName(column.name); })
        << " FROM " << SqlName(f.name) << " WHERE id = " << id;
    BulkCursor cursor(rows_.connection(), sql);
    if (!cursor.next()) {
        return known;
    }
    int column = 0;
    for (const FixedColumnInfo& fixed : columns) {
        if (!cursor.isNull(column)) {
            known.columns[std::string(fixed.name)] = cursor.text(column);
        }
        ++column;
    }
    return known;
}

namespace {
[[noreturn]] void throw_stored_differently(
    const std::string& what,
    const std::string& name,
    const std::string& stored,
    const std::string& given)
{
    std::string message = what;
    message.append(" is stored with ").append(name).append(" \"").append(stored);
    message.append("\", but here it has \"").append(given);
    message.append("\". Stored values are not overwritten: correct the value, or give the record "
                   "another name.");
    throw_error(message, __FILE__, __LINE__);
}
} // namespace

bool SharedRecords::completeColumns(
    const TableInfo& f,
    Known& known,
    const FixedTexts& columns,
    const std::string& what)
{
    SqlText update;
    FixedTexts missing;
    for (const auto& [name, text] : columns) {
        const auto stored = known.columns.find(name);
        if (stored == known.columns.end()) {
            update << (missing.empty() ? SqlText() : SqlText(", ")) << SqlName(name) << " = "
                   << SqlLiteral(text);
            missing[name] = text;
        } else if (stored->second != text) {
            throw_stored_differently(what, name, stored->second, text);
        }
    }
    if (missing.empty()) {
        return false;
    }
    // The record may be one of this transaction that still waits.
    rows_.flush();
    SqlText sql;
    sql << "UPDATE " << SqlName(f.name) << " SET " << update << " WHERE id = " << known.id;
    rows_.connection().execute(sql, __FILE__, __LINE__);
    known.columns.insert(missing.begin(), missing.end());
    return true;
}

void SharedRecords::forgetSome()
{
    if (knownRecords_ < kMostKnown) {
        return;
    }
    // From now on they are read back.
    rows_.flush();
    for (auto& [table, records] : tables_) {
        std::unordered_map<std::string, Known> forgotten;
        forgotten.swap(records.known);
        if (!records.stored.has_value()) {
            continue;
        }
        for (const auto& [identity, known] : forgotten) {
            records.stored->emplace(identity, known.id);
        }
    }
    knownRecords_ = 0;
}
} // namespace dbif
