#pragma once

namespace Lume {

constexpr unsigned int hrtf_2b_KEMAR_44100_rows = 710;
constexpr unsigned int hrtf_2b_KEMAR_44100_values = 26;

/// The built-in set at 44100 Hz, made from data/hrtf_2b_KEMAR_44100.coll: each row is one ear's delay and then the 25
/// coefficients of six second-order sections. The grid of the rows is HrtfInfoBinauralBiquadFullSphere.
extern const float hrtf_2b_KEMAR_44100[hrtf_2b_KEMAR_44100_rows][hrtf_2b_KEMAR_44100_values];

/// The built-in set for two loudspeakers at 44100 Hz, the text of data/hrtf_2bt_KEMAR_44100.coll: for 17 half angles,
/// from 10 to 170 degrees, a row for the sum of the two binaural channels and one for their difference, each a delay
/// and then the 25 coefficients of six second-order sections.
extern char const* const hrtf_2bt_KEMAR_44100_coll;

}  // namespace Lume
