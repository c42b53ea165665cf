#include "filters/faded_fir_time_domain_filter.h"

namespace Lume {

FadedFIRTimeDomainFilter::FadedFIRTimeDomainFilter(unsigned int order) {
    SetOrder(order);
}

void FadedFIRTimeDomainFilter::SetOrder(unsigned int order) {
    filterA.SetOrder(order);
    filterB.SetOrder(order);
    newCoefficients.resize(filterA.GetNumCoefficients());
}

void FadedFIRTimeDomainFilter::GetCoefficients(std::vector<float>& result) const {
    Incoming().GetCoefficients(result);
}

unsigned int FadedFIRTimeDomainFilter::GetNumCoefficients() const {
    return Incoming().GetNumCoefficients();
}

}  // namespace Lume
