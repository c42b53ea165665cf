#include "orvanverb-live/osc/osc_server.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <exception>
#include <stdexcept>

#include "orvanverb/common/messages.h"

namespace live {

namespace {

constexpr std::size_t largestPacket = 65536;  // of UDP
constexpr int mostAtOnce = 256;               // packets, before others have their turn
constexpr std::chrono::seconds complaintInterval{10}, subscriptionTime{60};
constexpr std::size_t mostSubscribers = 32;
constexpr float slowest = 0.1f, usual = 10.0f, fastest = 50.0f;  // subscriptions [1/s]

}  // namespace

OscServer::OscServer(Desk& newDesk, OscPorts const& newPorts)
    : desk(newDesk),
      ports(newPorts),
      ownTree(newDesk),
      admTree(newDesk, newPorts.dmaxM),
      buffer(largestPacket),
      lastComplaint(Clock::now() - complaintInterval) {
    if (ports.own) own.emplace("--osc", ports.bind, *ports.own);
    if (ports.adm) adm.emplace("--adm", ports.bind, *ports.adm);
    if (!own && !adm) return;
    if (pipe(wake) != 0) throw std::runtime_error("no pipe for the OSC thread");
    thread = std::thread([this] { Run(); });
}

OscServer::~OscServer() {
    if (thread.joinable()) {
        const char byte = 0;
        [[maybe_unused]] const ssize_t written = write(wake[1], &byte, 1);
        thread.join();
    }
    for (const int end : wake)
        if (end >= 0) close(end);
}

void OscServer::Run() {
    std::array<pollfd, 3> waits{pollfd{wake[0], POLLIN, 0}, pollfd{own ? own->Descriptor() : -1, POLLIN, 0},
                                pollfd{adm ? adm->Descriptor() : -1, POLLIN, 0}};
    constexpr int patience = 20, forLong = 1000;  // [ms]
    while (true) {
        poll(waits.data(), waits.size(), subscribers.empty() ? forLong : patience);
        if (waits[0].revents != 0) return;
        TakeFrom(own, [this](OscMessage const& message, OscPeer const& peer) { TakeOwn(message, peer); });
        TakeFrom(adm, [this](OscMessage const& message, OscPeer const& peer) { TakeAdm(message, peer); });
        Publish();
    }
}

/// Acts on the packets that wait at a port. What can't be taken costs a line.
void OscServer::TakeFrom(std::optional<OscSocket> const& socket, Act const& act) {
    OscPeer peer;
    for (int i = 0; socket && i < mostAtOnce; ++i) {
        const std::optional<std::span<char>> packet = socket->Receive(buffer, peer);
        if (!packet) return;
        try {
            ReadPacket(*packet, [&](OscMessage const& message) {
                try {
                    act(message, peer);
                } catch (std::exception const& error) {
                    Complain(message.address + ": " + error.what());
                }
            });
        } catch (std::exception const& error) {
            Complain(error.what());
        }
    }
}

void OscServer::TakeOwn(OscMessage const& message, OscPeer const& peer) {
    try {
        if (message.address == "/orvanverb/subscribe" || message.address == "/orvanverb/unsubscribe")
            Subscribe(message, peer);
        else
            ownTree.Take(message, [&](OscMessage const& answer) { own->Send(answer, peer); });
    } catch (std::exception const& error) {
        own->Send({"/orvanverb/error", {message.address + ": " + error.what()}}, peer);
        throw;
    }
}

void OscServer::TakeAdm(OscMessage const& message, OscPeer const& peer) {
    admTree.Take(message, [&](OscMessage const& answer) { adm->Send(answer, peer.AtPort(ports.admAnswers)); });
}

void OscServer::Subscribe(OscMessage const& message, OscPeer const& peer) {
    const auto found = std::find_if(subscribers.begin(), subscribers.end(),
                                    [&](Subscriber const& subscriber) { return subscriber.peer == peer; });
    if (message.address == "/orvanverb/unsubscribe") {
        if (found != subscribers.end()) subscribers.erase(found);
        return;
    }
    const float rate = std::clamp(message.Number(0).value_or(usual), slowest, fastest);
    const auto now = Clock::now();
    if (found == subscribers.end() && subscribers.size() == mostSubscribers)
        throw std::invalid_argument("there are " + std::to_string(mostSubscribers) +
                                    " subscribers, the most there can be");
    Subscriber& subscriber = found != subscribers.end() ? *found : subscribers.emplace_back();
    subscriber.peer = peer;
    subscriber.interval =
        std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1.0 / static_cast<double>(rate)));
    subscriber.next = now;
    subscriber.end = now + subscriptionTime;
}

void OscServer::Publish() {
    const auto now = Clock::now();
    std::erase_if(subscribers, [now](Subscriber const& subscriber) { return subscriber.end < now; });
    for (Subscriber& subscriber : subscribers) {
        if (subscriber.next > now) continue;
        subscriber.next = std::max(subscriber.next + subscriber.interval, now);
        for (OscMessage const& message : OwnTree::Messages(desk.NewsSince(subscriber.seen)))
            own->Send(message, subscriber.peer);
    }
}

void OscServer::Complain(std::string const& line) {
    const auto now = Clock::now();
    if (now - lastComplaint < complaintInterval) {
        ++complaints;
        return;
    }
    lastComplaint = now;
    std::string more = complaints > 0 ? " (and " + std::to_string(complaints) + " more since the last such line)" : "";
    complaints = 0;
    constexpr std::size_t longest = 200;
    std::string told = line.substr(0, longest);
    std::replace_if(
        told.begin(), told.end(), [](unsigned char letter) { return std::iscntrl(letter) != 0; }, '?');
    program::Say("OSC: " + told + more);
}

}  // namespace live
