#pragma once

#include "dbif/column_store.h"
#include "dbif/sweep_slice.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace dbif {
/// The points of one setup.
struct SweepPoints
{
    /// Its place among the setups that are read.
    std::size_t place = 0;
    std::size_t count = 0;
    /// A slice for each column that is read; valid until the next setup.
    std::span<const SweepSlice> columns;
};

/// Columns of some setups: their chunks as they were stored, then, once unpacked, their points.
/// Setups are named by their place in the block.
class SweepBlock
{
public:
    /// `columns` must outlive the block.
    explicit SweepBlock(const std::vector<KeyDefinition>& columns);

    /// Holds these setups, without anything, in the place of others. `first`: the place of the
    /// first of them among all that are read. The ids must outlive the block.
    void begin(std::span<const int> setups, std::size_t first);

    /// A setup has the key of that id, and so many points. Throws `DBIF_Exception` naming the setup
    /// when there cannot be so many.
    void note(std::size_t place, int key, long long points);

    /// Leaves out setups at the end, so that those before them have about so many points; one
    /// stays at least. Returns those that are left.
    std::span<const int> limitPoints(std::size_t points);

    [[nodiscard]] bool has(std::size_t place, std::size_t column) const
    {
        return slices_[place * columns_.size() + column].isPresent();
    }

    /// Takes the next chunk of a column: setup by setup, in the order of the values.
    void store(std::size_t place, std::size_t column, std::string_view chunk);

    /// May be done in another thread. Throws `DBIF_Exception` naming setup and key when the stored
    /// data are damaged.
    void unpack();

    [[nodiscard]] std::size_t size() const { return setups_.size(); }

    /// The points of a setup. One that has none of the columns counts as one point, as all of
    /// them are alike.
    [[nodiscard]] SweepPoints points(std::size_t place) const;

private:
    /// Of a chunk: whose it is, and how many bytes it takes.
    struct StoredChunk
    {
        std::size_t place;
        std::size_t size;
    };

    /// One column of all setups.
    struct Column
    {
        std::vector<StoredChunk> chunks;
        std::string bytes;
        SweepArray array;
    };

    void unpack(std::size_t column);

    const std::vector<KeyDefinition>& columns_;
    std::span<const int> setups_;
    std::size_t first_ = 0;
    std::vector<Column> stored_;
    std::vector<std::size_t> points_;
    /// By place and column.
    std::vector<SweepSlice> slices_;
};
} // namespace dbif
