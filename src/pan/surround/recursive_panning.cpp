#include "pan/surround/recursive_panning.h"

#include <algorithm>
#include <cmath>

#include "geometry/azimuth.h"
#include "pan/null_panning.h"
#include "pan/surround/panr.h"

namespace Lume {

namespace {

using Law = void (*)(float x, float y, float* gains);

/// For each number of outputs its law, and the loudspeakers in whose middle each corner lies.
struct Layout {
    unsigned int numOutputs;
    Law law;
    unsigned int cornerSpeakers[4][2];
};

constexpr Layout layouts[] = {
    {4, panr4, {{0, 0}, {1, 1}, {2, 2}, {3, 3}}}, {5, panr5, {{0, 0}, {2, 2}, {3, 3}, {4, 4}}},
    {6, panr6, {{0, 0}, {1, 1}, {3, 3}, {4, 4}}}, {7, panr7, {{0, 0}, {2, 2}, {4, 4}, {5, 5}}},
    {8, panr8, {{0, 0}, {2, 2}, {4, 4}, {6, 6}}}, {12, panr12, {{0, 11}, {2, 3}, {5, 6}, {8, 9}}},
};

Layout const* FindLayout(unsigned int numOutputs) {
    const auto found = std::find_if(std::begin(layouts), std::end(layouts),
                                    [&](Layout const& layout) { return layout.numOutputs == numOutputs; });
    return found == std::end(layouts) ? nullptr : found;
}

}  // namespace

RecursivePanning::RecursivePanning(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : AmplitudePanning(numberOfInputs, numberOfOutputs) {
    for (unsigned int i = 0; i < numInputs; ++i) SetSourcePosition(i, {0.0f, 1.0f, 0.0f}, false);
}

Pan* RecursivePanning::Create(unsigned int numInputs, unsigned int numOutputs) {
    if (FindLayout(numOutputs) == nullptr) return new NullPanning;
    return new RecursivePanning(numInputs, numOutputs);
}

void RecursivePanning::SetLoudspeakerPositions(CartesianVector const* positions) {
    if (Layout const* const layout = FindLayout(numOutputs)) {
        for (int i = 0; i < 4; ++i) {
            CartesianVector const& one = positions[layout->cornerSpeakers[i][0]];
            CartesianVector const& other = positions[layout->cornerSpeakers[i][1]];
            // Half the sum of the two angles.
            corners[i] = SwapAzimuthConvention((std::atan2(one.y, one.x) + std::atan2(other.y, other.x)) * 28.647888f);
        }
    }
    forceUpdate(false);
}

void RecursivePanning::convert(CartesianVector const& position, float* gains, unsigned int /*sourceIndex*/) {
    Layout const* const layout = FindLayout(numOutputs);
    if (layout == nullptr) return;
    float x, y;
    panc(position, corners, x, y);
    layout->law(x, y, gains);
    for (unsigned int j = 0; j < numOutputs; ++j) gains[j] = std::sqrt(gains[j]);
}

void RecursivePanning::SetCorners(float const* newCorners) {
    std::copy_n(newCorners, 4, corners);
}

}  // namespace Lume
