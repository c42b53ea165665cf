#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

#include "reverb/reverb.h"
#include "support/signals.h"

// The late field once more, one channel and one sample after the other, with its operations in the order that makes its
// bits. Whatever the real one does to be fast, it must come to the same.

namespace {

/// Volatile, so that the compiler, whose tangent may differ from the C library's in the last digit, leaves it alone.
volatile const float rate = 44100.0f;
constexpr int ringSize = 16384;  // what 300 ms and the margins of a few configurations round up to
using Channels = std::vector<std::vector<float>>;

float Linear(float dB) {
    return std::pow(10.0f, dB * 0.05f);
}

struct PlainShelf {
    void Design(float low, float medium, float high, float freqLow, float freqHigh) {
        const float r1 = Linear(low - medium), r2 = Linear(medium - high);
        const float t1 = std::tan((3.1415927f / rate) * freqLow) / std::sqrt(r1);
        const float t2 = std::tan((3.1415927f / rate) * freqHigh) / std::sqrt(r2);
        const float p1 = (t1 - 1.0f) / (1.0f + t1), p2 = (t2 - 1.0f) / (1.0f + t2);
        const float z1 = (r1 * t1 - 1.0f) / (1.0f + r1 * t1), z2 = (r2 * t2 - 1.0f) / (1.0f + r2 * t2);
        const float k1 = (1.0f + r1 * t1) / (1.0f + t1), k2 = (1.0f + r2 * t2) / (1.0f + t2);
        b0 = k1 * k2 * Linear(high);
        b1 = (z2 + z1) * b0;
        b2 = b0 * (z2 * z1);
        a1 = p2 + p1;
        a2 = p2 * p1;
    }
    float operator()(float x) {
        const float y = b1 * x1 + b2 * x2 + b0 * x - a2 * y2 - a1 * y1;
        x2 = x1, x1 = x, y2 = y1, y1 = y;
        return y;
    }
    float b0, b1, b2, a1, a2, x1 = 0.0f, x2 = 0.0f, y1 = 0.0f, y2 = 0.0f;
};

struct PlainLateField {
    struct Line {
        float ms;
        PlainShelf absorbent, air;
        std::vector<float> ring = std::vector<float>(ringSize);
        float lastRead = 0.0f;
    };

    explicit PlainLateField(std::vector<float> const& ms) : lines(ms.size()), n(static_cast<float>(ms.size())) {
        for (std::size_t i = 0; i < ms.size(); ++i) lines[i].ms = ms[i];
        gain.Start(1.0f, 0.0f);
    }

    void SetDecay(float seconds, float relativeHigh) {
        const float base = std::pow(10.0f, -0.006f / seconds);
        float sum = 0.0f;
        for (Line& line : lines) {
            const float d = 1000.0f * (line.ms * rate * 0.001f) / rate * 0.001f;
            const float loss = -60.0f * (1.0f / seconds) * d;
            line.absorbent.Design(loss, loss, loss * (1.0f / relativeHigh), 250.0f, 8000.0f);
            const float airLoss = 10.0f * 10.0f * -0.0019999999f * (340.0f * d);
            line.air.Design(0.0f, airLoss * 0.001f, airLoss, 0.03162278f * 10000.0f, 10000.0f);
            sum += std::pow(base, d * 1000.0f);
        }
        gain.Start(std::sqrt(n / sum - 1.0f), 30.0f);
    }

    /// Replaces `length` samples from `first` on.
    void Process(Channels& signal, std::size_t first, int length) {
        for (int chunk; length > 0; length -= chunk, first += static_cast<std::size_t>(chunk)) {
            chunk = std::min(length, 64);
            const float g = gain.Advance(static_cast<unsigned long>(chunk));
            Channels mixed(lines.size());
            for (std::size_t c = 0; c < lines.size(); ++c)
                for (std::size_t k = first; k < first + static_cast<std::size_t>(chunk); ++k) {
                    const float heard = Read(lines[c], static_cast<int>(k - first));
                    mixed[c].push_back(heard + g * signal[c][k]);
                    signal[c][k] = 1.0f / g * heard;
                }
            written = (written + chunk) % ringSize;
            for (int k = 0; k < chunk; ++k) {
                std::vector<float> frame;
                for (std::vector<float> const& channel : mixed) frame.push_back(channel[static_cast<std::size_t>(k)]);
                Mix(frame);
                const std::vector<unsigned int> order =
                    Lume::Shuffle::GetPermutationForChannels(static_cast<unsigned int>(lines.size()));
                for (std::size_t c = 0; c < lines.size(); ++c)
                    lines[c].ring[static_cast<std::size_t>((written + k) % ringSize)] = frame[order[c]];
            }
        }
    }

