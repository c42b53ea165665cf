#pragma once

#include <memory>
#include <string>
#include <vector>

#include "orvanverb/measure/room_report.h"
#include "orvanverb/proposal/room_options.h"
#include "room/room.h"

namespace program {

/// A room made for a volume and decay times, with its measurement.
struct Proposal {
    std::unique_ptr<Lume::Room> room;
    RoomReport report;
    std::string title;
    std::vector<std::string> remarks;  // on what could not be
};

/// Proposes all controls of a room.
///
/// Times and densities follow RecommendedDelaysDistribution. The decay factors are solved so that the octaves at 125
/// Hz, 500 and 1000 Hz, and 4 kHz decay as wanted, for loops that are one vector longer than their delays. The level of
/// the late field is the one of a few with which the rendered room decays as asked, and begins as it goes on. The
/// room's level is that of a statistical sound field: direct over reverberant energy 0.161 V / T / (16 pi r^2) at the
/// distance r (H. Kuttruff, Room Acoustics).
Proposal ProposeRoom(RoomOptions const& wanted);

/// The room of a preset, of the same walls, at another size: all ways become longer by the factor, and with them times
/// and decay (after Sabine volume over surface); the room's level falls with the surface that swallows sound, 6 dB for
/// twice the size. What would leave the range of its control stays at its end, and is remarked.
/// @throws WorkError for a preset that isn't there or isn't one
Proposal ResizeRoom(RoomOptions const& wanted);

}  // namespace program
