#pragma once

#include <optional>
#include <string>
#include <vector>

#include "orvanverb-live/audio/stop_signal.h"
#include "orvanverb-live/room/desk.h"
#include "orvanverb/layout/speaker_layout.h"

namespace live {

struct JackOptions {
    std::string name;                                ///< of the client
    std::vector<std::string> connectIn, connectOut;  ///< beginnings of the names of ports to connect with
    std::optional<std::string> record;               ///< a file that gets what is played
    std::optional<std::string> recordInputs;         ///< one that gets what comes in
    program::SpeakerLayout const& layout;
};

/// The rate of the server, or a usual one if there is none [Hz].
int JackRate(std::string const& name);

/// Plays the desk's room as a client of JACK, until the program is to end. It starts no server: one that isn't there,
/// or goes away, is waited for.
/// @throws program::ProgramError for a file that can't be written
void PlayJack(JackOptions const& options, Desk& desk, StopSignal const& stop);

}  // namespace live
