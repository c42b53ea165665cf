#include "dsp/filter.h"

#include <cmath>
#include <map>
#include <string>

namespace orvandsp {

namespace {

std::map<std::string, Filter::FIRImplementation> firImplementationMap;

}  // namespace

void Filter::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    if (activeInputs[0] != 0) Process(outputs[0], inputs[0], numSamples);
}

char const* Filter::GetFIRImplementationName(FIRImplementation implementation) {
    return implementation == fftconvolution ? "fftconvolution" : "timedomain";
}

Filter::FIRImplementation Filter::GetFIRImplementation(char const* name) {
    initFIRImplementationMap();
    const auto found = firImplementationMap.find(name);
    return found == firImplementationMap.end() ? timedomain : found->second;
}

void Filter::initFIRImplementationMap() {
    for (const FIRImplementation implementation : {timedomain, fftconvolution})
        firImplementationMap[GetFIRImplementationName(implementation)] = implementation;
}

bool Filter::DurbinStepDownRecursion(std::vector<float> const& polynomial) const {
    if (polynomial.size() <= 1) return true;
    std::vector<float> p = polynomial;
    for (std::size_t m = p.size() - 1;; --m) {
        const float k = p[m];
        if (std::abs(k) >= 1.0f) return false;
        if (m == 1) return true;
        const float scale = 1.0f / (1.0f - k * k);
        std::vector<float> q(m);
        for (std::size_t i = 0; i < m; ++i) q[i] = (p[i] - k * p[m - i]) * scale;
        p = q;
    }
}

}  // namespace orvandsp
