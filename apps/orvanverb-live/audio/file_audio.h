#pragma once

#include "orvanverb-live/audio/stop_signal.h"
#include "orvanverb-live/room/desk.h"
#include "orvanverb/audio/input_bank.h"
#include "orvanverb/options/options.h"
#include "orvanverb/room/room_form.h"

namespace live {

/// A recording instead of a sound card.
struct FileAudio {
    bool freeRunning = false;  ///< as fast as it goes; otherwise at the pace of time
    bool repeats = true;       ///< begins again at its end, until the program is to end
    std::size_t vectorSize = 0;
};

/// Plays a recording through the desk's room into a file, until it ends or the program is to. What was played until
/// then is written, with its tail.
/// @throws program::ProgramError
void PlayFile(FileAudio const& audio, program::InputBank& recording, program::Options const& options,
              program::RoomForm const& form, Desk& desk, StopSignal const& stop);

}  // namespace live
