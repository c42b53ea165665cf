#pragma once

namespace Lume {

constexpr unsigned int hrtf_2b_KEMAR_44100_rows = 710;
constexpr unsigned int hrtf_2b_KEMAR_44100_values = 26;

/// One ear's delay and then the 25 coefficients of six second-order sections, for each direction of the grid
/// HrtfInfoBinauralBiquadFullSphere.
using hrtf_2b_KEMAR_table = float[hrtf_2b_KEMAR_44100_rows][hrtf_2b_KEMAR_44100_values];

/// The built-in sets, each made for a sample rate from data/hrtf_2b_KEMAR_RATE.coll.
extern const hrtf_2b_KEMAR_table hrtf_2b_KEMAR_44100, hrtf_2b_KEMAR_48000, hrtf_2b_KEMAR_88200, hrtf_2b_KEMAR_96000,
    hrtf_2b_KEMAR_176400, hrtf_2b_KEMAR_192000;

/// The built-in set for two loudspeakers at 44100 Hz, the text of data/hrtf_2bt_KEMAR_44100.coll: for 17 half angles,
/// from 10 to 170 degrees, a row for the sum of the two binaural channels and one for their difference, each a delay
/// and then the 25 coefficients of six second-order sections.
extern char const* const hrtf_2bt_KEMAR_44100_coll;

}  // namespace Lume
