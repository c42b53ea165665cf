#pragma once

#include <string>

#include "measure/room_measurement.h"

namespace program {

/// All figures of a response as text, a line a band, and below it why some are missing.
std::string FigureTable(std::string const& name, orvanmeasure::RoomMeasurement const& measured);

/// How a response differs from another one, in steps that one just hears.
std::string DifferenceTable(std::string const& name, orvanmeasure::RoomMeasurement const& measured,
                            std::string const& otherName, orvanmeasure::RoomMeasurement const& other);

}  // namespace program
