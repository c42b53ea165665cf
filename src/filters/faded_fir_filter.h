#pragma once

#include "filters/faded_filters.h"
#include "filters/fir_filter.h"

namespace Lume {

/// An FIRFilter that crossfades to new taps.
class FadedFIRFilter : public orvandsp::FadedFilters<FIRFilter> {
public:
    /// @param order  the number of taps less one; they are all 0
    explicit FadedFIRFilter(unsigned int order) { SetOrder(order); }

    void SetOrder(unsigned int order) {
        ChangeOrder([order](FIRFilter& filter) { filter.SetOrder(order); });
    }
    void SetImplementationMethod(orvandsp::Filter::FIRImplementation implementation) {
        filterA.SetImplementationMethod(implementation);
        filterB.SetImplementationMethod(implementation);
    }
    void SetImplementationMethod(char const* name) {
        SetImplementationMethod(orvandsp::Filter::GetFIRImplementation(name));
    }
};

}  // namespace Lume
