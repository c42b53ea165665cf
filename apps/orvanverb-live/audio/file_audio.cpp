#include "orvanverb-live/audio/file_audio.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "dsp/constants.h"
#include "orvanverb/job/job.h"

namespace live {

namespace {

using Clock = std::chrono::steady_clock;

/// A recording again and again, until the program is to end.
class Endless : public program::SignalSource {
public:
    Endless(program::InputBank& first, std::vector<std::string> const& newPaths, bool newRepeats,
            StopSignal const& newStop)
        : paths(newPaths), repeats(newRepeats), stop(newStop), recording(&first), rate(first.Samplerate()) {}

    unsigned int NumChannels() const override { return recording->NumChannels(); }
    double ExpectedFrames() const override { return repeats ? 0.0 : recording->ExpectedFrames(); }

    std::size_t Read(float* const* channels, std::size_t frames) override {
        if (stop.IsRequested()) {
            for (unsigned int c = 0; c < NumChannels(); ++c) std::fill_n(channels[c], frames, 0.0f);
            return 0;
        }
        std::size_t done = recording->Read(channels, frames);
        while (repeats && done < frames) {
            again = std::make_unique<program::InputBank>(paths, rate, std::nullopt);
            recording = again.get();
            std::array<float*, orvandsp::MaxNumChannels> rest;
            for (unsigned int c = 0; c < NumChannels(); ++c) rest[c] = channels[c] + done;
            done += recording->Read(rest.data(), frames - done);
        }
        return done;
    }

private:
    std::vector<std::string> paths;
    bool repeats;
    StopSignal const& stop;
    program::InputBank* recording;
    std::unique_ptr<program::InputBank> again;
    int rate;  // [Hz]
};

/// Keeps what plays at the pace of time.
class Pace {
public:
    explicit Pace(int newRate) : rate(newRate), begin(Clock::now()) {}

    /// Waits until frames are due. What is late by more than a tenth of a second isn't caught up with.
    void Wait(std::uint64_t frames, StopSignal const& stop) {
        auto due =
            begin + std::chrono::nanoseconds(static_cast<std::int64_t>(1e9 * static_cast<double>(frames) / rate));
        const auto now = Clock::now();
        if (now - due > std::chrono::milliseconds(100)) begin += now - due;
        if (due > now) stop.WaitFor(due - now);
    }

private:
    double rate;  // [Hz]
    Clock::time_point begin;
};

}  // namespace

void PlayFile(FileAudio const& audio, program::InputBank& recording, program::Options const& options,
              program::RoomForm const& form, Desk& desk, StopSignal const& stop) {
    const int rate = recording.Samplerate();
    program::Job job(options, std::make_unique<Endless>(recording, options.inputs, audio.repeats, stop), rate);
    Player& player = desk.Attach(rate, audio.vectorSize);
    desk.SetStatus(audio.freeRunning ? "a file, as fast as it goes" : "a file", -1);

    Pace pace(rate);
    program::Machine machine;
    machine.vectorSize = audio.vectorSize;
    machine.numInputs = desk.NumSources();
    machine.layout = &form.layout;
    machine.channels = form.ChannelWords();
    machine.tail = options.tail;
    machine.prepare = [&](std::uint64_t beforeFrame) {
        if (!audio.freeRunning && !stop.IsRequested()) pace.Wait(beforeFrame, stop);
    };
    machine.process = [&](float** outputs, float** channels) { player.Process(outputs, channels, audio.vectorSize); };
    job.Run(machine);
    desk.Detach();
}

}  // namespace live
