#include "dsp/vector_operations.h"

#include <gtest/gtest.h>

#include <numbers>
#include <vector>

namespace {

template <typename T>
class VectorOperations : public testing::Test {};

using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(VectorOperations, Precisions);

// Red if the in-place forms read what they have just written, or if a sign or an output is exchanged.
TYPED_TEST(VectorOperations, SumsAndDifferences) {
    using V = std::vector<TypeParam>;
    V a = {1, -2, 3, 4}, b = {5, 6, -7, 8}, out(4), out2(4);
    orvandsp::SumMul(out.data(), a.data(), b.data(), 2, 4);
    EXPECT_EQ(out, (V{12, 8, -8, 24}));
    orvandsp::DiffMul(out.data(), a.data(), b.data(), 0.5, 4);
    EXPECT_EQ(out, (V{-2, -4, 5, -2}));
    orvandsp::SumDiff(out.data(), out2.data(), a.data(), b.data(), 4);
    EXPECT_EQ(out, (V{6, 4, -4, 12}));
    EXPECT_EQ(out2, (V{-4, -8, 10, -4}));
    orvandsp::SumDiff(a.data(), b.data(), 4);
    EXPECT_EQ(a, out);
    EXPECT_EQ(b, out2);
    orvandsp::SumDiffMul(a.data(), b.data(), 0.5, 4);  // undoes it
    EXPECT_EQ(a, (V{1, -2, 3, 4}));
    EXPECT_EQ(b, (V{5, 6, -7, 8}));
}

// Red if the fade ends a step early or mixes the wrong way round.
TYPED_TEST(VectorOperations, CrossFadesMeetBothEnds) {
    std::vector<TypeParam> ones(5, 1), nines(5, 9), out(5);
    orvandsp::CrossFade(out.data(), ones.data(), nines.data(), 0, 1, 5);
    EXPECT_EQ(out, (std::vector<TypeParam>{1, 3, 5, 7, 9}));
    orvandsp::CrossFadeAdd(out.data(), ones.data(), nines.data(), 1, 0.5, 5);
    EXPECT_EQ(out, (std::vector<TypeParam>{10, 11, 12, 13, 14}));
    orvandsp::CrossFade(out.data(), ones.data(), nines.data(), 0.5, 1, 1);
    EXPECT_EQ(out[0], TypeParam{5});
}

TYPED_TEST(VectorOperations, LevelsFunctionsAndFrames) {
    using V = std::vector<TypeParam>;
    V a = {1, -2, 3, 4}, b = {5, 6, -7, 8}, out(4), out2(4);
    orvandsp::Smax(out.data(), a.data(), 2, 4);
    EXPECT_EQ(out, (V{2, 2, 3, 4}));
    V data = {1, 100, 4, 0.25};
    orvandsp::Lin2dB(out.data(), data.data(), 4);
    EXPECT_NEAR(out[1], 40.0, 1e-5);
    orvandsp::Lin2powdB(out.data(), data.data(), 4);
    EXPECT_NEAR(out[1], 20.0, 1e-5);
    orvandsp::Sqrt(data.data(), 4);
    EXPECT_EQ(data, (V{1, 10, 2, 0.5}));
    orvandsp::Log(out.data(), data.data(), 4);
    EXPECT_NEAR(out[1], std::numbers::ln10, 1e-6);
    orvandsp::Exp(out.data(), out.data(), 4);
    EXPECT_NEAR(out[1], 10.0, 1e-5);
    orvandsp::Sin(out.data(), data.data(), 4);
    orvandsp::Cos(out2.data(), data.data(), 4);
    for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(out[i] * out[i] + out2[i] * out2[i], 1.0, 1e-6);
    EXPECT_NEAR(out[3], 0.479426, 1e-6);

    TypeParam* channels[] = {a.data(), b.data()};
    V frames(8);
    orvandsp::InterleaveSamples(frames.data(), channels, 2, 4);
    EXPECT_EQ(frames, (V{1, 5, -2, 6, 3, -7, 4, 8}));
    TypeParam* back[] = {out.data(), out2.data()};
    orvandsp::DeinterleaveSamples(back, frames.data(), 2, 4);
    EXPECT_EQ(out, a);
    EXPECT_EQ(out2, b);
}

}  // namespace
