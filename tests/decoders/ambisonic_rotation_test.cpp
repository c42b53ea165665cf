#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "decoders/ambisonic/ambisonic_reorder.h"
#include "decoders/ambisonic/ambisonic_rotation.h"
#include "harmonics/ambisonic_encoding.h"
#include "harmonics/harmonics_rotation.h"
#include "support/channels.h"

namespace {

using Lume::CartesianVector;
using Lume::Orientation;

// Of the head alone: red if a sign or the order of the three turns changes.
TEST(Orientation, TurnsDirectionsAgainstTheHead) {
    const auto expect = [](Orientation const& o, CartesianVector const& p, CartesianVector const& seen) {
        const CartesianVector q = Lume::Rotated(Lume::RoomToHead(o), p);
        EXPECT_NEAR(q.x, seen.x, 1e-6f);
        EXPECT_NEAR(q.y, seen.y, 1e-6f);
        EXPECT_NEAR(q.z, seen.z, 1e-6f);
    };
    expect({90, 0, 0}, {0, 1, 0}, {-1, 0, 0});   // looks right: what is ahead comes from the left
    expect({0, 90, 0}, {0, 1, 0}, {0, 0, -1});   // looks up: below
    expect({0, 0, 90}, {1, 0, 0}, {0, 0, 1});    // right ear down: what is on the right comes from above
    expect({90, 90, 0}, {0, 0, 1}, {0, 1, 0});   // to the right, then up: what is above comes from ahead
    expect({90, 0, 90}, {0, -1, 0}, {0, 0, 1});  // the right ear, which points behind, goes down
}

// Ground truth: encoding the turned direction. All seven orders, random orientations and directions.
TEST(HarmonicsRotation, TurnsAPlaneWaveAsItsDirection) {
    std::mt19937 random(7);
    std::uniform_int_distribution<int> angle(-180, 180);  // degrees
    for (int trial = 0; trial < 40; ++trial) {
        const auto draw = [&] { return static_cast<float>(angle(random)); };
        const Lume::RotationMatrix rotation = Lume::RoomToHead({draw(), draw(), draw()});
        const CartesianVector p{draw(), draw(), draw()};
        const auto before = Lume::AmbisonicEncodingVector(7, p, Lume::SchmidtSeminormalized3D, Lume::IncreasingDegrees);
        const auto after = Lume::AmbisonicEncodingVector(7, Lume::Rotated(rotation, p), Lume::SchmidtSeminormalized3D,
                                                         Lume::IncreasingDegrees);
        const auto matrices = Lume::HarmonicsRotation(7, rotation);
        for (std::size_t l = 0; l <= 7; ++l) {
            for (std::size_t m = 0; m < 2 * l + 1; ++m) {
                double turned = 0.0;
                for (std::size_t n = 0; n < 2 * l + 1; ++n)
                    turned += matrices[l][m * (2 * l + 1) + n] * before[l * l + n];
                EXPECT_NEAR(turned, after[l * l + m], 2e-5) << "degree " << l << ", channel " << m;
            }
        }
    }
}

// A voice ahead is on the left once the head has turned to the right: Y is positive to the left in these axes.
TEST(AmbisonicRotation, SlidesToWhatTheHeadHearsInEitherAxes) {
    for (const bool ambixAxes : {false, true}) {
        Lume::AmbisonicRotation rotation(1, ambixAxes);
        rotation.SetSamplerate(48000.0f);
        rotation.SetOrientation({90, 0, 0});
        const CartesianVector ahead = ambixAxes ? CartesianVector{1, 0, 0} : CartesianVector{0, 1, 0};
        const auto gains =
            Lume::AmbisonicEncodingVector(1, ahead, Lume::SchmidtSeminormalized3D, Lume::IncreasingDegrees);
        Channels signal(4, 4096, 0.0f);
        for (std::size_t c = 0; c < 4; ++c) std::fill(signal.data[c].begin(), signal.data[c].end(), gains[c]);
        rotation.Process(signal.pointers.data(), signal.pointers.data(), 4096, orvandsp::allActiveInputs);
        EXPECT_NEAR(signal.data[0].back(), 1.0f, 1e-6f);
        EXPECT_NEAR(signal.data[1].back(), ambixAxes ? 1.0f : 0.0f, 1e-6f);   // y
        EXPECT_NEAR(signal.data[3].back(), ambixAxes ? 0.0f : -1.0f, 1e-6f);  // x
    }
}

// A plane wave in the channels W X Y Z R S T U V of older files, by their own formulas.
TEST(AmbisonicReorder, BringsOlderChannelsToThoseOfToday) {
    const float x = 0.36f, y = 0.48f, z = 0.8f;
    const auto wanted =
        Lume::AmbisonicEncodingVector(2, {x, y, z}, Lume::SchmidtSeminormalized3D, Lume::IncreasingDegrees);
    Channels older(9, 2, 0.0f), today(9, 2, 9.0f);
    const float wave[] = {std::sqrt(0.5f), x,        y, z, 1.5f * z * z - 0.5f, 2 * x * z, 2 * y * z,
                          x * x - y * y,   2 * x * y};
    for (std::size_t c = 0; c < 9; ++c) older.data[c][1] = wave[c];
    Lume::AmbisonicReorder reorder(Lume::FumaChannels(2),
                                   Lume::AmbisonicChannels(2, Lume::SchmidtSeminormalized3D, Lume::IncreasingDegrees));
    reorder.Process(today.pointers.data(), older.pointers.data(), 2, orvandsp::allActiveInputs);
    for (std::size_t c = 0; c < 9; ++c) {
        EXPECT_EQ(today.data[c][0], 0.0f);
        EXPECT_NEAR(today.data[c][1], wanted[c], 1e-6f) << "channel " << c;
    }
}

}  // namespace
