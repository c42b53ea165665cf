#include "pan/diffuse/solid_angle_mixing.h"

#include <algorithm>
#include <cmath>

#include "geometry/vector_algebra.h"

namespace Lume {

std::vector<float> SolidAngleShares(std::vector<CartesianVector> const& positions) {
    constexpr unsigned int numDirections = 16384;
    constexpr double goldenAngle = 2.39996322972865332;
    constexpr float lowestOfDome = -0.17364818f;  // the height at 10 degrees below the ears
    std::vector<CartesianVector> directions;
    for (CartesianVector const& p : positions) {
        const float radius = p.radius();
        directions.push_back(radius > 0.0f ? p / radius : p);
    }
    const bool isDome =
        std::all_of(directions.begin(), directions.end(), [](CartesianVector const& p) { return p.z >= lowestOfDome; });
    const double bottom = isDome ? 0.0 : -1.0;
    std::vector<float> shares(positions.size(), 0.0f);
    if (shares.empty()) return shares;
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
    : ReverbPanning(newMixing.GetNumRows(), newMixing.GetNumColumns()), mixing(std::move(newMixing)) {
    Mix(std::vector<float>(numOutputs, 1.0f / static_cast<float>(numOutputs)));
}

void SolidAngleMixing::SetLoudspeakerPositions(CartesianVector const* positions) {
    Mix(SolidAngleShares({positions, positions + numOutputs}));
}

void SolidAngleMixing::Mix(std::vector<float> const& shares) {
    orvandsp::Matrix<float> gains = mixing;
    for (unsigned int i = 0; i < numInputs; ++i)
        for (unsigned int j = 0; j < numOutputs; ++j) gains[i][j] *= std::sqrt(shares[j]);
    SetGains(gains);
}

}  // namespace Lume
