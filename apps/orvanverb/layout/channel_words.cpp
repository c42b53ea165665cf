#include "orvanverb/layout/channel_words.h"

#include <cmath>

#include "geometry/azimuth.h"
#include "geometry/named_layout.h"
#include "orvanverb/common/text.h"

namespace program {

namespace {

/// What a harmonic of the first degree points to.
char const* Axis(int order, bool ambixAxes) {
    if (order == 0) return ", Z: up";
    if (order > 0) return ambixAxes ? ", X: ahead" : ", X: to the right";
    return ambixAxes ? ", Y: to the left" : ", Y: ahead";
}

}  // namespace

std::vector<std::string> EarWords() {
    return {"left ear", "right ear"};
}

std::vector<std::string> PairWords() {
    return {"left", "right"};
}

std::vector<std::string> MidSideWords() {
    return {"mid", "side, positive to the right"};
}

std::vector<std::string> LoudspeakerWords(SpeakerLayout const& layout) {
    std::vector<std::string> words;
    for (std::size_t c = 0; c < layout.fileOrder.size(); ++c) {
        const std::string label = c < layout.labels.size() ? layout.labels[c] + ": " : "";
        if (layout.fileOrder[c] == Lume::NamedLayout::silent) {
            words.push_back(label + "silent, for low frequencies that a room has no use for");
            continue;
        }
        Lume::CartesianVector const& p = layout.positions[layout.fileOrder[c]];
        const float elevation = std::atan2(p.z, std::sqrt(p.x * p.x + p.y * p.y)) * Lume::RadiansToDegrees;
        const std::string azimuth = FixedText(static_cast<double>(AzimuthDeg(p)), 0);
        // Straight above or below there is no azimuth, and rounding would make one up.
        const bool hasAzimuth = std::abs(elevation) < 89.95f;
        words.push_back(label + "azimuth " + (!hasAzimuth ? "0" : azimuth == "-180" ? "180" : azimuth));
        if (std::abs(elevation) >= 0.5f)
            words.back().append(" elevation ").append(FixedText(static_cast<double>(elevation), 0));
    }
    return words;
}

std::vector<std::string> HarmonicWords(std::vector<Lume::HarmonicIndex> const& harmonics, char const* convention,
                                       bool ambixAxes) {
    std::vector<std::string> words;
    for (auto const& [degree, order] : harmonics) {
        const int acn = static_cast<int>(degree * (degree + 1)) + order;
        words.push_back("ACN " + std::to_string(acn) + ", degree " + std::to_string(degree) + " order " +
                        std::to_string(order));
        if (degree == 0) words.back().append(", W: from everywhere");
        if (degree == 1) words.back().append(Axis(order, ambixAxes));
    }
    if (!words.empty()) words.front().append(", ").append(convention);
    return words;
}

std::string AxesRemark(bool ambixAxes) {
    return ambixAxes ? "AmbiX: ACN order, SN3D weights, x ahead, y to the left"
                     : "axes: x to the right, y ahead, z up; --ambix turns them for other tools";
}

}  // namespace program
