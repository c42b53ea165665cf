#include "lv2/variants.h"

#include <cmath>
#include <numbers>

#include "engine/room_controls.h"
#include "geometry/speakers.h"

namespace lv2 {

namespace {

constexpr Output headphones[] = {{"Left ear", "left", 0}, {"Right ear", "right", 1}};
constexpr Output fivePointZero[] = {{"Left", "left", 0},
                                    {"Centre", "center", 1},
                                    {"Right", "right", 2},
                                    {"Left surround", "rearLeft", 4},
                                    {"Right surround", "rearRight", 3}};
constexpr Output sevenPointZero[] = {
    {"Left", "left", 0},           {"Centre", "center", 1},        {"Right", "right", 2},
    {"Left side", "sideLeft", 6},  {"Right side", "sideRight", 3}, {"Left back", "rearLeft", 5},
    {"Right back", "rearRight", 4}};
// Rings go clockwise from the loudspeaker ahead or ahead on the left, by azimuth.
constexpr Output ring4[] = {
    {"Azimuth -45", nullptr, 0}, {"Azimuth 45", nullptr, 1}, {"Azimuth 135", nullptr, 2}, {"Azimuth -135", nullptr, 3}};
constexpr Output ring6[] = {{"Azimuth -45", nullptr, 0}, {"Azimuth 45", nullptr, 1},   {"Azimuth 90", nullptr, 2},
                            {"Azimuth 135", nullptr, 3}, {"Azimuth -135", nullptr, 4}, {"Azimuth -90", nullptr, 5}};
constexpr Output ring8[] = {{"Azimuth -45", nullptr, 0},  {"Azimuth 0", nullptr, 1},   {"Azimuth 45", nullptr, 2},
                            {"Azimuth 90", nullptr, 3},   {"Azimuth 135", nullptr, 4}, {"Azimuth 180", nullptr, 5},
                            {"Azimuth -135", nullptr, 6}, {"Azimuth -90", nullptr, 7}};
constexpr Output ring16[] = {
    {"Azimuth 0", nullptr, 0},      {"Azimuth 22.5", nullptr, 1},   {"Azimuth 45", nullptr, 2},
    {"Azimuth 67.5", nullptr, 3},   {"Azimuth 90", nullptr, 4},     {"Azimuth 112.5", nullptr, 5},
    {"Azimuth 135", nullptr, 6},    {"Azimuth 157.5", nullptr, 7},  {"Azimuth 180", nullptr, 8},
    {"Azimuth -157.5", nullptr, 9}, {"Azimuth -135", nullptr, 10},  {"Azimuth -112.5", nullptr, 11},
    {"Azimuth -90", nullptr, 12},   {"Azimuth -67.5", nullptr, 13}, {"Azimuth -45", nullptr, 14},
    {"Azimuth -22.5", nullptr, 15}};

constexpr char const* mono = "MonoGroup";
constexpr char const* stereo = "StereoGroup";
constexpr char const* discrete = "DiscreteGroup";

constexpr Variant variants[] = {
    {"mono-headphones", "Orvanverb mono to headphones", 1, headphones, mono, stereo},
    {"stereo-headphones", "Orvanverb stereo to headphones", 2, headphones, stereo, stereo},
    {"8-headphones", "Orvanverb 8 sources to headphones", 8, headphones, discrete, stereo},
    {"mono-5.0", "Orvanverb mono to 5.0", 1, fivePointZero, mono, "FivePointZeroGroup"},
    {"stereo-5.0", "Orvanverb stereo to 5.0", 2, fivePointZero, stereo, "FivePointZeroGroup"},
    {"mono-7.0", "Orvanverb mono to 7.0", 1, sevenPointZero, mono, discrete},
    {"stereo-7.0", "Orvanverb stereo to 7.0", 2, sevenPointZero, stereo, discrete},
    {"mono-ring4", "Orvanverb mono to a ring of 4", 1, ring4, mono, discrete},
    {"stereo-ring4", "Orvanverb stereo to a ring of 4", 2, ring4, stereo, discrete},
    {"mono-ring6", "Orvanverb mono to a ring of 6", 1, ring6, mono, discrete},
    {"stereo-ring6", "Orvanverb stereo to a ring of 6", 2, ring6, stereo, discrete},
    {"mono-ring8", "Orvanverb mono to a ring of 8", 1, ring8, mono, discrete},
    {"stereo-ring8", "Orvanverb stereo to a ring of 8", 2, ring8, stereo, discrete},
    {"8-ring8", "Orvanverb 8 sources to a ring of 8", 8, ring8, discrete, discrete},
    {"16-ring16", "Orvanverb 16 sources to a ring of 16", 16, ring16, discrete, discrete},
};

}  // namespace

std::span<Variant const> Variants() {
    return variants;
}

std::vector<Port> PortsOf(Variant const& variant) {
    std::vector<Port> ports;
    const auto add = [&](PortKind kind, std::size_t number = 1) {
        for (unsigned int i = 0; i < number; ++i) ports.push_back({kind, i});
    };
    add(PortKind::input, variant.numSources);
    add(PortKind::output, variant.outputs.size());
    add(PortKind::events);
    add(PortKind::notify);
    add(PortKind::enabled);
    add(PortKind::freeWheeling);
    add(PortKind::latency);
    for (unsigned int source = 0; source < variant.numSources; ++source)
        for (const PortKind kind : {PortKind::active, PortKind::azimuth, PortKind::elevation, PortKind::distance})
            ports.push_back({kind, source});
    add(PortKind::level, variant.outputs.size());
    // Last, so that a control of a later version moves no other port.
    add(PortKind::control, Lume::roomControls.size());
    return ports;
}

float StandardAzimuthDeg(Variant const& variant, unsigned int source) {
    std::vector<Lume::CartesianVector> positions;
    Lume::Speakers::GetDefaultForChannels(positions, variant.numSources);
    Lume::CartesianVector const& p = positions[source];
    return static_cast<float>(std::round(static_cast<double>(std::atan2(p.x, p.y)) * 1800.0 / std::numbers::pi) /
                              10.0) +
           0.0f;  // no -0: hosts show its sign
}

}  // namespace lv2
