#include "filters/fir_time_domain_filter.h"

#include <algorithm>

#include "filters/direct_convolution.h"

namespace Lume {

FIRTimeDomainFilter::FIRTimeDomainFilter(unsigned int newOrder) {
    FIRTimeDomainFilter::SetOrder(newOrder);
}

void FIRTimeDomainFilter::Clear() {
    std::fill(state.begin(), state.end(), 0.0f);
}

void FIRTimeDomainFilter::Process(float* output, float* input, unsigned long numSamples) {
    ConvolveDirectly(output, input, numSamples, coefficients, state);
}

void FIRTimeDomainFilter::SetCoefficients(float* taps) {
    std::copy_n(taps, coefficients.size(), coefficients.begin());
}

void FIRTimeDomainFilter::SetState(Filter const& other) {
    state = static_cast<FIRTimeDomainFilter const&>(other).state;
}

void FIRTimeDomainFilter::SetOrder(unsigned int newOrder) {
    order = newOrder;
    coefficients.resize(std::size_t{order} + 1);
    state.resize(std::size_t{order} + 1);
}

void FIRTimeDomainFilter::ClearTaps() {
    std::fill(coefficients.begin(), coefficients.end(), 0.0f);
}

bool FIRTimeDomainFilter::IsMinimumPhase() const {
    return DurbinStepDownRecursion(coefficients);
}

void FIRTimeDomainFilter::GetCoefficients(std::vector<float>& result) const {
    std::copy(coefficients.begin(), coefficients.end(), result.begin());
}

}  // namespace Lume
