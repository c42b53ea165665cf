#include "measure/room_measurement.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>

#include "measure/band_filter.h"
#include "measure/correlation.h"
#include "measure/spectrogram.h"

namespace orvanmeasure {

namespace {

constexpr double lateSeconds = 0.08;      // the late part begins here, for correlations
constexpr double leadInSeconds = 0.0025;  // what stands just before the direct sound belongs to it

double Sum(std::span<double const> values) {
    return std::accumulate(values.begin(), values.end(), 0.0);
}

/// Measures one band of a response after the other.
class BandMeter {
public:
    BandMeter(Channels newResponse, double newSampleRate, std::size_t newDirect, std::size_t newLength)
        : response(newResponse),
          sampleRate(newSampleRate),
          direct(newDirect),
          first(direct - std::min(direct, Samples(leadInSeconds))),
          length(newLength) {}

    BandFigures Measure(Band const& band) const {
        BandFigures figures;
        figures.band = band;
        const BandFilter filter(band, sampleRate);
        // Backwards in time, so that decays are the room's own: what the filter rings stands before the sound.
        const std::size_t ring = filter.RingLength();
        std::vector<double> energy(ring + length - first, 0.0);
        for (std::size_t channel = 0; channel < response.size(); ++channel) {
            const std::vector<double> signal = Piece(channel, first, length, ring, 0);
            AddSquares(filter, &BandFilter::Backward, signal, energy);
        }
        const std::size_t start = ring + direct - first;
        const auto decay = std::span(energy).subspan(start);
        figures.floor = FindNoiseFloor(decay, sampleRate, band.WidthHz());
        const DecayCurve curve(Sum(std::span(energy).first(start)), decay, figures.floor, sampleRate);
        figures.endDb = curve.EndDb();
        figures.curve = curve.Levels(Samples(curveStepSeconds));
        figures.t20 = curve.Fit(-5.0, -25.0);
        figures.t30 = curve.Fit(-5.0, -35.0);
        TellEarlyFigures(filter, energy, figures);
        if (response.size() == 2) TellEars(filter, figures);
        return figures;
    }

private:
    std::size_t Samples(double seconds) const { return static_cast<std::size_t>(std::lround(seconds * sampleRate)); }

    /// A part of a channel in double precision, with silence around it.
    std::vector<double> Piece(std::size_t channel, std::size_t begin, std::size_t end, std::size_t silenceBefore,
                              std::size_t silenceBehind) const {
        std::vector<double> piece(silenceBefore, 0.0);
        const std::span<float const> samples = response[channel];
        piece.reserve(silenceBefore + end - begin + silenceBehind);
        piece.insert(piece.end(), samples.begin() + static_cast<std::ptrdiff_t>(begin),
                     samples.begin() + static_cast<std::ptrdiff_t>(end));
        piece.resize(piece.size() + silenceBehind, 0.0);
        return piece;
    }

    static void AddSquares(BandFilter const& filter, void (BandFilter::*run)(std::span<double>) const,
                           std::vector<double> signal, std::vector<double>& energy) {
        (filter.*run)(signal);
        for (std::size_t n = 0; n < signal.size(); ++n) energy[n] += signal[n] * signal[n];
    }

    std::size_t End(NoiseFloor const& floor) const { return direct + floor.crosspoint; }

