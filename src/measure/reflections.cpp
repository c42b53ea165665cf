#include "measure/reflections.h"

#include <algorithm>
#include <cmath>

namespace orvanmeasure {

namespace {

constexpr double leadInSeconds = 0.0025;
constexpr std::size_t mostReflections = 12;
constexpr std::ptrdiff_t nearSteps = 3;       // a reflection is the strongest within 0.75 ms,
constexpr std::ptrdiff_t surroundSteps = 24;  // and 6 dB above the mean of 6 ms on either side
constexpr double clearanceDb = 6.0;

double Decibels(double power) {
    return power > 1e-20 ? 10.0 * std::log10(power) : -200.0;
}

double Energy(std::span<float const> samples) {
    double sum = 0.0;
    for (const float value : samples) sum += static_cast<double>(value) * static_cast<double>(value);
    return sum;
}

}  // namespace

Echogram MakeEchogram(Channels response, double sampleRate, std::size_t direct, double seconds) {
    Echogram echogram;
    const std::size_t step =
        std::max<std::size_t>(1, static_cast<std::size_t>(std::lround(echogram.stepSeconds * sampleRate)));
    echogram.stepSeconds = static_cast<double>(step) / sampleRate;
    // Steps begin at whole numbers of them before the direct sound, so that one begins with it.
    const std::size_t before =
        std::min(direct / step, static_cast<std::size_t>(leadInSeconds / echogram.stepSeconds)) * step;
    echogram.startSeconds = -static_cast<double>(before) / sampleRate;
    const std::size_t end = std::min(response[0].size(), direct + static_cast<std::size_t>(seconds * sampleRate));
    std::vector<double> power;
    for (std::size_t n = direct - before; n + step <= end; n += step) {
        double sum = 0.0;
        for (std::span<float const> channel : response) sum += Energy(channel.subspan(n, step));
        power.push_back(sum);
    }
    const double greatest = power.empty() ? 0.0 : *std::max_element(power.begin(), power.end());
    if (!(greatest > 0.0)) return echogram;

    const auto count = static_cast<std::ptrdiff_t>(power.size());
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const double here = power[static_cast<std::size_t>(i)];
        const double levelDb = Decibels(here / greatest);
        echogram.levels.push_back(static_cast<float>(levelDb));
        const double time = echogram.startSeconds + static_cast<double>(i) * echogram.stepSeconds;
        const auto start = [&](std::ptrdiff_t reach) { return power.begin() + std::max<std::ptrdiff_t>(0, i - reach); };
        const auto stop = [&](std::ptrdiff_t reach) { return power.begin() + std::min(count, i + reach + 1); };
        if (time < static_cast<double>(nearSteps) * echogram.stepSeconds || here <= 0.0 ||
            *std::max_element(start(nearSteps), stop(nearSteps)) > here)
            continue;
        double around = 0.0;
        for (auto at = start(surroundSteps); at != stop(surroundSteps); ++at) around += *at;
        const auto others = static_cast<double>(stop(surroundSteps) - start(surroundSteps) - 1);
        const double clearness = Decibels(here / ((around - here) / others + 1e-9 * greatest));
        if (clearness < clearanceDb || echogram.reflections.size() == mostReflections) continue;
        const std::size_t begin = direct - before + static_cast<std::size_t>(i) * step;
        const auto strongest = std::max_element(response.begin(), response.end(), [&](auto a, auto b) {
            return Energy(a.subspan(begin, step)) < Energy(b.subspan(begin, step));
        });
        echogram.reflections.push_back({time, levelDb, static_cast<std::size_t>(strongest - response.begin())});
    }
    return echogram;
}

}  // namespace orvanmeasure
