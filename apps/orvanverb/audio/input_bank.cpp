#include "orvanverb/audio/input_bank.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "orvanverb/common/limits.h"
#include "orvanverb/common/program_error.h"

namespace program {

InputBank::InputBank(std::vector<std::string> const& paths, std::optional<int> rate,
                     std::optional<double> inTurnSeconds) {
    for (std::string const& path : paths) {
        Entry entry{std::make_unique<AudioInput>(path), numChannels};
        numChannels += entry.input->NumChannels();
        if (numChannels > maxSources)
            throw WorkError(path + ": with its channels there are " + std::to_string(numChannels) +
                            " sources; a room takes 1 to " + std::to_string(maxSources));
        entries.push_back(std::move(entry));
    }
    samplerate = rate ? *rate : entries.front().input->Samplerate();
    if (samplerate < minRate || samplerate > maxRate)
        throw WorkError(paths.front() + ": has a sample rate of " + std::to_string(samplerate) +
                        " Hz; choose one from " + std::to_string(minRate) + " to " + std::to_string(maxRate) +
                        " with --rate");
    for (Entry& entry : entries) entry.input->SetOutputRate(samplerate);
    if (inTurnSeconds) gapFrames = static_cast<std::size_t>(std::lround(*inTurnSeconds * samplerate));
}

double InputBank::ExpectedFrames() const {
    double longest = 0.0, sum = 0.0;
    for (Entry const& entry : entries) {
        const double frames = entry.input->Seconds() * samplerate;
        longest = std::max(longest, frames);
        sum += frames;
    }
    return gapFrames ? sum + static_cast<double>(*gapFrames * (entries.size() - 1)) : longest;
}

std::vector<SignalSource::Origin> InputBank::Origins() const {
    std::vector<Origin> origins;
    for (Entry const& entry : entries)
        origins.push_back(
            {entry.input->Path(), entry.input->NumChannels(), entry.input->Samplerate(), entry.input->NumFrames()});
    return origins;
}

std::size_t InputBank::Read(float* const* channels, std::size_t frames) {
    for (std::size_t c = 0; c < numChannels; ++c) std::fill_n(channels[c], frames, 0.0f);
    return gapFrames ? ReadInTurn(channels, frames) : ReadTogether(channels, frames);
}

std::size_t InputBank::ReadTogether(float* const* channels, std::size_t frames) {
    std::size_t longest = 0;
    for (Entry& entry : entries) {
        if (entry.ended) continue;
        const std::size_t got = entry.input->Read(channels + entry.firstChannel, frames);
        entry.ended = got < frames;
        longest = std::max(longest, got);
    }
    return longest;
}

std::size_t InputBank::ReadInTurn(float* const* channels, std::size_t frames) {
    std::size_t done = 0;
    while (done < frames && speaker < entries.size()) {
        const std::size_t pause = std::min(pauseLeft, frames - done);
        pauseLeft -= pause;
        done += pause;
        if (done == frames) break;

        AudioInput& input = *entries[speaker].input;
        std::array<float*, maxSources> targets{};
        for (std::size_t c = 0; c < input.NumChannels(); ++c)
            targets[c] = channels[entries[speaker].firstChannel + c] + done;
        const std::size_t got = input.Read(targets.data(), frames - done);
        if (got < frames - done) {
            ++speaker;
            pauseLeft = *gapFrames;
        }
        done += got;
    }
    return done;
}

std::vector<std::string> InputBank::Remarks() const {
    std::vector<std::string> remarks;
    for (Entry const& entry : entries)
        if (const std::uint64_t count = entry.input->NumReplaced())
            remarks.push_back(entry.input->Path() + ": " + std::to_string(count) +
                              " samples were infinite, not a number or beyond 120 dBFS and became 0");
    return remarks;
}

}  // namespace program
