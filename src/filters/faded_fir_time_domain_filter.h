#pragma once

#include "filters/faded_filters.h"
#include "filters/fir_time_domain_filter.h"

namespace Lume {

/// An FIRTimeDomainFilter that crossfades to new taps.
class FadedFIRTimeDomainFilter : public orvandsp::FadedFilters<FIRTimeDomainFilter> {
public:
    /// @param order  the number of taps less one; they are all 0
    explicit FadedFIRTimeDomainFilter(unsigned int order);

    void SetOrder(unsigned int order);

    /// The taps that are heard, or faded in.
    /// @param result  at least GetNumCoefficients() long
    void GetCoefficients(std::vector<float>& result) const;
    unsigned int GetNumCoefficients() const;
};

}  // namespace Lume
