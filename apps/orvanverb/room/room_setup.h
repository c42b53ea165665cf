#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "orvanverb/common/whole_file.h"
#include "orvanverb/hrtf/ears_cache.h"
#include "orvanverb/options/options.h"
#include "orvanverb/room/room_form.h"
#include "orvanverb/room/room_object.h"
#include "orvanverb/room/scene.h"
#include "room/room_state.h"

namespace program {

/// Everything that the options say about the room, read and checked: it makes the room that a rendering begins with,
/// and brings the scene that changes it.
class RoomSetup {
public:
    /// @param numSources  channels of all inputs
    /// @param samplerate  of the rendering [Hz]
    /// @throws ProgramError that names option or file, and says what is wrong
    RoomSetup(Options const& options, unsigned int numSources, int samplerate);

    /// The room at the beginning. Always a new object into which the wanted state is restored, so that the same state
    /// gives the same sound to the last bit, whatever way led to it.
    std::unique_ptr<RoomObject> MakeRoom();

    /// Tells a room what the scene has before a sample, counted from the recording's first.
    /// @return lines to be shown
    std::vector<std::string> Play(RoomObject& room, std::uint64_t beforeFrame);

    /// What to say of a scene that goes on behind the end; empty if it doesn't.
    std::string PendingRemark() const { return scene.PendingRemark(); }

    /// Where the files of ears are found, of all rooms that are made here.
    EarsCache& Ears() noexcept { return ears; }

    /// Samples of one run of the engine.
    unsigned int VectorSize() const noexcept { return static_cast<unsigned int>(state.vectorSize); }

    /// Writes the state of the beginning where the options want it.
    /// @throws WorkError
    void SaveState();

    RoomForm form;

private:
    void ChooseShape(Options const& options, unsigned int numSources);
    void RequireShape(std::string const& path) const;
    void Arrange(Options const& options, RoomObject& room);

    EarsCache ears;
    unsigned int sources;
    std::string internals = "8";
    std::vector<Options::Setting> preset, attributes;
    std::optional<Lume::RoomState> saved;  // to begin with
    Lume::RoomState state;                 // of the beginning
    Scene scene;
    float directDb, roomDb;  // levels on top of the room, which no state holds
    std::string statePath;
    std::optional<WholeFile> stateFile;  // to be written
};

}  // namespace program
