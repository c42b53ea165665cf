#include "filters/fir_time_domain_filter.h"

#include <algorithm>

#include "filters/direct_convolution.h"

namespace Lume {

FIRTimeDomainFilter::FIRTimeDomainFilter(unsigned int newOrder) {
    FIRTimeDomainFilter::SetOrder(newOrder);
}

void FIRTimeDomainFilter::Process(float* output, float* input, unsigned long numSamples) {
    ConvolveDirectly(output, input, numSamples, coefficients, state);
}

void FIRTimeDomainFilter::SetOrder(unsigned int newOrder) {
    order = newOrder;
    coefficients.resize(std::size_t{order} + 1);
    state.resize(std::size_t{order} + 1);
}

void FIRTimeDomainFilter::GetCoefficients(std::vector<float>& result) const {
    std::copy(coefficients.begin(), coefficients.end(), result.begin());
}

}  // namespace Lume
