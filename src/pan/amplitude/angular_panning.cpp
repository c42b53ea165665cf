#include "pan/amplitude/angular_panning.h"

#include <algorithm>
#include <cmath>

#include "geometry/speakers.h"
#include "geometry/vector_algebra.h"

namespace Lume {

AngularPanning::AngularPanning(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : AmplitudePanning(numberOfInputs, numberOfOutputs) {
    std::vector<CartesianVector> ring;
    Speakers::GetRegularlySpaced(ring, numOutputs);
    AngularPanning::SetLoudspeakerPositions(ring.data());
}

void AngularPanning::SetLoudspeakerPositions(CartesianVector const* positions) {
    speakersByAngle.clear();
    speakersByAngle.reserve(numOutputs);
    for (unsigned int i = 0; i < numOutputs; ++i) {
        const float a = std::atan2(positions[i].y, positions[i].x);
        const auto place = std::lower_bound(speakersByAngle.begin(), speakersByAngle.end(), a,
                                            [](Speaker const& speaker, float x) { return speaker.angle < x; });
        if (place != speakersByAngle.end() && place->angle == a)
            place->output = i;
        else
            speakersByAngle.insert(place, {a, i});
    }
    forceUpdate(false);
}

void AngularPanning::convert(CartesianVector const& position, float* gains, unsigned int /*sourceIndex*/) {
    constexpr float twicePi = 6.2831855f;
    std::fill_n(gains, numOutputs, 0.0f);
    if (numOutputs == 1) gains[0] = 1.0f;
    if (numOutputs <= 1) return;

    float a = std::atan2(position.y, position.x);
    auto next = std::upper_bound(speakersByAngle.begin(), speakersByAngle.end(), a,
                                 [](float x, Speaker const& speaker) { return x < speaker.angle; });
    // Beyond the last and before the first loudspeaker: the pair that closes the ring.
    if (next == speakersByAngle.end()) next = speakersByAngle.begin();
    const auto prev = std::prev(next == speakersByAngle.begin() ? speakersByAngle.end() : next);
    const float a1 = prev->angle;
    float a2 = next->angle;
    while (a1 >= a2) a2 += twicePi;
    while (a < a1) a += twicePi;
    const float t = (std::min(std::max(a, a1), a2) - a1) * halfPi / (a2 - a1);
    // The number of outputs may have been lowered since the loudspeakers were set.
    if (prev->output < numOutputs) gains[prev->output] = std::cos(t);
    if (next->output < numOutputs) gains[next->output] = std::sin(t);
}

}  // namespace Lume
