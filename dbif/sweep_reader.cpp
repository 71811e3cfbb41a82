#include "dbif/sweep_reader.h"

#include "dbif/bulk_cursor.h"
#include "dbif/exception.h"
#include "dbif/read_trace.h"

#include <span>

namespace dbif {
namespace {
constexpr std::size_t kMostSetupsPerBlock = 256;
constexpr std::size_t kMostPointsPerBlock = 1U << 18U;

std::string describe(const KeyDefinition& column, int setup)
{
    return "The key \"" + column.name + "\" of setup " + std::to_string(setup);
}

/// The statement that yields the chunks of one column of a block of setups, setup by setup, each
/// with the number of points that it should add up to.
SqlText chunk_statement(const KeyDefinition& column, std::span<const SweepPlace> block)
{
    SqlText sql;
    sql << "SELECT a.setup_id, a.points, d.payload FROM setup_association a LEFT JOIN "
           "setup_data d ON d.setup_column_id = "
        << column.id << " AND d.setup_id = a.setup_id WHERE a.setup_column_id";
    const int first = block.front().setup;
    const int last = block.back().setup;
    if (static_cast<std::size_t>(last - first) < 2 * block.size()) {
        // The sum keeps the planner on the range of setups: without statistics SQLite would rather
        // pass over all setups that have the key.
        sql << " + 0 = " << column.id << " AND a.setup_id BETWEEN " << first << " AND " << last;
    } else {
        sql << " = " << column.id << " AND a.setup_id IN (";
        for (std::size_t i = 0; i < block.size(); ++i) {
            sql << (i == 0 ? SqlText() : SqlText(", ")) << block[i].setup;
        }
        sql << ")";
    }
    return sql << " ORDER BY a.setup_id, d.chunk";
}

/// One column of one setup while its chunks come in.
struct ReadColumn
{
    std::size_t place = 0;
    std::size_t points = 0;
    SweepArray* array = nullptr;
};

void check_length(const KeyDefinition& column, int setup, const ReadColumn& read)
{
    if (read.array != nullptr && read.array->size() != read.points) {
        throw_error(
            describe(column, setup) + " is damaged (it has " + std::to_string(read.array->size()) +
                " of " + std::to_string(read.points) +
                " points). Restore the database from a backup, or import the data again.",
            __FILE__, __LINE__);
    }
}

/// Ends the column of one setup and goes on to that of another one; false when the block does not
/// hold that setup, as a range of ids brings setups along that were not asked for.
bool go_on_to(
    int setup,
    const KeyDefinition& column,
    std::span<const SweepPlace> block,
    ReadColumn* read)
{
    check_length(column, block[read->place].setup, *read);
    read->array = nullptr;
    while (read->place + 1 < block.size() && block[read->place].setup < setup) {
        ++read->place;
    }
    return block[read->place].setup == setup;
}

void read_column(
    DBIF_Connection& connection,
    const KeyDefinition& column,
    std::span<const SweepPlace> block,
    std::span<SweepArrays> arrays)
{
    const TraceStep step(connection.trace(), "read the points");
    BulkCursor cursor(connection, chunk_statement(column, block));
    ReadColumn read;
    while (cursor.next()) {
        const int setup = cursor.integer(0);
        if (block[read.place].setup != setup && !go_on_to(setup, column, block, &read)) {
            continue;
        }
        if (read.array == nullptr) {
            read.array = &arrays[read.place][column.key];
            read.array->kind = column.kind;
            read.points = static_cast<std::size_t>(cursor.integer(1));
        }
        if (!cursor.isNull(2)) {
            unpack(cursor.text(2), describe(column, setup), read.array);
        }
    }
    check_length(column, block[read.place].setup, read);
}

/// How many of the places are read together.
std::size_t block_size(std::span<const SweepPlace> places)
{
    std::size_t points = 0;
    std::size_t count = 0;
    while (count < places.size() && count < kMostSetupsPerBlock && points < kMostPointsPerBlock) {
        points += places[count].points;
        ++count;
    }
    return count;
}
} // namespace

void read_sweeps(
    DBIF_Connection& connection,
    const std::vector<SweepPlace>& places,
    const std::vector<KeyDefinition>& columns,
    const std::function<void(std::size_t place, SweepArrays& arrays)>& use)
{
    for (std::size_t first = 0; first < places.size();) {
        const std::span<const SweepPlace> rest(places.data() + first, places.size() - first);
        const std::span<const SweepPlace> block = rest.first(block_size(rest));
        std::vector<SweepArrays> arrays(block.size());
        for (const KeyDefinition& column : columns) {
            read_column(connection, column, block, arrays);
        }
        for (std::size_t i = 0; i < block.size(); ++i) {
            use(first + i, arrays[i]);
            arrays[i].clear();
        }
        first += block.size();
    }
}
} // namespace dbif
