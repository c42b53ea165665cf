#pragma once

#include <string>

#include "measure/room_measurement.h"

namespace program {

/// All figures and curves of a response as a JSON object. What can't be told is null, and `missing` says why.
std::string FigureJson(std::string const& name, orvanmeasure::RoomMeasurement const& measured);

}  // namespace program
