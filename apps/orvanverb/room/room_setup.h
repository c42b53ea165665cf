#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "orvanverb/layout/speaker_layout.h"
#include "orvanverb/options/options.h"
#include "orvanverb/room/room_object.h"
#include "orvanverb/room/scene.h"
#include "orvanverb/room/state_file.h"

namespace program {

/// Everything that the options say about the room, read and checked: it makes the room that a rendering begins with,
/// and brings the scene that changes it.
class RoomSetup {
public:
    /// @param numSources  channels of all inputs
    /// @throws ProgramError that names option or file, and says what is wrong
    RoomSetup(Options const& options, unsigned int numSources);

    /// The room at the beginning. Always a new object into which the wanted state is restored, so that the same state
    /// gives the same sound to the last bit, whatever way led to it.
    std::unique_ptr<RoomObject> MakeRoom() const;

    SpeakerLayout layout;
    Scene scene;

private:
    void ChooseShape(Options const& options, unsigned int numSources);
    void Arrange(Options const& options, RoomObject& room);

    unsigned int sources;
    std::optional<std::string> hrtfSet;
    std::string internals = "8";
    std::optional<StateFile> stateFile;
    std::vector<Options::Setting> preset, attributes;
    std::vector<max::t_atom> state;
};

}  // namespace program
