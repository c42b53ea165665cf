#pragma once

#include "filters/faded_filters.h"
#include "filters/fir_filter.h"

namespace Lume {

/// An FIRFilter that crossfades to new taps.
class FadedFIRFilter : public orvandsp::FadedFilters<FIRFilter> {
public:
    /// @param order  the number of taps less one; they are all 0
    explicit FadedFIRFilter(unsigned int order);

    void SetOrder(unsigned int order);
    void SetImplementationMethod(orvandsp::Filter::FIRImplementation implementation);
    void SetImplementationMethod(char const* name);

    /// The taps that are heard, or faded in.
    /// @param result  at least GetNumCoefficients() long
    void GetCoefficients(std::vector<float>& result) const;
    unsigned int GetNumCoefficients() const;
};

}  // namespace Lume