    /// What depends on the first moments: from a filter that moves nothing, while one that runs backwards would draw
    /// the sound towards its beginning.
    void TellEarlyFigures(BandFilter const& filter, std::span<double const> backward, BandFigures& figures) const {
        NoiseFloor floor = figures.floor;
        const std::size_t ring = filter.RingLength(), start = ring + direct - first;
        std::vector<double> energy(ring + length - first + ring, 0.0);
        for (std::size_t channel = 0; channel < response.size(); ++channel)
            AddSquares(filter, &BandFilter::ZeroPhase, Piece(channel, first, length, ring, ring), energy);

        // Twice through the filter, less of everything is left; what was found in the decay changes in proportion.
        const std::size_t end = start + floor.crosspoint;
        const double scale =
            Sum(std::span(energy).subspan(start, floor.crosspoint)) / Sum(backward.subspan(start, floor.crosspoint));
        floor.power *= scale;
        floor.powerAtCrosspoint *= scale;
        const auto sound = std::span(energy).subspan(start, length - direct);
        figures.edt = DecayCurve(Sum(std::span(energy).first(start)), sound, floor, sampleRate).Fit(0.0, -10.0);

        const double behind = EnergyBehind(floor, sampleRate);
        const double rate = floor.decays ? std::log(1e6) / floor.decaySeconds / sampleRate : 0.0;  // per sample
        for (std::size_t n = start; n < end; ++n) energy[n] -= floor.power;
        if (floor.decays) energy.resize(end);

        /// Early over late energy, parted at a time behind the direct sound.
        const auto earlyToLate = [&](double seconds) {
            const std::size_t parting = start + Samples(seconds);
            const double early = Sum(std::span(energy).first(std::min(parting, energy.size())));
            double late = behind;
            if (parting < energy.size())
                late += Sum(std::span(energy).subspan(parting));
            else  // the decay goes on unseen below the noise
                late *= std::exp(-rate * static_cast<double>(parting - energy.size()));
            if (!(early > 0.0)) return Figure::None(Missing::silent);
            if (!(late > 1e-9 * early)) return Figure::None(Missing::nothingLate);
            return Figure::Of(early / late);
        };
        const auto decibels = [](Figure ratio) {
            if (ratio.IsThere()) ratio.value = 10.0 * std::log10(ratio.value);
            return ratio;
        };
        figures.d50 = earlyToLate(0.05);
        figures.c50Db = decibels(figures.d50);
        figures.c80Db = decibels(earlyToLate(0.08));
        if (figures.d50.IsThere()) figures.d50.value /= 1.0 + figures.d50.value;
        if (figures.d50.missing == Missing::nothingLate) figures.d50 = Figure::Of(1.0);

        double sum = behind;
        double weighted = floor.decays ? behind * (static_cast<double>(floor.crosspoint) + 1.0 / rate) : 0.0;
        for (std::size_t n = 0; n < energy.size(); ++n) {
            sum += energy[n];
            weighted += energy[n] * (static_cast<double>(n) - static_cast<double>(start));
        }
        const double centre = weighted / sum / sampleRate;
        figures.centreSeconds = std::isfinite(centre) ? Figure::Of(centre) : Figure::None(Missing::silent);
    }

    void TellEars(BandFilter const& filter, BandFigures& figures) const {
        const std::size_t end = End(figures.floor), parting = std::min(direct + Samples(lateSeconds), end);
        const auto alike = [&](std::size_t begin, std::size_t stop) {
            if (begin >= stop) return Figure::None(Missing::nothingLate);
            std::vector<double> ears[2];
            for (std::size_t channel = 0; channel < 2; ++channel) {
                ears[channel] = Piece(channel, begin, stop, 0, filter.RingLength());
                filter.Forward(ears[channel]);
            }
            return InterauralCorrelation(ears[0], ears[1], sampleRate);
        };
        figures.iaccEarly = alike(first, parting);
        figures.iaccLate = alike(parting, end);
        figures.iaccAll = alike(first, end);
    }

