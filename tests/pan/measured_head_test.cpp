#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

#include "pan/binaural/binaural_panning_direct.h"
#include "pan/panning_support.h"
#include "support/clicks.h"

namespace {

// Around the head, over a steady tone, by a degree every 20 ms. Red if filters or delays change more roughly than their
// crossfades and glides allow. The filters step every five degrees; a crossfade of 5 ms is as wide as the band that the
// meter leaves out, and is what remains.
TEST(MeasuredHead, MovesWithoutClicks) {
    // Worst of these: -38.4, -35.4 and, with a crossfade of 15 ms, -47.9 dB.
    for (const auto& [tone, crossFade, limit] :
         {std::array{1000.0, 5.0, -37.0}, {3000.0, 5.0, -34.0}, {1000.0, 15.0, -46.5}}) {
        Lume::BinauralPanningDirect panner(1, 2);
        panner.Configure(48000.0f, 64, true);
        panner.SetFilterCrossFadeTime(static_cast<float>(crossFade));
        std::vector<std::vector<float>> recording(2);
        Channels in(1, 64, 0.0f), out(2, 64, 0.0f);
        std::size_t sample = 0;
        const int numBlocks = 15 * 600;
        for (int block = 0; block < numBlocks; ++block) {
            // A steady tone at both ends, for the meter.
            const int step = std::clamp(block / 15 - 120, 0, 360);
            if (block % 15 == 0) panner.SetSourcePosition(0, At(static_cast<double>(step)), false);
            for (float& x : in.data[0])
                x = static_cast<float>(
                    std::sin(2.0 * std::numbers::pi * tone / 48000.0 * static_cast<double>(sample++)));
            panner.Process(out.pointers.data(), in.pointers.data(), 64, orvandsp::allActiveInputs);
            for (const std::size_t e : {0u, 1u})
                recording[e].insert(recording[e].end(), out.pointers[e], out.pointers[e] + 64);
        }
        const ToneResidual residual = MeasureToneResidual(recording, 48000.0, tone);
        EXPECT_LT(residual.peakDb, limit) << tone << " Hz, at " << residual.peakSeconds << " s";
    }
}

}  // namespace
