#include "benchmarks/comparison.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <ctime>

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

std::string difference(const Numbers& ours, const Numbers& peer)
{
    if (ours.size() != peer.size()) {
        return "the results have another number of columns";
    }
    const auto isSame = [](double a, double b) {
        return a == b || (std::isnan(a) && std::isnan(b));
    };
    for (std::size_t column = 0; column < ours.size(); ++column) {
        if (!std::equal(
                ours[column].begin(), ours[column].end(), peer[column].begin(), peer[column].end(),
                isSame)) {
            return "column " + std::to_string(column) + " differs";
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
} // namespace bench
