#pragma once

#include <string>

#include "orvanverb/design/measured_set.h"

namespace program {

/// Whether a file holds measurements, by its name.
bool IsSofa(std::string const& path);

/// Reads a set of head-related impulse responses in the form SimpleFreeFieldHRIR of SOFA (AES69-2015, "AES standard for
/// file exchange - Spatial acoustic data file format").
/// @throws WorkError that names the file and says why it can't be used
MeasuredSet ReadSofaFile(std::string const& path);

}  // namespace program
