#include "decoders/ambisonic/ambisonic_rotation.h"

#include "harmonics/harmonics_rotation.h"

namespace Lume {

AmbisonicRotation::AmbisonicRotation(unsigned int order, bool newAmbixAxes) : ambixAxes(newAmbixAxes) {
    for (unsigned int l = 0; l <= order; ++l) degrees.emplace_back(2 * l + 1, 2 * l + 1);
    initDecoder((order + 1) * (order + 1), (order + 1) * (order + 1));
    SetOrientation({});
}

void AmbisonicRotation::SetOrientation(Orientation const& orientation) {
    const RotationMatrix own = RoomToHead(orientation);
    // The same in axes ahead, to the left and up.
    const RotationMatrix ambix = {
        {{own[1][1], -own[1][0], own[1][2]}, {-own[0][1], own[0][0], -own[0][2]}, {own[2][1], -own[2][0], own[2][2]}}};
    const auto matrices = HarmonicsRotation(static_cast<unsigned int>(degrees.size()) - 1, ambixAxes ? ambix : own);
    for (std::size_t l = 0; l < degrees.size(); ++l) {
        const auto size = static_cast<unsigned int>(2 * l + 1);
        for (unsigned int output = 0; output < size; ++output)
            for (unsigned int input = 0; input < size; ++input)
                degrees[l].SetGain(input, output, static_cast<float>(matrices[l][output * size + input]));
    }
}

void AmbisonicRotation::Process(float** outputs, float** inputs, unsigned long numSamples,
                                short const* /*activeInputs*/) {
    for (std::size_t l = 0; l < degrees.size(); ++l)
        degrees[l].Process(outputs + l * l, inputs + l * l, numSamples, orvandsp::allActiveInputs);
}

void AmbisonicRotation::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    for (SignalMatrix& degree : degrees) degree.SetSamplerate(newSamplerate);
}

}  // namespace Lume
