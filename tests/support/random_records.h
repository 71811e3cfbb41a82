#pragma once

#include "tests/support/measurement_database.h"
#include "tests/support/record_model.h"

#include <random>
#include <set>

namespace test_support {
/// Random numbers, the same ones for the same seed.
class Dice
{
public:
    explicit Dice(unsigned seed) : generator_(seed) {}

    std::size_t below(std::size_t end) { return generator_() % end; }

    bool chance(std::size_t percent) { return below(100) < percent; }

    template <typename List>
    const auto& of(const List& list)
    {
        return list[below(std::size(list))];
    }

private:
    std::mt19937 generator_;
};

/// The columns and keys of the random records: some of every table, every data type.
const std::vector<ModelColumn>& random_columns();

/// Writes random records into a database, and the same ones into a model.
class RandomRecords
{
public:
    RandomRecords(DBIF_Connection connection, Dice& dice)
        : connection_(std::move(connection)), dice_(dice)
    {}

    /// Adds one import's worth; what is there already comes again now and then.
    void import();

    [[nodiscard]] const RecordModel& model() const { return model_; }

    /// Tells whether it is a fixed column, or a key that some record has.
    [[nodiscard]] bool has(const ModelColumn& column) const;

private:
    using Keys = std::vector<dbif::KeyValue>;
    using Parents = std::vector<const ModelRecord*>;

    dbif::FixedTexts fixedTexts(RecordTable table);
    Keys keys(RecordTable table, const std::map<std::string, ModelValue>& stored = {});
    ModelRecord& note(
        RecordTable table,
        int id,
        const Parents& parents,
        const dbif::FixedTexts& texts,
        const Keys& keys = {});
    const ModelRecord* addDevice(dbif::RecordWriter& writer);
    void addMeasurement(
        dbif::RecordWriter& writer,
        const ModelRecord* catalog,
        const ModelRecord* device);
    void addCondition(dbif::RecordWriter& writer, const ModelRecord& measurement);
    void addSetup(dbif::RecordWriter& writer, const ModelRecord& condition);
    dbif::SetupColumn
    sweepColumn(const ModelColumn& column, std::size_t points, std::vector<ModelCell>* cells);

    DBIF_Connection connection_;
    Dice& dice_;
    RecordModel model_;
    std::set<std::string> keys_;
    std::set<std::string> newSetups_;
};
} // namespace test_support
