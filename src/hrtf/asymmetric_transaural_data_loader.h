#pragma once

#include <string>

#include "hrtf/transaural_data.h"

namespace Lume {

/// A set of filters that play binaural signals over two loudspeakers at any angles. There is no built-in one.
class AsymmetricTransauralDataLoader : public TransauralData {
public:
    /// @param fileName  an SDIF file whose name contains ".bin2trans"
    /// @throws orvandsp::OrvanDspException if it can't be loaded
    explicit AsymmetricTransauralDataLoader(std::string const& fileName);

    void LoadFromFile(std::string const& fileName) override;
    /// Loads an SDIF file of one HRTF frame per pair of loudspeakers; its matrices of positions have two rows, the left
    /// loudspeaker's and the right one's.
    void LoadFromB2T(std::string const& fileName);
};

}  // namespace Lume
