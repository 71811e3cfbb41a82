#include "dbimport/csv_points.h"

#include "dbapi/words/text_rules.h"
#include "dbif/connection/column_store.h"
#include "dbif/host/host_string.h"
#include "dbimport/sweep_values.h"

#include <algorithm>

namespace dbapi {
namespace {
/// Room for this many points is made at once; most sweeps have some hundred points at most.
constexpr std::size_t kUsualPoints = 128;

std::size_t count_line_ends(std::string_view text)
{
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

std::string cells_in_words(std::size_t count)
{
    return std::to_string(count) + (count == 1 ? " cell" : " cells");
}
} // namespace

void SweepRows::addCell(std::string_view cell, bool isMissing)
{
    if (cells_ == 0) {
        rowLine_ = line_;
        endedAtReturn_ = false;
    }
    // A plain number in its column, the one case that occurs a million times.
    double number = 0;
    if (cells_ < columns_.size() && !isMissing &&
        columns_[cells_].values.kind == dbif::ValueKind::Double && read_plain(cell, &number)) {
        columns_[cells_].values.numbers.push_back(number);
    } else {
        addSlowCell(cell, isMissing);
    }
    ++cells_;
}

void SweepRows::addSlowCell(std::string_view cell, bool isMissing)
{
    line_ += count_line_ends(cell);
    if (!hasHeader_) {
        header_.emplace_back(cell);
        return;
    }
    if (cells_ >= columns_.size()) {
        return; // The end of the row tells how many there are.
    }
    dbif::SetupColumn& column = columns_[cells_];
    if (isMissing) {
        append_no_value(&column.values);
        return;
    }
    std::string reason;
    if (append_value(cell, &column.values, faults_->wantsNext() ? &reason : nullptr)) {
        return;
    }
    const bool isMisplaced = cells_ == 0 && cell.starts_with('#');
    faults_->add(
        rowLine_, header_[cells_] + ": " + reason +
                      (isMisplaced ? " Annotations stand before the header row." : ""));
}

void SweepRows::endRow(int end)
{
    // CR LF ends one line, not two.
    const bool isSecondHalf = end == '\n' && endedAtReturn_ && cells_ == 0;
    if (cells_ > 0) {
        finishRow();
        cells_ = 0;
    }
    endedAtReturn_ = end == '\r';
    if (!isSecondHalf && end != -1) {
        ++line_;
    }
}

void SweepRows::finishRow()
{
    if (!hasHeader_) {
        makeColumns();
        return;
    }
    ++points_;
    if (cells_ != columns_.size()) {
        faults_->add(
            rowLine_, "The row has " + cells_in_words(cells_) + ", but the header row has " +
                          std::to_string(columns_.size()) + ".");
    }
}

void SweepRows::makeColumns()
{
    hasHeader_ = true;
    const bool isAllNumbers =
        std::all_of(header_.begin(), header_.end(), [](const std::string& cell) {
            double number = 0;
            return read_number(cell, &number);
        });
    if (isAllNumbers) {
        faults_->add(
            rowLine_, "The header row is missing: before the first point, a row names the "
                      "columns, like IND.VG,OUTD.ID.");
    }
    for (std::string& keyword : header_) {
        keyword = dbif::trimmed(keyword);
        if (isAllNumbers) {
            columns_.emplace_back().values.kind = dbif::ValueKind::Double;
        } else {
            makeColumn(keyword);
        }
    }
}

void SweepRows::makeColumn(const std::string& keyword)
{
    const std::string place = "Column " + std::to_string(columns_.size() + 1) + ": ";
    dbif::SetupColumn column;
    std::string reason;
    if (keyword.empty()) {
        reason = "The header row names no key. Write one, like OUTD.ID.";
    } else if (is_storable_text(keyword, &reason) && make_sweep_column(keyword, &column, &reason)) {
        const std::string key =
            dbif::column_key(column.isInput ? "IN" : "OUT", column.values.kind, column.name);
        const auto [first, isNew] = columnOf_.emplace(key, columns_.size() + 1);
        if (!isNew) {
            reason = quoted_beginning(keyword) + " is column " + std::to_string(first->second) +
                     " already. Leave one out, or rename it.";
        }
    }
    if (!reason.empty()) {
        faults_->add(rowLine_, place + reason);
        column.values.kind = dbif::ValueKind::Text; // takes whatever the rows hold
    }
    if (column.values.kind == dbif::ValueKind::Double) {
        column.values.numbers.reserve(kUsualPoints);
    }
    columns_.push_back(std::move(column));
}
} // namespace dbapi
