#pragma once

#include <memory>

#include "geometry/spherical_harmonics_normalization.h"
#include "hrtf/ambisonic_ears.h"
#include "hrtf/hrtf.h"

namespace Lume {

/// Makes the responses of ambisonic channels from a set of head-related filters.
///
/// Below the frequency up to which the order describes the field around a head, order x 343 m/s / (2 pi head radius),
/// the responses reproduce waves from all directions with least squared error. Above it no set of so few responses can,
/// and only the magnitudes are fitted, with the phases that come of the frequencies below: what the ear hears up there
/// (Schörkhuber, Zaunschirm and Höldrich, "Binaural rendering of ambisonic signals via magnitude least squares", DAGA
/// 2018). Below its lowest measured ring a head is taken to sound as it does on that ring at the same angle to the ear
/// axis.
///
/// Set-up only: allocates, and takes from 0.1 s for the first order to some seconds for the seventh at high rates.
/// @param set            two ears, biquads or FIR filters
/// @param sampleRate     [Hz]; the set is used as if it were made for it
/// @param order          1 to 7
/// @param normalization  of the channels, whose order is that of ACN
/// @param ambixAxes      whether the channels' x axis points ahead and their y axis to the left, as in other tools'
///                       files; otherwise x points to the right, as in the engine
/// @throws orvandsp::OrvanDspException for a set of other things than ears
AmbisonicEars MakeAmbisonicEars(std::unique_ptr<Hrtf> set, float sampleRate, unsigned int order,
                                SphericalHarmonicsNormalization normalization, bool ambixAxes);

}  // namespace Lume
