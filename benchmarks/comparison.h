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

/// The first difference between two results; empty when there is none. Texts have to be equal, or
/// to read as the same double, which may be written in several ways.
std::string difference(const Values& ours, const Values& peer);
std::string difference(const Numbers& ours, const Numbers& peer);
std::string difference(const Ids& ours, const Ids& peer);

enum class Unit { Seconds, Bytes };

/// One row of the result table: a figure of the library and one of its peer.
struct Comparison
{
    /// The id of the row for programs: a name and a size, as in "device_key/1000000".
    std::string id;
    /// The title of the row for the reader.
    std::string title;
    std::string size;
    /// The largest accepted ratio of the library's figure to the peer's; the ratio is only shown
    /// when there is none.
    std::optional<double> target;
    Unit unit = Unit::Seconds;
    /// The number of times the two are measured in turn; the median of each counts.
    int turns = 5;
    /// Makes what the measurement needs; called before each one.
    std::function<void()> prepare = [] {
    };
    /// Each measures once and returns its figure.
    std::function<double()> ours;
    std::function<double()> peer;
    /// Compares what the two have just read; the difference, empty when there is none.
    std::function<std::string()> check = [] {
        return std::string();
    };
    /// Releases what they have read.
    std::function<void()> release = [] {
    };
};

/// The clock by which rows are timed.
double seconds_now();
/// Makes `seconds_now` count the processor time of this process, which other work on the machine
/// disturbs less, instead of elapsed time.
void count_processor_time();

/// The row of a read that both sides do, into an empty `Result` each. One measurement makes `calls`
/// calls; the figure is for one call.
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

/// Two rows: in the second, the library may take at most twice its time of the first.
struct Growth
{
    std::string smallId;
    std::string largeId;
};
} // namespace bench
