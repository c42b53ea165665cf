#pragma once

#include <string>
#include <vector>

#include "harmonics/spherical_harmonics.h"
#include "orvanverb/layout/speaker_layout.h"

/// What the channels of a file are, in words.
namespace program {

/// "left ear", "right ear".
std::vector<std::string> EarWords();

/// "left", "right".
std::vector<std::string> PairWords();

/// "mid", "side, positive to the right".
std::vector<std::string> MidSideWords();

/// "azimuth -30", "azimuth 45 elevation 30", in the order of the file.
std::vector<std::string> LoudspeakerWords(SpeakerLayout const& layout);

/// "ACN 3, degree 1 order 1, to the right".
/// @param convention  "SN3D" and the like, told at the first channel
/// @param ambixAxes  the set's x axis points ahead and its y axis to the left, as other tools have it; otherwise x
///                   points to the right and y ahead
std::vector<std::string> HarmonicWords(std::vector<Lume::HarmonicIndex> const& harmonics, char const* convention,
                                       bool ambixAxes);

/// What to tell of the axes of ambisonic channels.
std::string AxesRemark(bool ambixAxes);

}  // namespace program
