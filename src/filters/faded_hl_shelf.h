#pragma once

#include "filters/faded_filters.h"
#include "filters/hl_shelf.h"

namespace Lume {

/// An HLShelf that crossfades to new parameters.
class FadedHLShelf : public orvandsp::FadedFilters<HLShelf> {
public:
    /// Crossfade time of the channels of MultiFadedHLShelf [ms].
    static constexpr float DefaultHLShelfCrossFadeTime = 30.0f;

    /// Fades to the parameters from the next block on.
    void SetParameters(HLShelfParameters const& parameters) {
        const float set[] = {parameters.gain,     parameters.gainLow, parameters.gainMed,
                             parameters.gainHigh, parameters.freqLow, parameters.freqHigh};
        SetCoefficients(set, false);
    }
};

}  // namespace Lume
