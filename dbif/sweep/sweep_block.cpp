#include "dbif/sweep/sweep_block.h"

#include "dbif/host/exception.h"
#include "dbif/sweep/sweep_packing.h"

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
    storedValues_.assign(slices_.size(), {});
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
            expect(place, column);
        }
    }
}

void SweepBlock::expect(std::size_t place, std::size_t column)
{
    slices_[slot(place, column)].array = &stored_[column].array;
}

std::span<const int> SweepBlock::limitPoints(std::size_t points)
{
    std::size_t count = 0;
    for (std::size_t sum = 0; count < setups_.size() && sum < points; ++count) {
        sum += this->points(count).count;
    }
    return limitSetups(count);
}

std::span<const int> SweepBlock::limitSetups(std::size_t count)
{
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

void SweepBlock::store(std::size_t place, std::size_t column, int number, std::string_view chunk)
{
    stored_[column].chunks.push_back({place, chunk.size()});
    stored_[column].bytes += chunk;
    StoredValues& values = storedValues_[slot(place, column)];
    const bool isNext = number == values.chunks && (values.chunks == 0 || values.isOpen);
    values.count += value_count(chunk);
    ++values.chunks;
    values.isOpen = !isNext || may_go_on(chunk);
}

std::vector<int> SweepBlock::countStored()
{
    std::vector<int> unproven;
    for (std::size_t place = 0; place < setups_.size(); ++place) {
        bool isProven = true;
        for (std::size_t column = 0; column < columns_.size(); ++column) {
            if (has(place, column)) {
                const StoredValues& values = storedValues_[slot(place, column)];
                points_[place] = std::max(points_[place], values.count);
                isProven = isProven && !values.isOpen;
            }
        }
        if (!isProven) {
            unproven.push_back(setups_[place]);
        }
    }
    return unproven;
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
        if (chunk.place >= setups_.size()) {
            // It was dropped after it had been read.
            break;
        }
        SweepSlice& slice = slices_[slot(chunk.place, column)];
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
                {columns_[column].name, setups_[place]}, slices_[slot(place, column)].size,
                points_[place]);
        }
    }
}
} // namespace dbif
