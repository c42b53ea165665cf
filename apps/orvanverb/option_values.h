#pragma once

#include <string>

#include "orvanverb/audio_output.h"

/// Values of options that several commands have.
namespace program {

/// @throws UsageError that names the option, like the others
int ParseRate(std::string const& word);

/// A power of two.
unsigned int ParseVectorSize(std::string const& word);

SampleFormat ParseFormat(std::string const& word);

}  // namespace program
