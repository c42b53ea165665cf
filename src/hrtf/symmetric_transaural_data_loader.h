#pragma once

#include <istream>
#include <string>

#include "hrtf/hrtf_data.h"

namespace Lume {

/// The set of filters that play binaural signals over two loudspeakers at equal angles on the left and on the right. A
/// point is an angle, and its position that of the left loudspeaker; its first channel filters the sum of the two
/// signals, the second one their difference.
class SymmetricTransauralDataLoader : public HrtfData {
public:
    /// Loads the set of that name.
    /// @throws orvandsp::OrvanDspException if it can't be loaded
    explicit SymmetricTransauralDataLoader(std::string const& fileName);

    /// A name that contains ".coll" is a text of rows, one that contains ".bin2trans" an SDIF file. Any other name,
    /// such as "kemar" or none, stands for the built-in set.
    void LoadFromFile(std::string const& fileName) override;

    /// Takes the built-in set: 17 angles from 10 to 170 degrees.
    void LoadDefault();

    /// Loads a text of two rows of values, delay first, for each of the 17 angles. The subject and the rate [Hz] are
    /// taken from a file name of the form name-subject-rate.coll.
    void LoadFromColl(std::string const& fileName);
    /// Loads such a text for as many angles, in steps of 10 degrees, and coefficients as the set has.
    void LoadFromColl(std::istream& stream);

    /// Loads an SDIF file of one HRTF frame per angle.
    void LoadFromB2T(std::string const& fileName);
};

}  // namespace Lume
