#pragma once

#include "orvanverb/audio/audio_format.h"
#include "orvanverb/audio/signal_source.h"
#include "orvanverb/job/streaming.h"
#include "orvanverb/options/options.h"

namespace program {

/// Says what a call would read and write, and checks that it may.
/// @param samplerate  of the output [Hz]
/// @throws WorkError for a file that can't be written
void AnnounceJob(Options const& options, SignalSource const& source, Machine const& machine, AudioFormat const& format,
                 int samplerate);

}  // namespace program
