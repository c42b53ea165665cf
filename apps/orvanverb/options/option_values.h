#pragma once

#include <string>

#include "orvanverb/audio/audio_format.h"

/// Values of options that several commands have.
namespace program {

/// @throws UsageError that names the option, like the others
int ParseRate(std::string const& word);

/// A power of two.
unsigned int ParseVectorSize(std::string const& word);

FormatWish ParseFormat(std::string const& word);

/// SN3D, N3D, SN2D or N2D, in whatever letters. @return in capitals
std::string ParseConvention(std::string const& word);

/// IncreasingDegrees, which is also known as ACN, or AlternateDegrees, in whatever letters. @return the full name
std::string ParseSorting(std::string const& word);

}  // namespace program
