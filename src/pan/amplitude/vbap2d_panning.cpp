#include "pan/amplitude/vbap2d_panning.h"

#include <algorithm>
#include <cmath>

#include "geometry/azimuth.h"
#include "geometry/reach.h"

namespace Lume {

namespace {

float ListenerAzimuth(float x, float y) {
    return SwapAzimuthConvention(std::atan2(y, x) * RadiansToDegrees);
}

/// Written so that not a number becomes 0 too.
float AtLeastZero(float gain) {
    return gain > 0.0f ? gain : 0.0f;
}

}  // namespace

Vbap2DPanning::Vbap2DPanning(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : AmplitudePanning(numberOfInputs, numberOfOutputs), speakers(numberOfOutputs), pairs(numberOfOutputs) {
    // The angle lacks its factor of two pi: the provisional ring covers one radian, and its order is not by azimuth.
    for (unsigned int i = 0; i < numOutputs; ++i) {
        const float angle = static_cast<float>(i) / static_cast<float>(numOutputs);
        const float x = std::cos(angle);
        const float y = std::sin(angle);
        speakers[i] = {x, y, ListenerAzimuth(x, y), i};
    }
    FillPairs();
}

void Vbap2DPanning::SetLoudspeakerPositions(CartesianVector const* positions) {
    // Sorted in place, as they come: which of two loudspeakers in one direction comes first must not depend on the
    // library, and a stable sort of the library allocates.
    for (unsigned int i = 0; i < numOutputs; ++i) {
        const CartesianVector position = WithinReach(positions[i]);
        const Point2D point = {position.x, position.y, ListenerAzimuth(position.x, position.y), i};
        unsigned int place = i;
        for (; place > 0 && AscendingAzimuthSort(point, speakers[place - 1]); --place)
            speakers[place] = speakers[place - 1];
        speakers[place] = point;
    }
    FillPairs();
    forceUpdate(false);
}

void Vbap2DPanning::convert(CartesianVector const& position, float* gains, unsigned int /*sourceIndex*/) {
    if (numOutputs == 0) return;
    const unsigned int k = find_pair(position.x, position.y);
    Gains solved = Solve(pairs[k], position.x, position.y);
    if (!std::isfinite(solved.first) || !std::isfinite(solved.second))
        solved = ShareInLine(pairs[k], position.x, position.y);
    const float g1 = AtLeastZero(solved.first);
    const float g2 = AtLeastZero(solved.second);
    const float norm = std::sqrt(g1 * g1 + g2 * g2) + 1e-20f;
    std::fill_n(gains, numOutputs, 0.0f);
    gains[speakers[k].index] = g1 / norm;
    gains[speakers[(k + 1) % numOutputs].index] = g2 / norm;
}

unsigned int Vbap2DPanning::find_pair(float x, float y) const {
    const float azimuth = ListenerAzimuth(x, y);
    for (unsigned int k = 0; k + 1 < numOutputs; ++k) {
        if (azimuth >= speakers[k].azimuth && azimuth <= speakers[k + 1].azimuth) return k;
    }
    return numOutputs - 1;
}

unsigned int Vbap2DPanning::find_pair_old(float x, float y) const {
    unsigned int best = 0;
    float bestSmaller = -100000.0f;
    for (unsigned int k = 0; k < numOutputs; ++k) {
        const Gains gains = Solve(pairs[k], x, y);
        const float smaller = std::min(gains.first, gains.second);
        if (smaller >= bestSmaller) {
            best = k;
            bestSmaller = smaller;
        }
    }
    return best;
}

bool Vbap2DPanning::AscendingAzimuthSort(Point2D const& a, Point2D const& b) {
    return ListenerAzimuth(a.x, a.y) < ListenerAzimuth(b.x, b.y);
}

/// Gains of a pair in one line with the listener, which is no base of the plane: what the wedge between two such
/// loudspeakers tends to as it closes, equal shares for whatever has one. A source on the line itself belongs to those
/// on its own side.
Vbap2DPanning::Gains Vbap2DPanning::ShareInLine(Pair const& pair, float x, float y) {
    const Gains solved = Solve(pair, x, y);
    const auto share = [&](float gain, float alongX, float alongY) {
        if (std::isnan(gain)) return alongX * x + alongY * y > 0.0f ? 1.0f : 0.0f;
        return gain > 0.0f ? 1.0f : 0.0f;
    };
    return {share(solved.first, pair.x1, pair.y1), share(solved.second, pair.x2, pair.y2)};
}

/// Solves first * (x1, y1) + second * (x2, y2) = (x, y). A pair in one line with the listener has no solution and gives
/// infinite gains or none.
Vbap2DPanning::Gains Vbap2DPanning::Solve(Pair const& pair, float x, float y) {
    const float inverse = 1.0f / (pair.y2 * pair.x1 - pair.x2 * pair.y1);
    return {(pair.y2 * x - pair.x2 * y) * inverse, (pair.x1 * y - pair.y1 * x) * inverse};
}

void Vbap2DPanning::FillPairs() {
    for (unsigned int k = 0; k < numOutputs; ++k) {
        Point2D const& first = speakers[k];
        Point2D const& second = speakers[(k + 1) % numOutputs];
        pairs[k] = {first.x, first.y, second.x, second.y};
    }
}

}  // namespace Lume
