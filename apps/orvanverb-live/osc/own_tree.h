#pragma once

#include <functional>
#include <string>
#include <vector>

#include "orvanverb-live/osc/osc_message.h"
#include "orvanverb-live/room/desk.h"

namespace live {

/// The tree of OSC addresses that is the room's own, /orvanverb/...: controls, places, and every message of the object.
/// Azimuth is positive to the right.
class OwnTree {
public:
    using Answer = std::function<void(OscMessage const&)>;

    explicit OwnTree(Desk& newDesk) : desk(newDesk) {}

    /// @param answer  gets what the message asks for
    /// @throws std::exception with words for people, if a message can't be taken
    void Take(OscMessage const& message, Answer const& answer);

    /// What has changed, as messages to whoever follows: controls, places, levels.
    static std::vector<OscMessage> Messages(News const& news);

private:
    void TakePlace(std::vector<std::string> const& parts, OscMessage const& message, Answer const& answer);
    void TakeSource(unsigned int source, std::string const& word, OscMessage const& message, Answer const& answer);
    void AnswerSource(unsigned int source, std::string const& word, Answer const& answer);
    void TakeName(std::string const& name, OscMessage const& message, Answer const& answer);
    void Get(std::string const& name, Answer const& answer);

    Desk& desk;
};

}  // namespace live
