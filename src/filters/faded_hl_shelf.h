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
    void SetParameters(HLShelfParameters const& parameters);

    /// ProcessBlock in two parts, between which a bank runs the shelves of all its channels, four at a time.
    ///
    /// The first part starts a waiting fade and names what is to be filtered: one job outside a fade, two in it.
    template <typename Jobs>
    void BeginBlock(float* output, float const* input, unsigned long numSamples, Jobs& jobs) {
        FadedFilters::BeginBlock(numSamples);
        if (IsFading()) {
            jobs.Add({&filterA, bufferA.data(), input});
            jobs.Add({&filterB, bufferB.data(), input});
        } else {
            jobs.Add({&Incoming(), output, input});
        }
    }
    /// The second part mixes the two if a fade runs. In the block in which it ends the old shelf has filtered too much;
    /// nothing comes of that, as its next fade begins with the other's audio memory.
    void FinishBlock(float* output, unsigned long numSamples) {
        if (IsFading()) MixFade(output, numSamples, false);
    }
};

}  // namespace Lume
