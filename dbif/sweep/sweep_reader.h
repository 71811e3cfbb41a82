#pragma once

#include "dbif/connection/connection.h"
#include "dbif/sweep/sweep_block.h"

#include <functional>
#include <memory>
#include <vector>

namespace dbif {
/// How setups without any of the columns are given: with their number of points, or with none.
enum class SetupsWithoutColumns { Counted, Empty };

/// Reads columns of setups (ascending ids), block by block. Holds the arrays of about half a
/// million points at a time, and at least those of two setups.
class SweepReader
{
    Q_DISABLE_COPY_MOVE(SweepReader)

public:
    /// Connection, setups and columns must outlive the reader.
    SweepReader(
        DBIF_Connection& connection,
        const std::vector<int>& setups,
        const std::vector<KeyDefinition>& columns,
        SetupsWithoutColumns others);
    ~SweepReader();

    /// Hands over the setups of the next block, one after another: not always in the calling
    /// thread, so that they are used while the block behind them is read; `use` must not touch the
    /// connection. All are used when the call returns. False when no setup was left. Throws
    /// `DBIF_Exception` naming setup and key when stored data are damaged.
    bool next(const std::function<void(const SweepPoints& points)>& use);

private:
    class Blocks;
    std::unique_ptr<Blocks> blocks_;
};

/// Hands over all setups, as the reader does.
void read_sweeps(
    DBIF_Connection& connection,
    const std::vector<int>& setups,
    const std::vector<KeyDefinition>& columns,
    SetupsWithoutColumns others,
    const std::function<void(const SweepPoints& points)>& use);
} // namespace dbif
