#pragma once

#include <functional>
#include <string>

#include "orvanverb/job/streaming.h"
#include "orvanverb/pan/pan_setup.h"
#include "orvanverb/room/source_motion.h"

namespace program {

/// Starts a panner and makes a machine of it, which refers to all that it gets.
/// @param samplerate  [Hz]
/// @param warn        gets what there is to say of it, now and while it runs
/// @throws ProgramError
Machine MakePanMachine(PanOptions const& options, PanSetup& setup, SourceMotion& motion, int samplerate,
                       std::function<void(std::string const&)> warn);

}  // namespace program
