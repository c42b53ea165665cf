#pragma once

#include <string>
#include <vector>

#include "measure/room_measurement.h"
#include "room/room.h"

namespace program {

/// What a room was asked for and what was measured of it, band by band.
struct RoomReport {
    std::vector<orvanmeasure::Figure> asked;  // T30 of each octave [s]
    orvanmeasure::RoomMeasurement measured;

    /// The greatest share by which T30 differs from what was asked, from 125 Hz to 8 kHz; 0 if nothing can be compared.
    double WorstDeviation() const;
    std::string Text() const;
    std::string Json() const;
};

/// Renders the response of a room with an engine's controls and measures it.
/// @param position    of the source [m]
/// @param sampleRate  [Hz]
RoomReport ReportRoom(Lume::OrvanVerb const& engine, Lume::CartesianVector const& position, float sampleRate);

}  // namespace program
