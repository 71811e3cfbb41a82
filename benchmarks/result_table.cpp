#include "benchmarks/result_table.h"

#include "benchmarks/formatted.h"

#include <algorithm>
#include <array>
#include <iostream>

namespace bench {
namespace {
struct Scale
{
    double factor;
    const char* unit;
};

std::string figure_text(double number, Unit unit)
{
    constexpr std::array kTimes{Scale{1, "s"}, Scale{1e3, "ms"}, Scale{1e6, "us"}};
    if (unit == Unit::Bytes) {
        return formatted("%.1f MiB", number / 1024 / 1024);
    }
    const auto* scale = std::find_if(kTimes.begin(), kTimes.end() - 1, [number](const Scale& s) {
        return number * s.factor >= 1;
    });
    return formatted("%.3g ", number * scale->factor) + scale->unit;
}

struct Line
{
    std::string title;
    std::string size;
    std::string ours;
    std::string peer;
    double ratio = 0;
    std::optional<double> target;
};

/// Tells whether the target is reached.
bool print(const Line& line)
{
    const bool isReached = !line.target || line.ratio <= *line.target;
    std::cout << "| " << line.title << " | " << line.size << " | " << line.ours << " | "
              << line.peer << " | " << formatted("%.2f", line.ratio) << " | "
              << (line.target ? "<= " + formatted("%g", *line.target) : std::string()) << " | "
              << (!line.target ? ""
                  : isReached  ? "ok"
                               : "**MISSED**")
              << " |\n";
    return isReached;
}

bool print(const Comparison& row, const Figure& figure)
{
    if (!figure.fault.empty()) {
        std::cout << "| " << row.title << " | " << row.size << " | **FAILED**: " << figure.fault
                  << " | | | | |\n";
        return false;
    }
    return print(
        {row.title, row.size, figure_text(figure.ours, row.unit),
         figure_text(figure.peer, row.unit), figure.ours / figure.peer, row.target});
}

const Comparison& row_of(const std::vector<Comparison>& rows, const std::string& id)
{
    return *std::find_if(
        rows.begin(), rows.end(), [&id](const Comparison& row) { return row.id == id; });
}
} // namespace

bool print_table(
    const std::vector<Comparison>& rows,
    const std::vector<Growth>& growths,
    const Figures& figures)
{
    std::cout << "| Read | at | ours | peer | ratio | target | |\n|---|---|---|---|---|---|---|\n";
    bool isReached = true;
    for (const Comparison& row : rows) {
        const auto found = figures.find(row.id);
        if (found != figures.end()) {
            isReached = print(row, found->second) && isReached;
        }
    }
    for (const Growth& growth : growths) {
        const auto small = figures.find(growth.smallId);
        const auto large = figures.find(growth.largeId);
        if (small != figures.end() && large != figures.end() && small->second.fault.empty() &&
            large->second.fault.empty()) {
            const Comparison& smallRow = row_of(rows, growth.smallId);
            const Comparison& largeRow = row_of(rows, growth.largeId);
            const Line line{
                largeRow.title + ": ours beside ours at " + smallRow.size,
                largeRow.size,
                figure_text(large->second.ours, largeRow.unit),
                figure_text(small->second.ours, smallRow.unit),
                large->second.ours / small->second.ours,
                2};
            isReached = print(line) && isReached;
        }
    }
    return isReached;
}
} // namespace bench
