#include "orvanverb/measure/response_file.h"

#include <cstdint>

#include "orvanverb/audio/audio_input.h"
#include "orvanverb/audio/vector_channels.h"
#include "orvanverb/common/messages.h"
#include "orvanverb/common/program_error.h"

namespace program {

namespace {

constexpr std::uint64_t mostSamples = 1u << 27;  // of all channels: 512 MB; 64 channels of 40 s

}  // namespace

ResponseFile ReadResponse(std::string const& path, std::optional<unsigned int> channel) {
    constexpr std::size_t pieceFrames = 4096;
    AudioInput input(path);
    const unsigned int count = input.NumChannels();
    if (channel && *channel > count)
        throw WorkError(path + ": has no channel " + std::to_string(*channel) + ", but " + std::to_string(count));
    ResponseFile response{path, static_cast<double>(input.Samplerate()), {}};
    response.channels.resize(channel ? 1 : count);
    VectorChannels piece(count, pieceFrames);
    std::size_t frames = pieceFrames;
    while (frames == pieceFrames) {
        frames = input.Read(piece.Pointers(), pieceFrames);
        if ((response.channels[0].size() + frames) * count > mostSamples)
            throw WorkError(path + ": is too long for an impulse response");
        for (std::size_t i = 0; i < response.channels.size(); ++i) {
            float const* const samples = piece.Pointers()[channel ? *channel - 1 : i];
            response.channels[i].insert(response.channels[i].end(), samples, samples + frames);
        }
    }
    if (input.NumReplaced() > 0)
        Warn(path + ": " + std::to_string(input.NumReplaced()) + " samples were infinite or not a number and became 0");
    return response;
}

}  // namespace program
