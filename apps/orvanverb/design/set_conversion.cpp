#include "orvanverb/design/set_conversion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <limits>
#include <mutex>
#include <numbers>
#include <numeric>
#include <span>
#include <stdexcept>

#include "hrtf/hrtf.h"
#include "hrtf/hrtf_filtering.h"
#include "orvanverb/design/cascade_fit.h"
#include "orvanverb/design/parallel.h"
#include "orvanverb/design/responses.h"
#include "orvanverb/design/sphere.h"

namespace program {

namespace {

using Complex = std::complex<double>;
using Levels = std::vector<double>;  // [dB], one per point of an axis

constexpr double heldFrom = 0.95;             // of half the sample rate of the measurement
constexpr double largestPeakOutsideDb = 1.0;  // beyond the audible range over the peak within

/// The spectrum of a response at some frequencies, without its delay.
std::vector<Complex> SpectrumAt(std::vector<float> const& response, std::vector<double> const& frequencies,
                                int samplerate) {
    std::vector<Complex> spectrum;
    for (const double hertz : frequencies) {
        const Complex step = std::polar(1.0, -2.0 * std::numbers::pi * hertz / samplerate);
        Complex phasor = 1.0, sum = 0.0;
        for (const float sample : response) {
            sum += static_cast<double>(sample) * phasor;
            phasor *= step;
        }
        spectrum.push_back(sum);
    }
    return spectrum;
}

/// Ear e of direction d is number 2 d + e.
MeasuredSet::Ear const& EarOf(MeasuredSet const& set, std::size_t number) {
    return set.directions[number / 2].ears[number % 2];
}

/// Levels of all ears on an axis.
/// @param tell  as in ConversionSettings: nothing of the fit is done yet
std::vector<Levels> MeasuredLevels(MeasuredSet const& set, std::vector<double> frequencies,
                                   std::function<void(double)> const& tell) {
    for (double& hertz : frequencies) hertz = std::min(hertz, heldFrom * 0.5 * set.samplerate);
    std::vector<Levels> levels(2 * set.directions.size());
    std::mutex telling;
    ForEachNumber(levels.size(), [&](std::size_t number) {
        if (tell) {
            const std::lock_guard lock(telling);
            tell(0.0);
        }
        for (Complex const& value : SpectrumAt(EarOf(set, number).response, frequencies, set.samplerate))
            levels[number].push_back(Decibels(std::norm(value)));
    });
    for (std::size_t number = 0; number < levels.size(); ++number)
        if (*std::max_element(levels[number].begin(), levels[number].end()) <= Decibels(0.0))
            throw std::invalid_argument("direction " + std::to_string(number / 2 + 1) + " is silent at the " +
                                        (number % 2 == 0 ? "left" : "right") + " ear");
    return levels;
}

/// The level of a field that comes from everywhere.
Levels DiffuseLevel(std::vector<Levels> const& levels, std::vector<double> const& shares) {
    Levels diffuse(levels.front().size(), 0.0);
    for (std::size_t number = 0; number < levels.size(); ++number)
        for (std::size_t i = 0; i < diffuse.size(); ++i)
            diffuse[i] += 0.5 * shares[number / 2] * std::pow(10.0, 0.1 * levels[number][i]);
    for (double& value : diffuse) value = Decibels(value);
    return diffuse;
}

bool IsAudible(double hertz) {
    return hertz >= 100.0 && hertz <= 16000.0;
}

/// Outside the audible range measurements hold noise: no filter is asked to peak there.
void BoundPeaksOutside(Levels& level, std::vector<double> const& frequencies) {
    double ceiling = -std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < level.size(); ++i)
        if (IsAudible(frequencies[i])) ceiling = std::max(ceiling, level[i] + largestPeakOutsideDb);
    for (std::size_t i = 0; i < level.size(); ++i)
        if (!IsAudible(frequencies[i])) level[i] = std::min(level[i], ceiling);
}

/// What was not measured falls by 3 dB an octave, for which the sections pay next to nothing where it is heard.
void FallBeyond(double hertz, Levels& level, std::vector<double> const& frequencies) {
    constexpr double octaveDb = -3.0;
    for (std::size_t i = 0; i < level.size(); ++i)
        if (frequencies[i] > hertz) level[i] += octaveDb * std::log2(frequencies[i] / hertz);
}

/// The directions next to each, nearest first.
std::vector<std::vector<std::size_t>> Neighbours(std::vector<Lume::CartesianVector> const& directions,
                                                 std::size_t count) {
    std::vector<std::vector<std::size_t>> neighbours(directions.size());
    ForEachNumber(directions.size(), [&](std::size_t d) {
        std::vector<std::size_t> others;
        for (std::size_t other = 0; other < directions.size(); ++other)
            if (other != d) others.push_back(other);
        const auto end = others.begin() + static_cast<std::ptrdiff_t>(std::min(count, others.size()));
        std::partial_sort(others.begin(), end, others.end(), [&](std::size_t a, std::size_t b) {
            const float da = Dot(directions[d], directions[a]), db = Dot(directions[d], directions[b]);
            return da != db ? da > db : a < b;
        });
        others.erase(end, others.end());
        neighbours[d] = std::move(others);
    });
    return neighbours;
}

/// For each ear one that heard the same: itself, or, where a head is symmetric, the left one in the mirrored direction.
std::vector<std::size_t> Originals(MeasuredSet const& set, std::vector<Lume::CartesianVector> const& places) {
    constexpr float same = 1e-3f;  // of the distance
    std::vector<std::size_t> originals(2 * places.size());
    std::iota(originals.begin(), originals.end(), std::size_t{0});
    ForEachNumber(places.size(), [&](std::size_t d) {
        const Lume::CartesianVector mirrored{-places[d].x, places[d].y, places[d].z};
        for (std::size_t other = 0; other < places.size(); ++other) {
            const Lume::CartesianVector apart{places[other].x - mirrored.x, places[other].y - mirrored.y,
                                              places[other].z - mirrored.z};
            if (Length(apart) > same * Length(mirrored)) continue;
            MeasuredSet::Ear const& right = EarOf(set, 2 * d + 1);
            MeasuredSet::Ear const& left = EarOf(set, 2 * other);
            if (right.response == left.response && right.delaySamples == left.delaySamples)
                originals[2 * d + 1] = 2 * other;
        }
    });
    return originals;
}

/// Cascades for all ears: each from starts of its own first, then from its neighbours' results, the best of each kept.
/// One start is the built-in head's ear in that direction: heads differ less than starts do.
std::vector<CascadeFit::Result> FitAll(std::vector<Levels> const& levels, ErbAxis const& axis, int samplerate,
                                       std::vector<Lume::CartesianVector> const& directions,
                                       std::vector<std::size_t> const& originals,
                                       std::function<void(double)> const& tell) {
    constexpr int trialSteps = 10, moreSteps = 25, ownSteps = 60, lastSteps = 40;
    constexpr std::size_t numNeighbours = 6;
    const CascadeFit fit(axis, samplerate);
    std::mutex telling;
    std::size_t numDone = 0;
    const auto advance = [&] {
        const std::lock_guard lock(telling);
        ++numDone;
        if (tell) tell(static_cast<double>(numDone) / static_cast<double>(2 * levels.size()));
    };
    // Refines a start as far as it promises something, and keeps it if it is better.
    const auto improve = [&](CascadeFit::Result& result, SectionCascade const& start, std::size_t ear, int numSteps) {
        constexpr double promising = 1.05;
        CascadeFit::Result trial = fit.Refine(start, levels[ear], trialSteps);
        if (trial.errorDb < promising * result.errorDb) trial = fit.Refine(trial.cascade, levels[ear], numSteps);
        if (trial.errorDb < result.errorDb) result = trial;
    };
    const Lume::Hrtf head = Lume::Hrtf::Builtin(static_cast<float>(samplerate));
    std::vector<CascadeFit::Result> own(levels.size()), best(levels.size());
    ForEachNumber(levels.size(), [&](std::size_t ear) {
        if (originals[ear] == ear) {
            Lume::HrtfPoint const& point = head.GetNearestHrtfPoint(Unit(directions[ear / 2]));
            const std::span<float const> sections = Lume::EarCoefficients(point, static_cast<unsigned int>(ear % 2));
            own[ear] = fit.Refine(fit.StartFrom(sections, head.GetSamplingRate(), levels[ear]), levels[ear], ownSteps);
            improve(own[ear], fit.Start(levels[ear]), ear, ownSteps);
        }
        advance();
    });
    const std::vector<std::vector<std::size_t>> neighbours = Neighbours(directions, numNeighbours);
    ForEachNumber(levels.size(), [&](std::size_t ear) {
        if (originals[ear] == ear) {
            CascadeFit::Result result = own[ear];
            for (const std::size_t neighbour : neighbours[ear / 2])
                improve(result, own[originals[2 * neighbour + ear % 2]].cascade, ear, moreSteps);
            best[ear] = fit.Refine(result.cascade, levels[ear], lastSteps);
        }
        advance();
    });
    for (std::size_t ear = 0; ear < best.size(); ++ear) best[ear] = best[originals[ear]];
    return best;
}

/// The time by which a response comes later than a filter makes it, in milliseconds.
double LagMs(MeasuredSet::Ear const& ear, int measuredRate, std::span<float const> sections, int samplerate) {
    constexpr double low = 300.0, high = 1500.0, step = 6.0;  // [Hz]
    constexpr double coarseMs = 0.02, fineMs = 0.0005;
    std::vector<double> frequencies;
    for (double hertz = low; hertz <= high; hertz += step) frequencies.push_back(hertz);
    std::vector<Complex> cross = SpectrumAt(ear.response, frequencies, measuredRate);
    for (std::size_t i = 0; i < cross.size(); ++i)
        cross[i] *= std::conj(ResponseOfSections(sections, frequencies[i], samplerate));

    const auto bestLag = [&](double fromMs, double toMs, double stepMs) {
        std::vector<Complex> phasors, steps;
        for (const double hertz : frequencies) {
            phasors.push_back(std::polar(1.0, 2.0e-3 * std::numbers::pi * hertz * fromMs));
            steps.push_back(std::polar(1.0, 2.0e-3 * std::numbers::pi * hertz * stepMs));
        }
        double best = fromMs, most = -std::numeric_limits<double>::infinity();
        for (double lag = fromMs; lag <= toMs; lag += stepMs) {
            double correlation = 0.0;
            for (std::size_t i = 0; i < cross.size(); ++i) {
                correlation += cross[i].real() * phasors[i].real() - cross[i].imag() * phasors[i].imag();
                phasors[i] *= steps[i];
            }
            if (correlation > most) {
                most = correlation;
                best = lag;
            }
        }
        return best;
    };
    const double length = 1000.0 * static_cast<double>(ear.response.size()) / measuredRate;
    const double coarse = bestLag(-1.0, length, coarseMs);
    return bestLag(coarse - coarseMs, coarse + coarseMs, fineMs) + 1000.0 * ear.delaySamples / measuredRate;
}

/// Directions that were measured from one distance, as nearly as one can, stand on the unit sphere, like those of the
/// built-in set: the nearest one is then the one in the nearest direction.
std::vector<Lume::CartesianVector> Places(MeasuredSet const& set) {
    constexpr float spread = 1.25f;
    float nearest = std::numeric_limits<float>::max(), farthest = 0.0f;
    std::vector<Lume::CartesianVector> places;
    for (MeasuredSet::Direction const& direction : set.directions) {
        places.push_back(direction.position);
        nearest = std::min(nearest, Length(places.back()));
        farthest = std::max(farthest, Length(places.back()));
    }
    if (farthest <= spread * nearest)
        for (Lume::CartesianVector& place : places) place = Unit(place);
    return places;
}

/// Takes the diffuse field's level out of responses. Where it is noise, or changes faster than a short filter can
/// follow, it's held.
void EqualiseAudible(std::vector<std::vector<double>>& responses, Levels const& diffuse, ErbAxis const& axis,
                     int samplerate) {
    constexpr double lowHz = 200.0;
    std::vector<double> frequencies;
    Levels level;
    for (std::size_t i = 0; i < diffuse.size(); ++i)
        if (IsAudible(axis.Frequencies()[i]) && axis.Frequencies()[i] >= lowHz) {
            frequencies.push_back(axis.Frequencies()[i]);
            level.push_back(diffuse[i]);
        }
    Equalise(responses, level, frequencies, samplerate);
}

MeasuredSet Wanted(MeasuredSet const& all, ConversionSettings const& settings) {
    MeasuredSet measured = all;
    if (settings.wanted)
        std::erase_if(measured.directions, [&](auto const& direction) { return !settings.wanted(direction.position); });
    return measured;
}

void FillHeader(MeasuredSet const& measured, ConversionSettings const& settings, std::size_t numCoefficients,
                Lume::SdifSet& set) {
    set.header.owner = measured.owner;
    set.header.subject = measured.subject;
    set.header.copyright = measured.copyright;
    set.header.filterType = settings.fir ? Lume::hrtfFIR : Lume::hrtfBiquadCells;
    set.header.flagItdExtracted = settings.fir ? Lume::itdNotExtracted : Lume::itdExtracted;
    set.header.originalMeasurementSet = measured.database;
    set.header.interpolationSet = "none";
    set.header.numCoefficients = static_cast<unsigned int>(numCoefficients);
    set.header.numChannels = 2;
    set.header.samplingRate = static_cast<unsigned int>(settings.samplerate);
    set.header.numPoints = static_cast<unsigned int>(set.points.size());
    set.header.date = measured.date;
}

}  // namespace

