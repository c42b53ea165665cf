#include "geometry/speakers.h"

#include <gtest/gtest.h>

#include "support/places.h"

namespace {

using Lume::CartesianVector;
using Lume::Speakers;

/// Built before main, as other libraries' statics are.
const CartesianVector leftOfHexa = Speakers::hexa[5];

/// Compares positions with listener's azimuths: x is the sine, y the cosine.
void ExpectAzimuths(CartesianVector const* positions, std::vector<double> const& degrees) {
    ASSERT_NE(positions, nullptr);
    for (std::size_t i = 0; i < degrees.size(); ++i) {
        EXPECT_LT(Length(positions[i] - At(degrees[i])), 5e-7f) << i;
        EXPECT_EQ(positions[i].z, 0.0f) << i;
    }
}

// Red if a layout is mirrored, in another channel order, or chosen for another number.
TEST(Speakers, LayoutsStandWhereTheyShould) {
    ExpectAzimuths(Speakers::lcrs, {-30, 0, 30, 180});
    const std::vector<std::vector<double>> tables = {{},
                                                     {0},
                                                     {-30, 30},
                                                     {-30, 30, 180},
                                                     {-45, 45, 135, -135},
                                                     {-30, 0, 30, 110, -110},
                                                     {-45, 45, 90, 135, -135, -90},
                                                     {-30, 0, 30, 90, 150, -150, -90},
                                                     {-45, 0, 45, 90, 135, 180, -135, -90}};
    for (unsigned int n = 1; n <= 8; ++n) {
        SCOPED_TRACE(n);
        ExpectAzimuths(Speakers::getDefaultForChannels(n), tables[n]);
        std::vector<CartesianVector> positions(20);
        Speakers::GetDefaultForChannels(positions, n);
        ASSERT_EQ(positions.size(), n);
        ExpectAzimuths(positions.data(), tables[n]);
    }
    EXPECT_EQ(Speakers::getDefaultForChannels(0), nullptr);
    EXPECT_EQ(Speakers::getDefaultForChannels(9), nullptr);
    EXPECT_EQ(Speakers::cube[5].z, -1.0f);
}

// Red if the tables are filled in the order in which the linker happens to see the files.
TEST(Speakers, TablesAreReadyForOtherStatics) {
    EXPECT_EQ(leftOfHexa.x, -1.0f);
}

TEST(Speakers, RegularRingGoesClockwiseFromAhead) {
    std::vector<CartesianVector> ring(3);
    Speakers::GetDefaultForChannels(ring, 9);
    ASSERT_EQ(ring.size(), 9u);
    ExpectAzimuths(ring.data(), {0, 40, 80, 120, 160, 200, 240, 280, 320});

    std::vector<float> triples(9 * 3);
    Speakers::GetRegularlySpaced(triples.data(), 9);
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(triples[3 * i], ring[i].x);
        EXPECT_EQ(triples[3 * i + 1], ring[i].y);
    }
    Speakers::GetDefaultForChannels(ring, 0);
    EXPECT_TRUE(ring.empty());
}

}  // namespace
