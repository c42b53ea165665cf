#include "orvanverb/design/responses.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>

#include "orvanverb/design/minimum_phase.h"
#include "orvanverb/design/parallel.h"

namespace program {

namespace {

/// The sample at which the earliest of the responses begins: the first one within 40 dB of the peak of all.
std::size_t CommonOnset(std::vector<std::vector<double>> const& responses) {
    constexpr double threshold = 0.01;
    double peak = 0.0;
    for (std::vector<double> const& response : responses)
        for (const double sample : response) peak = std::max(peak, std::abs(sample));
    std::size_t onset = std::numeric_limits<std::size_t>::max();
    for (std::vector<double> const& response : responses) {
        const auto begin = std::find_if(response.begin(), response.end(),
                                        [&](double sample) { return std::abs(sample) >= threshold * peak; });
        onset = std::min(onset, static_cast<std::size_t>(begin - response.begin()));
    }
    return onset;
}

}  // namespace

std::vector<double> Resample(std::vector<float> const& response, int from, int to, double lateSamples) {
    constexpr double halfWidth = 48.0;
    // More samples of the same height would be a louder filter.
    const double level = static_cast<double>(from) / to;
    const double bandwidth = std::min(1.0, static_cast<double>(to) / from);
    const double reach = halfWidth / bandwidth;
    const auto length =
        static_cast<std::size_t>(std::ceil((static_cast<double>(response.size()) + lateSamples + reach) * to / from));
    std::vector<double> result(length, 0.0);
    for (std::size_t n = 0; n < length; ++n) {
        const double time = static_cast<double>(n) * from / to - lateSamples;
        const auto last = static_cast<std::ptrdiff_t>(response.size()) - 1;
        const auto begin = std::max<std::ptrdiff_t>(0, static_cast<std::ptrdiff_t>(std::ceil(time - reach)));
        const auto end = std::min(last, static_cast<std::ptrdiff_t>(std::floor(time + reach)));
        for (std::ptrdiff_t k = begin; k <= end; ++k) {
            const double distance = time - static_cast<double>(k), x = std::numbers::pi * distance * bandwidth;
            const double cosine = std::cos(std::numbers::pi * distance / reach);
            const double window = 0.34 + 0.5 * cosine + 0.16 * cosine * cosine;
            result[n] += static_cast<double>(response[static_cast<std::size_t>(k)]) * level * bandwidth * window *
                         (std::abs(x) < 1e-12 ? 1.0 : std::sin(x) / x);
        }
    }
    return result;
}

void Equalise(std::vector<std::vector<double>>& responses, std::vector<double> const& level,
              std::vector<double> const& frequencies, int samplerate) {
    constexpr std::size_t length = 512;
    std::vector<double> inverse(level.size());
    std::transform(level.begin(), level.end(), inverse.begin(), std::negate<>());
    const std::vector<double> filter = MinimumPhaseResponse(inverse, frequencies, samplerate, 0.0, length);
    ForEachNumber(responses.size(), [&](std::size_t number) {
        std::vector<double> const& dry = responses[number];
        std::vector<double> wet(dry.size() + length - 1, 0.0);
        for (std::size_t n = 0; n < dry.size(); ++n)
            for (std::size_t k = 0; k < length; ++k) wet[n + k] += dry[n] * filter[k];
        responses[number] = std::move(wet);
    });
}

std::vector<std::vector<float>> Trim(std::vector<std::vector<double>> const& responses, int samplerate,
                                     std::size_t maxLength) {
    constexpr double leadMs = 0.5;
    const std::size_t onset = CommonOnset(responses);
    const auto lead = static_cast<std::size_t>(leadMs * 0.001 * samplerate);
    const std::size_t begin = onset > lead ? onset - lead : 0;
    std::size_t longest = 0;
    for (std::vector<double> const& response : responses) longest = std::max(longest, response.size());
    const std::size_t length = std::min(maxLength, longest - begin), fade = length / 16;
    std::vector<std::vector<float>> trimmed;
    for (std::vector<double> const& response : responses) {
        std::vector<float> samples(length, 0.0f);
        for (std::size_t n = 0; n < length && begin + n < response.size(); ++n) {
            const std::size_t left = length - n;
            const double gain = left > fade ? 1.0
                                            : 0.5 - 0.5 * std::cos(std::numbers::pi * static_cast<double>(left) /
                                                                   static_cast<double>(fade + 1));
            samples[n] = static_cast<float>(gain * response[begin + n]);
        }
        trimmed.push_back(std::move(samples));
    }
    return trimmed;
}

}  // namespace program
