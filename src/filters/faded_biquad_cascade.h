#pragma once

#include "filters/biquad_cascade.h"
#include "filters/faded_filters.h"

namespace Lume {

/// A BiquadCascade that crossfades to new coefficients. The new filter starts each fade from silence.
class FadedBiquadCascade : public orvandsp::FadedFilters<BiquadCascade> {
public:
    explicit FadedBiquadCascade(unsigned int numStages) { SetNumStages(numStages); }

    void SetNumStages(unsigned int numStages) {
        ChangeOrder([numStages](BiquadCascade& cascade) { cascade.SetNumStages(numStages); });
    }
    /// Half as many stages; an odd order loses its last degree.
    void SetOrder(unsigned int order) { SetNumStages(order >> 1); }
};

}  // namespace Lume
