#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "orvanverb/audio/audio_input.h"
#include "orvanverb/audio/signal_source.h"

namespace program {

/// The recordings of one rendering side by side, each of their channels a source: all at once, or one after the other.
class InputBank : public SignalSource {
public:
    /// @param rate          sample rate of the rendering [Hz]; none: that of the first recording
    /// @param inTurnSeconds if given, each recording begins this long after the end of the one before it; otherwise all
    ///                      begin together
    /// @throws WorkError for a file that can't be used, or more channels than a room has sources
    InputBank(std::vector<std::string> const& paths, std::optional<int> rate, std::optional<double> inTurnSeconds);

    unsigned int NumChannels() const override { return numChannels; }
    std::size_t Read(float* const* channels, std::size_t frames) override;
    double ExpectedFrames() const override;
    std::vector<Origin> Origins() const override;

    int Samplerate() const noexcept { return samplerate; }

    /// One line for each recording that held samples which weren't finite.
    std::vector<std::string> Remarks() const override;

private:
    struct Entry {
        std::unique_ptr<AudioInput> input;
        std::size_t firstChannel = 0;
        bool ended = false;
    };

    std::size_t ReadTogether(float* const* channels, std::size_t frames);
    std::size_t ReadInTurn(float* const* channels, std::size_t frames);

    std::vector<Entry> entries;
    unsigned int numChannels = 0;
    int samplerate = 0;                    // [Hz]
    std::optional<std::size_t> gapFrames;  // between recordings that take turns
    std::size_t speaker = 0;               // entry whose turn it is
    std::size_t pauseLeft = 0;             // frames until its turn begins
};

}  // namespace program