    Channels response;
    double sampleRate;
    std::size_t direct, first, length;  // samples: the direct sound, where the measurement begins and ends
};

/// Behind the last sample of any channel that isn't 0.
std::size_t SoundingLength(Channels response) {
    std::size_t length = 0;
    for (std::span<float const> channel : response) {
        const auto last = std::find_if(channel.rbegin(), channel.rend(), [](float value) { return value != 0.0f; });
        length = std::max(length, static_cast<std::size_t>(channel.rend() - last));
    }
    return length;
}

void CompareChannels(RoomMeasurement& result, Channels response, std::size_t begin, std::size_t end) {
    const std::size_t count = response.size();
    if (count < 3 || begin >= end) return;
    for (std::size_t a = 0; a < count; ++a)
        for (std::size_t b = a + 1; b < count; ++b) {
            const ChannelPair pair{
                a, b, Correlation(response[a].subspan(begin, end - begin), response[b].subspan(begin, end - begin))};
            if (b == a + 1 || (a == 0 && b == count - 1)) result.neighbours.push_back(pair);
            if (!result.mostAlike || std::abs(pair.correlation) > std::abs(result.mostAlike->correlation))
                result.mostAlike = pair;
        }
}

}  // namespace

Figure RoomMeasurement::Mid(DecayFit BandFigures::*fit) const {
    double sum = 0.0;
    int count = 0;
    for (BandFigures const& figures : bands) {
        if (figures.band.name != "500" && figures.band.name != "1000") continue;
        if (!(figures.*fit).seconds.IsThere()) return (figures.*fit).seconds;
        sum += (figures.*fit).seconds.value;
        ++count;
    }
    return count == 2 ? Figure::Of(0.5 * sum) : Figure::None(Missing::silent);
}

RoomMeasurement Measure(Channels response, double sampleRate, BandWidth width) {
    RoomMeasurement result;
    result.sampleRate = sampleRate;
    result.numChannels = response.size();
    result.length = SoundingLength(response);
    result.direct = FindDirectSound(response, sampleRate);
    if (!result.direct) return result;

    const std::size_t begin = result.direct->sample;
    const BandMeter meter(response, sampleRate, begin, result.length);
    result.whole = meter.Measure(WholeSpectrum(sampleRate));
    for (Band const& band : Bands(width, sampleRate)) result.bands.push_back(meter.Measure(band));
    const std::size_t end = begin + result.whole.floor.crosspoint;
    result.density = MeasureEchoDensity(response, sampleRate, begin, end);
    CompareChannels(result, response, begin + static_cast<std::size_t>(lateSeconds * sampleRate), end);
    const Spectrogram spectrogram = MakeSpectrogram(response, sampleRate, begin, end);
    result.centroidStepSeconds = spectrogram.frameSeconds;
    for (std::size_t frame = 0; frame < spectrogram.NumFrames(); ++frame)
        result.centroidHz.push_back(static_cast<float>(spectrogram.CentroidHz(frame)));
    return result;
}

std::string WhyMissing(Figure const& figure, BandFigures const& band, double lowerDb) {
    char text[160] = "";
    switch (figure.missing) {
        case Missing::none:
            break;
        case Missing::silent:
            return "nothing sounds in this band";
        case Missing::noDecay:
            return "no decay can be told from noise";
        case Missing::noRange:
            std::snprintf(text, sizeof text, "the decay must be seen down to %.0f dB; %s before", lowerDb - 10.0,
                          band.floor.found ? "noise begins" : "the response ends");
            break;
        case Missing::nothingLate:
            return "all has sounded before the late part begins";
        case Missing::neverReached:
            return "it isn't reached before the response ends";
    }
    return text;
}

std::string WhyInexact(DecayFit const& fit, BandFigures const& band, double lowerDb) {
    if (!fit.seconds.IsThere()) return "";
    char text[160] = "";
    const double widths = fit.seconds.value * band.band.WidthHz();  // a decay that is one over the width long counts 1
    if (!band.band.IsWhole()) {
        // In tones the worst error is 1 % where these products are; EDT sees the filter first, as it begins at 0 dB.
        constexpr double straightWidths = 8.0, earlyWidths = 32.0, bentWidths = 64.0, straight = 0.995;
        const double needed = lowerDb > -20.0 ? earlyWidths : straightWidths;
        if (widths < needed) {
            const bool isFilter = fit.seconds.value < ShortestDecay(band.band);
            if (!isFilter) return "the band's filter still takes part in so short a decay";
            std::snprintf(text, sizeof text, "a decay below %.2f s is that of the band's filter",
                          ShortestDecay(band.band));
            return text;
        }
        if (lowerDb < -20.0 && widths < bentWidths && fit.correlation < straight)
            return "the decay is not straight, and the filter of so narrow a band rounds its bends";
    }
    if (band.floor.found) {
        // Where the line ends, noise stands against the decay: its beats tilt the line, the less the more of them there
        // are and the longer the line is. Found with tones in noise, from 8 widths to 20000; deviation of one in three.
        const double rangeDb = (lowerDb > -20.0 ? 0.0 : -5.0) - lowerDb;
        const double deviation = 20.0 / rangeDb * std::pow(10.0, (band.endDb - lowerDb) / 20.0) / std::sqrt(widths);
        const double percent = 2.0 * 100.0 * deviation;
        if (percent > 1.0) {
            constexpr int steps[] = {2, 5, 10, 20};  // few, so that bands share a sentence
            auto const* const step =
                std::find_if(std::begin(steps), std::end(steps), [&](int s) { return percent <= s; });
            std::snprintf(text, sizeof text, "noise leaves it uncertain by %s %d %%",
                          step == std::end(steps) ? "more than" : "up to", step == std::end(steps) ? steps[3] : *step);
        }
    }
    return text;
}

std::string WhyInexact(double partingSeconds, BandFigures const& band) {
    // The worst tone is off by 0.1 dB at either of them.
    constexpr double leastWidths = 6.0, leastDecayWidths = 64.0;
    const double width = band.band.WidthHz();
    const bool blurred = partingSeconds * width < leastWidths ||
                         (band.edt.seconds.IsThere() && band.edt.seconds.value * width < leastDecayWidths);
    return blurred && !band.band.IsWhole() ? "the band's filter blurs the time at which early and late are parted" : "";
}

}  // namespace orvanmeasure
