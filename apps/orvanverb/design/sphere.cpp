#include "orvanverb/design/sphere.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace program {

std::vector<Lume::CartesianVector> EvenDirections(std::size_t count) {
    const double goldenAngle = std::numbers::pi * (3.0 - std::sqrt(5.0));
    std::vector<Lume::CartesianVector> directions;
    for (std::size_t i = 0; i < count; ++i) {
        const double z = 1.0 - (2.0 * static_cast<double>(i) + 1.0) / static_cast<double>(count);
        const double ring = std::sqrt(1.0 - z * z), angle = goldenAngle * static_cast<double>(i);
        directions.push_back({static_cast<float>(ring * std::cos(angle)), static_cast<float>(ring * std::sin(angle)),
                              static_cast<float>(z)});
    }
    return directions;
}

std::vector<double> SphereShares(std::vector<Lume::CartesianVector> const& directions) {
    constexpr std::size_t numSamples = 20000;
    constexpr float reach = 1.5f;  // of the usual distance between neighbours
    std::vector<Lume::CartesianVector> units(directions.size());
    std::transform(directions.begin(), directions.end(), units.begin(), Lume::Unit);
    std::vector<double> shares(units.size(), 1.0 / static_cast<double>(units.size()));
    if (units.size() < 3) return shares;
    std::vector<float> spacing;
    for (std::size_t d = 0; d < units.size(); ++d) {
        float nearest = -1.0f;
        for (std::size_t other = 0; other < units.size(); ++other)
            // Another distance in the same direction is no neighbour.
            if (const float cosine = Dot(units[d], units[other]); other != d && cosine < 0.99999f)
                nearest = std::max(nearest, cosine);
        spacing.push_back(std::acos(nearest));
    }
    std::nth_element(spacing.begin(), spacing.begin() + static_cast<std::ptrdiff_t>(spacing.size() / 2), spacing.end());
    const float farthest = std::cos(std::min(reach * spacing[spacing.size() / 2], Lume::pi));

    std::vector<std::size_t> counts(units.size(), 0);
    std::size_t total = 0;
    for (Lume::CartesianVector const& sample : EvenDirections(numSamples)) {
        std::size_t nearest = 0;
        float most = -2.0f;
        for (std::size_t d = 0; d < units.size(); ++d)
            if (const float cosine = Dot(sample, units[d]); cosine > most) {
                most = cosine;
                nearest = d;
            }
        if (most < farthest) continue;
        ++counts[nearest];
        ++total;
    }
    for (std::size_t d = 0; d < units.size(); ++d)
        shares[d] = static_cast<double>(counts[d]) / static_cast<double>(std::max<std::size_t>(total, 1));
    return shares;
}

}  // namespace program
