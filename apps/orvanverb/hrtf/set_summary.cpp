#include "orvanverb/hrtf/set_summary.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <functional>
#include <limits>
#include <numbers>
#include <span>

#include "filters/biquad_cascade.h"
#include "geometry/spherical_vector.h"
#include "orvanverb/common/limits.h"
#include "orvanverb/common/text.h"
#include "orvanverb/design/erb_axis.h"
#include "orvanverb/design/section_cascade.h"
#include "orvanverb/design/sphere.h"

namespace program {

namespace {

std::string Range(double least, double most, int decimals, char const* unit) {
    const std::string text = FixedText(least, decimals);
    return (least == most ? text : text + " to " + FixedText(most, decimals)) + unit;
}

struct Extent {
    double least = std::numeric_limits<double>::infinity(), most = -std::numeric_limits<double>::infinity();
    void Take(double value) {
        least = std::min(least, value);
        most = std::max(most, value);
    }
};

/// The widest angle from any direction of the part of the sphere that the set covers to the nearest of its own.
double LargestGapDeg(std::vector<Lume::CartesianVector> const& units, double lowestDeg) {
    constexpr std::size_t numSamples = 5000;
    float widest = 1.0f;
    for (Lume::CartesianVector const& sample : EvenDirections(numSamples)) {
        if (std::asin(static_cast<double>(sample.z)) * 180.0 / std::numbers::pi < lowestDeg) continue;
        float nearest = -1.0f;
        for (Lume::CartesianVector const& unit : units) nearest = std::max(nearest, Dot(sample, unit));
        widest = std::min(widest, nearest);
    }
    return std::acos(std::min(1.0, static_cast<double>(widest))) * 180.0 / std::numbers::pi;
}

void CheckPlaces(Lume::SdifSet const& set, SetCheck& check) {
    Extent elevation, distance;
    std::vector<Lume::CartesianVector> units;
    std::size_t numLost = 0;
    for (Lume::SdifSetPoint const& point : set.points) {
        if (point.positions.empty() || Length(point.positions[0]) == 0.0f) {
            ++numLost;
            continue;
        }
        const float length = Length(point.positions[0]);
        units.push_back(Unit(point.positions[0]));
        distance.Take(static_cast<double>(length));
        elevation.Take(std::asin(std::clamp(static_cast<double>(units.back().z), -1.0, 1.0)) * 180.0 /
                       std::numbers::pi);
    }
    if (numLost > 0) check.faults.push_back(std::to_string(numLost) + " points have no direction");
    if (units.empty()) return;
    check.findings.emplace_back("distances", Range(distance.least, distance.most, 2, " m"));
    if (set.header.hrtfType != Lume::hrtfBinaural) return;
    check.findings.emplace_back("elevations", Range(elevation.least, elevation.most, 0, " degrees"));
    check.findings.emplace_back(
        "largest gap", FixedText(LargestGapDeg(units, elevation.least), 1) + " degrees from the nearest direction");
}

/// A source on the right must be heard later at the left ear.
void CheckDelays(Lume::SdifSet const& set, SetCheck& check) {
    constexpr float clearlyAside = 0.5f;
    Extent itd;
    std::size_t numWrong = 0;
    for (Lume::SdifSetPoint const& point : set.points) {
        itd.Take(static_cast<double>(point.itd));
        if (point.positions.empty() || Length(point.positions[0]) == 0.0f) continue;
        const float aside = Unit(point.positions[0]).x;
        if (std::abs(aside) > clearlyAside && aside * point.itd < 0.0f) ++numWrong;
    }
    check.findings.emplace_back("delays", Range(itd.least, itd.most, 3, " ms, left behind right"));
    if (numWrong > 0)
        check.faults.push_back(std::to_string(numWrong) +
                               " delays have the wrong sign: the ear that is nearer to the source hears it later");
}

std::complex<double> ResponseOfTaps(std::span<float const> taps, double hertz, double samplerate) {
    const std::complex<double> step = std::polar(1.0, -2.0 * std::numbers::pi * hertz / samplerate);
    std::complex<double> sum = 0.0, phasor = 1.0;
    for (const float tap : taps) {
        sum += static_cast<double>(tap) * phasor;
        phasor *= step;
    }
    return sum;
}

bool IsStable(std::span<float const> sections) {
    Lume::BiquadCascade cascade(static_cast<unsigned int>(sections.size() / 4));
    std::vector<float> copy(sections.begin(), sections.end());
    cascade.SetCoefficients(copy.data());
    return cascade.IsStable();
}

void CheckFilters(Lume::SdifSet const& set, SetCheck& check) {
    if (set.points.empty()) check.faults.push_back("no points, thus no filters");
    const bool isFir = set.header.filterType == Lume::hrtfFIR;
    if (!isFir && set.header.filterType != Lume::hrtfBiquadCells) return;
    const unsigned int length = set.header.numCoefficients;
    if (length == 0 || (!isFir && length % 4 != 1)) {
        check.faults.push_back("filters of " + std::to_string(length) +
                               " coefficients: " + (isFir ? "none" : "a gain and four for each section are expected"));
        return;
    }
    const double samplerate = set.header.samplingRate;
    if (samplerate < minRate || samplerate > maxRate) {
        check.faults.push_back("a sample rate of " + FixedText(samplerate, 0) +
                               " Hz; that of a .coll file stands in its name, as in NAME-SUBJECT-44100.coll");
        return;
    }
    const ErbAxis axis(samplerate);
    std::size_t numUnstable = 0, numSilent = 0;
    Extent peaks;
    double power = 0.0;
    std::size_t numPowers = 0;
    for (Lume::SdifSetPoint const& point : set.points)
        for (std::size_t ear = 0; ear < set.header.numChannels; ++ear) {
            const std::span<float const> filter = std::span(point.coefficients).subspan(ear * length, length);
            if (!isFir && !IsStable(filter)) {
                ++numUnstable;
                continue;
            }
            double peak = 0.0;
            for (std::size_t i = 0; i < axis.NumPoints(); i += 4) {  // often enough for a look
                const double hertz = axis.Frequencies()[i];
                const double here = std::norm(isFir ? ResponseOfTaps(filter, hertz, samplerate)
                                                    : ResponseOfSections(filter, hertz, samplerate));
                peak = std::max(peak, here);
                if (hertz < 100.0 || hertz > 16000.0) continue;
                power += here;
                ++numPowers;
            }
            if (peak == 0.0)
                ++numSilent;
            else
                peaks.Take(Decibels(peak));
        }
    constexpr double loudestDb = 60.0;  // more than any head or canceller of crosstalk asks for
    if (peaks.most > loudestDb)
        check.faults.push_back("filters of up to " + FixedText(peaks.most, 0) + " dB; at most " +
                               FixedText(loudestDb, 0) + " dB makes sense");
    if (numUnstable > 0) check.faults.push_back(std::to_string(numUnstable) + " filters are unstable");
    if (numSilent > 0) check.faults.push_back(std::to_string(numSilent) + " filters are silent");
    if (numPowers == 0 || power == 0.0) return;
    check.findings.emplace_back("largest gains", Range(peaks.least, peaks.most, 1, " dB"));
    check.findings.emplace_back("mean level", FixedText(Decibels(power / static_cast<double>(numPowers)), 1) + " dB");
}

}  // namespace

SetFacts DescribeHeader(Lume::HrtfHeaderInfos const& header, std::optional<unsigned int> blockLength) {
    const bool isFir = header.filterType == Lume::hrtfFIR;
    SetFacts facts{
        {"type", Lume::GetHrtfTypeName(header.hrtfType)},
        {"owner", header.owner},
        {"subject", header.subject},
        {"copyright", header.copyright},
        {"measured", header.originalMeasurementSet},
        {"interpolation",
         header.interpolationSet + " (" + Lume::GetFlagDataInterpolated(header.flagInterpolated) + ")"},
        {"date", header.date},
        {"points", std::to_string(header.numPoints)},
        {"filters", Lume::GetHrtfFilterTypeName(header.filterType) + ", " + std::to_string(header.numChannels) +
                        (isFir ? " of " : " sets of ") + std::to_string(header.numCoefficients) +
                        (isFir ? " samples" : " coefficients") + " a point, " +
                        Lume::GetFlagItdExtracted(header.flagItdExtracted)},
        {"sample rate", std::to_string(header.samplingRate) + " Hz"},
    };
    if (blockLength) facts.emplace_back("blocks", std::to_string(*blockLength) + " samples, in which it has to run");
    return facts;
}

std::vector<std::string> FaultsOfFilters(Lume::SdifSet const& set) {
    SetCheck check;
    CheckFilters(set, check);
    return check.faults;
}

SetCheck CheckSet(Lume::SdifSet const& set) {
    SetCheck check;
    CheckPlaces(set, check);
    if (set.header.hrtfType == Lume::hrtfBinaural && set.header.filterType != Lume::hrtfFIR) CheckDelays(set, check);
    CheckFilters(set, check);
    return check;
}

}  // namespace program
