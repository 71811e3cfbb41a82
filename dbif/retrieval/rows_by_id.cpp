#include "dbif/retrieval/rows_by_id.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace dbif {
RowsById::RowsById(const std::vector<double>& ids)
{
    ids_.reserve(ids.size());
    for (const double id : ids) {
        if (!std::isnan(id)) {
            ids_.push_back(static_cast<int>(id));
        }
    }
    if (!std::is_sorted(ids_.begin(), ids_.end())) {
        std::sort(ids_.begin(), ids_.end());
    }
    const std::size_t known = ids_.size();
    ids_.erase(std::unique(ids_.begin(), ids_.end()), ids_.end());
    if (ids_.size() < known) {
        next_.assign(ids.size(), kNone);
    }
    lowest_ = ids_.empty() ? 0 : ids_.front();
    const auto span = ids_.empty() ? 0 : static_cast<std::size_t>(ids_.back() - lowest_) + 1;
    isDense_ = span <= 4 * ids_.size();
    first_.assign(isDense_ ? span : ids_.size(), kNone);
    for (std::size_t row = ids.size(); row-- > 0;) {
        if (std::isnan(ids[row])) {
            continue;
        }
        const int id = static_cast<int>(ids[row]);
        const auto place = static_cast<std::size_t>(
            isDense_ ? id - lowest_
                     : std::lower_bound(ids_.begin(), ids_.end(), id) - ids_.begin());
        if (!next_.empty()) {
            next_[row] = first_[place];
        }
        first_[place] = static_cast<std::uint32_t>(row);
    }
}

RowsById RowsById::consecutive(std::size_t highest)
{
    RowsById rows;
    rows.ids_.resize(highest);
    std::iota(rows.ids_.begin(), rows.ids_.end(), 1);
    rows.first_.resize(highest);
    std::iota(rows.first_.begin(), rows.first_.end(), 0U);
    rows.lowest_ = 1;
    rows.isDense_ = true;
    return rows;
}

std::uint32_t RowsById::searchFirstRow(int id) const
{
    const auto found = std::lower_bound(ids_.begin(), ids_.end(), id);
    return found == ids_.end() || *found != id
               ? kNone
               : first_[static_cast<std::size_t>(found - ids_.begin())];
}
} // namespace dbif
