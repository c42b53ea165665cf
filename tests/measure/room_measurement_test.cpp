#include "measure/room_measurement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <random>
#include <utility>

#include "measure/correlation.h"
#include "measure/reflections.h"
#include "room/room.h"
#include "support/signals.h"

namespace {

using namespace orvanmeasure;

constexpr double sampleRate = 48000.0;
const double perSecond = std::log(1e6);  // energy of a decay: exp(-perSecond t / T)

using Response = std::vector<std::vector<float>>;

RoomMeasurement MeasureAll(Response const& response, BandWidth width = BandWidth::octave) {
    const std::vector<std::span<float const>> channels(response.begin(), response.end());
    return Measure(channels, sampleRate, width);
}

/// The energy of a band over time [Hz, s].
using Law = std::function<double(double, double)>;

/// A decay that begins softly, within 40 ms, so that all of it lies within the band: an abrupt start would click.
Law SoftDecay(std::function<double(double)> const& decaySeconds) {
    return [=](double hertz, double time) {
        const double rise = time < 0.04 ? 0.5 - 0.5 * std::cos(std::numbers::pi * time / 0.04) : 1.0;
        return rise * rise * std::exp(-perSecond * time / decaySeconds(hertz));
    };
}

/// One tone in the middle of each octave or third: its energy follows the law exactly, as that of noise does on average
/// only.
std::vector<float> Tones(double seconds, double startSeconds, Law const& energy, BandWidth width = BandWidth::octave) {
    std::vector<float> response(static_cast<std::size_t>((startSeconds + seconds) * sampleRate), 0.0f);
    const auto start = static_cast<std::size_t>(startSeconds * sampleRate);
    for (Band const& band : Bands(width, sampleRate))
        for (std::size_t n = start; n < response.size(); ++n) {
            const double time = static_cast<double>(n - start) / sampleRate;
            response[n] += static_cast<float>(0.1 * std::sqrt(energy(band.centreHz, time)) *
                                              std::cos(2.0 * std::numbers::pi * band.centreHz * time));
        }
    return response;
}

/// Figures from the law itself, without any filter: sums over its samples, and lines through the curve that they make.
struct Expected {
    Expected(Law const& energy, double hertz, double directSeconds)
        : remaining(static_cast<std::size_t>(6.0 * sampleRate)) {
        double sum = 0.0, weighted = 0.0;
        for (std::size_t n = remaining.size(); n-- > 0;) {
            const double time = static_cast<double>(n) / sampleRate;
            const double value = energy(hertz, time);
            sum += value;
            weighted += value * (time - directSeconds);
            if (time >= directSeconds) remaining[n] = sum;
        }
        direct = static_cast<std::size_t>(directSeconds * sampleRate);
        total = sum;
        centreSeconds = weighted / sum;
    }
    double ShareAfter(double seconds) const {
        return remaining[direct + static_cast<std::size_t>(seconds * sampleRate)] / total;
    }
    double EarlyToLateDb(double seconds) const { return 10.0 * std::log10(1.0 / ShareAfter(seconds) - 1.0); }
    double DecayBetween(double upperDb, double lowerDb) const {
        double count = 0.0, x = 0.0, y = 0.0, xx = 0.0, xy = 0.0;
        for (std::size_t n = direct; n < remaining.size(); ++n) {
            const double level = 10.0 * std::log10(remaining[n] / total),
                         time = static_cast<double>(n - direct) / sampleRate;
            if (level > upperDb || level < lowerDb) continue;
            count += 1.0, x += time, y += level, xx += time * time, xy += time * level;
        }
        return -60.0 * (count * xx - x * x) / (count * xy - x * y);
    }

