#include "geometry/named_layout.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <span>

#include "geometry/azimuth.h"
#include "geometry/speakers.h"
#include "geometry/spherical_vector.h"
#include "geometry/vector_algebra.h"

namespace Lume {

namespace {

/// A loudspeaker at a listener's azimuth and an elevation [degrees], with its bit in a channel mask (Microsoft,
/// "Multiple channel audio data and WAVE files", 2001), 0 if there is none for it.
struct Place {
    char const* label;
    float azimuth, elevation;
    std::uint32_t bit;
};

constexpr float lowFrequency = 1000.0f;  // in place of an azimuth

constexpr Place front[] = {{"L", -30, 0, 0x1}, {"R", 30, 0, 0x2}, {"C", 0, 0, 0x4}};
constexpr Place lfe[] = {{"LFE", lowFrequency, 0, 0x8}};
constexpr Place surrounds[] = {{"Ls", -110, 0, 0x200}, {"Rs", 110, 0, 0x400}};
constexpr Place rears[] = {{"Lrs", -150, 0, 0x10}, {"Rrs", 150, 0, 0x20}};
constexpr Place sides[] = {{"Lss", -90, 0, 0x200}, {"Rss", 90, 0, 0x400}};
constexpr Place wides[] = {{"Lw", -60, 0, 0}, {"Rw", 60, 0, 0}};
constexpr Place topFront[] = {{"Ltf", -45, 45, 0x1000}, {"Rtf", 45, 45, 0x4000}};
constexpr Place topMiddle[] = {{"Ltm", -90, 45, 0}, {"Rtm", 90, 45, 0}};
constexpr Place topRear[] = {{"Ltr", -135, 45, 0x8000}, {"Rtr", 135, 45, 0x20000}};
constexpr Place ofTwentyFour[] = {
    {"FL", -60, 0, 0},     {"FR", 60, 0, 0},
    {"FC", 0, 0, 0},       {"LFE1", lowFrequency, 0, 0},
    {"BL", -135, 0, 0},    {"BR", 135, 0, 0},
    {"FLc", -30, 0, 0},    {"FRc", 30, 0, 0},
    {"BC", 180, 0, 0},     {"LFE2", lowFrequency, 0, 0},
    {"SiL", -90, 0, 0},    {"SiR", 90, 0, 0},
    {"TpFL", -45, 30, 0},  {"TpFR", 45, 30, 0},
    {"TpFC", 0, 30, 0},    {"TpC", 0, 90, 0},
    {"TpBL", -135, 30, 0}, {"TpBR", 135, 30, 0},
    {"TpSiL", -90, 30, 0}, {"TpSiR", 90, 30, 0},
    {"TpBC", 180, 30, 0},  {"BtFC", 0, -30, 0},
    {"BtFL", -45, -30, 0}, {"BtFR", 45, -30, 0},
};

struct Row {
    char const* name;
    std::vector<std::span<Place const>> groups;
};

/// In the order of the channels in files.
std::vector<Row> Rows() {
    return {{"5.0", {front, surrounds}},
            {"5.1", {front, lfe, surrounds}},
            {"7.0", {front, rears, sides}},
            {"7.1", {front, lfe, rears, sides}},
            {"5.0.4", {front, surrounds, topFront, topRear}},
            {"5.1.4", {front, lfe, surrounds, topFront, topRear}},
            {"7.0.4", {front, rears, sides, topFront, topRear}},
            {"7.1.4", {front, lfe, rears, sides, topFront, topRear}},
            {"9.1.6", {front, lfe, sides, rears, wides, topFront, topMiddle, topRear}},
            {"22.2", {ofTwentyFour}}};
}

/// Loudspeakers at one height, clockwise seen from above.
struct Ring {
    unsigned int number;
    float firstAzimuth, elevation;  // [degrees]
};

struct Dome {
    char const* name;
    std::vector<Ring> rings;
};

/// Neighbours stand about equally far from each other, in a ring and between two.
std::vector<Dome> Domes() {
    return {{"dome12", {{6, 0, 0}, {5, 36, 38}, {1, 0, 90}}},
            {"dome24", {{12, 0, 0}, {8, 22.5f, 32}, {3, 0, 62}, {1, 0, 90}}},
            {"dome48", {{20, 0, 0}, {14, 0, 24}, {9, 0, 47}, {4, 45, 69}, {1, 0, 90}}}};
}

/// Whether two lists of places are the same, but for what sines of another library make of them.
bool AreSame(std::vector<CartesianVector> const& a, std::vector<CartesianVector> const& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](CartesianVector const& p, CartesianVector const& q) { return Distance(p, q) < 1e-5f; });
}

