#include "dbif/sweep_reader.h"

#include "dbif/bulk_cursor.h"
#include "dbif/read_trace.h"
#include "dbif/sweep_packing.h"

#include <algorithm>

namespace dbif {
namespace {
constexpr std::size_t kMostSetupsPerBlock = 256;
constexpr std::size_t kMostPointsPerBlock = 1U << 18U;

constexpr std::size_t kAbsent = static_cast<std::size_t>(-1);

/// The condition that `setup_id` is one of the setups, or one between them where they stand close
/// together.
SqlText is_one_of(std::span<const int> setups)
{
    const int first = setups.front();
    const int last = setups.back();
    SqlText sql;
    if (static_cast<std::size_t>(last - first) < 2 * setups.size()) {
        return sql << "setup_id BETWEEN " << first << " AND " << last;
    }
    sql << "setup_id IN (";
    for (std::size_t i = 0; i < setups.size(); ++i) {
        sql << (i == 0 ? SqlText() : SqlText(", ")) << setups[i];
    }
    return sql << ")";
}

/// Finds setups that come in the order of their ids.
class SetupFinder
{
public:
    explicit SetupFinder(std::span<const int> setups) : setups_(setups) {}

    /// The place of a setup; `kAbsent` for one that was not asked for, as a range of ids brings
    /// such along.
    std::size_t find(int setup)
    {
        while (place_ + 1 < setups_.size() && setups_[place_] < setup) {
            ++place_;
        }
        return setups_[place_] == setup ? place_ : kAbsent;
    }

private:
    std::span<const int> setups_;
    std::size_t place_ = 0;
};

/// Reads a block of setups.
class BlockReader
{
public:
    BlockReader(DBIF_Connection& connection, const std::vector<KeyDefinition>& columns)
        : connection_(connection), columns_(columns), arrays_(columns.size())
    {
        for (std::size_t column = 0; column < columns.size(); ++column) {
            arrays_[column].kind = columns[column].kind;
        }
    }

    /// Reads as many of the setups as fit, and returns their number.
    std::size_t read(std::span<const int> setups)
    {
        const std::size_t most = std::min(setups.size(), kMostSetupsPerBlock);
        readAssociations(setups.first(most));
        std::size_t points = 0;
        std::size_t count = 0;
        while (count < most && points < kMostPointsPerBlock) {
            points += points_[count++];
        }
        for (std::size_t column = 0; column < columns_.size(); ++column) {
            readColumn(column, setups.first(count));
        }
        return count;
    }

    [[nodiscard]] SweepPoints points(std::size_t place) const
    {
        return {place, points_[place], {slices_.data() + place * columns_.size(), columns_.size()}};
    }

private:
    /// What each setup has, and how many points.
    void readAssociations(std::span<const int> setups)
    {
        points_.assign(setups.size(), 0);
        slices_.assign(setups.size() * columns_.size(), {});
        SqlText sql = "SELECT setup_id, setup_column_id, points FROM setup_association WHERE ";
        BulkCursor cursor(connection_, sql << is_one_of(setups) << " ORDER BY setup_id");
        SetupFinder finder(setups);
        while (cursor.next()) {
            const std::size_t place = finder.find(cursor.integer(0));
            if (place == kAbsent) {
                continue;
            }
            noteKey(place, cursor.integer(1));
            const auto points = static_cast<std::size_t>(cursor.integer(2));
            points_[place] = std::max(points_[place], points);
        }
    }

    /// The setup has the key of that id.
    void noteKey(std::size_t place, int id)
    {
        for (std::size_t column = 0; column < columns_.size(); ++column) {
            if (columns_[column].id == id) {
                slice(place, column).array = &arrays_[column];
            }
        }
    }

    void readColumn(std::size_t column, std::span<const int> setups)
    {
        const KeyDefinition& definition = columns_[column];
        SweepArray& array = arrays_[column];
        array.clear();
        SqlText sql = "SELECT setup_id, payload FROM setup_data WHERE setup_column_id = ";
        BulkCursor cursor(
            connection_,
            sql << definition.id << " AND " << is_one_of(setups) << " ORDER BY setup_id, chunk");
        SetupFinder finder(setups);
        while (cursor.next()) {
            const int setup = cursor.integer(0);
            const std::size_t place = finder.find(setup);
            if (place == kAbsent || !slice(place, column).isPresent()) {
                continue;
            }
            const std::size_t before = array.size();
            unpack(cursor.text(1), {definition.name, setup}, &array);
            SweepSlice& read = slice(place, column);
            read.first = read.size == 0 ? before : read.first;
            read.size += array.size() - before;
        }
        for (std::size_t place = 0; place < setups.size(); ++place) {
            if (slice(place, column).isPresent()) {
                check_length(
                    {definition.name, setups[place]}, slice(place, column).size, points_[place]);
            }
        }
    }

    SweepSlice& slice(std::size_t place, std::size_t column)
    {
        return slices_[place * columns_.size() + column];
    }

    DBIF_Connection& connection_;
    const std::vector<KeyDefinition>& columns_;
    /// Of each column, the values of all setups of the block.
    std::vector<SweepArray> arrays_;
    std::vector<std::size_t> points_;
    /// By place and column.
    std::vector<SweepSlice> slices_;
};
} // namespace

void read_sweeps(
    DBIF_Connection& connection,
    const std::vector<int>& setups,
    const std::vector<KeyDefinition>& columns,
    const std::function<void(const SweepPoints& points)>& use)
{
    BlockReader reader(connection, columns);
    for (std::size_t first = 0; first < setups.size();) {
        const std::size_t count = [&] {
            const TraceStep step(connection.trace(), "read the points");
            return reader.read({setups.data() + first, setups.size() - first});
        }();
        for (std::size_t place = 0; place < count; ++place) {
            SweepPoints points = reader.points(place);
            points.place = first + place;
            use(points);
        }
        first += count;
    }
}
} // namespace dbif
