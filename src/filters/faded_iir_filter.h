#pragma once

#include "filters/faded_filters.h"
#include "filters/iir_filter.h"

namespace Lume {

/// An IIRFilter that crossfades to new coefficients. The new filter starts each fade from silence.
class FadedIIRFilter : public orvandsp::FadedFilters<IIRFilter> {
public:
    explicit FadedIIRFilter(unsigned int order) { SetOrder(order); }

    void SetOrder(unsigned int order) {
        ChangeOrder([order](IIRFilter& filter) { filter.SetOrder(order); });
        newCoefficients.resize(2 * (std::size_t{order} + 1));
    }
};

}  // namespace Lume
