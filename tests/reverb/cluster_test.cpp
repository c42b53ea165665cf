#include "reverb/cluster.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/allocation_count.h"
#include "support/channels.h"
#include "support/signals.h"

namespace {

/// What a signal in channel 0 becomes.
std::vector<std::vector<float>> Heard(Lume::Cluster& cluster, std::vector<float> const& signal) {
    Channels in(cluster.GetNumDelays(), signal.size(), 0.0f);
    in[0] = signal;
    in.pointers[0] = in[0].data();
    return Processed(cluster, in, cluster.GetNumDelays()).data;
}

// Ground truth: the mixing matrix at 0 Hz, the energy of an orthogonal matrix and allpass delays, and the group delay
// at 0 Hz, which an allpass reader meets exactly. Red if mixing comes after delaying (the delays would be those of the
// inputs), if the order of channels differs, or if the reader isn't an allpass.
TEST(Cluster, ImpulseIsMixedAndThenDelayedPerChannel) {
    for (const unsigned int n : {2u, 6u, 8u}) {
        Lume::Cluster cluster(n, 44100.0f);
        cluster.Configure(48000.0f, 64, true);
        std::vector<float> delays;
        for (unsigned int i = 0; i < n; ++i) delays.push_back(30.0f + 11.3f * static_cast<float>((i * 5) % n));
        cluster.SetDelays(delays.data());
        Heard(cluster, std::vector<float>(64 * 200, 0.0f));
        const auto out = Heard(cluster, MakeImpulse(64 * 128));

        double energy = 0.0;
        for (unsigned int i = 0; i < n; ++i) {
            double sum = 0.0, moment = 0.0;
            for (std::size_t k = 0; k < out[i].size(); ++k) {
                const auto h = static_cast<double>(out[i][k]);
                energy += h * h;
                sum += h;
                moment += h * static_cast<double>(k);
            }
            // Channel 0 of a Hadamard matrix is all ones; the reflection keeps 2/3 in the channel that the permutation
            // moves to the end.
            const double gain = n == 6 ? (i == 5 ? 2.0 / 3.0 : -1.0 / 3.0) : 1.0 / std::sqrt(n);
            EXPECT_NEAR(sum, gain, 1e-5) << n << " channels, " << i;
            // A glide ends up to 0.6 samples beside its target at this rate.
            EXPECT_NEAR(moment / sum, static_cast<double>(delays[i]) * 48.0, 0.6) << n << " channels, " << i;
        }
        EXPECT_NEAR(energy, 1.0, 2e-3) << n;  // the fraction moves a little with the write position's rounding
    }
}

TEST(Cluster, DefaultDelaysAreSpreadEvenlyAndFewChannelsRefusedByCreate) {
    Lume::Cluster pair(2, 44100.0f);
    float delays[4];
    pair.GetDelays(delays);
    EXPECT_NEAR(delays[0], 20.0f, 1e-4f);
    EXPECT_NEAR(delays[1], 80.0f, 1e-4f);
    EXPECT_EQ(Lume::Cluster::Create(2, 44100.0f), nullptr);
    Lume::Cluster* const four = Lume::Cluster::Create(4, 44100.0f);
    four->GetDelays(delays);
    EXPECT_NEAR(delays[1], 40.0f, 1e-4f);
    Lume::Cluster::DeleteCluster(four);
}

}  // namespace
