#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <memory>
#include <numbers>
#include <vector>

#include "decoders/decoder.h"
#include "decoders/matrix/ltrt.h"
#include "dsp/hilbert_transform.h"
#include "filters/hl_shelf.h"
#include "filters/low_pass.h"
#include "support/channels.h"
#include "support/frequency_response.h"

namespace {

using Complex = std::complex<double>;

constexpr std::size_t responseLength = 32768;

/// The impulse responses of a block from one of its inputs to all outputs, with a quarter of a second of silence
/// before, so that every delay has come to rest.
std::vector<std::vector<float>> Responses(orvandsp::SignalProcessing& block, unsigned int input,
                                          float rate = 44100.0f) {
    block.Configure(rate, static_cast<unsigned int>(responseLength), true);
    Channels in(block.GetNumInputs(), responseLength, 0.0f), out(block.GetNumOutputs(), responseLength, 0.0f);
    for (const float impulse : {0.0f, 1.0f}) {
        in.data[input][0] = impulse;
        block.Process(out.pointers.data(), in.pointers.data(), responseLength, orvandsp::allActiveInputs);
    }
    return out.data;
}

std::unique_ptr<Lume::Decoder> Make(unsigned int numInputs, unsigned int numOutputs, Lume::Decoder::Type type) {
    return std::unique_ptr<Lume::Decoder>(
        Lume::Decoder::factory(numInputs, numOutputs, type, Lume::Decoder::nullSubType));
}

// The surround of both decoders is the difference, 15 ms later, and shelved; what both sides share never gets there.
TEST(MatrixDecoders, SurroundOfLtRtIsTheDelayedDifference) {
    for (const unsigned int numOutputs : {3u, 4u}) {
        const double gain = numOutputs == 3 ? std::sqrt(2.0 / 3.0) : std::sqrt(0.5);
        const float rate = numOutputs == 3 ? 48000.0f : 44100.0f;
        const auto decoder = Make(2, numOutputs, Lume::Decoder::surround);
        const auto left = Responses(*decoder, 0, rate), right = Responses(*decoder, 1, rate);
        EXPECT_NEAR(static_cast<double>(left[0][0]), gain, 1e-7);
        EXPECT_NEAR(static_cast<double>(right[numOutputs - 2][0]), gain, 1e-7);
        EXPECT_NEAR(static_cast<double>(left[1][0]), numOutputs == 4 ? gain * std::sqrt(0.5) : 0.0, 1e-7);
        std::vector<float> const& surround = left[numOutputs - 1];
        for (std::size_t n = 0; n < responseLength; ++n)
            ASSERT_NEAR(surround[n], -right[numOutputs - 1][n], 1e-8f) << n;
        const auto first = std::find_if(surround.begin(), surround.end(), [](float x) { return x != 0.0f; });
        EXPECT_NEAR(static_cast<double>(first - surround.begin()), 0.015 * static_cast<double>(rate), 2.0);
        EXPECT_GT(*first, 0.0f);  // left less right
        // -3 dB overall, -18 dB below 35 Hz, -5 dB above 2 kHz, and the low-pass at 7 kHz.
        const double plain = 20.0 * std::log10(gain);
        EXPECT_NEAR(GainDbAt(surround, 0.0), plain - 21.0, 0.1);
        EXPECT_NEAR(GainDbAt(surround, 300.0 / static_cast<double>(rate)), plain - 3.0, 0.7);
        EXPECT_NEAR(GainDbAt(surround, 7000.0 / static_cast<double>(rate)), plain - 3.0 - 5.0 - 3.0, 1.0);
    }
}

// The encoder's allpass networks: front and surround 90 degrees apart within 1.5 degrees from 80 Hz to 12 kHz at
// 44.1 kHz (measured: 1.1), without a change of level, and the surround in both channels in opposite phase.
TEST(LtRt, SurroundStandsNinetyDegreesOffTheFront) {
    for (const auto format : {Lume::LtRt::LRS, Lume::LtRt::LCRS}) {
        Lume::LtRt encoder(format);
        const unsigned int last = encoder.GetNumInputs() - 1;
        const auto left = Responses(encoder, 0), right = Responses(encoder, last - 1), rear = Responses(encoder, last);

        Lume::HLShelf shelf;
        shelf.SetAll(0.0f, -18.0f, 0.0f, 5.0f, 35.0f, 2000.0f);
        Lume::LowPass lowPass(7000.0f, std::numbers::sqrt2_v<float>);
        std::vector<float> tone(responseLength, 0.0f);
        tone[0] = 1.0f;
        shelf.Process(tone.data(), tone.data(), responseLength);
        lowPass.Process(tone.data(), tone.data(), responseLength);

        EXPECT_EQ(left[1], std::vector<float>(responseLength, 0.0f));
        EXPECT_EQ(left[0], right[1]);
        for (const double f : {80.0, 120.0, 200.0, 400.0, 1000.0, 2500.0, 5000.0, 8000.0, 12000.0}) {
            const Complex front = ResponseAt(left[0], f / 44100.0);
            const Complex ratio = ResponseAt(rear[0], f / 44100.0) / ResponseAt(tone, f / 44100.0) / front;
            EXPECT_NEAR(std::abs(front), 1.0, 2e-4) << f;
            EXPECT_NEAR(std::abs(ratio), std::sqrt(0.5), 2e-4) << f;
            EXPECT_NEAR(std::arg(ratio) * 180.0 / std::numbers::pi, 90.0, 1.5) << f;
            EXPECT_LT(std::abs(ResponseAt(rear[0], f / 44100.0) + ResponseAt(rear[1], f / 44100.0)), 1e-5) << f;
        }
        if (format == Lume::LtRt::LRS) continue;
        // The centre enters both sides alike, and so no decoder's surround.
        const auto centre = Responses(encoder, 1);
        EXPECT_EQ(centre[0], centre[1]);
        EXPECT_NEAR(std::abs(ResponseAt(centre[0], 0.02)), std::sqrt(0.5), 1e-3);
    }
}

// With Y in the phase of the others, the equations of the format's author bring every horizontal direction back: what
// is left is what the gains that act twice cost.
TEST(Uhj, EncodesForOtherDecodersOnceYIsAligned) {
    orvandsp::HilbertTransform hilbert;
    const auto aligned = Responses(hilbert, 0)[0];
    const auto encoder = Make(3, 3, Lume::Decoder::bformat2uhj);
    const auto fromW = Responses(*encoder, 0), fromX = Responses(*encoder, 1), fromY = Responses(*encoder, 2);
    const Complex j(0.0, 1.0);
    for (const double f : {50.0, 300.0, 1000.0, 3000.0, 9000.0}) {
        const double at = f / 44100.0;
        Complex ofW[3], ofX[3], ofY[3];
        for (std::size_t i = 0; i < 3; ++i) {
            ofW[i] = ResponseAt(fromW[i], at);
            ofX[i] = ResponseAt(fromX[i], at);
            ofY[i] = ResponseAt(fromY[i], at) * ResponseAt(aligned, at);
        }
        for (int azimuth = -180; azimuth < 180; azimuth += 15) {
            SCOPED_TRACE(testing::Message() << f << " Hz, " << azimuth << " degrees");
            const double angle = azimuth * std::numbers::pi / 180.0;
            Complex uhj[3];
            for (std::size_t i = 0; i < 3; ++i)
                uhj[i] = std::sqrt(0.5) * ofW[i] + std::cos(angle) * ofX[i] + std::sin(angle) * ofY[i];
            const Complex sum = uhj[0] + uhj[1], difference = uhj[0] - uhj[1], t = uhj[2];
            const auto degreesOff = [&](Complex w, Complex x, Complex y) {
                const double heard = std::atan2(std::real(y * std::conj(w)), std::real(x * std::conj(w)));
                return std::abs(std::remainder(heard - angle, 2.0 * std::numbers::pi)) * 180.0 / std::numbers::pi;
            };
            EXPECT_LT(degreesOff(0.982 * sum + 0.164 * j * difference, 0.419 * sum - 0.828 * j * difference,
                                 0.763 * difference + 0.385 * j * sum),
                      6.5);
            const Complex side = j * (0.828 * difference + 0.768 * t);
            EXPECT_LT(degreesOff(0.982 * sum + 0.197 * side, 0.419 * sum - side,
                                 0.796 * difference - 0.676 * t + 0.187 * j * sum),
                      3.0);
        }
    }
}

TEST(Uhj, InactiveInputsSilence) {
    const auto encoder = Make(4, 2, Lume::Decoder::bformat2uhj), decoder = Make(3, 3, Lume::Decoder::uhj2bformat);
    for (auto* block : {encoder.get(), decoder.get()})
        for (unsigned int inactive = 0; inactive < block->GetNumInputs(); ++inactive) {
            block->Configure(48000.0f, 64, true);
            Channels in(4, 64, 1.0f), out(3, 64, 9.0f);
            short active[] = {1, 1, 1, 1};
            active[inactive] = 0;
            block->Process(out.pointers.data(), in.pointers.data(), 64, active);
            const unsigned int numNeeded = block == encoder.get() ? 3 : 2;
            EXPECT_EQ(out.data[0] == std::vector<float>(64, 0.0f), inactive < numNeeded) << inactive;
        }
}

}  // namespace
