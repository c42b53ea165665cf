#pragma once

#include <cstdint>
#include <string>

namespace program {

/// Loudspeakers of a pair that a channel mask names (Microsoft, "Multiple channel audio data and WAVE files", 2001).
enum ChannelMask : std::uint32_t {
    frontLeft = 0x1,
    frontRight = 0x2,
};

/// Writes the channel mask into the header of a finished WAV or RF64 file with an extensible format. libsndfile guesses
/// a mask from the number of channels, where 0 would say that they belong to no loudspeaker that has a name.
/// @throws std::runtime_error for another file, or one that can't be changed
void SetChannelMask(std::string const& path, std::uint32_t mask);

/// Sets the time of day in the peak chunk of a finished WAV or RF64 file, if it has one, to 0: the same rendering then
/// gives the same bytes. libsndfile can't be told to leave the chunk out of an RF64 file.
/// @throws std::runtime_error for a file that can't be changed
void ClearPeakTime(std::string const& path);

}  // namespace program
