#pragma once

#include <chrono>
#include <string>
#include <vector>

/// Looks at the way to a server below the database's own protocol. Neither call takes longer than
/// its limit.
namespace dbui {
/// The answer of the machine's name service about a host.
struct HostLookup
{
    enum class State { Found, Unknown, TimedOut };
    State state = State::TimedOut;
    std::vector<std::string> addresses; ///< numeric, each once
    std::string fault;                  ///< the name service's words, when the name is unknown
};

HostLookup look_up_host(const std::string& host, std::chrono::milliseconds limit);

/// The outcome of beginning a connection to a port: it is made, refused, never answered, or the
/// network knows no way there.
enum class PortState { Open, Refused, Silent, Unreachable };

/// The first address that is open decides, or else the last one. Sends nothing.
PortState
try_port(const std::vector<std::string>& addresses, int port, std::chrono::milliseconds limit);
} // namespace dbui
