#pragma once

#include <string>

#include "orvanverb/audio/audio_format.h"

/// Values of options that several commands have.
namespace program {

/// A number from one limit to another.
/// @param what  is wanted, for the complaint: "--gap: 'x' is no time from 0 to 3600 seconds"
/// @param unit  with a blank in front, or nothing
/// @throws UsageError that names the option, like the others
float NumberWithin(std::string const& option, std::string const& word, char const* what, float least, float most,
                   char const* unit = "");

/// The same for a whole number without sign.
unsigned int CountWithin(std::string const& option, std::string const& word, char const* what, unsigned int least,
                         unsigned int most, char const* unit = "");

int ParseRate(std::string const& word);

/// A power of two.
unsigned int ParseVectorSize(std::string const& word);

FormatWish ParseFormat(std::string const& word);

/// SN3D, N3D, SN2D or N2D, in whatever letters. @return in capitals
std::string ParseConvention(std::string const& word);

/// IncreasingDegrees, which is also known as ACN, or AlternateDegrees, in whatever letters. @return the full name
std::string ParseSorting(std::string const& word);

}  // namespace program
