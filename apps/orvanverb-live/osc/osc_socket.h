#pragma once

#include <netinet/in.h>
#include <sys/socket.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "orvanverb-live/osc/osc_message.h"

namespace live {

/// Where a packet came from, or goes to.
struct OscPeer {
    sockaddr_storage address{};
    socklen_t size = 0;

    bool operator==(OscPeer const& other) const;
    /// The same machine at another port.
    OscPeer AtPort(int port) const;
};

/// A port for OSC by UDP.
class OscSocket {
public:
    /// @param host  address of this machine to listen at, 127.0.0.1 or ::1 for this machine alone, 0.0.0.0 for all
    /// @throws program::WorkError that names option and port
    OscSocket(std::string const& option, std::string const& host, int port);
    ~OscSocket();
    OscSocket(OscSocket const&) = delete;
    OscSocket& operator=(OscSocket const&) = delete;

    int Descriptor() const noexcept { return descriptor; }

    /// The next packet that waits. @return nothing if none does
    std::optional<std::span<char>> Receive(std::span<char> buffer, OscPeer& from) const;

    /// What can't be sent is lost, as by UDP anything may be.
    void Send(OscMessage const& message, OscPeer const& to) const;

private:
    int descriptor = -1;
};

}  // namespace live
