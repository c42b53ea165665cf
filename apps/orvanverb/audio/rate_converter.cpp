#include "orvanverb/audio/rate_converter.h"

#include <samplerate.h>

#include <stdexcept>
#include <utility>

namespace program {

void RateConverter::StateDeleter::operator()(SRC_STATE_tag* converter) const noexcept {
    src_delete(converter);
}

RateConverter::RateConverter(double newRatio, unsigned int channels, Source newSource)
    : ratio(newRatio), source(std::move(newSource)) {
    if (src_is_valid_ratio(ratio) == 0) throw std::runtime_error("the sample rates lie too far apart");
    int error = 0;
    state.reset(src_callback_new(&Pull, SRC_SINC_BEST_QUALITY, static_cast<int>(channels), &error, this));
    if (!state) throw std::runtime_error(src_strerror(error));
}

RateConverter::~RateConverter() = default;

long RateConverter::Pull(void* self, float** samples) {
    RateConverter& converter = *static_cast<RateConverter*>(self);
    std::size_t frames = 0;
    try {
        *samples = converter.source(frames);
    } catch (...) {
        converter.failure = std::current_exception();
    }
    return static_cast<long>(frames);
}

std::size_t RateConverter::Read(float* interleaved, std::size_t frames) {
    if (ended) return 0;
    const long got = src_callback_read(state.get(), ratio, static_cast<long>(frames), interleaved);
    if (failure) std::rethrow_exception(failure);
    if (const int error = src_error(state.get())) throw std::runtime_error(src_strerror(error));
    ended = got < static_cast<long>(frames);
    return static_cast<std::size_t>(got);
}

}  // namespace program
