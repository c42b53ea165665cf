#pragma once

#include <vector>

#include "decoders/fixed_decoder.h"
#include "harmonics/ambisonic_channels.h"

namespace Lume {

/// Brings ambisonic channels from the order and weights of one format to those of another.
class AmbisonicReorder : public FixedDecoder {
public:
    /// Both lists hold the same harmonics.
    AmbisonicReorder(std::vector<AmbisonicChannel> const& from, std::vector<AmbisonicChannel> const& to);

    /// Real-time safe. Outputs must not be inputs.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;

private:
    struct Source {
        std::size_t input;
        float gain;
    };
    std::vector<Source> sources;  // one per output
};

}  // namespace Lume
