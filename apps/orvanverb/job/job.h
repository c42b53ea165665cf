#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "orvanverb/audio/audio_format.h"
#include "orvanverb/audio/audio_output.h"
#include "orvanverb/audio/peak_meter.h"
#include "orvanverb/audio/signal_source.h"
#include "orvanverb/common/scratch_file.h"
#include "orvanverb/job/streaming.h"
#include "orvanverb/options/options.h"

namespace program {

/// One call of render, ir, pan or decode: recordings that go through a machine into a file, and what is told of it. The
/// commands make the machine.
class Job {
public:
    /// Opens the inputs; without any there is one channel with an impulse.
    /// @throws WorkError for a file that can't be used
    explicit Job(Options const& newOptions);
    /// For recordings that come from elsewhere.
    /// @param newSamplerate  [Hz]
    Job(Options const& newOptions, std::unique_ptr<SignalSource> newSource, int newSamplerate);

    unsigned int NumChannels() const { return source->NumChannels(); }
    int Samplerate() const noexcept { return samplerate; }  // of inputs and output [Hz]

    /// Whether it is only to be said what would be done.
    bool IsDry() const noexcept { return options.dryRun; }

    /// More to tell in the end behind the level of the output, as a part of that line.
    void AddLevel(std::string text) { levels.push_back(std::move(text)); }
    /// More for programs, as JSON.
    void AddFigure(std::string name, std::string json) { figures.emplace_back(std::move(name), std::move(json)); }

    /// Sends the recordings through a machine into the output and tells about it, or says what that would do.
    /// @throws ProgramError
    void Run(Machine const& machine);

private:
    StreamEnd StreamAndShow(Machine const& machine, PeakMeter& meter, PieceWriter const& write);
    float Normalize(ScratchFile& waiting, AudioOutput& output, PeakMeter& meter) const;
    void Tell(Machine const& machine, AudioFormat const& format, AudioOutput const& output, PeakMeter const& meter,
              float normalizing) const;
    std::string Json(Machine const& machine, AudioFormat const& format, AudioOutput const& output,
                     PeakMeter const& meter, float normalizing) const;

    using Clock = std::chrono::steady_clock;

    Options const& options;
    Clock::time_point begin = Clock::now();
    std::unique_ptr<SignalSource> source;
    int samplerate = 0;
    std::vector<std::string> levels;
    std::vector<std::pair<std::string, std::string>> figures;
};

/// Ends a rendering that has written, and told about, an output in which samples had to be replaced.
/// @throws WorkError with their number, if there were any
void RequireSound(std::string const& path, std::uint64_t numBad);

}  // namespace program
