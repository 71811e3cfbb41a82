#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace dbif {
/// Finds the rows that belong to a record.
class RowsById
{
public:
    /// `ids`: the record's id of each row; NaN for none.
    explicit RowsById(const std::vector<double>& ids);

    /// A row for each id from 1 to `highest`, in their order.
    static RowsById consecutive(std::size_t highest);

    /// The ids, ascending, each once.
    [[nodiscard]] const std::vector<int>& distinctIds() const { return ids_; }

    /// Calls `use` with every row of the record.
    template <typename Use>
    void forRows(int id, const Use& use) const
    {
        for (std::uint32_t row = firstRow(id); row != kNone; row = nextRow(row)) {
            use(row);
        }
    }

private:
    RowsById() = default;

    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    [[nodiscard]] std::uint32_t firstRow(int id) const
    {
        // An id below the lowest becomes a large number.
        const auto place = static_cast<std::size_t>(static_cast<long long>(id) - lowest_);
        if (isDense_) {
            return place < first_.size() ? first_[place] : kNone;
        }
        return searchFirstRow(id);
    }

    [[nodiscard]] std::uint32_t nextRow(std::uint32_t row) const
    {
        return next_.empty() ? kNone : next_[row];
    }

    [[nodiscard]] std::uint32_t searchFirstRow(int id) const;

    /// The first row by id, of all ids from the lowest to the highest; or, where that would be a
    /// table of gaps, by the place in `ids_`.
    std::vector<std::uint32_t> first_;
    /// The next row of the same record, by row; empty when each record has one row.
    std::vector<std::uint32_t> next_;
    std::vector<int> ids_;
    long long lowest_ = 0;
    bool isDense_ = false;
};
} // namespace dbif
