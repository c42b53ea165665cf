#include "hrtf/hrtf_filtering.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/channels.h"

namespace {

// Red if an FIR filter isn't a tap longer than its set (the length of its transform follows that), if a
// shorter set leaves old values behind it, or if a delay acts that isn't wanted.
TEST(HrtfFiltering, SetsAndDelays) {
    Lume::HrtfFiltering fir(Lume::firFilter, false), biquads(Lume::biquadFilters, false);
    fir.SetNumCoefficients(3);
    std::vector<float> taps = {1.0f, 2.0f, 3.0f, 4.0f}, set, impulse = MakeImpulse(512);
    for (const std::size_t count : {4u, 2u}) fir.SetCoefficients(std::span<float const>(taps).first(count), false);
    fir.Process(impulse.data(), impulse.data(), 512);
    fir.GetCoefficients(set);
    EXPECT_EQ(set, (std::vector<float>{1.0f, 2.0f, 0.0f, 0.0f}));

    biquads.SetDelay(10.0f, true);
    std::vector<float> pass = MakeImpulse(25);
    impulse = MakeImpulse(512);
    biquads.SetCoefficients(pass.data(), false);
    biquads.Process(impulse.data(), impulse.data(), 512);
    EXPECT_NE(impulse[0], 0.0f);
}

}  // namespace