Lume::SdifSet ConvertSet(MeasuredSet const& all, ConversionSettings const& settings, ConversionErrors& errors) {
    const ErbAxis axis(settings.samplerate);
    const MeasuredSet measured = Wanted(all, settings);
    const std::vector<Lume::CartesianVector> places = Places(measured);
    std::vector<Levels> levels = MeasuredLevels(measured, axis.Frequencies(), settings.tell);
    Levels diffuse;
    if (settings.equalise && settings.wanted)
        diffuse = DiffuseLevel(MeasuredLevels(all, axis.Frequencies(), settings.tell), SphereShares(Places(all)));
    else if (settings.equalise)
        diffuse = DiffuseLevel(levels, SphereShares(places));

    Lume::SdifSet set;
    set.points.resize(places.size());
    for (std::size_t d = 0; d < places.size(); ++d) set.points[d].positions = {places[d]};
    if (settings.fir) {
        // Room for what comes before a sharp onset when it is interpolated.
        constexpr double leadSamples = 64.0;
        std::vector<std::vector<double>> responses(levels.size());
        ForEachNumber(responses.size(), [&](std::size_t number) {
            MeasuredSet::Ear const& ear = EarOf(measured, number);
            responses[number] =
                Resample(ear.response, measured.samplerate, settings.samplerate, leadSamples + ear.delaySamples);
        });
        if (settings.equalise) EqualiseAudible(responses, diffuse, axis, settings.samplerate);
        std::vector<std::vector<float>> const trimmed = Trim(responses, settings.samplerate, settings.length);
        for (std::size_t number = 0; number < trimmed.size(); ++number) {
            std::vector<float>& coefficients = set.points[number / 2].coefficients;
            coefficients.insert(coefficients.end(), trimmed[number].begin(), trimmed[number].end());
        }
        FillHeader(measured, settings, trimmed.front().size(), set);
        return set;
    }

    for (Levels& level : levels) {
        for (std::size_t i = 0; i < diffuse.size(); ++i) level[i] -= diffuse[i];
        FallBeyond(heldFrom * 0.5 * measured.samplerate, level, axis.Frequencies());
        BoundPeaksOutside(level, axis.Frequencies());
    }
    const std::vector<CascadeFit::Result> fits =
        FitAll(levels, axis, settings.samplerate, places, Originals(measured, places), settings.tell);
    std::vector<std::array<float, SectionCascade::numParameters>> sections(fits.size());
    std::vector<double> lags(fits.size());
    ForEachNumber(fits.size(), [&](std::size_t number) {
        sections[number] = OrderStages(fits[number].cascade, settings.samplerate);
        lags[number] = LagMs(EarOf(measured, number), measured.samplerate, sections[number], settings.samplerate);
    });
    for (std::size_t number = 0; number < fits.size(); ++number) {
        Lume::SdifSetPoint& point = set.points[number / 2];
        point.coefficients.insert(point.coefficients.end(), sections[number].begin(), sections[number].end());
        if (number % 2 == 1) point.itd = static_cast<float>(lags[number - 1] - lags[number]);
        errors.mean += fits[number].errorDb / static_cast<double>(fits.size());
        errors.worst = std::max(errors.worst, fits[number].errorDb);
    }
    FillHeader(measured, settings, SectionCascade::numParameters, set);
    return set;
}

Lume::SdifSet CopySet(Lume::HrtfData const& filters) {
    Lume::SdifSet set;
    set.header = filters.GetHrtfHeaderInfos();
    for (unsigned int i = 0; i < filters.GetNumPoints(); ++i) {
        Lume::HrtfPoint const& point = filters.GetHrtfPoint(i);
        set.points.push_back({{point.position}, point.itd, point.coefficients});
    }
    return set;
}

}  // namespace program
