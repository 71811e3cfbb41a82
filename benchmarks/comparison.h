#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace bench {
/// Values as the library gives them: a list per keyword.
using Values = std::vector<std::vector<std::string>>;
/// Numbers as the library gives them: a column per keyword, NaN for no value.
using Numbers = std::vector<std::vector<double>>;
/// Ids as the library gives them, for each of several calls.
using Ids = std::vector<std::set<int>>;

/// Why two results are not the same; empty when they are. Texts have to be equal or to read as the
/// same double, which has more than one text.
std::string difference(const Values& ours, const Values& peer);
std::string difference(const Numbers& ours, const Numbers& peer);
std::string difference(const Ids& ours, const Ids& peer);

enum class Unit { Seconds, Bytes };

/// One row of the table: a figure of the library's beside one of the peer's.
struct Comparison
{
    /// For the machine: a name and a size, as in "device_key/1000000".
    std::string id;
    /// For the reader.
    std::string title;
    std::string size;
    /// The largest accepted ratio of ours to the peer's; none: shown only.
    std::optional<double> target;
    Unit unit = Unit::Seconds;
    /// The two are measured in turn so many times; of each the median counts.
    int turns = 5;
    /// Makes what is needed; called before every measurement.
    std::function<void()> prepare = [] {
    };
    /// Measure once.
    std::function<double()> ours;
    std::function<double()> peer;
    /// Compares what the two have just read; empty when it is the same.
    std::function<std::string()> check = [] {
        return std::string();
    };
    /// Forgets what they have read.
    std::function<void()> release = [] {
    };
};

/// The clock by which rows are timed.
double seconds_now();
/// Makes it count the time that this process spends on processors, which other work on the machine
/// disturbs less, in the place of the time that passes.
void count_processor_time();

/// Both read the same into an empty `Result`. `calls` calls make one measurement; the figure is for
/// one.
template <typename Result, typename Ours, typename Peer>
Comparison timed(Comparison row, int calls, const Ours& ours, const Peer& peer)
{
    struct Results
    {
        Result ours;
        Result peer;
    };

    const auto results = std::make_shared<Results>();
    const auto seconds = [calls](const auto& read, Result* result) {
        const double start = seconds_now();
        read(result);
        return (seconds_now() - start) / calls;
    };
    row.ours = [=] {
        return seconds(ours, &results->ours);
    };
    row.peer = [=] {
        return seconds(peer, &results->peer);
    };
    row.check = [=] {
        return difference(results->ours, results->peer);
    };
    row.release = [=] {
        *results = Results();
    };
    return row;
}

/// Two rows of which the second may take at most twice our time of the first.
struct Growth
{
    std::string smallId;
    std::string largeId;
};
} // namespace bench
