#include "mix/signal_matrix.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "pan/panning_support.h"

namespace {

using Lume::SignalMatrix;
using orvandsp::Matrix;

constexpr std::size_t cycle = 1323;  // 30 ms at 44.1 kHz

/// What the mixer makes of steady inputs, input i holding 10^i: each digit of an output is one gain.
std::vector<float> Outputs(SignalMatrix& mixer, std::size_t samples) {
    Channels in(mixer.GetNumInputs(), samples, 1.0f), out(mixer.GetNumOutputs(), samples, 0.0f);
    if (in.data.size() > 1) std::fill_n(in.pointers[1], samples, 10.0f);
    mixer.Process(out.pointers.data(), in.pointers.data(), samples, orvandsp::allActiveInputs);
    std::vector<float> last;
    for (auto const& channel : out.data) last.push_back(channel.back());
    return last;
}

// Red if rows and columns change places, if a setter reaches other elements, or if a row stops at its own end.
TEST(SignalMatrix, EachSetterReachesItsElements) {
    const std::vector<float> all = {1, 2, 3, 4, 5, 6};
    Matrix<float> matrix(2, 3, 0.0f);
    for (unsigned int i = 0; i < 6; ++i) matrix[i / 3][i % 3] = all[i];
    const auto heard = [](auto&& set) {
        SignalMatrix mixer(2, 3);
        mixer.SetGains(7.0f);
        set(mixer);
        Outputs(mixer, cycle);
        return Outputs(mixer, cycle + 1);
    };
    using Heard = std::vector<float>;
    EXPECT_EQ(heard([](SignalMatrix&) {}), (Heard{77, 77, 77}));
    EXPECT_EQ(heard([&](SignalMatrix& m) { m.SetGains(all.data()); }), (Heard{41, 52, 63}));
    EXPECT_EQ(heard([&](SignalMatrix& m) { m.SetGains(matrix); }), (Heard{41, 52, 63}));
    EXPECT_EQ(heard([&](SignalMatrix& m) { m.SetGain(1, 2, 5.0f); }), (Heard{77, 77, 57}));
    EXPECT_EQ(heard([&](SignalMatrix& m) { m.SetColumnGains(1, all.data()); }), (Heard{77, 21, 77}));
    EXPECT_EQ(heard([&](SignalMatrix& m) { m.SetRowGains(0, all.data()); }), (Heard{41, 52, 63}));
    EXPECT_EQ(heard([&](SignalMatrix& m) { m.SetRowGains(1, all.data()); }), (Heard{17, 27, 37}));
    EXPECT_EQ(heard([&](SignalMatrix& m) { m.SetRowGains(2, nullptr); }), (Heard{77, 77, 77}));
}

// Red if the ramp's time is kept in samples, if its elapsed part is lost, or if a ramp of no length stops the mixing.
TEST(SignalMatrix, RampTimeFollowsTheSampleRate) {
    SignalMatrix mixer(1, 1);
    mixer.SetRampTime(10.0f);
    mixer.SetGains(1.0f);
    Outputs(mixer, 341);
    mixer.SetSamplerate(88200.0f);
    mixer.SetMaxBlockSize(1);
    mixer.Clear();
    EXPECT_EQ(Outputs(mixer, 200)[0], 0.0f);
    EXPECT_LT(Outputs(mixer, 881)[0], 1.0f);
    EXPECT_EQ(Outputs(mixer, 2)[0], 1.0f);
    mixer.SetRampTime(0.0f);
    mixer.SetGains(3.0f);
    EXPECT_EQ(Outputs(mixer, 4)[0], 3.0f);
}

}  // namespace
