#pragma once

#include "dbif/write/record_writer.h"
#include "dbimport/file_faults.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace dbapi {
/// Makes a sweep from the cells of a file, as they come: the header row names the columns, every
/// other row is a point. Blank lines do not count.
class SweepRows
{
public:
    /// `firstLine` is the number of the line in which the first cell stands.
    SweepRows(FileFaults* faults, std::size_t firstLine) : faults_(faults), line_(firstLine) {}

    /// One cell, without its quotes. `isMissing` tells an empty one from an empty text in quotes.
    void addCell(std::string_view cell, bool isMissing);
    /// `end` is the character that ended the row, or -1 for the end of the file.
    void endRow(int end);

    /// The line that is being read.
    [[nodiscard]] std::size_t line() const { return line_; }

    [[nodiscard]] bool hasHeader() const { return hasHeader_; }

    [[nodiscard]] std::size_t points() const { return points_; }

    /// The columns; of unequal length when there were faults.
    [[nodiscard]] std::vector<dbif::SetupColumn> takeColumns() { return std::move(columns_); }

private:
    void addSlowCell(std::string_view cell, bool isMissing);
    void finishRow();
    void makeColumns();
    void makeColumn(const std::string& keyword);

    FileFaults* faults_;
    std::vector<dbif::SetupColumn> columns_;
    std::vector<std::string> header_;
    std::map<std::string, std::size_t> columnOf_;
    bool hasHeader_ = false;
    std::size_t points_ = 0;
    /// `line()`, and the line in which the row began.
    std::size_t line_;
    std::size_t rowLine_ = 0;
    std::size_t cells_ = 0;
    bool endedAtReturn_ = false;
};
} // namespace dbapi
