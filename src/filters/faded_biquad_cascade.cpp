#include "filters/faded_biquad_cascade.h"

namespace Lume {

FadedBiquadCascade::FadedBiquadCascade(unsigned int numStages) {
    SetNumStages(numStages);
}

void FadedBiquadCascade::SetNumStages(unsigned int numStages) {
    filterA.SetNumStages(numStages);
    filterB.SetNumStages(numStages);
    newCoefficients.resize(filterA.GetNumCoefficients());
}

void FadedBiquadCascade::SetOrder(unsigned int order) {
    SetNumStages(order >> 1);
}

void FadedBiquadCascade::GetCoefficients(std::vector<float>& result) const {
    Incoming().GetCoefficients(result);
}

unsigned int FadedBiquadCascade::GetNumCoefficients() const {
    return Incoming().GetNumCoefficients();
}

}  // namespace Lume
