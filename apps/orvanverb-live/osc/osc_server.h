#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "orvanverb-live/osc/adm_tree.h"
#include "orvanverb-live/osc/osc_socket.h"
#include "orvanverb-live/osc/own_tree.h"

namespace live {

struct OscPorts {
    std::string bind = "127.0.0.1";
    std::optional<int> own = 9000, adm = 4001;  ///< none: nobody listens
    int admAnswers = 4002;
    float dmaxM = 10.0f;  ///< of ADM-OSC
};

/// Takes OSC messages for the desk, answers them, and sends what happens to those who have subscribed, all on a thread
/// of its own. What can't be taken costs one line in ten seconds, and the sender gets /orvanverb/error.
class OscServer {
public:
    /// @throws program::ProgramError if it can't listen
    OscServer(Desk& desk, OscPorts const& ports);
    ~OscServer();

private:
    using Clock = std::chrono::steady_clock;
    struct Subscriber {
        OscPeer peer;
        Clock::duration interval;
        Clock::time_point next, end;
        std::uint64_t seen = 0;
    };

    void Run();
    using Act = std::function<void(OscMessage const&, OscPeer const&)>;

    void TakeFrom(std::optional<OscSocket> const& socket, Act const& act);
    void TakeOwn(OscMessage const& message, OscPeer const& peer);
    void TakeAdm(OscMessage const& message, OscPeer const& peer);
    void Subscribe(OscMessage const& message, OscPeer const& peer);
    void Publish();
    void Complain(std::string const& line);

    Desk& desk;
    OscPorts ports;
    std::optional<OscSocket> own, adm;
    OwnTree ownTree;
    AdmTree admTree;
    std::vector<char> buffer;
    std::vector<Subscriber> subscribers;
    Clock::time_point lastComplaint;
    std::uint64_t complaints = 0;  // that weren't told
    int wake[2] = {-1, -1};        // a pipe: a byte ends the thread
    std::thread thread;
};

}  // namespace live