    float Read(Line& line, int k) {
        const float position = static_cast<float>(written) + static_cast<float>(ringSize) - line.ms * rate * 0.001f;
        const float fraction = position - std::floor(position);
        const auto at = [&](int i) { return line.ring[static_cast<std::size_t>(i % ringSize)]; };
        const int index = static_cast<int>(position) + k;
        const float p = 1.0f - fraction;
        line.lastRead = (1.0f - p) / (p + 1.0f) * (at(index + 1) - line.lastRead) + at(index);
        return line.air(line.absorbent(line.lastRead));
    }

    void Mix(std::vector<float>& x) const {
        const bool isPower = std::has_single_bit(x.size());
        if (!isPower && x.size() != 12) {
            float sum = x[0];
            for (std::size_t i = 1; i < x.size(); ++i) sum += x[i];
            for (float& sample : x) sample += sum * (-2.0f / n);
            return;
        }
        const std::size_t order = isPower ? x.size() : 4;
        for (std::size_t half = order / 2; half > 0; half /= 2)
            for (std::size_t i = 0; i < x.size(); ++i)
                if (i % (2 * half) < half) {
                    const float a = x[i], b = x[i + half];
                    x[i] = a + b;
                    x[i + half] = a - b;
                }
        for (float& sample : x) sample *= isPower ? 1.0f / std::sqrt(n) : 0.5f;
    }

    std::vector<Line> lines;
    orvandsp::Ramp gain;
    int written = 0;
    float n;
};

// Red for another order of operations in the read, the filters or the mixing, for a state that a chunk forgets, and for
// a gain, a chunk or a loop that is off by one.
TEST(Reverb, ComesToTheBitsOfThePlainForm) {
    for (const std::size_t numChannels : {6u, 8u, 12u}) {
        std::vector<float> delays;
        for (std::size_t i = 0; i < numChannels; ++i) delays.push_back(2.1f + 7.77f * static_cast<float>(i));
        const std::unique_ptr<Lume::Reverb> reverb(Lume::Reverb::Create(static_cast<unsigned int>(numChannels), rate));
        reverb->SetDelays(delays.data());
        PlainLateField plain(delays);
        plain.SetDecay(1.995f, 0.5f);

        Channels actual;
        for (std::uint32_t c = 0; c < numChannels; ++c) actual.push_back(MakeNoise(c, 20000));
        Channels expected = actual;
        std::size_t first = 0;
        // Long enough for the rings to wrap, whole chunks and parts of them.
        for (const int length : {64, 1, 63, 512, 65, 7, 300, 512, 5000, 448, 6000, 512, 4000}) {
            if (length == 448) {
                Lume::ReverbDspParameters parameters;
                parameters.decayTime = 1.2f;
                parameters.relativeDecayHigh = 0.3f;
                reverb->SetParameters(parameters);
                plain.SetDecay(1.2f, 0.3f);
            }
            std::vector<float*> channels;
            for (std::vector<float>& channel : actual) channels.push_back(channel.data() + first);
            reverb->Process(channels.data(), channels.data(), static_cast<unsigned long>(length), nullptr);
            plain.Process(expected, first, length);
            for (std::size_t c = 0; c < numChannels; ++c)
                for (std::size_t k = first; k < first + static_cast<std::size_t>(length); ++k)
                    ASSERT_EQ(std::bit_cast<std::uint32_t>(actual[c][k]), std::bit_cast<std::uint32_t>(expected[c][k]))
                        << numChannels << " channels, channel " << c << ", sample " << k;
            first += static_cast<std::size_t>(length);
        }
    }
}

}  // namespace
