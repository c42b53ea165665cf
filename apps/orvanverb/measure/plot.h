#pragma once

#include <string>

#include "orvanverb/measure/response_file.h"

namespace program {

/// Draws a response: decay curves with their fits, the first echoes, time over frequency, echo density.
/// @throws WorkError
void DrawResponse(std::string const& path, ResponseFile const& response, orvanmeasure::RoomMeasurement const& measured);

}  // namespace program
