#include "filters/faded_iir_filter.h"

namespace Lume {

FadedIIRFilter::FadedIIRFilter(unsigned int order) {
    SetOrder(order);
}

void FadedIIRFilter::SetOrder(unsigned int order) {
    filterA.SetOrder(order);
    filterB.SetOrder(order);
    newCoefficients.resize(2 * (std::size_t{order} + 1));
}

}  // namespace Lume
