#pragma once

#include "dbif/write/key_writer.h"
#include "dbif/write/row_store.h"

#include <map>
#include <optional>
#include <string>
#include <unordered_map>

namespace dbif {
/// Dies, devices and routines as a writing transaction sees them: those that are stored, found by
/// their identity, and those that it adds. Each is read once; what is known of it is then kept, so
/// that a record that many measurements share costs the server nothing more.
class SharedRecords
{
    Q_DISABLE_COPY_MOVE(SharedRecords)

public:
    SharedRecords(RowStore& rows, KeyWriter& keys) : rows_(rows), keys_(keys) {}

    ~SharedRecords() = default;

    struct Found
    {
        int id = 0;
        /// Tells whether it was added.
        bool isNew = false;
        /// Tells whether a stored one was completed.
        bool hasChanged = false;
    };

    /// The record of that identity, which is added with its keys when there is none. Columns and
    /// keys that a stored one lacks are added to it; throws where one differs, and then leaves the
    /// record as it was.
    Found findOrAdd(const TableInfo& f, const RecordRow& record, const std::vector<KeyValue>& keys);

private:
    struct Known
    {
        int id = 0;
        FixedTexts columns;
        /// The keys, read when they are first compared.
        std::optional<StoredKeys> keys;
    };

    struct Table
    {
        std::unordered_map<std::string, Known> known;
        /// All identities that were stored before, once single look-ups have become many.
        std::optional<std::unordered_map<std::string, int>> stored;
        int lookups = 0;
    };

    Known* find(const TableInfo& f, const std::string& identity);
    int lookUp(const TableInfo& f, Table& table, const std::string& identity);
    Known readRecord(const TableInfo& f, int id);
    bool completeColumns(
        const TableInfo& f,
        Known& known,
        const FixedTexts& columns,
        const std::string& what);
    void forgetSome();

    RowStore& rows_;
    KeyWriter& keys_;
    std::map<RecordTable, Table> tables_;
    std::size_t knownRecords_ = 0;
};
} // namespace dbif
