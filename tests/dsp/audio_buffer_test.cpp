#include "dsp/audio_buffer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <vector>

#include "dsp/vector_statistics.h"
#include "support/allocation_count.h"

namespace {

using orvandsp::AudioBuffer;
using Samples = std::vector<float>;

AudioBuffer Filled(unsigned int numChannels, unsigned int numSamples) {
    AudioBuffer buffer(numChannels, numSamples);
    for (unsigned int i = 0; i < numChannels; ++i) buffer.FillChannel(i, static_cast<float>(i + 1));
    return buffer;
}

Samples Of(AudioBuffer const& buffer, unsigned int channel) {
    return {buffer.GetChannel(channel), buffer.GetChannel(channel) + buffer.GetNumSamples()};
}

// Red if a copy of a view owns memory, if an assignment writes through the view that it replaces, or if a copy of a
// permuted buffer loses the order.
TEST(AudioBuffer, ViewsShareAndOwnersDontShare) {
    float left[4] = {1, 2, 3, 4}, right[4] = {5, 6, 7, 8};
    float* arrays[] = {left, right};
    AudioBuffer view(arrays, 2, 3, 1);
    EXPECT_EQ(AudioBuffer(view).GetChannel(0), left + 1);

    AudioBuffer owner = Filled(3, 3);
    const unsigned int order[] = {1, 2, 0};
    owner.Permute(order);
    AudioBuffer copy(owner);
    EXPECT_EQ(copy.GetChannel(0)[2], 2.0f);
    copy.Fill(0.0f);
    EXPECT_EQ(owner.GetChannel(1)[0], 3.0f);

    view = owner;
    EXPECT_TRUE(view.OwnsData());
    EXPECT_EQ(Of(view, 1), Samples(3, 3.0f));
    EXPECT_EQ(left[1], 2.0f);

    float* fewer[] = {owner.GetChannel(2), owner.GetChannel(0)};
    owner = AudioBuffer(fewer, 2, 3, 0);  // a view on the very memory that it replaces
    EXPECT_EQ(Of(owner, 1), Samples(3, 2.0f));
}

// Red if a shorter block or a return to the full one allocates: the audio path resizes with the last chunk of a block.
TEST(AudioBuffer, ResizeReusesItsMemory) {
    AudioBuffer buffer(4, 64);
    buffer.Fill(1.0f);
    const long before = AllocationCount();
    buffer.Resize(4, 64);
    EXPECT_EQ(buffer.GetChannel(3)[63], 1.0f);
    buffer.Resize(4, 17);
    EXPECT_EQ(buffer.GetChannel(1), buffer.GetChannel(0) + 17);
    buffer.Resize(4, 64);
    EXPECT_EQ(AllocationCount(), before);
}

TEST(AudioBuffer, GainsOfExactlyZeroAndOneAreExact) {
    AudioBuffer buffer(1, 2);
    buffer.Fill(std::nanf(""));
    buffer.ApplyGain(0.0f);
    EXPECT_EQ(buffer.GetChannel(0)[1], 0.0f);
    buffer.Fill(-1.0f);
    EXPECT_TRUE(buffer.CheckSaturation());
    buffer.ApplyGain(0, 1.0000001f);
    EXPECT_FALSE(buffer.CheckSaturation());
}

// Red if the ramp ends one step early or late, if its length ignores the offsets, or if a single sample divides by 0.
TEST(AudioBuffer, RampsMeetBothEnds) {
    AudioBuffer twos(1, 5), target(1, 8);
    twos.Fill(2.0f);
    target.Fill(10.0f);
    target.CopyFromWithRamp(0, 1, twos, 0, 1, 0.0f, 1.5f);
    target.AddFromWithRamp(0, 1, twos, 0, 1, 0.5f, 2.0f);
    target.AddFromWithRamp(0, 7, twos, 0, 0, 1.0f, 2.0f);  // one sample takes the first gain
    target.CopyFrom(0, 8, twos, 0, 0, 1.0f);               // nothing remains behind the offset
    target.AddFrom(0, 9, twos, 0, 0, 1.0f);
    EXPECT_EQ(Of(target, 0), (Samples{10, 1, 3, 5, 7, 10, 10, 12}));
    twos.ApplyRamp(1.0f, 0.0f);
    EXPECT_EQ(Of(twos, 0), (Samples{2.0f, 1.5f, 1.0f, 0.5f, 0.0f}));
}

// Red if the first pass adds, a later one overwrites, or the two forms wrap alike.
TEST(AudioBuffer, MergeWrapsAround) {
    AudioBuffer two(2, 3);
    const auto heard = [&two](auto&& merge) {
        two.Fill(100.0f);
        merge();
        return Samples{two.GetChannel(0)[2], two.GetChannel(1)[2]};
    };
    const AudioBuffer eight = Filled(8, 3), one = Filled(1, 3);
    EXPECT_EQ(heard([&] { orvandsp::Merge(two, eight, 0.5f); }), (Samples{8, 10}));
    EXPECT_EQ(heard([&] { orvandsp::Merge(two, one, 1.0f); }), (Samples{1, 101}));
    EXPECT_EQ(heard([&] { two.MergeFrom(one, 1.0f); }), (Samples{1, 100}));
    EXPECT_EQ(heard([&] { two.MergeFrom(eight, 0.5f); }), (Samples{8, 10}));
}

TEST(AudioBuffer, MetersAndComparison) {
    AudioBuffer a(2, 4);
    a.Impulse();
    a.GetChannel(1)[3] = -2.0f;
    EXPECT_EQ(a.GetPeakValue(), 2.0f);
    EXPECT_EQ(orvandsp::GetChannelEnergy(a, 1), 5.0f);
    EXPECT_EQ(orvandsp::GetChannelRMS(a, 0), 0.5f);

    AudioBuffer b(a);
    EXPECT_TRUE(orvandsp::IsEqual(a, b, 0.0f));
    b.GetChannel(1)[2] = 0.25f;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(orvandsp::IsEqual(a, b, 0.125f));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "sample 2 differ (difference=0.25)\n");
    EXPECT_FALSE(orvandsp::IsEqual(a, AudioBuffer(2, 3), 1.0f));
    std::ostringstream text;
    text << Filled(1, 2);
    EXPECT_EQ(text.str(), "buffer[0][0] = 1\nbuffer[0][1] = 1\n");

    AudioBuffer noise(1, 20000);
    noise.FillWithNoise();
    EXPECT_NEAR(orvandsp::GetChannelRMS(noise, 0), 0.57735f, 0.02f);  // of a uniform distribution on [-1, 1]
    EXPECT_NEAR(orvandsp::MeanValue(noise.GetChannel(0), 20000), 0.0f, 0.02f);
    EXPECT_TRUE(noise.CheckSaturation());
}

}  // namespace
