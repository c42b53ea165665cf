#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "hrtf/nearest_point_search.h"
#include "kernels/kernels.h"
#include "support/signals.h"

namespace {

/// The plain search, which is what kernels and tree stand for.
std::size_t Nearest(std::vector<float> const& x, std::vector<float> const& y, std::vector<float> const& z, float toX,
                    float toY, float toZ) {
    std::size_t nearest = 0;
    float least = 0.0f;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const float dx = x[i] - toX, dy = y[i] - toY, dz = z[i] - toZ;
        const float squared = dx * dx + dy * dy + dz * dz;
        if (i != 0 && !(squared < least)) continue;
        nearest = i;
        least = squared;
    }
    return nearest;
}

// Red if a tie goes to another point than the first one, if the points behind the last full row are left out, if the
// tree passes over a box too many, or if places that are far away or nowhere find another point. Coordinates of few
// values, in the second round, make many ties.
TEST(NearestPoint, IsThatOfThePlainSearchWithEachWidthAndInTheTree) {
    constexpr float far = 3e19f, infinity = std::numeric_limits<float>::infinity();
    for (const std::size_t numPoints : {1u, 3u, 16u, 17u, 37u, 710u, 3000u}) {
        std::vector<float> x = MakeNoise(1, numPoints, 2.0f), y = MakeNoise(2, numPoints, 2.0f),
                           z = MakeNoise(3, numPoints, 2.0f);
        for (const int round : {0, 1, 2}) {
            if (round == 1)
                for (auto* const values : {&x, &y, &z})
                    for (float& value : *values) value = std::round(value);
            if (round == 2) x[0] = far;
            std::vector<float> places = MakeNoise(4, 300, 3.0f);
            for (std::size_t p = 0; p < 150; ++p) places[p] = std::round(2.0f * places[p]) / 2.0f;
            places.insert(places.end(), {far, 0.0f, far, infinity, 0.0f, 0.0f, std::nanf(""), 0.0f, 1.0f});
            std::vector<Lume::CartesianVector> points(numPoints);
            for (std::size_t i = 0; i < numPoints; ++i) points[i] = {x[i], y[i], z[i]};
            Lume::NearestPointSearch tree;
            tree.SetPoints(points);
            for (std::size_t p = 0; p < places.size(); p += 3)
                ASSERT_EQ(tree.Find({places[p], places[p + 1], places[p + 2]}),
                          Nearest(x, y, z, places[p], places[p + 1], places[p + 2]))
                    << numPoints << " points, place " << p / 3;
            for (const std::size_t width : {4u, 8u, 16u}) {
                auto const* const kernels = orvandsp::kernels::OfWidth(width);
                for (std::size_t p = 0; kernels != nullptr && p < places.size(); p += 3)
                    ASSERT_EQ(kernels->nearest(x.data(), y.data(), z.data(), numPoints, places[p], places[p + 1],
                                               places[p + 2]),
                              Nearest(x, y, z, places[p], places[p + 1], places[p + 2]))
                        << width << " lanes, " << numPoints << " points, place " << p / 3;
            }
        }
    }
}

}  // namespace
