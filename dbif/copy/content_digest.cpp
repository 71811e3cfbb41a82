#include "dbif/copy/content_digest.h"

#include "dbif/connection/column_store.h"
#include "dbif/sweep/sweep_packing.h"
#include "dbif/write/key_writer.h"
#include "dbif/write/record_identity.h"

#include <algorithm>
#include <utility>

namespace dbif {
namespace {
std::string setup_digest(const SetupContent& setup)
{
    RecordIdentity digest;
    digest.text(record_digest(setup.record, true));
    for (const SweepContent& sweep : setup.sweeps) {
        digest.text(sweep_digest(sweep));
        for (const std::string& chunk : sweep.chunks) {
            digest.text(chunk_identity(chunk));
        }
    }
    return digest.digest();
}

/// Sorts by the digests that `digest` gives, equal ones by id, and adds these to `whole`.
template <typename Content, typename Digest>
void sort_by_digest(std::vector<Content>* contents, const Digest& digest, RecordIdentity* whole)
{
    std::vector<std::pair<std::string, Content>> sorted;
    for (Content& content : *contents) {
        std::string key = digest(&content);
        sorted.emplace_back(std::move(key), std::move(content));
    }
    std::stable_sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) {
        return a.first < b.first;
    });
    contents->clear();
    for (auto& [key, content] : sorted) {
        whole->text(key);
        contents->push_back(std::move(content));
    }
}

std::string condition_digest(ConditionContent* condition)
{
    RecordIdentity digest;
    digest.text(keyed_digest(condition->record, true));
    sort_by_digest(
        &condition->setups, [](const SetupContent* setup) { return setup_digest(*setup); },
        &digest);
    return digest.digest();
}
} // namespace

std::string record_digest(const RecordContent& record, bool withTime)
{
    RecordIdentity digest;
    for (const auto& [name, text] : record.row.columns) {
        digest.text(name).text(text);
    }
    digest.number(record.row.number).text(record.row.identity);
    if (withTime) {
        digest.text(record.row.time).textOrMissing(record.row.user);
    }
    return digest.digest();
}

std::string keyed_digest(const RecordContent& record, bool withTime)
{
    RecordIdentity digest;
    digest.text(record_digest(record, withTime));
    for (const KeyValue& key : record.keys) {
        digest.text(key_digest(key));
    }
    return digest.digest();
}

std::string key_digest(const KeyValue& key)
{
    RecordIdentity digest;
    digest.text(column_key(key.category, key.kind, key.name)).text(canonical_text(key));
    return digest.digest();
}

std::string sweep_digest(const SweepContent& sweep)
{
    RecordIdentity digest;
    digest.text(sweep_key(sweep))
        .textOrMissing(sweep.header)
        .text(std::to_string(sweep.points))
        .number(sweep.minimum)
        .number(sweep.maximum);
    return digest.digest();
}

std::string order_and_digest(MeasurementContent* measurement)
{
    RecordIdentity digest;
    digest.text(keyed_digest(measurement->record, true));
    sort_by_digest(&measurement->conditions, condition_digest, &digest);
    return digest.digest();
}
} // namespace dbif
