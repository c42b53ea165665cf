#pragma once

#include "filters/biquad_cascade.h"
#include "filters/faded_filters.h"

namespace Lume {

/// A BiquadCascade that crossfades to new coefficients. The new filter starts each fade from silence.
class FadedBiquadCascade : public orvandsp::FadedFilters<BiquadCascade> {
public:
    explicit FadedBiquadCascade(unsigned int numStages);

    void SetNumStages(unsigned int numStages);
    /// Half as many stages; an odd order loses its last degree.
    void SetOrder(unsigned int order);

    /// The coefficients that are heard, or faded in, as BiquadCascade::GetCoefficients has them.
    /// @param result  at least GetNumCoefficients() long
    void GetCoefficients(std::vector<float>& result) const;
    unsigned int GetNumCoefficients() const;
};

}  // namespace Lume
