#pragma once

#include <functional>
#include <string>

#include "orvanverb/decode/decode_setup.h"
#include "orvanverb/job/streaming.h"

namespace program {

/// Starts a decoder and makes a machine of it, which refers to the setup.
/// @param samplerate  [Hz]
/// @param warn        gets what there is to say of it, now and while it runs
/// @throws ProgramError
Machine MakeDecodeMachine(DecodeOptions const& options, DecodeSetup& setup, int samplerate,
                          std::function<void(std::string const&)> warn);

}  // namespace program
