#pragma once

#include <functional>
#include <string>
#include <vector>

#include "orvanverb-live/osc/osc_message.h"
#include "orvanverb-live/room/desk.h"

namespace live {

/// The addresses of ADM-OSC 1.0, /adm/...: what consoles, trackers and show controls speak.
///
/// Azimuth is positive to the left there; x is positive to the right, y ahead, z up. Distances and coordinates are
/// parts of an object's dmax. Values beyond their range are clamped. A message without arguments asks.
class AdmTree {
public:
    using Answer = std::function<void(OscMessage const&)>;

    /// @param dmaxM  what a distance of 1 is, until an object is told its own [m]
    AdmTree(Desk& newDesk, float dmaxM);

    /// @throws std::exception with words for people, if a message can't be taken
    void Take(OscMessage const& message, Answer const& answer);

private:
    /// What the room has no use for is kept, and told when somebody asks.
    struct Object {
        float dmax, dref = 1.0f, width = 0.0f;
    };

    void TakeObject(unsigned int object, std::string const& word, OscMessage const& message);
    void TakeListener(std::string const& word, OscMessage const& message);
    std::vector<OscMessage::Argument> ObjectValues(unsigned int object, std::string const& word) const;
    std::vector<OscMessage::Argument> ListenerValues(std::string const& word) const;
    Lume::CartesianVector Place(unsigned int object) const;

    Desk& desk;
    std::vector<Object> objects;
    float listenerScale;               // [m]
    Lume::CartesianVector listener{};  // where the listener is [m]; the room counts from there
};

}  // namespace live
