#pragma once

#include <string>

#include "hrtf/hrtf_data.h"
#include "hrtf/hrtf_info.h"

namespace Lume {

struct BuiltinSet;

/// The set of head-related transfer functions that the binaural panners use.
class Hrtf : public HrtfData {
public:
    /// Loads the set of that name.
    /// @throws orvandsp::OrvanDspException if it can't be loaded
    explicit Hrtf(std::string const& fileName);

    /// A name that contains ".coll" is a text of rows on the grid of the built-in set, one that contains ".hrtf" an
    /// SDIF file. Any other name, such as "kemar" or none, stands for the built-in set.
    void LoadFromFile(std::string const& fileName) override;

    /// Takes the built-in set for 44100 Hz, the one that stands for every name.
    void LoadDefault();

    /// The same measurements as filters for a sample rate: the built-in set that was made for the nearest one (by their
    /// ratio), which GetSamplingRate tells. There are sets for 44100 and 48000 Hz, twice and four times these; at other
    /// rates, the filters are shifted in frequency by what lies between.
    /// @param samplerate  [Hz]; what isn't above 0 counts as 44100
    static Hrtf Builtin(float samplerate);

    /// Loads a text of one row of values, delay first, per direction of a grid. The subject and the rate [Hz] are taken
    /// from a file name of the form name-subject-rate.coll.
    void LoadFromColl(std::string const& fileName, HrtfInfo const& info);

private:
    explicit Hrtf(BuiltinSet const& builtin);
    void Load(BuiltinSet const& builtin);
};

}  // namespace Lume
