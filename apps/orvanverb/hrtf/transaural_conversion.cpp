#include "orvanverb/hrtf/transaural_conversion.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <stdexcept>
#include <utility>

#include "decoders/decoder_factory.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/design/ear_ring.h"
#include "orvanverb/design/parallel.h"
#include "orvanverb/design/set_conversion.h"
#include "orvanverb/design/transaural_design.h"

namespace program {

namespace {

using Pair = TransauralOptions::Pair;

constexpr double nearestDeg = 10.0;  // to the front: nearer loudspeakers are hardly two

Lume::CartesianVector Towards(double azimuthDeg) {
    const double angle = azimuthDeg * std::numbers::pi / 180.0;
    return {static_cast<float>(std::sin(angle)), static_cast<float>(std::cos(angle)), 0.0f};
}

/// Symmetric pairs all around the head, others in front of it.
std::vector<Pair> Grid(bool symmetric, std::optional<double> stepDeg) {
    constexpr double widestDeg = 90.0, symmetricStepDeg = 2.5, asymmetricStepDeg = 5.0;
    std::vector<Pair> grid;
    if (symmetric) {
        const double step = stepDeg.value_or(symmetricStepDeg);
        for (int i = 0; nearestDeg + i * step <= 180.0 - nearestDeg; ++i)
            grid.push_back({-(nearestDeg + i * step), nearestDeg + i * step});
        return grid;
    }
    const double step = stepDeg.value_or(asymmetricStepDeg);
    for (int i = 0; nearestDeg + i * step <= widestDeg; ++i)
        for (int j = 0; nearestDeg + j * step <= widestDeg; ++j)
            grid.push_back({-(nearestDeg + i * step), nearestDeg + j * step});
    return grid;
}

/// The pairs that the measurements can serve; those that the user named must be among them.
std::vector<Pair> Served(EarRing const& ring, TransauralOptions const& options, bool symmetric) {
    std::vector<Pair> served;
    for (Pair const& pair : options.pairs.empty() ? Grid(symmetric, options.stepDeg) : options.pairs) {
        if (ring.Covers(pair.leftDeg) && ring.Covers(pair.rightDeg))
            served.push_back(pair);
        else if (!options.pairs.empty())
            throw std::invalid_argument(
                "has no measurements at the height of the ears around " +
                NumberText(static_cast<float>(ring.Covers(pair.leftDeg) ? pair.rightDeg : pair.leftDeg)) + " degrees");
    }
    if (served.empty()) throw std::invalid_argument("has no measurements around any pair of loudspeakers");
    return served;
}

/// As many samples at 44.1 and 48 kHz as measurements of heads usually have, and the same time at other rates.
std::size_t UsualLength(int samplerate) {
    constexpr int unit = 512, unitRate = 48000;
    return static_cast<std::size_t>(std::max(unit, (samplerate * unit + unitRate - 1) / unitRate));
}

}  // namespace

Lume::SdifSet MakeTransauralSet(MeasuredSet const& measured, TransauralOptions const& options, int samplerate,
                                bool equalise) {
    ConversionSettings settings;
    settings.samplerate = samplerate;
    settings.fir = true;
    settings.length = std::max(UsualLength(samplerate), options.length.value_or(0));
    settings.equalise = equalise;
    settings.wanted = EarRing::IsAtEarHeight;
    if (std::none_of(measured.directions.begin(), measured.directions.end(),
                     [](auto const& direction) { return EarRing::IsAtEarHeight(direction.position); }))
        throw std::invalid_argument("has no measurements at the height of the ears");
    ConversionErrors none;
    const Lume::SdifSet ears = ConvertSet(measured, settings, none);
    const EarRing ring(ears);

    TransauralLimits limits;
    limits.samplerate = samplerate;
    limits.length = options.length.value_or(UsualLength(samplerate));
    limits.maxGainDb = options.maxGainDb;
    limits.blockLength = options.blockLength;
    const Lume::HrtfType type = TransauralTypeOf(options.network);
    const TransauralDesign design(type, limits, ears.header.numCoefficients);
    const bool symmetric = IsSymmetricNetwork(type);
    const std::vector<Pair> pairs = Served(ring, options, symmetric);

    Lume::SdifSet set;
    set.points.resize(pairs.size());
    ForEachNumber(pairs.size(), [&](std::size_t number) {
        const Pair pair = pairs[number];
        auto [ll, lr] = ring.At(pair.leftDeg);
        auto [rl, rr] = ring.At(pair.rightDeg);
        Lume::SdifSetPoint& point = set.points[number];
        point.positions = {Towards(pair.leftDeg)};
        if (!symmetric) point.positions.push_back(Towards(pair.rightDeg));
        point.coefficients = design.Filters({std::move(ll), std::move(lr), std::move(rl), std::move(rr)});
    });
    set.header = ears.header;
    set.header.hrtfType = type;
    set.header.flagInterpolated = Lume::dataInterpolated;
    set.header.interpolationSet = "between neighbours in azimuth";
    set.header.numCoefficients = static_cast<unsigned int>(limits.length);
    set.header.numChannels = static_cast<unsigned int>(set.points[0].coefficients.size() / limits.length);
    set.header.numPoints = static_cast<unsigned int>(set.points.size());
    return set;
}

Lume::HrtfType TransauralTypeOf(std::string const& network) {
    const Lume::Decoder::SubType subType = Lume::Decoder::GetSubType(network.c_str());
    if (subType == Lume::Decoder::nullSubType)
        throw UsageError("--network: '" + network + "' is none; orvanverb decode --list shows them");
    if (subType == Lume::Decoder::recursivesymmetricbiquads)
        throw UsageError("--network: " + network +
                         " makes its filters itself, from a set for headphones: see orvanverb hrtf convert");
    return Lume::TransauralNetworks()[static_cast<std::size_t>(subType)].takes;
}

}  // namespace program
