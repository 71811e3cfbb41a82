#include "dbsuggest/table_text.h"

#include "dbif/host/host_number.h"
#include "dbsuggest/display_text.h"

#include <algorithm>
#include <cmath>

namespace dbapi {
namespace {
/// A value longer than this is cut in a shortened table.
constexpr std::size_t kWidestValue = 60;

/// A column as it will be shown.
struct ShownColumn
{
    std::vector<std::string> cells; ///< the heading first
    std::size_t width = 0;
    bool isNumber = true;
};

ShownColumn show(const DataColumn& column, std::size_t rows, bool isCut)
{
    ShownColumn shown;
    shown.cells.push_back(display_text(column.heading));
    for (std::size_t row = 0; row < rows; ++row) {
        const std::string& value = column.values[row];
        shown.cells.push_back(isCut ? display_cut(value, kWidestValue) : display_text(value));
        shown.isNumber =
            shown.isNumber && (value.empty() || !std::isnan(dbif::read_engineering_number(value)));
    }
    for (const std::string& cell : shown.cells) {
        shown.width = std::max(shown.width, display_width(cell));
    }
    return shown;
}

std::string row_text(const std::vector<ShownColumn>& columns, std::size_t row)
{
    std::string line;
    for (const ShownColumn& column : columns) {
        const std::string& cell = column.cells[row];
        const std::string padding(column.width - display_width(cell), ' ');
        line += &column == columns.data() ? "" : "  ";
        line += column.isNumber ? padding + cell : cell + padding;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}
} // namespace

std::string table_text(const DataTable& table, const TableLayout& layout)
{
    if (table.rows() == 0) {
        return {};
    }
    const std::size_t rows = std::min(table.rows(), layout.shownRows);
    std::vector<ShownColumn> columns;
    for (const DataColumn& column : table.columns) {
        columns.push_back(show(column, rows, layout.isCut));
    }
    const std::string headings = row_text(columns, 0);
    std::string text = (layout.isBold ? bold_text(headings) : headings) + "\n";
    for (std::size_t row = 1; row <= rows; ++row) {
        text += row_text(columns, row) + "\n";
    }
    return text;
}
} // namespace dbapi
