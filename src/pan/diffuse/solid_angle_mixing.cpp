#include "pan/diffuse/solid_angle_mixing.h"

#include <algorithm>
#include <cmath>

#include "geometry/vector_algebra.h"

namespace Lume {

std::array<float, orvandsp::MaxNumChannels> SolidAngleShares(std::span<CartesianVector const> positions) {
    constexpr unsigned int numDirections = 16384;
    constexpr double goldenAngle = 2.39996322972865332;
    constexpr float lowestOfDome = -0.17364818f;  // the height at 10 degrees below the ears
    std::array<CartesianVector, orvandsp::MaxNumChannels> room;
    const std::span directions(room.data(), positions.size());
    std::transform(positions.begin(), positions.end(), directions.begin(), [](CartesianVector const& p) {
        const float radius = p.radius();
        return radius > 0.0f ? p / radius : p;
    });
    const bool isDome =
        std::all_of(directions.begin(), directions.end(), [](CartesianVector const& p) { return p.z >= lowestOfDome; });
    const double bottom = isDome ? 0.0 : -1.0;
    std::array<float, orvandsp::MaxNumChannels> shares{};
    if (positions.empty()) return shares;
    for (unsigned int i = 0; i < numDirections; ++i) {
        // A spiral of golden angles, equally dense everywhere.
        const double z = 1.0 - (1.0 - bottom) * (i + 0.5) / numDirections, radius = std::sqrt(1.0 - z * z);
        const CartesianVector direction{static_cast<float>(radius * std::cos(goldenAngle * i)),
                                        static_cast<float>(radius * std::sin(goldenAngle * i)), static_cast<float>(z)};
        const auto nearest = std::max_element(
            directions.begin(), directions.end(),
            [&](CartesianVector const& a, CartesianVector const& b) { return Dot(a, direction) < Dot(b, direction); });
        shares[static_cast<std::size_t>(nearest - directions.begin())] += 1.0f / static_cast<float>(numDirections);
    }
    return shares;
}

SolidAngleMixing::SolidAngleMixing(orvandsp::Matrix<float> newMixing)
    : ReverbPanning(newMixing.GetNumRows(), newMixing.GetNumColumns()), mixing(std::move(newMixing)), gains(mixing) {
    std::array<float, orvandsp::MaxNumChannels> equal;
    equal.fill(1.0f / static_cast<float>(numOutputs));
    Mix(equal.data());
}

void SolidAngleMixing::SetLoudspeakerPositions(CartesianVector const* positions) {
    Mix(SolidAngleShares({positions, numOutputs}).data());
}

void SolidAngleMixing::Mix(float const* shares) {
    for (unsigned int i = 0; i < numInputs; ++i)
        for (unsigned int j = 0; j < numOutputs; ++j) gains[i][j] = mixing[i][j] * std::sqrt(shares[j]);
    SetGains(gains);
}

}  // namespace Lume
