#include "pan/amplitude/dbap_panning.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string>

#include "geometry/speakers.h"
#include "geometry/vector_algebra.h"

namespace Lume {

namespace {

const std::map<std::string, DbapPanning::SpreadingMode> spreadTypeMap = {
    {"omni", DbapPanning::omni}, {"directional", DbapPanning::directional}, {"xyz", DbapPanning::directional}};

float FractionOf(float percent) {
    return std::clamp(percent, 0.0f, 100.0f) * 0.01f;
}

float Square(float x) {
    return x * x;
}

}  // namespace

DbapPanning::DbapPanning(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : AmplitudePanning(numberOfInputs, numberOfOutputs), omniSpread(numberOfInputs), directionalSpread(numberOfInputs) {
    Speakers::GetRegularlySpaced(speakerPositions, numOutputs);
}

void DbapPanning::SetSpreadMode(SpreadingMode mode) {
    spreadMode = mode;
    forceUpdate(false);
}

char const* DbapPanning::GetSpreadModeName(SpreadingMode mode) {
    switch (mode) {
        case omni:
            return "omni";
        case directional:
            return "directional";
    }
    return "";
}

DbapPanning::SpreadingMode DbapPanning::GetSpreadMode(char const* name) {
    const auto found = spreadTypeMap.find(name);
    return found == spreadTypeMap.end() ? omni : found->second;
}

void DbapPanning::SetOmniSpreadFactor(unsigned int source, float percent) {
    omniSpread[source] = FractionOf(percent);
    forceUpdate(false);
}

void DbapPanning::SetOmniSpreadFactor(float percent) {
    for (unsigned int i = 0; i < numInputs; ++i) SetOmniSpreadFactor(i, percent);
}

void DbapPanning::SetDirectionalSpreadFactor(unsigned int source, float const* percents) {
    directionalSpread[source] =
        CartesianVector{FractionOf(percents[0]), FractionOf(percents[1]), FractionOf(percents[2])};
    forceUpdate(false);
}

void DbapPanning::SetDirectionalSpreadFactor(float const* percents) {
    for (unsigned int i = 0; i < numInputs; ++i) SetDirectionalSpreadFactor(i, percents);
}

void DbapPanning::MuteSourceOutsideSpeakersHull(bool mute) {
    muteOutsideHull = mute;
    forceUpdate(false);
}

void DbapPanning::Distribute(CartesianVector const& position, float centerDistanceSquared, bool planar, float* gains,
                             unsigned int source) const {
    // Bounds the gain of a source on top of a loudspeaker [m^2].
    constexpr float blur = 1e-10f;
    const float w = omniSpread[source];
    CartesianVector const& spread = directionalSpread[source];
    float sum = 0.0f;
    for (unsigned int j = 0; j < numOutputs; ++j) {
        const CartesianVector d = position - speakerPositions[j];
        float q;
        if (spreadMode == directional) {
            q = Square((1.0f - spread.y) * d.y) + Square((1.0f - spread.x) * d.x) + Square((1.0f - spread.z) * d.z) +
                blur;
        } else {
            const float distanceSquared = planar ? SquaredLength2D(d) : SquaredLength(d);
            q = centerDistanceSquared * w + (1.0f - w) * distanceSquared + blur;
        }
        gains[j] = 1.0f / std::sqrt(q);
        sum += 1.0f / q;
    }
    const float scale = 1.0f / std::sqrt(sum);
    for (unsigned int j = 0; j < numOutputs; ++j) gains[j] *= scale;
}

}  // namespace Lume
