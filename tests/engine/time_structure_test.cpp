#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "engine/engine_rig.h"
#include "support/signals.h"

namespace {

struct Range {
    float first, last;
};

template <typename Block>
std::vector<float> DelaysOf(Block const& block) {
    std::vector<float> delays(8);
    block->GetDelays(delays.data());
    return delays;
}

template <typename Block>
void ExpectRange(Block const& block, Range range) {
    const std::vector<float> delays = DelaysOf(block);
    EXPECT_NEAR(delays.front(), range.first, 1e-3f);
    EXPECT_NEAR(delays.back(), range.last, 1e-3f);
    EXPECT_TRUE(std::is_sorted(delays.begin(), delays.end()));
}

constexpr float narrowest = 3.2879817f;  // what a delay set of no width is widened to [ms]

// What the ear gets: the times are absolute although the blocks stand in series. Red if a delay is taken as absolute by
// a block that is fed by another, or if a layer is tapped from another block.
TEST(TimeStructure, LayersArriveWhenTheUserSaid) {
    const auto respond = [](void (Lume::OrvanVerb::*layer)(float)) {
        EngineRig rig(1, 4, 8);
        (rig.engine.*layer)(0.0f);
        rig.engine.SetEarlyStart(30.0f);
        rig.engine.SetEarlyEnd(50.0f);
        rig.engine.SetClusterStart(70.0f);
        rig.engine.SetClusterEnd(130.0f);
        rig.engine.SetReverbStart(140.0f);
        rig.engine.SetReverbModalDensity(1.2f);
        rig.Settle();
        return SpanAbove(rig.ImpulseResponse(0.5), 1e-4f, rig.rate);
    };
    const double oneSample = 1000.0 / 48000.0;
    const auto expect = [&](Span const& span, double first, double last) {
        EXPECT_NEAR(span.first, first, 2 * oneSample);
        EXPECT_GT(span.last, last - 2 * oneSample);
        EXPECT_LT(span.last, last + 5.0);  // the shelves ring on for a little
    };
    expect(respond(&Lume::OrvanVerb::SetEarlyGain), 30.0, 50.0);
    expect(respond(&Lume::OrvanVerb::SetClusterGain), 70.0, 130.0);
    const Span reverb = respond(&Lume::OrvanVerb::SetReverbGain);
    EXPECT_NEAR(reverb.first, 140.0 + 64 * oneSample, 3 * oneSample);  // a chunk of 64 samples later
}

// Red if a clamp is missing, at the wrong value or on the stored value, if a block's delays aren't those relative to
// the block before it, or if a setter forgets the block behind.
TEST(TimeStructure, EarlyTimesMoveTheCluster) {
    OpenEngine engine(8);
    const auto expect = [&](Range early, Range cluster) {
        ExpectRange(engine.early, early);
        ExpectRange(engine.cluster, cluster);
    };
    const float clusterStart = Lume::LumeDefaultParameters::DefaultClusterStart;
    const float clusterEnd = Lume::LumeDefaultParameters::DefaultClusterEnd;
    engine.SetEarlyStart(10.0f);
    engine.SetEarlyEnd(60.0f);
    expect({10.0f, 60.0f}, {clusterStart - 10.0f, clusterEnd - 60.0f});
    engine.SetEarlyStart(
        200.0f);  // beyond the limit; the cluster start is before it, the end 45 ms behind the early one
    expect({120.0f, 120.0f + narrowest}, {1.0f, clusterEnd - 60.0f});
    engine.SetEarlyStart(-5.0f);
    expect({1.0f, 60.0f}, {clusterStart + 5.0f, std::max(clusterStart + 5.0f + narrowest, clusterEnd - 60.0f)});
    engine.SetEarlyStart(22.0f);
    engine.SetEarlyEnd(10.0f);
    expect({22.0f, 22.0f + narrowest}, {clusterStart - 22.0f, clusterEnd - 10.0f});
    engine.SetEarlyEnd(500.0f);
    expect({22.0f, 120.0f}, {clusterStart - 22.0f, clusterStart - 22.0f + narrowest});
    engine.SetEarlyEnd(50.0f);
    engine.SetEarlyDistribution(7.0f);
    const auto late = DelaysOf(engine.early);
    engine.SetEarlyDistribution(0.9f);
    EXPECT_EQ(late, DelaysOf(engine.early));
    EXPECT_GT(std::accumulate(late.begin(), late.end(), 0.0f), 8 * 44.0f);
}

TEST(TimeStructure, ClusterTimesMoveTheLateField) {
    OpenEngine engine(8);
    engine.SetEarlyStart(20.0f);
    engine.SetEarlyEnd(40.0f);
    const auto expect = [&](Range cluster, Range reverb) {
        ExpectRange(engine.cluster, cluster);
        ExpectRange(engine.reverb, reverb);
    };
    // The mean of the late delays is an eighth of the sum, and lies in the middle between first and last.
    engine.SetReverbModalDensity(0.8f);
    engine.SetReverbStart(100.0f);
    engine.SetClusterStart(30.0f);
    engine.SetClusterEnd(90.0f);
    expect({10.0f, 50.0f}, {70.0f, 130.0f});
    engine.SetClusterEnd(400.0f);
    expect({10.0f, 300.0f}, {70.0f, 130.0f});
    engine.SetClusterStart(10.0f);
    engine.SetClusterEnd(60.0f);
    expect({1.0f, 20.0f}, {90.0f, 110.0f});
    engine.SetClusterStart(150.0f);  // behind the late field: that starts at its shortest possible delay, 64 samples
    expect({130.0f, 130.0f + narrowest}, {64000.0f / 44100.0f, 200.0f - 64000.0f / 44100.0f});
    engine.SetClusterStart(30.0f);
    engine.SetReverbModalDensity(9.0f);
    expect({10.0f, 20.0f}, {70.0f, 930.0f});
    engine.SetReverbModalDensity(0.8f);
    engine.SetReverbStart(31.0f + 90.0f);
    EXPECT_NEAR(DelaysOf(engine.reverb).front(), 91.0f, 1e-3f);
    // The early times don't reach the late field.
    engine.SetEarlyStart(5.0f);
    EXPECT_NEAR(DelaysOf(engine.reverb).front(), 91.0f, 1e-3f);
}

// Red if width and elevation don't move the sources, or the early field doesn't follow the last one.
TEST(TimeStructure, WidthAndElevationPlaceSourcesAgain) {
    EngineRig rig(2, 4, 4);
    rig.engine.SetEarlyGain(0.0f);
    rig.engine.SetEarlyShape(0.0f);  // one tap remains: the first, which belongs to the first virtual source
    rig.engine.SetSpeakersPositions(Ring(4, 0.0).data());
    rig.engine.SetSourcePosition(1, At(90.0));
    rig.engine.SetSourcePosition(0, At(180.0));
    const auto powers = [&] {
        rig.Settle();
        std::vector<double> result;
        for (auto const& channel : rig.ImpulseResponse(0.1)) result.push_back(EnergyOf(channel));
        return result;
    };
    auto p = powers();  // 15 degrees to the left of what lies straight ahead of source 0, seen from the listener
    EXPECT_GT(p[2], 5.0 * p[1]);
    EXPECT_GT(p[1], 100.0 * p[3]);
    rig.engine.SetEarlyWidth(180.0f);  // source 1 is placed last: its first virtual source stands at the front
    p = powers();
    EXPECT_GT(p[0], 1e4 * (p[1] + p[2] + p[3]));
    rig.engine.SetEarlyWidth(0.0f);
    p = powers();
    EXPECT_GT(p[1], 1e4 * (p[0] + p[2] + p[3]));

    rig.engine.SetEarlyGain(-800.0f);
    rig.engine.SetDirectGain(0.0f);
    rig.engine.SetSourcePosition(0, {0.0f, 2.0f, 0.0f});
    rig.engine.SetElevation(60.0f);
    EXPECT_NEAR(rig.ConstantLevels()[0], 0.25f * std::sqrt(0.5f), 1e-4f);  // the distance stays
}

}  // namespace
