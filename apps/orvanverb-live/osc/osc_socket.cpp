#include "orvanverb-live/osc/osc_socket.h"

#include <netdb.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <system_error>

#include "orvanverb/common/program_error.h"

namespace live {

bool OscPeer::operator==(OscPeer const& other) const {
    return size == other.size && std::memcmp(&address, &other.address, size) == 0;
}

OscPeer OscPeer::AtPort(int port) const {
    OscPeer peer = *this;
    const auto inNetworkOrder = htons(static_cast<std::uint16_t>(port));
    if (address.ss_family == AF_INET6)
        reinterpret_cast<sockaddr_in6&>(peer.address).sin6_port = inNetworkOrder;
    else
        reinterpret_cast<sockaddr_in&>(peer.address).sin_port = inNetworkOrder;
    return peer;
}

OscSocket::OscSocket(std::string const& option, std::string const& host, int port) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_DGRAM;
    hints.ai_flags = AI_PASSIVE | AI_NUMERICHOST;
    addrinfo* found = nullptr;
    const std::string where = host + ":" + std::to_string(port);
    if (getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found) != 0)
        throw program::UsageError("--bind: '" + host + "' is no address of a network interface, as 127.0.0.1");
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> address(found, freeaddrinfo);
    descriptor = socket(address->ai_family, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    constexpr int bufferSize = 1 << 20;  // bytes: packets of some tenths of a second, should this thread be late
    if (descriptor >= 0) setsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &bufferSize, sizeof bufferSize);
    if (descriptor < 0 || bind(descriptor, address->ai_addr, address->ai_addrlen) != 0) {
        const int why = errno;
        if (descriptor >= 0) close(descriptor);
        throw program::WorkError(option + " " + std::to_string(port) + ": can't listen at " + where + ": " +
                                 std::generic_category().message(why) + "; " + option + " off does without");
    }
}

OscSocket::~OscSocket() {
    close(descriptor);
}

std::optional<std::span<char>> OscSocket::Receive(std::span<char> buffer, OscPeer& from) const {
    from = {};
    from.size = sizeof from.address;
    const ssize_t got =
        recvfrom(descriptor, buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr*>(&from.address), &from.size);
    if (got < 0) return std::nullopt;
    return buffer.first(static_cast<std::size_t>(got));
}

void OscSocket::Send(OscMessage const& message, OscPeer const& to) const {
    const std::vector<char> bytes = Packet(message);
    sendto(descriptor, bytes.data(), bytes.size(), 0, reinterpret_cast<sockaddr const*>(&to.address), to.size);
}

}  // namespace live
