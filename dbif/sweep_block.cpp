#include "dbif/sweep_block.h"

#include "dbif/exception.h"
#include "dbif/sweep_packing.h"

#include <algorithm>

namespace dbif {
SweepBlock::SweepBlock(const std::vector<KeyDefinition>& columns)
    : columns_(columns), stored_(columns.size())
{
    for (std::size_t column = 0; column < columns.size(); ++column) {
        stored_[column].array.kind = columns[column].kind;
    }
}

void SweepBlock::begin(std::span<const int> setups, std::size_t first)
{
    setups_ = setups;
    first_ = first;
    points_.assign(setups.size(), 0);
    slices_.assign(setups.size() * columns_.size(), {});
    for (Column& column : stored_) {
        column.chunks.clear();
        column.bytes.clear();
        column.array.clear();
    }
}

void SweepBlock::note(std::size_t place, int key, long long points)
{
    if (points < 0) {
        throw_error(
            "Setup " + std::to_string(setups_[place]) + " is damaged (it has " +
                std::to_string(points) +
                " points). Restore the database from a backup, or import the data again.",
            __FILE__, __LINE__);
    }
    points_[place] = std::max(points_[place], static_cast<std::size_t>(points));
    for (std::size_t column = 0; column < columns_.size(); ++column) {
        if (columns_[column].id == key) {
            slices_[place * columns_.size() + column].array = &stored_[column].array;
        }
    }
}

std::span<const int> SweepBlock::limitPoints(std::size_t points)
{
    std::size_t count = 0;
    for (std::size_t sum = 0; count < setups_.size() && sum < points; ++count) {
        sum += this->points(count).count;
    }
    setups_ = setups_.first(count);
    return setups_;
}

SweepPoints SweepBlock::points(std::size_t place) const
{
    const std::span<const SweepSlice> columns(
        slices_.data() + place * columns_.size(), columns_.size());
    const bool hasColumn = std::any_of(
        columns.begin(), columns.end(), [](const SweepSlice& slice) { return slice.isPresent(); });
    const std::size_t count = points_[place];
    return {first_ + place, hasColumn ? count : std::min<std::size_t>(count, 1), columns};
}

void SweepBlock::store(std::size_t place, std::size_t column, std::string_view chunk)
{
    stored_[column].chunks.push_back({place, chunk.size()});
    stored_[column].bytes += chunk;
}

void SweepBlock::unpack()
{
    for (std::size_t column = 0; column < columns_.size(); ++column) {
        unpack(column);
    }
}

void SweepBlock::unpack(std::size_t column)
{
    Column& stored = stored_[column];
    std::string_view bytes = stored.bytes;
    for (const StoredChunk& chunk : stored.chunks) {
        SweepSlice& slice = slices_[chunk.place * columns_.size() + column];
        const std::size_t before = stored.array.size();
        dbif::unpack(
            bytes.substr(0, chunk.size), {columns_[column].name, setups_[chunk.place]},
            &stored.array);
        bytes.remove_prefix(chunk.size);
        slice.first = slice.size == 0 ? before : slice.first;
        slice.size += stored.array.size() - before;
    }
    for (std::size_t place = 0; place < setups_.size(); ++place) {
        if (has(place, column)) {
            check_length(
                {columns_[column].name, setups_[place]},
                slices_[place * columns_.size() + column].size, points_[place]);
        }
    }
}
} // namespace dbif