    std::vector<double> remaining;
    std::size_t direct;
    double total, centreSeconds;
};

void AddNoise(std::vector<float>& response, double level, unsigned int seed) {
    std::mt19937 generator(seed);
    std::normal_distribution<double> normal(0.0, level);
    for (float& value : response) value += static_cast<float>(normal(generator));
}

void ExpectWithin(double value, double wanted, double share, std::string const& what) {
    EXPECT_NEAR(value, wanted, share * wanted) << what;
}

void ExpectFigures(RoomMeasurement const& result, Law const& energy, double startSeconds) {
    ASSERT_TRUE(result.direct);
    for (BandFigures const& band : result.bands) {
        SCOPED_TRACE(band.band.name + " Hz");
        const Expected expected(energy, band.band.centreHz,
                                static_cast<double>(result.direct->sample) / sampleRate - startSeconds);
        ExpectWithin(band.t20.seconds.value, expected.DecayBetween(-5.0, -25.0), 0.01, "T20");
        ExpectWithin(band.t30.seconds.value, expected.DecayBetween(-5.0, -35.0), 0.01, "T30");
        if (WhyInexact(band.edt, band, -10.0).empty())
            ExpectWithin(band.edt.seconds.value, expected.DecayBetween(0.0, -10.0), 0.01, "EDT");
        if (!WhyInexact(0.05, band).empty()) continue;
        EXPECT_NEAR(band.c50Db.value, expected.EarlyToLateDb(0.05), 0.1);
        EXPECT_NEAR(band.c80Db.value, expected.EarlyToLateDb(0.08), 0.1);
        EXPECT_NEAR(band.d50.value, 1.0 - expected.ShareAfter(0.05), 0.01);
        EXPECT_NEAR(band.centreSeconds.value, expected.centreSeconds, 0.001);
    }
}

// Red if a fit takes another part of the curve, if energy before the direct sound is lost, if a filter's delay gets
// into shares or centre, or if a band sees its neighbour, which sounds longer.
TEST(Measure, TellsTheFiguresOfKnownDecays) {
    const Law energy = SoftDecay([](double hertz) { return hertz < 200.0 ? 2.4 : hertz < 3000.0 ? 1.6 : 0.8; });
    const RoomMeasurement result = MeasureAll({Tones(3.0, 0.1, energy)});
    ExpectFigures(result, energy, 0.1);
    ExpectWithin(result.Mid(&BandFigures::t30).value, 1.6, 0.01, "mid");
    for (BandFigures const& band : result.bands) EXPECT_GT(band.t30.correlation, 0.9999) << band.band.name;
}

// Red if noise isn't subtracted, if the decay behind the crosspoint isn't added, or if the crosspoint is off.
TEST(Measure, SeesADecayAboveNoise) {
    for (unsigned int seed = 1; seed <= 3; ++seed) {
        const Law energy = SoftDecay([](double) { return 1.5; });
        std::vector<float> response = Tones(3.0, 0.0, energy);
        constexpr double level = 0.002;  // in the octaves 58 (63 Hz) to 34 dB (16 kHz) below the tones
        AddNoise(response, level, seed);
        const RoomMeasurement result = MeasureAll({response});
        const Expected expected(energy, 1000.0, static_cast<double>(result.direct->sample) / sampleRate);
        for (BandFigures const& band : result.bands) {
            const double noise = level * level * 2.0 * band.band.WidthHz() / sampleRate;
            const double rangeDb = 10.0 * std::log10(0.005 / noise);
            SCOPED_TRACE(band.band.name + " Hz, " + std::to_string(rangeDb) + " dB, seed " + std::to_string(seed));
            EXPECT_TRUE(band.floor.found);
            EXPECT_NEAR(-band.endDb, rangeDb, 2.5);
            if (band.band.name == "63") {
                EXPECT_NE(WhyInexact(band.t30, band, -35.0).find("noise"), std::string::npos);
            }
            if (band.band.name == "1000") {
                EXPECT_EQ(WhyInexact(band.t20, band, -25.0), "");
            }
            for (auto const& [fit, lowerDb] : {std::pair{band.t20, -25.0}, {band.t30, -35.0}})
                if (fit.seconds.IsThere())
                    ExpectWithin(fit.seconds.value, 1.5, WhyInexact(fit, band, lowerDb).empty() ? 0.01 : 0.03, "T");
            if (rangeDb < 42.0) {
                EXPECT_EQ(band.t30.seconds.missing, Missing::noRange);
                EXPECT_NE(WhyMissing(band.t30.seconds, band, -35.0).find("noise begins"), std::string::npos);
            }
            ExpectWithin(band.edt.seconds.value, expected.DecayBetween(0.0, -10.0), 0.01, "EDT");
            EXPECT_NEAR(band.c80Db.value, expected.EarlyToLateDb(0.08), 0.1);
            EXPECT_NEAR(band.centreSeconds.value, expected.centreSeconds, 0.002);
        }
    }
}

// Red if a response that was cut counts as one with noise: its own end would be subtracted from it. In thirds also red
// if the end, where the filter rises, counts: 50 to 125 Hz then have a T30 that is 4 % too short.
TEST(Measure, CompletesADecayThatWasCut) {
    for (const BandWidth width : {BandWidth::octave, BandWidth::third}) {
        const auto measure = [&](double seconds) {
            const Law energy = SoftDecay([](double) { return 2.0; });
            return MeasureAll({Tones(seconds, 0.0, energy, width)}, width).bands;
        };
        for (BandFigures const& band : measure(1.7)) {  // to -51 dB
            EXPECT_FALSE(band.floor.found) << band.band.name;
            ExpectWithin(band.t30.seconds.value, 2.0, 0.01, band.band.name);
        }
        for (BandFigures const& band : measure(1.3)) {  // to -39 dB
            EXPECT_EQ(band.t30.seconds.missing, Missing::noRange) << band.band.name;
            ExpectWithin(band.t20.seconds.value, 2.0, 0.01, band.band.name);
        }
    }
}

// Between the direct sound of a room and its first reflection there is next to nothing, and no noise behind its end:
// red if that gap is taken for where the decay meets the noise.
TEST(Measure, LooksPastTheGapBehindTheDirectSound) {
    Lume::Room room(1, 2);
    for (auto const& [name, value] : {std::pair{"tr0", 0.847f}, {"trh", 0.812f}, {"modaldensity", 1.092f}})
        room.Set(Lume::FindControl(name).value(), value);
    room.PlaceSource(0, {-1.1f, -1.83f, 0.98f});
    room.Configure(static_cast<float>(sampleRate), 64, 64);
    room.Settle();
    Response response(2, std::vector<float>(60992)), impulse(1, std::vector<float>(60992));
    impulse[0][0] = 1.0f;
    float* const outputs[] = {response[0].data(), response[1].data()};
    float const* const inputs[] = {impulse[0].data()};
    room.Process(outputs, inputs, impulse[0].size());
    for (BandFigures const& band : MeasureAll(response).bands)
        if (band.band.centreHz > 400.0 && band.band.centreHz < 3000.0) {
            ASSERT_TRUE(band.t30.seconds.IsThere()) << band.band.name;
            EXPECT_NEAR(band.t30.seconds.value, 0.847, 0.06) << band.band.name;
        }
}

// Red if the curve loses its late part, which is 20 dB weaker, or if nothing is said where a third rounds the bend.
TEST(Measure, FollowsADoubleSlope) {
    const Law first = SoftDecay([](double) { return 0.8; }), second = SoftDecay([](double) { return 2.5; });
    const Law energy = [&](double hertz, double time) { return first(hertz, time) + 0.01 * second(hertz, time); };
    const RoomMeasurement result = MeasureAll({Tones(4.0, 0.0, energy)});
    ExpectFigures(result, energy, 0.0);
    for (BandFigures const& band : result.bands) EXPECT_LT(band.t30.correlation, 0.995) << band.band.name;
    const RoomMeasurement thirds = MeasureAll({Tones(4.0, 0.0, energy, BandWidth::third)}, BandWidth::third);
    const Expected expected(energy, 1000.0, static_cast<double>(thirds.direct->sample) / sampleRate);
    for (BandFigures const& band : thirds.bands) {
        EXPECT_EQ(WhyInexact(band.t30, band, -35.0).empty(), band.band.centreHz > 180.0) << band.band.name;
        if (WhyInexact(band.t30, band, -35.0).empty())
            ExpectWithin(band.t30.seconds.value, expected.DecayBetween(-5.0, -35.0), 0.01, band.band.name);
    }
}

// Noise that decays, as in a real room: statistics allow a deviation of 0.55 sqrt(1 / (B T)) for one channel.
TEST(Measure, TellsDecayingNoiseToWhatStatisticsAllow) {
    constexpr double decay = 1.0;
    constexpr std::size_t channels = 12;
    Response response;
    for (unsigned int seed = 1; seed <= channels; ++seed) {
        response.push_back(std::vector<float>(static_cast<std::size_t>(1.5 * sampleRate)));
        AddNoise(response.back(), 1.0, seed);
        for (std::size_t n = 0; n < response.back().size(); ++n)
            response.back()[n] *=
                static_cast<float>(std::exp(-0.5 * perSecond * static_cast<double>(n) / sampleRate / decay));
    }
    const RoomMeasurement result = MeasureAll(response);
    for (BandFigures const& band : result.bands) {
        const double deviation = 0.55 / std::sqrt(band.band.WidthHz() * decay * channels);
        ExpectWithin(band.t30.seconds.value, decay, 0.003 + 3.0 * deviation, band.band.name);
    }
    for (ChannelPair const& pair : result.neighbours) EXPECT_LT(std::abs(pair.correlation), 0.05);
    EXPECT_EQ(result.neighbours.size(), channels);
}

// Red if a band tells a decay that is its filter's own without a word, or calls one inexact that isn't: tones of one
// phase after the other, as so short a one has few periods.
TEST(Measure, SaysWhereABandIsTooNarrowForADecay) {
    constexpr double exactWidths = 8.0;
    for (const BandWidth width : {BandWidth::octave, BandWidth::third})
        for (Band const& band : Bands(width, 12000.0))  // higher up such a decay has too few samples
            for (const double widths : {3.0, 7.0, 1.05 * exactWidths}) {
                const double decay = widths / band.WidthHz();
                std::vector<float> response(static_cast<std::size_t>(2.2 * decay * sampleRate) + 2400);
                for (std::size_t n = 2400; n < response.size(); ++n) {
                    const double time = static_cast<double>(n - 2400) / sampleRate;
                    response[n] = static_cast<float>(
                        std::exp(-0.5 * perSecond * time / decay) *
                        std::cos(2.0 * std::numbers::pi * band.centreHz * time + std::fmod(band.centreHz, 3.0)));
                }
                for (BandFigures const& figures : MeasureAll({response}, width).bands) {
                    if (figures.band.name != band.name) continue;
                    SCOPED_TRACE(band.name + " Hz, widths " + std::to_string(widths));
                    const std::string why = WhyInexact(figures.t30, figures, -35.0);
                    EXPECT_NE(WhyInexact(figures.edt, figures, -10.0), "");
                    EXPECT_EQ(why.find("that of the band's filter") != std::string::npos, widths < 3.5) << why;
                    EXPECT_EQ(why.empty(), widths > exactWidths) << why << figures.t30.seconds.value / decay;
                    if (widths < exactWidths) continue;
                    ExpectWithin(figures.t20.seconds.value, decay, 0.01, "T20");
                    ExpectWithin(figures.t30.seconds.value, decay, 0.01, "T30");
                }
            }
}

TEST(Measure, SaysWhyAFigureIsMissing) {
    EXPECT_FALSE(MeasureAll({std::vector<float>(4800, 0.0f)}).direct);

    const RoomMeasurement click = MeasureAll({MakeImpulse(48000, 480)});
    EXPECT_EQ(click.direct->sample, 480u);
    EXPECT_EQ(click.whole.t30.seconds.missing, Missing::noDecay);
    EXPECT_EQ(click.whole.c80Db.missing, Missing::nothingLate);
    EXPECT_EQ(click.whole.d50.value, 1.0);
    // At the end of a response a filter without delay rings on beyond it.
    for (BandFigures const& band : MeasureAll({MakeImpulse(4800, 4790)}).bands) {
        EXPECT_NEAR(band.centreSeconds.value, 0.0, 1e-4) << band.band.name;
    }

    std::vector<float> steady(96000);
    AddNoise(steady, 0.1, 1);
    for (BandFigures const& band : MeasureAll({steady}).bands)
        EXPECT_FALSE(band.t20.seconds.IsThere()) << band.band.name << " " << band.t20.seconds.value;
}

// Red if a shift of the ears isn't looked for, or if early and late change places.
TEST(Measure, TellsHowAlikeTheEarsAre) {
    std::vector<float> left = MakeNoise(1, 48000), right = MakeNoise(2, 48000);
    for (std::size_t n = 24; n < 3840; ++n) right[n] = left[n - 24];  // half a millisecond later, up to 80 ms
    for (std::size_t n = 0; n < left.size(); ++n) {
        const auto fall = static_cast<float>(std::exp(-0.5 * perSecond * static_cast<double>(n) / sampleRate));
        left[n] *= fall;
        right[n] *= fall;
    }
    const RoomMeasurement result = MeasureAll({left, right});
    EXPECT_GT(result.whole.iaccEarly.value, 0.98);
    EXPECT_LT(result.whole.iaccLate.value, 0.05);
    EXPECT_GT(result.whole.iaccAll.value, 0.6);
    EXPECT_TRUE(result.neighbours.empty());
    const std::vector<double> brief(20, 0.5);  // shorter than the shifts that are looked at
    EXPECT_NEAR(InterauralCorrelation(brief, brief, sampleRate).value, 1.0, 1e-12);
}

// Red if the window's weights or the share of Gaussian noise are wrong, or if the time isn't that of the direct sound.
TEST(EchoDensity, RisesToOneWhereEchoesTurnIntoNoise) {
    std::vector<float> response(48000, 0.0f);
    AddNoise(response, 0.1, 1);
    for (std::size_t n = 0; n < 9600; ++n) response[n] = n >= 4800 && n % 480 == 0 ? 0.1f : 0.0f;  // 100 ms of echoes
    std::fill(response.begin() + 45000, response.end(), 0.0f);
    const std::vector<std::span<float const>> channels{response};
    const EchoDensity density = MeasureEchoDensity(channels, sampleRate, 4800, 48000);
    EXPECT_LT(density.values[50], 0.1f);
    ASSERT_EQ(density.values.size(), 900u);
    EXPECT_EQ(density.values[870], 0.0f);  // of silence
    double mean = 0.0;
    for (std::size_t i = 200; i < 800; ++i) mean += static_cast<double>(density.values[i]) / 600.0;
    EXPECT_NEAR(mean, 1.0, 0.02);
    EXPECT_NEAR(density.mixingTime.value, 0.105, 0.01);
    const std::vector<std::span<float const>> noise{std::span(response).subspan(20000)};
    EXPECT_GT(MeasureEchoDensity(noise, sampleRate, 0, 10000).values[5], 0.5f);  // with less than a window
}

TEST(Measure, FollowsTheCentreOfTheSpectrum) {
    const auto centroids = [](double hertz) { return MeasureAll({MakeSine(hertz, sampleRate, 24000)}).centroidHz; };
    EXPECT_NEAR(centroids(2000.0)[10], 2000.0f, 5.0f);
    EXPECT_NEAR(centroids(8000.0)[10], 8000.0f, 5.0f);
}

// Red if a reflection's time counts from elsewhere, or if one counts that isn't 6 dB above what is around it.
TEST(Echogram, MarksWhatStandsOut) {
    std::vector<float> response(9600, 0.01f);
    response[1000] = 2.0f;
    response[1000 + 1440] = -1.0f;          // 30 ms, -6 dB
    for (std::size_t n = 0; n < 12; ++n) {  // a step
        response[1000 + 2880 + n] *= std::pow(10.0f, 6.2f / 20.0f);
        response[1000 + 4320 + n] *= std::pow(10.0f, 5.8f / 20.0f);
    }
    const std::vector<float> other(9600, 0.0f);
    const std::vector<std::span<float const>> channels{other, response};
    const Echogram echogram = MakeEchogram(channels, sampleRate, 1000, 0.1);
    EXPECT_EQ(echogram.levels.size(), 410u);  // from 2.5 ms before
    ASSERT_EQ(echogram.reflections.size(), 2u);
    EXPECT_NEAR(echogram.reflections[0].seconds, 0.03, 0.0003);
    EXPECT_NEAR(echogram.reflections[0].levelDb, -6.02, 0.1);
    EXPECT_EQ(echogram.reflections[0].channel, 1u);
    EXPECT_NEAR(echogram.reflections[1].seconds, 0.06, 0.0003);
}

}  // namespace
