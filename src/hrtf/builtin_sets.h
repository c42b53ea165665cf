#pragma once

#include <span>

namespace Lume {

constexpr unsigned int hrtf_2b_KEMAR_44100_rows = 710;
constexpr unsigned int hrtf_2b_KEMAR_44100_values = 26;

/// One ear's delay and then the 25 coefficients of six second-order sections, for each direction of the grid
/// HrtfInfoBinauralBiquadFullSphere.
using hrtf_2b_KEMAR_table = float[hrtf_2b_KEMAR_44100_rows][hrtf_2b_KEMAR_44100_values];

/// A built-in set, made for a sample rate [Hz] from data/hrtf_2b_KEMAR_RATE.coll.
struct BuiltinSet {
    unsigned int samplerate;
    hrtf_2b_KEMAR_table const& rows;
};

/// All of them; the first one is for 44100 Hz. A build says which rates there are.
extern std::span<BuiltinSet const> const builtinSets;

/// The built-in set for two loudspeakers at 44100 Hz, the text of data/hrtf_2bt_KEMAR_44100.coll: for 17 half angles,
/// from 10 to 170 degrees, a row for the sum of the two binaural channels and one for their difference, each a delay
/// and then the 25 coefficients of six second-order sections.
extern char const* const hrtf_2bt_KEMAR_44100_coll;

}  // namespace Lume
