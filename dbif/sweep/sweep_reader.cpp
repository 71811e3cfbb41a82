#include "dbif/sweep/sweep_reader.h"

#include "dbif/connection/bulk_cursor.h"
#include "dbif/connection/managed_connection.h"
#include "dbif/engine/read_trace.h"
#include "dbif/host/background_task.h"
#include "dbif/sweep/key_presence.h"
#include "dbif/sweep/sweep_packing.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <utility>

namespace dbif {
namespace {
constexpr std::size_t kMostSetupsPerBlock = 512;
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
    return sql << "setup_id IN (" << listed(setups) << ")";
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

/// Reads blocks of setups.
class BlockReader
{
public:
    /// All setups that will be read, and the columns.
    BlockReader(
        DBIF_Connection& connection,
        const std::vector<int>& setups,
        const std::vector<KeyDefinition>& columns,
        SetupsWithoutColumns others)
        : connection_(connection), columns_(columns), others_(others)
    {
        if (others == SetupsWithoutColumns::Empty &&
            KeyPresence::isWorthwhile(connection, setups)) {
            presence_.emplace(connection, setups, columns);
        }
    }

    /// Reads as many of the setups, from place `first` on, as fit.
    void read(std::span<const int> setups, std::size_t first, SweepBlock* block) const
    {
        const TraceStep step(connection_.inner().trace(), "read the points");
        setups = setups.subspan(first);
        setups = setups.first(std::min(setups.size(), kMostSetupsPerBlock));
        block->begin(setups, first);
        if (presence_.has_value()) {
            expectColumns(setups, block);
        } else {
            readAssociations(setups, block);
            setups = block->limitPoints(kMostPointsPerBlock);
        }
        for (std::size_t column = 0; column < columns_.size(); ++column) {
            setups = readColumn(column, setups, block);
        }
        if (presence_.has_value()) {
            checkNumbersOfPoints(block);
        }
    }

private:
    void expectColumns(std::span<const int> setups, SweepBlock* block) const
    {
        for (std::size_t place = 0; place < setups.size(); ++place) {
            for (std::size_t column = 0; column < columns_.size(); ++column) {
                if (presence_->has(setups[place], column)) {
                    block->expect(place, column);
                }
            }
        }
    }

    /// Reads the numbers of points of those setups only whose chunks leave them open.
    void checkNumbersOfPoints(SweepBlock* block) const
    {
        const std::vector<int> open = block->countStored();
        if (!open.empty()) {
            readAssociations(open, block);
        }
    }

    /// Notes which keys some of the block's setups have, and how many points.
    void readAssociations(std::span<const int> some, SweepBlock* block) const
    {
        SqlText sql = "SELECT setup_id, setup_column_id, points FROM setup_association WHERE ";
        sql << is_one_of(some);
        if (others_ == SetupsWithoutColumns::Empty) {
            // The sign keeps the databases from using the index of the columns, which is a detour.
            sql << " AND +setup_column_id IN (" << listed(columns_, &KeyDefinition::id) << ")";
        }
        BulkCursor cursor(connection_, sql << " ORDER BY setup_id");
        SetupFinder finder(block->setups());
        while (cursor.next()) {
            const std::size_t place = finder.find(cursor.integer(0));
            if (place != kAbsent) {
                block->note(place, cursor.integer(1), cursor.integer(2));
            }
        }
    }

    /// Reads a column of the setups, as many of them as fit; returns these.
    std::span<const int>
    readColumn(std::size_t column, std::span<const int> setups, SweepBlock* block) const
    {
        SqlText sql = "SELECT setup_id, chunk, payload FROM setup_data WHERE setup_column_id = ";
        BulkCursor cursor(
            connection_, sql << columns_[column].id << " AND " << is_one_of(setups)
                             << " ORDER BY setup_id, chunk");
        SetupFinder finder(setups);
        std::size_t points = 0;
        std::size_t last = 0;
        while (cursor.next()) {
            const std::size_t place = finder.find(cursor.integer(0));
            if (place == kAbsent || !block->has(place, column)) {
                continue;
            }
            if (place != last && points >= kMostPointsPerBlock) {
                return block->limitSetups(place);
            }
            last = place;
            const std::string_view chunk = cursor.text(2);
            points += value_count(chunk);
            block->store(place, column, cursor.integer(1), chunk);
        }
        return setups;
    }

    DBIF_Connection& connection_;
    const std::vector<KeyDefinition>& columns_;
    SetupsWithoutColumns others_;
    /// Where it pays, tells which keys the setups have.
    std::optional<KeyPresence> presence_;
};

void use_block(
    ReadTrace* trace,
    const std::function<void(const SweepPoints& points)>& use,
    SweepBlock* block)
{
    {
        const TraceStep step(trace, "unpack the points");
        block->unpack();
    }
    for (std::size_t place = 0; place < block->size(); ++place) {
        use(block->points(place));
    }
}
} // namespace

class SweepReader::Blocks
{
    Q_DISABLE_COPY_MOVE(Blocks)

public:
    Blocks(
        DBIF_Connection& connection,
        const std::vector<int>& setups,
        const std::vector<KeyDefinition>& columns,
        SetupsWithoutColumns others)
        : trace_(connection.inner().trace()),
          setups_(setups),
          reader_(connection, setups, columns, others),
          blocks_{SweepBlock(columns), SweepBlock(columns)}
    {}

    ~Blocks() = default;

    bool next(const std::function<void(const SweepPoints& points)>& use)
    {
        if (!isRead_ && !read()) {
            return false;
        }
        SweepBlock* const block = &blocks_.at(current_);
        current_ = 1 - current_;
        isRead_ = false;
        const auto work = [this, block, &use] {
            use_block(trace_, use, block);
        };
        if (trace_ == nullptr && first_ < setups_.size()) {
            BackgroundTask task;
            task.begin(work);
            read();
            task.finish();
        } else {
            // Nothing is left to read meanwhile. A trace notes one step at a time.
            work();
        }
        return true;
    }

private:
    /// Reads the next block into the place of the one that was used last.
    bool read()
    {
        if (first_ >= setups_.size()) {
            return false;
        }
        SweepBlock& block = blocks_.at(current_);
        reader_.read(setups_, first_, &block);
        first_ += block.size();
        isRead_ = true;
        return true;
    }

    ReadTrace* trace_;
    const std::vector<int>& setups_;
    BlockReader reader_;
    std::array<SweepBlock, 2> blocks_;
    std::size_t current_ = 0;
    bool isRead_ = false;
    std::size_t first_ = 0;
};

SweepReader::SweepReader(
    DBIF_Connection& connection,
    const std::vector<int>& setups,
    const std::vector<KeyDefinition>& columns,
    SetupsWithoutColumns others)
    : blocks_(std::make_unique<Blocks>(connection, setups, columns, others))
{}

SweepReader::~SweepReader() = default;

bool SweepReader::next(const std::function<void(const SweepPoints& points)>& use)
{
    return blocks_->next(use);
}

void read_sweeps(
    DBIF_Connection& connection,
    const std::vector<int>& setups,
    const std::vector<KeyDefinition>& columns,
    SetupsWithoutColumns others,
    const std::function<void(const SweepPoints& points)>& use)
{
    SweepReader reader(connection, setups, columns, others);
    while (reader.next(use)) {
    }
}
} // namespace dbif