CartesianVector At(float azimuthDeg, float elevationDeg) {
    CartesianVector position;
    position =
        SphericalVector{SwapAzimuthConvention(azimuthDeg) * DegreesToRadians, 1.0f, elevationDeg * DegreesToRadians};
    return position;
}

/// Brings the loudspeakers into the order of the engine's table if they are those of one.
void TakeOrderOfTable(NamedLayout& layout) {
    const auto count = static_cast<unsigned int>(layout.positions.size());
    CartesianVector const* const table = Speakers::getDefaultForChannels(count);
    if (table == nullptr || !std::is_permutation(table, table + count, layout.positions.begin())) return;
    for (std::size_t& output : layout.fileOrder)
        if (output != NamedLayout::silent)
            output = static_cast<std::size_t>(std::find(table, table + count, layout.positions[output]) - table);
    layout.positions.assign(table, table + count);
}

NamedLayout Make(Row const& row) {
    NamedLayout layout;
    layout.name = row.name;
    bool hasMask = true;
    for (std::span<Place const> group : row.groups) {
        for (Place const& place : group) {
            layout.labels.emplace_back(place.label);
            layout.channelMask |= place.bit;
            hasMask = hasMask && place.bit != 0;
            if (place.azimuth == lowFrequency) {
                layout.fileOrder.push_back(NamedLayout::silent);
            } else {
                layout.fileOrder.push_back(layout.positions.size());
                layout.positions.push_back(At(place.azimuth, place.elevation));
            }
        }
    }
    if (!hasMask) layout.channelMask = 0;
    TakeOrderOfTable(layout);
    return layout;
}

NamedLayout Make(Dome const& dome) {
    NamedLayout layout;
    layout.name = dome.name;
    for (Ring const& ring : dome.rings) {
        for (unsigned int i = 0; i < ring.number; ++i) {
            const float azimuth = ring.firstAzimuth + static_cast<float>(i) * 360.0f / static_cast<float>(ring.number);
            layout.fileOrder.push_back(layout.positions.size());
            layout.positions.push_back(At(azimuth < 180.0f ? azimuth : azimuth - 360.0f, ring.elevation));
        }
    }
    return layout;
}

std::vector<NamedLayout> All() {
    std::vector<NamedLayout> layouts;
    for (Row const& row : Rows()) layouts.push_back(Make(row));
    for (Dome const& dome : Domes()) layouts.push_back(Make(dome));
    return layouts;
}

}  // namespace

std::vector<std::string> NamedLayoutNames() {
    std::vector<std::string> names;
    for (NamedLayout const& layout : All()) names.push_back(layout.name);
    return names;
}

NamedLayout FindNamedLayout(std::string_view name) {
    for (NamedLayout& layout : All())
        if (layout.name == name) return std::move(layout);
    return {};
}

NamedLayout FindNamedLayout(std::vector<CartesianVector> const& positions) {
    NamedLayout found;
    for (NamedLayout& layout : All())
        if (AreSame(layout.positions, positions) && (found.name.empty() || layout.NumSilent() < found.NumSilent()))
            found = std::move(layout);
    return found;
}

std::vector<CartesianVector> UsualLayoutInSpace(unsigned int numSpeakers) {
    if (numSpeakers == 8) return {std::begin(Speakers::cube), std::end(Speakers::cube)};
    for (NamedLayout const& layout : All())
        if (layout.positions.size() == numSpeakers && std::any_of(layout.positions.begin(), layout.positions.end(),
                                                                  [](CartesianVector const& p) { return p.z > 0.1f; }))
            return layout.positions;
    // A spiral of golden angles.
    constexpr double goldenAngle = 2.39996322972865332;
    std::vector<CartesianVector> positions;
    for (unsigned int i = 0; i < numSpeakers; ++i) {
        const double z = 1.0 - (2.0 * i + 1.0) / numSpeakers, radius = std::sqrt(1.0 - z * z);
        positions.push_back({static_cast<float>(radius * std::sin(goldenAngle * i)),
                             static_cast<float>(radius * std::cos(goldenAngle * i)), static_cast<float>(z)});
    }
    return positions;
}

}  // namespace Lume
