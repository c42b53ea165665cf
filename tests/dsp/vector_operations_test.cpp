#include "dsp/vector_operations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "dsp/vector_statistics.h"

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

TYPED_TEST(VectorOperations, FunctionsConversionsAndFrames) {
    using V = std::vector<TypeParam>;
    const auto expect = [](auto operation, double (*function)(double)) {
        V in = {0.25, 1, 4, 9}, out(4);
        operation(out.data(), in.data());
        for (std::size_t i = 0; i < 4; ++i) {
            const double wanted = function(static_cast<double>(in[i]));
            EXPECT_NEAR(static_cast<double>(out[i]), wanted, 1e-6 * (1.0 + std::abs(wanted)));
        }
    };
    expect([](auto* out, auto* in) { orvandsp::Copy(out, in, 4), orvandsp::Smax(out, 2, 4); },
           [](double x) { return std::max(x, 2.0); });
    expect([](auto* out, auto* in) { orvandsp::Lin2dB(out, in, 4); }, [](double x) { return 20.0 * std::log10(x); });
    expect([](auto* out, auto* in) { orvandsp::Lin2powdB(out, in, 4); }, [](double x) { return 10.0 * std::log10(x); });
    expect([](auto* out, auto* in) { orvandsp::Copy(out, in, 4), orvandsp::Sqrt(out, 4); }, std::sqrt);
    expect([](auto* out, auto* in) { orvandsp::Log(out, in, 4); }, std::log);
    expect([](auto* out, auto* in) { orvandsp::Exp(out, in, 4); }, std::exp);
    expect([](auto* out, auto* in) { orvandsp::Sin(out, in, 4); }, std::sin);
    expect([](auto* out, auto* in) { orvandsp::Cos(out, in, 4); }, std::cos);

    V a = {1, -2, 3, 4}, b = {5, 6, -7, 8}, out(4), out2(4);
    const float single[] = {0.1f, 2.0f};
    double wide[2];
    float narrow[2];
    orvandsp::SingleToDouble(wide, single, 2);
    orvandsp::DoubleToSingle(narrow, wide, 2);
    EXPECT_TRUE(wide[0] == double{0.1f} && wide[1] == 2.0 && narrow[0] == 0.1f && narrow[1] == 2.0f);
    TypeParam* channels[] = {a.data(), b.data()};
    V frames(8);
    orvandsp::InterleaveSamples(frames.data(), channels, 2, 4);
    EXPECT_EQ(frames, (V{1, 5, -2, 6, 3, -7, 4, 8}));
    TypeParam* back[] = {out.data(), out2.data()};
    orvandsp::DeinterleaveSamples(back, frames.data(), 2, 4);
    EXPECT_EQ(out, a);
    EXPECT_EQ(out2, b);
}

TYPED_TEST(VectorOperations, NormalDistributionHasItsShares) {
    std::vector<TypeParam> values(20000);
    orvandsp::NormalRandomDistribution(values.data(), 3, 2, values.size());
    for (auto const& [from, to, share] : {std::array{1.0, 5.0, 0.6827}, {-1.0, 7.0, 0.9545}, {3.0, 99.0, 0.5}}) {
        const auto within = std::ranges::count_if(
            values, [&](TypeParam x) { return x > static_cast<TypeParam>(from) && x < static_cast<TypeParam>(to); });
        EXPECT_NEAR(static_cast<double>(within) / 20000.0, share, 0.013);  // four deviations
    }
    EXPECT_NEAR(orvandsp::StandardDeviation(values.data(), values.size()), 2.0, 0.05);
}

TYPED_TEST(VectorOperations, FiguresAndOrder) {
    using V = std::vector<TypeParam>;
    V x = {-1, 4, 2, 3}, y = {3, 8, 4, 5};
    unsigned long index;
    EXPECT_EQ(orvandsp::GetMaximumValueWithIndex(x.data(), 4, index), 4);
    EXPECT_EQ(index, 1u);
    EXPECT_EQ(orvandsp::GetMaximumValue(y.data(), 4), 8);
    EXPECT_EQ(orvandsp::GetMinimumValue(x.data(), 4), -1);
    EXPECT_EQ(orvandsp::MeanMagnitude(x.data(), 4), 2.5);
    EXPECT_NEAR(orvandsp::Norm(x.data(), 4), std::sqrt(30.0), 1e-6);
    EXPECT_NEAR(orvandsp::RootMeanSquare(x.data(), 4), std::sqrt(7.5), 1e-6);
    TypeParam slope, intercept;
    orvandsp::LinearRegression(slope, intercept, x.data(), y.data(), 4);
    EXPECT_NEAR(slope, 6.0 / 7.0, 1e-6);
    EXPECT_NEAR(intercept, 5.0 - 12.0 / 7.0, 1e-6);
    orvandsp::SortByIncreasingValues(x.data(), 4);
    EXPECT_EQ(x, (V{-1, 2, 3, 4}));
    orvandsp::SortByDecreasingValues(x.data(), 4);
    EXPECT_EQ(x, (V{4, 3, 2, -1}));
}

}  // namespace
