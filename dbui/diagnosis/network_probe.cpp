#include "dbui/diagnosis/network_probe.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <future>
#include <memory>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace dbui {
namespace {
using AddressList = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

AddressList addresses_of(const char* host, const char* port, int flags, int* fault)
{
    addrinfo wanted = {};
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_flags = flags;
    addrinfo* found = nullptr;
    *fault = getaddrinfo(host, port, &wanted, &found);
    return {*fault == 0 ? found : nullptr, &freeaddrinfo};
}

HostLookup ask_name_service(const std::string& host)
{
    int fault = 0;
    const AddressList found = addresses_of(host.c_str(), nullptr, 0, &fault);
    if (fault != 0) {
        return {HostLookup::State::Unknown, {}, gai_strerror(fault)};
    }
    HostLookup lookup{HostLookup::State::Found, {}, {}};
    for (const addrinfo* address = found.get(); address != nullptr; address = address->ai_next) {
        std::array<char, NI_MAXHOST> text{};
        const bool isText = getnameinfo(
                                address->ai_addr, address->ai_addrlen, text.data(), text.size(),
                                nullptr, 0, NI_NUMERICHOST) == 0;
        const bool isNew =
            std::find(lookup.addresses.begin(), lookup.addresses.end(), text.data()) ==
            lookup.addresses.end();
        if (isText && isNew) {
            lookup.addresses.emplace_back(text.data());
        }
    }
    return lookup;
}

PortState state_of(int connectionError)
{
    switch (connectionError) {
    case 0:
        return PortState::Open;
    case ECONNREFUSED:
    case ECONNRESET:
        return PortState::Refused;
    case ETIMEDOUT:
        return PortState::Silent;
    default:
        return PortState::Unreachable;
    }
}

PortState finish_connecting(int file, std::chrono::milliseconds limit)
{
    pollfd waiting{file, POLLOUT, 0};
    if (poll(&waiting, 1, static_cast<int>(limit.count())) != 1) {
        return PortState::Silent;
    }
    int fault = 0;
    socklen_t size = sizeof fault;
    getsockopt(file, SOL_SOCKET, SO_ERROR, &fault, &size);
    return state_of(fault);
}

PortState try_address(const std::string& host, int port, std::chrono::milliseconds limit)
{
    int fault = 0;
    const AddressList address = addresses_of(
        host.c_str(), std::to_string(port).c_str(), AI_NUMERICHOST | AI_NUMERICSERV, &fault);
    if (address == nullptr) {
        return PortState::Unreachable;
    }
    const int file = socket(address->ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (file < 0) {
        return PortState::Unreachable;
    }
    const bool isDone = connect(file, address->ai_addr, address->ai_addrlen) == 0;
    const PortState state = isDone                 ? PortState::Open
                            : errno == EINPROGRESS ? finish_connecting(file, limit)
                                                   : state_of(errno);
    close(file);
    return state;
}
} // namespace

HostLookup look_up_host(const std::string& host, std::chrono::milliseconds limit)
{
    // The name service cannot be interrupted, so a thread of its own waits for it, and is left
    // alone when it takes too long. It shares nothing with anybody but its result.
    std::packaged_task<HostLookup()> task([host] { return ask_name_service(host); });
    std::future<HostLookup> answer = task.get_future();
    std::thread(std::move(task)).detach();
    return answer.wait_for(limit) == std::future_status::ready ? answer.get() : HostLookup();
}

PortState
try_port(const std::vector<std::string>& addresses, int port, std::chrono::milliseconds limit)
{
    PortState state = PortState::Unreachable;
    const auto share = limit / std::max<std::size_t>(addresses.size(), 1);
    for (const std::string& address : addresses) {
        state = try_address(address, port, std::chrono::milliseconds(share));
        if (state == PortState::Open) {
            break;
        }
    }
    return state;
}
} // namespace dbui
