#pragma once

#include <vector>

#include "decoders/fixed_decoder.h"
#include "geometry/orientation.h"
#include "mix/signal_matrix.h"

namespace Lume {

/// Turns a sound field in ambisonic channels as a listener's head turns: what was ahead is heard on the left once the
/// head has turned to the right. SN3D and N3D, in the order of ACN.
class AmbisonicRotation : public FixedDecoder {
public:
    /// @param ambixAxes  whether the channels' x axis points ahead and their y axis to the left; otherwise x points to
    ///                   the right, as in the engine
    AmbisonicRotation(unsigned int order, bool ambixAxes);

    /// A new orientation slides in within one to two times 30 ms, the first one too. Allocates: compute it where there
    /// is time.
    void SetOrientation(Orientation const& orientation);

    /// Real-time safe. Works in place.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;

private:
    std::vector<SignalMatrix> degrees;  // the channels of one degree each
    bool ambixAxes;
};

}  // namespace Lume
