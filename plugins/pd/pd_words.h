#pragma once

#include <span>
#include <string>
#include <vector>

#include "pd/pd_api.h"

namespace pd {

/// What the words of a box mean.
struct BoxWords {
    std::vector<t_atom> words;         // for the object: @NAME VALUE...
    std::vector<std::string> remarks;  // what means nothing, and what would be right
    bool autosave = false;             // the box's own @autosave
    bool multichannel = false;         // and @multichannel: all sources in one cord, all loudspeakers in another
};

/// Reads the words behind a box's name: [SOURCES [LOUDSPEAKERS]] @NAME VALUE...
BoxWords ReadBoxWords(std::span<t_atom const> words);

/// All messages, a line each.
std::vector<std::string> HelpLines();

}  // namespace pd
