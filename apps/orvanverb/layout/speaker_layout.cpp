#include "orvanverb/layout/speaker_layout.h"

#include <cmath>
#include <numeric>
#include <optional>

#include "geometry/azimuth.h"
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

/// The standard layouts, without their low-frequency channel: the room has no use for one.
void NameStandardChannels(SpeakerLayout& layout) {
    switch (layout.positions.size()) {
        case 2:
            layout.channelMask = frontLeft | frontRight;
            break;
        case 5:  // of 5.1: the engine goes round from the left, the file by pairs
            layout.fileOrder = {0, 2, 1, 4, 3};
            layout.channelMask = frontLeft | frontRight | frontCentre | sideLeft | sideRight;
            break;
        case 7:  // of 7.1
            layout.fileOrder = {0, 2, 1, 5, 4, 6, 3};
            layout.channelMask = frontLeft | frontRight | frontCentre | backLeft | backRight | sideLeft | sideRight;
            break;
        default:
            break;
    }
}

}  // namespace

Lume::CartesianVector ToCartesian(ListenerPosition const& position) {
    Lume::SphericalVector spherical;
    spherical.azimuth = Lume::SwapAzimuthConvention(position.azimuthDeg) * Lume::DegreesToRadians;
    spherical.distance = position.distanceM;
    spherical.elevation = position.elevationDeg * Lume::DegreesToRadians;
    Lume::CartesianVector cartesian;
    cartesian = spherical;
    return cartesian;
}

Lume::CartesianVector ToAmbixAxes(Lume::CartesianVector const& position) {
    return {position.y, -position.x, position.z};
}

SpeakerLayout SpeakerLayout::InEngineOrder(std::vector<Lume::CartesianVector> positions) {
    SpeakerLayout layout;
    layout.positions = std::move(positions);
    layout.fileOrder.resize(layout.positions.size());
    std::iota(layout.fileOrder.begin(), layout.fileOrder.end(), std::size_t{0});
    return layout;
}

SpeakerLayout SpeakerLayout::Parse(std::string const& text) {
    if (text.empty()) throw UsageError("--speakers: needs a count or the name of a file");
    std::vector<Lume::CartesianVector> positions;
    if (ParseNumber(text)) {
        const std::optional<unsigned int> count = ParseCount(text);
        if (!count || *count < minSpeakers || *count > maxSpeakers)
            throw UsageError("--speakers: " + text + " is no number of loudspeakers from " + Allowed());
        Lume::Speakers::GetDefaultForChannels(positions, *count);
        SpeakerLayout layout = InEngineOrder(std::move(positions));
        NameStandardChannels(layout);
        return layout;
    }
    for (ListenerPosition const& position : ReadPositionFile(text, maxSpeakers))
        positions.push_back(ToCartesian(position));
    if (positions.size() < minSpeakers)
        throw WorkError(text + ": holds " + std::to_string(positions.size()) + " positions; a room takes " + Allowed() +
                        " loudspeakers");
    return InEngineOrder(std::move(positions));
}

float SpeakerLayout::AzimuthDeg(std::size_t fileChannel) const {
    Lume::CartesianVector const& position = positions[fileOrder[fileChannel]];
    return Lume::SwapAzimuthConvention(std::atan2(position.y, position.x) * Lume::RadiansToDegrees);
}

}  // namespace program
