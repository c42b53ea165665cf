#pragma once

#include "pan/amplitude_panning.h"
#include "pan/null_panning.h"

namespace Lume {

/// First-order B-format encoding: channels W, X, Y for 3 outputs, and Z for 4 (Gerzon, "Periphony: with-height sound
/// reproduction", J. Audio Eng. Soc. 21(1), 1973).
///
/// The azimuth is the mathematical one: X points to the listener's right, Y ahead. Both forms have the same power for
/// every direction: 4 outputs scale W by 1 / sqrt(3) and the others by sqrt(2); 3 outputs put what a height takes from
/// X and Y into W. Distance makes no difference.
class AmbisonicPanning : public AmplitudePanning {
public:
    using AmplitudePanning::AmplitudePanning;

    /// A NullPanning unless there are 3 or 4 outputs.
    static Pan* Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
        return CreateIf<AmbisonicPanning>(requestedOutputs == 3 || requestedOutputs == 4, requestedInputs,
                                          requestedOutputs);
    }

    void convert(CartesianVector const& position, float* gains, unsigned int sourceIndex) override;
};

}  // namespace Lume
