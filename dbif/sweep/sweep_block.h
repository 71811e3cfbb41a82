#pragma once

#include "dbif/connection/column_store.h"
#include "dbif/sweep/sweep_slice.h"

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
    /// One slice for each column that is read, valid until the next setup.
    std::span<const SweepSlice> columns;
};

/// The columns of some setups: their chunks as they were stored, then, once unpacked, their points.
/// A setup is named by its place in the block.
class SweepBlock
{
public:
    /// `columns` must outlive the block.
    explicit SweepBlock(const std::vector<KeyDefinition>& columns);

    /// Empties the block and sets the setups that it is for; the first of them has the place
    /// `first` among all that are read. The ids must outlive the block.
    void begin(std::span<const int> setups, std::size_t first);

    /// Notes that a setup has the key with that id, and how many points. Throws `DBIF_Exception`
    /// naming the setup when there cannot be that many.
    void note(std::size_t place, int key, long long points);

    /// Notes that a setup has the key at a place among the columns; its chunks tell how many
    /// points.
    void expect(std::size_t place, std::size_t column);

    /// Drops setups at the end, so that those before them have about this many points in all; at
    /// least one stays. Returns those that are left.
    std::span<const int> limitPoints(std::size_t points);

    [[nodiscard]] bool has(std::size_t place, std::size_t column) const
    {
        return slices_[slot(place, column)].isPresent();
    }

    /// Adds the next chunk of a column, by its number. Chunks come setup by setup, in the order of
    /// the values.
    void store(std::size_t place, std::size_t column, int number, std::string_view chunk);

    /// Drops the setups from a place on, whatever is stored of them.
    std::span<const int> limitSetups(std::size_t count);

    /// Takes the number of points of each setup from its chunks. Returns the setups whose chunks do
    /// not prove that none is missing; the number is to be noted for these.
    [[nodiscard]] std::vector<int> countStored();

    /// Unpacks all chunks; any thread may do so. Throws `DBIF_Exception` naming setup and key when
    /// the stored data are damaged.
    void unpack();

    [[nodiscard]] std::size_t size() const { return setups_.size(); }

    [[nodiscard]] std::span<const int> setups() const { return setups_; }

    /// The points of a setup. A setup with none of the columns counts as one point, as all its
    /// points are alike.
    [[nodiscard]] SweepPoints points(std::size_t place) const;

private:
    /// The setup that a stored chunk belongs to, and its size in bytes.
    struct StoredChunk
    {
        std::size_t place;
        std::size_t size;
    };

    /// The chunks of a column of one setup, as far as their heads tell.
    struct StoredValues
    {
        std::size_t count = 0;
        int chunks = 0;
        /// A chunk is missing before the last one, or may be missing behind it.
        bool isOpen = true;
    };

    /// One column of all setups of the block.
    struct Column
    {
        std::vector<StoredChunk> chunks;
        std::string bytes;
        SweepArray array;
    };

    [[nodiscard]] std::size_t slot(std::size_t place, std::size_t column) const
    {
        return place * columns_.size() + column;
    }

    void unpack(std::size_t column);

    const std::vector<KeyDefinition>& columns_;
    std::span<const int> setups_;
    std::size_t first_ = 0;
    std::vector<Column> stored_;
    std::vector<std::size_t> points_;
    /// The slices, by place and column.
    std::vector<SweepSlice> slices_;
    /// The same for the chunks that they are unpacked from.
    std::vector<StoredValues> storedValues_;
};
} // namespace dbif
