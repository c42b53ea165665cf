#include "dsp/repeatable_random.h"

namespace orvandsp {

RepeatableRandom::RepeatableRandom(std::uint32_t seed) noexcept {
    constexpr std::int64_t factor = 16807, modulus = greatest;  // the "minimal standard" generator fills the state
    constexpr int discarded = 10 * degree;
    std::int64_t word = static_cast<std::int32_t>(seed == 0 ? 1 : seed);
    for (std::uint32_t& element : state) {
        element = static_cast<std::uint32_t>(word);
        word = factor * word % modulus;
        if (word < 0) word += modulus;
    }
    for (int i = 0; i < discarded; ++i) Next();
}

std::int32_t RepeatableRandom::Next() noexcept {
    std::uint32_t& newest = state[(oldest + separation) % degree];
    newest += state[oldest];
    oldest = (oldest + 1) % degree;
    return static_cast<std::int32_t>(newest >> 1);
}

}  // namespace orvandsp
