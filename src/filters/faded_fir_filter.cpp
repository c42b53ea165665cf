#include "filters/faded_fir_filter.h"

namespace Lume {

FadedFIRFilter::FadedFIRFilter(unsigned int order) {
    SetOrder(order);
}

void FadedFIRFilter::SetOrder(unsigned int order) {
    filterA.SetOrder(order);
    filterB.SetOrder(order);
    newCoefficients.resize(filterA.GetNumCoefficients());
}

void FadedFIRFilter::SetImplementationMethod(orvandsp::Filter::FIRImplementation implementation) {
    filterA.SetImplementationMethod(implementation);
    filterB.SetImplementationMethod(implementation);
}

void FadedFIRFilter::SetImplementationMethod(char const* name) {
    SetImplementationMethod(orvandsp::Filter::GetFIRImplementation(name));
}

void FadedFIRFilter::GetCoefficients(std::vector<float>& result) const {
    Incoming().GetCoefficients(result);
}

unsigned int FadedFIRFilter::GetNumCoefficients() const {
    return Incoming().GetNumCoefficients();
}

}  // namespace Lume
