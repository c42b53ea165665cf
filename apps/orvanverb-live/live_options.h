#pragma once

#include <optional>
#include <string>
#include <vector>

#include "orvanverb-live/audio/file_audio.h"
#include "orvanverb-live/osc/osc_server.h"
#include "orvanverb/options/options.h"

namespace live {

/// What the user asked for.
struct LiveOptions {
    program::Options room;                           ///< what the room is
    std::optional<std::string> autosave;             ///< a state, written at the end
    std::string name = "orvanverb";                  ///< of the JACK client
    unsigned int numInputs = 1;                      ///< of the JACK client
    std::vector<std::string> connectIn, connectOut;  ///< how the names of ports begin that are connected
    std::optional<std::string> record, recordInputs;
    bool fromFile = false;  ///< room.inputs into room.output, instead of JACK
    bool freeRunning = false, once = false;
    OscPorts osc;
    std::optional<int> http;  ///< port of the page
    std::string token;        ///< that a page off this machine needs; empty: one is made up
};

/// Reads a command line.
/// @return nothing if there is nothing to do: --help, --version
/// @throws program::UsageError
std::optional<LiveOptions> ParseLiveOptions(int argc, char const* const* argv);

}  // namespace live
