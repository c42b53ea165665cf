#include "room/layout_check.h"

#include <algorithm>
#include <cmath>

#include "geometry/azimuth.h"
#include "geometry/vector_algebra.h"
#include "pan/amplitude/vbap_panning.h"

namespace Lume {

namespace {

using Choice = PanKind::Choice;
using Positions = std::vector<CartesianVector>;

constexpr float sameAngleDeg = 0.5f;
constexpr float samePlace = 0.01f;  // [m]

/// Azimuths as the listener has them, of one loudspeaker after the other [degrees].
std::vector<float> Azimuths(Positions const& positions) {
    std::vector<float> azimuths;
    for (CartesianVector const& p : positions)
        azimuths.push_back(SwapAzimuthConvention(std::atan2(p.y, p.x) * RadiansToDegrees));
    return azimuths;
}

float AngleDeg(CartesianVector const& a, CartesianVector const& b) {
    return std::atan2(Length(Cross(a, b)), Dot(a, b)) * RadiansToDegrees;
}

std::string Names(std::size_t a, std::size_t b) {
    return "loudspeakers " + std::to_string(a + 1) + " and " + std::to_string(b + 1);
}

/// The first two loudspeakers that a method can't tell apart.
template <typename AreSame>
void CheckPairs(Positions const& positions, AreSame&& areSame, char const* what, std::vector<std::string>& warnings) {
    for (std::size_t a = 0; a < positions.size(); ++a)
        for (std::size_t b = a + 1; b < positions.size(); ++b)
            if (areSame(a, b)) {
                warnings.push_back(Names(a, b) + " stand " + what);
                return;
            }
}

void CheckHeights(Positions const& positions, std::vector<std::string>& warnings) {
    const auto high = std::find_if(positions.begin(), positions.end(),
                                   [](CartesianVector const& p) { return std::abs(p.z) > 0.01f * Length(p); });
    if (high != positions.end())
        warnings.push_back("loudspeaker " + std::to_string(high - positions.begin() + 1) +
                           " stands above or below the listener; this method only looks at its azimuth");
}

void CheckRing(Positions const& positions, std::vector<std::string>& warnings) {
    constexpr float widest = 180.0f;
    std::vector<float> sorted = Azimuths(positions);
    std::sort(sorted.begin(), sorted.end());
    for (std::size_t i = 0; i < sorted.size(); ++i) {
        const float next = i + 1 < sorted.size() ? sorted[i + 1] : sorted[0] + 360.0f;
        if (next - sorted[i] < widest - 0.01f) continue;
        warnings.push_back("no loudspeaker stands between the azimuths " + std::to_string(std::lround(sorted[i])) +
                           " and " + std::to_string(std::lround(next > 180.0f ? next - 360.0f : next)) +
                           ": sources in a gap of 180 degrees or more can be silent");
    }
}

void CheckTriplets(Positions const& positions, std::vector<std::string>& warnings) {
    VbapPanning panner(1, static_cast<unsigned int>(positions.size()));
    panner.SetLoudspeakerPositions(positions.data());
    if (panner.GetNumTriplets() > 0) return;
    warnings.push_back(
        "the loudspeakers stand in one plane with the listener: there are no triplets, and the output is silent");
}

/// Whether all stand on one line through the plane.
bool AreInLine(Positions const& positions) {
    for (std::size_t i = 2; i < positions.size(); ++i) {
        CartesianVector first = positions[1] - positions[0];
        CartesianVector here = positions[i] - positions[0];
        first.z = here.z = 0.0f;
        if (Length(Cross(first, here)) > 0.001f * Length(first) * Length(here)) return false;
    }
    return true;
}

}  // namespace

std::vector<std::string> CheckLayout(PanKind const& method, Positions const& positions) {
    std::vector<std::string> warnings;
    if (!method.inSpace) CheckHeights(positions, warnings);
    if (method.choice == Choice::distances) {
        CheckPairs(
            positions,
            [&](std::size_t a, std::size_t b) {
                CartesianVector apart = positions[a] - positions[b];
                if (!method.inSpace) apart.z = 0.0f;
                return Length(apart) < samePlace;
            },
            "in one place: they always play the same", warnings);
        if (!method.inSpace && AreInLine(positions))
            warnings.push_back("the loudspeakers stand in one line: sources beside it are outside and fade");
        return warnings;
    }
    if (!method.inSpace) {
        const std::vector<float> azimuths = Azimuths(positions);
        CheckPairs(
            positions,
            [&](std::size_t a, std::size_t b) {
                const float apart = std::abs(azimuths[a] - azimuths[b]);
                return std::min(apart, 360.0f - apart) < sameAngleDeg;
            },
            "at one azimuth: no source lies between them, and one of them can stay silent", warnings);
        if (method.choice == Choice::pairs) CheckRing(positions, warnings);
        return warnings;
    }
    CheckPairs(
        positions, [&](std::size_t a, std::size_t b) { return AngleDeg(positions[a], positions[b]) < sameAngleDeg; },
        "in one direction: one of them can stay silent", warnings);
    CheckTriplets(positions, warnings);
    return warnings;
}

}  // namespace Lume
