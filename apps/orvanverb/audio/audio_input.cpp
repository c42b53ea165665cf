#include "orvanverb/audio/audio_input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <system_error>
#include <utility>

#include "orvanverb/common/complete_file.h"
#include "orvanverb/common/program_error.h"
#include "room/sample_guard.h"

namespace program {

namespace {

constexpr std::size_t pieceFrames = 4096;

[[noreturn]] void FailAsErrno(std::string const& path) {
    throw WorkError(path + ": " + std::generic_category().message(errno));
}

}  // namespace

AudioInput::AudioInput(std::string newPath) : path(std::move(newPath)) {
    const bool isStandard = path == standardInputName;
    // Says what libsndfile can't: which of the usual mistakes this is.
    struct stat status {};
    if ((isStandard ? fstat(STDIN_FILENO, &status) : stat(path.c_str(), &status)) != 0) FailAsErrno(path);
    if (S_ISDIR(status.st_mode)) throw WorkError(path + ": is a directory");
    if (S_ISREG(status.st_mode) && status.st_size == 0) throw WorkError(path + ": is empty");
    if (S_ISREG(status.st_mode)) RequireCompleteFile(isStandard ? "/dev/stdin" : path);

    // Once: a pipe gives its content only to the first who asks.
    const int descriptor = isStandard ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) FailAsErrno(path);
    file.reset(sf_open_fd(descriptor, SFM_READ, &info, SF_TRUE));
    if (!file && !S_ISREG(status.st_mode))
        throw WorkError(path + ": is no WAV or AU, which are what can be read through a pipe");
    if (!file)
        throw WorkError(path + ": is no WAV, AIFF, FLAC or Ogg file that can be read (" + sf_strerror(nullptr) +
                        "); ffmpeg makes WAV of others");
    if (info.frames == 0) throw WorkError(path + ": holds no samples");
    // Who writes into a pipe often doesn't know the length, and says 2 or 4 GiB of bytes, or all that there can be.
    constexpr sf_count_t incredibleSamples = 1 << 27;
    if (!S_ISREG(status.st_mode) && info.frames > incredibleSamples / info.channels) info.frames = SF_COUNT_MAX;
    piece.resize(pieceFrames * NumChannels());
}

std::uint64_t AudioInput::NumFrames() const noexcept {
    return info.frames > 0 && info.frames < SF_COUNT_MAX ? static_cast<std::uint64_t>(info.frames) : 0;
}

void AudioInput::SetOutputRate(int rate) {
    converter.reset();
    if (rate == info.samplerate) return;
    try {
        converter = std::make_unique<RateConverter>(static_cast<double>(rate) / info.samplerate, NumChannels(),
                                                    [this](std::size_t& frames) { return ReadPiece(frames); });
    } catch (std::runtime_error const& error) {
        throw WorkError(path + ": " + std::to_string(info.samplerate) + " Hz can't be brought to " +
                        std::to_string(rate) + " Hz: " + error.what());
    }
    converted.resize(piece.size());
}

float* AudioInput::ReadPiece(std::size_t& frames) {
    const sf_count_t got = sf_readf_float(file.get(), piece.data(), pieceFrames);
    if (got < static_cast<sf_count_t>(pieceFrames)) {
        const std::uint64_t inAll = framesRead + static_cast<std::uint64_t>(got);
        if (inAll < NumFrames())
            throw WorkError(path + ": is cut off or damaged: it announces " + std::to_string(NumFrames()) +
                            " samples, " + std::to_string(inAll) + " can be read");
        if (const int error = sf_error(file.get())) throw WorkError(path + ": " + sf_error_number(error));
    }
    if (got == 0 && framesRead == 0) throw WorkError(path + ": is damaged: it yields no samples");
    frames = static_cast<std::size_t>(got);
    framesRead += frames;
    for (std::size_t i = 0; i < frames * NumChannels(); ++i) {
        // What is not a number is not within the bound, too.
        if (std::abs(piece[i]) <= Lume::SampleGuard::maxSample) continue;
        piece[i] = 0.0f;
        ++numReplaced;
    }
    return piece.data();
}

std::size_t AudioInput::Refill() {
    if (converter) {
        pending = converted.data();
        return converter->Read(converted.data(), pieceFrames);
    }
    std::size_t frames = 0;
    pending = ReadPiece(frames);
    return frames;
}

std::size_t AudioInput::Read(float* const* channels, std::size_t frames) {
    std::size_t done = 0;
    while (done < frames) {
        if (pendingFrames == 0) pendingFrames = Refill();
        if (pendingFrames == 0) break;
        const std::size_t count = std::min(frames - done, pendingFrames);
        for (std::size_t c = 0; c < NumChannels(); ++c)
            for (std::size_t i = 0; i < count; ++i) channels[c][done + i] = pending[i * NumChannels() + c];
        pending += count * NumChannels();
        pendingFrames -= count;
        done += count;
    }
    return done;
}

}  // namespace program
