#include "benchmarks/comparison_run.h"

#include "benchmarks/result_table.h"

#include <benchmark/benchmark.h>

#include <iostream>
#include <string>

namespace bench {
namespace {
/// Measures a row once, the library and the peer one after the other.
void measure(const Comparison& row, benchmark::State& state)
{
    for (auto turn : state) {
        static_cast<void>(turn);
        row.prepare();
        const double ours = row.ours();
        const double peer = row.peer();
        const std::string fault = row.check();
        row.release();
        if (!fault.empty()) {
            state.SkipWithError(fault.c_str());
            return;
        }
        state.SetIterationTime(ours);
        state.counters["ours"] = ours;
        state.counters["peer"] = peer;
    }
}

/// Keeps the medians, and shows the progress of the run.
class MedianReporter : public benchmark::BenchmarkReporter
{
public:
    explicit MedianReporter(Figures* figures) : figures_(figures) {}

    bool ReportContext(const Context& /*context*/) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            const std::string& id = run.run_name.function_name;
            if (run.error_occurred) {
                (*figures_)[id].fault = run.error_message;
            } else if (run.run_type == Run::RT_Iteration && run.repetitions > 1) {
                continue;
            } else if (run.run_type == Run::RT_Iteration || run.aggregate_name == "median") {
                (*figures_)[id].ours = run.counters.at("ours");
                (*figures_)[id].peer = run.counters.at("peer");
            }
        }
        std::cerr << '.' << std::flush;
    }

    void Finalize() override { std::cerr << '\n'; }

private:
    Figures* figures_;
};
} // namespace

bool run_comparisons(const std::vector<Comparison>& rows, const std::vector<Growth>& growths)
{
    for (const Comparison& row : rows) {
        benchmark::RegisterBenchmark(
            row.id.c_str(), [&row](benchmark::State& state) { measure(row, state); })
            ->Iterations(1)
            ->Repetitions(row.turns)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
    Figures figures;
    MedianReporter reporter(&figures);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return print_table(rows, growths, figures);
}
} // namespace bench
