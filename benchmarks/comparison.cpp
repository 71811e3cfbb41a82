#include "benchmarks/comparison.h"

#include "benchmarks/result_table.h"

#include <benchmark/benchmark.h>

#include <charconv>
#include <ctime>
#include <iostream>

namespace bench {
namespace {
clockid_t clock_of_rows =
    CLOCK_MONOTONIC; // NOLINT(*-avoid-non-const-global-variables): of a program

std::optional<double> number_of(const std::string& text)
{
    double number = 0;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

bool is_same(const std::string& ours, const std::string& peer)
{
    if (ours == peer) {
        return true;
    }
    const std::optional<double> number = number_of(ours);
    return number.has_value() && number == number_of(peer);
}

/// Measures a row once, ours and the peer's one after the other.
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

/// Keeps the medians and says how far the run is.
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

double seconds_now()
{
    timespec now{};
    clock_gettime(clock_of_rows, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

void count_processor_time()
{
    clock_of_rows = CLOCK_PROCESS_CPUTIME_ID;
}

std::string difference(const Values& ours, const Values& peer)
{
    if (ours.size() != peer.size()) {
        return "the results have another number of columns";
    }
    for (std::size_t column = 0; column < ours.size(); ++column) {
        if (ours[column].size() != peer[column].size()) {
            return "ours has " + std::to_string(ours[column].size()) + " values, the peer " +
                   std::to_string(peer[column].size());
        }
        for (std::size_t row = 0; row < ours[column].size(); ++row) {
            if (!is_same(ours[column][row], peer[column][row])) {
                return "row " + std::to_string(row) + ": ours is \"" + ours[column][row] +
                       "\", the peer's \"" + peer[column][row] + "\"";
            }
        }
    }
    return ours.empty() || ours.front().empty() ? "there is nothing to compare" : "";
}

std::string difference(const Ids& ours, const Ids& peer)
{
    if (ours.size() != peer.size()) {
        return "the results are of another number of calls";
    }
    for (std::size_t call = 0; call < ours.size(); ++call) {
        if (ours[call].empty()) {
            return "a call found no ids";
        }
        if (ours[call] != peer[call]) {
            return "ours found " + std::to_string(ours[call].size()) + " ids, the peer " +
                   std::to_string(peer[call].size()) + ", and they differ";
        }
    }
    return ours.empty() ? "there is nothing to compare" : "";
}

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
