#include "harmonics/ambisonic_channels.h"

#include <cmath>

namespace Lume {

std::vector<AmbisonicChannel> AmbisonicChannels(unsigned int order, SphericalHarmonicsNormalization normalization,
                                                SphericalHarmonicsSorting sorting) {
    std::vector<AmbisonicChannel> channels;
    for (auto const& [degree, m] : SortedSphericalHarmonics(order, sorting)) {
        const auto acn = static_cast<unsigned int>(static_cast<int>(degree * (degree + 1)) + m);
        const float n3d = std::sqrt(2.0f * static_cast<float>(degree) + 1.0f);
        channels.push_back({acn, normalization == FullyNormalized3D ? 1.0f / n3d : 1.0f});
    }
    return channels;
}

std::vector<AmbisonicChannel> FumaChannels(unsigned int order) {
    if (order < 1 || order > 3) return {};
    const float second = std::sqrt(3.0f) / 2.0f, third1 = std::sqrt(32.0f / 45.0f), third2 = std::sqrt(5.0f) / 3.0f,
                third3 = std::sqrt(5.0f / 8.0f);
    std::vector<AmbisonicChannel> channels{
        {0, std::sqrt(2.0f)},
        {3, 1.0f},
        {1, 1.0f},
        {2, 1.0f},  // W X Y Z
        {6, 1.0f},
        {7, second},
        {5, second},
        {8, second},
        {4, second},  // R S T U V
        {12, 1.0f},
        {13, third1},
        {11, third1},
        {14, third2},
        {10, third2},
        {15, third3},
        {9, third3},  // K to Q
    };
    channels.resize(NumAmbisonicChannels(order, true));
    return channels;
}

}  // namespace Lume
