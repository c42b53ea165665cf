#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/room_format.h"
#include "orvanverb/layout/speaker_layout.h"
#include "orvanverb/options/options.h"
#include "room/room_state.h"

namespace program {

/// What the outputs of a rendering are, and how they lie in the file.
struct RoomForm {
    /// @param number  outputs that an attribute asks for, as typed; empty: none does
    /// @param saved   the state to begin with, if there is one
    /// @throws ProgramError that names the option, and says what there is
    static RoomForm Choose(Options const& options, std::string const& number,
                           std::optional<Lume::RoomState> const& saved);

    bool HasEars() const;

    /// What each channel of the file is.
    std::vector<std::string> ChannelWords() const;

    Lume::RoomFormat const* format = nullptr;  // null: headphones or a ring, by the number of outputs
    SpeakerLayout layout;                      // positions only if the outputs are loudspeakers
    std::string remark;                        // what was chosen without being asked for; empty: nothing
};

}  // namespace program
