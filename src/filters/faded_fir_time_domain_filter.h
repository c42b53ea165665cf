#pragma once

#include "filters/faded_filters.h"
#include "filters/fir_time_domain_filter.h"

namespace Lume {

/// An FIRTimeDomainFilter that crossfades to new taps.
class FadedFIRTimeDomainFilter : public orvandsp::FadedFilters<FIRTimeDomainFilter> {
public:
    /// @param order  the number of taps less one; they are all 0
    explicit FadedFIRTimeDomainFilter(unsigned int order) { SetOrder(order); }

    void SetOrder(unsigned int order) {
        ChangeOrder([order](FIRTimeDomainFilter& filter) { filter.SetOrder(order); });
    }
};

}  // namespace Lume
