#include "orvanverb/layout/speaker_layout.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iterator>
#include <numeric>
#include <optional>

#include "geometry/azimuth.h"
#include "geometry/named_layout.h"
#include "geometry/speakers.h"
#include "geometry/spherical_vector.h"
#include "orvanverb/audio/channel_mask.h"
#include "orvanverb/common/limits.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/layout/position_file.h"

namespace program {

namespace {

std::string Allowed() {
    return std::to_string(minSpeakers) + " to " + std::to_string(maxSpeakers);
}

SpeakerLayout FromNamed(Lume::NamedLayout named) {
    SpeakerLayout layout;
    layout.positions = std::move(named.positions);
    layout.fileOrder = std::move(named.fileOrder);
    layout.labels = std::move(named.labels);
    layout.channelMask = named.channelMask;
    return layout;
}

SpeakerLayout InEngineOrder(std::vector<Lume::CartesianVector> positions) {
    SpeakerLayout layout = SpeakerLayout::Channels(static_cast<unsigned int>(positions.size()), 0);
    layout.positions = std::move(positions);
    return layout;
}

/// Layouts that are known by a name here alone.
std::optional<SpeakerLayout> FindByName(std::string const& text) {
    using Lume::Speakers;
    if (text == "cube") return InEngineOrder({std::begin(Speakers::cube), std::end(Speakers::cube)});
    if (text == "lcrs") return InEngineOrder({std::begin(Speakers::lcrs), std::end(Speakers::lcrs)});
    Lume::NamedLayout named = Lume::FindNamedLayout(text);
    if (named.name.empty()) return std::nullopt;
    return FromNamed(std::move(named));
}

std::string AllNames() {
    std::vector<std::string> names = Lume::NamedLayoutNames();
    names.insert(names.end(), {"cube", "lcrs"});
    return JoinWords(names);
}

}  // namespace

Lume::CartesianVector ToCartesian(ListenerPosition const& position) {
    Lume::SphericalVector spherical;
    spherical.azimuth = Lume::SwapAzimuthConvention(position.azimuthDeg) * Lume::DegreesToRadians;
    spherical.distance = position.distanceM;
    // Not quite to the vertical, where rounding would choose the azimuth.
    constexpr float steepestRad = 1.5707942f;
    spherical.elevation = std::clamp(position.elevationDeg * Lume::DegreesToRadians, -steepestRad, steepestRad);
    Lume::CartesianVector cartesian;
    cartesian = spherical;
    return cartesian;
}

Lume::CartesianVector ToAmbixAxes(Lume::CartesianVector const& position) {
    return {position.y, -position.x, position.z};
}

SpeakerLayout SpeakerLayout::Of(std::vector<Lume::CartesianVector> positions) {
    Lume::NamedLayout named = Lume::FindNamedLayout(positions);
    if (!named.name.empty()) return FromNamed(std::move(named));
    return InEngineOrder(std::move(positions));
}

SpeakerLayout SpeakerLayout::Channels(unsigned int count, std::uint32_t mask) {
    SpeakerLayout layout;
    layout.fileOrder.resize(count);
    std::iota(layout.fileOrder.begin(), layout.fileOrder.end(), std::size_t{0});
    layout.channelMask = mask;
    return layout;
}

bool SpeakerLayout::IsName(std::string const& text) {
    return ParseCount(text) || FindByName(text);
}

SpeakerLayout SpeakerLayout::Parse(std::string const& text) {
    if (text.empty()) throw UsageError("--speakers: needs a count, the name of a layout or of a file");
    if (std::optional<SpeakerLayout> named = FindByName(text)) return std::move(*named);
    std::vector<Lume::CartesianVector> positions;
    if (ParseNumber(text)) {
        const std::optional<unsigned int> count = ParseCount(text);
        if (!count || *count < minSpeakers || *count > maxSpeakers)
            throw UsageError("--speakers: " + text + " is no number of loudspeakers from " + Allowed() +
                             ", and no layout; there are " + AllNames());
        if (*count == 5 || *count == 7) return FromNamed(Lume::FindNamedLayout(text + ".0"));
        Lume::Speakers::GetDefaultForChannels(positions, *count);
        SpeakerLayout layout = InEngineOrder(std::move(positions));
        if (*count == 2) layout.channelMask = frontLeft | frontRight;
        return layout;
    }
    if (!std::filesystem::exists(text))
        throw WorkError("--speakers: there is no file " + text + ", and no layout of that name; there are " +
                        AllNames());
    for (ListenerPosition const& position : ReadPositionFile(text, maxSpeakers))
        positions.push_back(ToCartesian(position));
    if (positions.size() < minSpeakers)
        throw WorkError(text + ": holds " + std::to_string(positions.size()) + " positions; a room takes " + Allowed() +
                        " loudspeakers");
    return InEngineOrder(std::move(positions));
}

unsigned int SpeakerLayout::NumOutputs() const {
    return static_cast<unsigned int>(fileOrder.size()) -
           static_cast<unsigned int>(std::count(fileOrder.begin(), fileOrder.end(), Lume::NamedLayout::silent));
}

bool SpeakerLayout::HasHeights() const {
    return std::any_of(positions.begin(), positions.end(),
                       [](Lume::CartesianVector const& p) { return std::abs(p.z) > 0.1f * p.radius(); });
}

float AzimuthDeg(Lume::CartesianVector const& position) {
    return Lume::SwapAzimuthConvention(std::atan2(position.y, position.x) * Lume::RadiansToDegrees);
}

}  // namespace program
