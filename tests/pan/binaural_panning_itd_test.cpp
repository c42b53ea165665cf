#include "pan/binaural/binaural_panning_itd.h"

#include <gtest/gtest.h>

#include "pan/panning_support.h"

namespace {

// Red if the sides are mixed up, if the effect doesn't grow to a metre and stop there, or if the height isn't seen.
TEST(BinauralPanningITD, DelaysAndWeakensTheFarEar) {
    Lume::BinauralPanningITD panner(1, 2);
    const auto expect = [&](Lume::CartesianVector const& position, double v) {
        SCOPED_TRACE(testing::Message() << position.x << " " << position.y << " " << position.z);
        PlaceAndWait(panner, position);
        const Arrivals ears(panner);
        for (const std::size_t ear : {0u, 1u}) {
            const double far = ear == 0 ? v : -v;
            EXPECT_NEAR(ears.sum[ear], 0.70710678 - far, 1e-4);
            EXPECT_NEAR(ears.delay[ear] / 44.1, 1.0 + far, 1e-3);
        }
    };
    expect(At(90.0, 0.0, 2.0), 0.35);
    expect(At(90.0, 0.0, 0.5), 0.175);
    expect(At(-90.0), -0.35);
    expect(At(30.0, 60.0), 0.35 * 0.25);
    expect(At(150.0, -60.0), 0.35 * 0.25);
    expect(At(77.0, 90.0), 0.0);
    expect({0.0f, 0.0f, 0.0f}, 0.0);
    panner.SetListenerHeadRadius(1.0f);
    expect(At(90.0), 0.35);
}

}  // namespace
