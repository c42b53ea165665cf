#pragma once

#include <limits>
#include <span>
#include <vector>

#include "measure/noise_floor.h"

namespace orvanmeasure {

/// Why a figure can't be told.
enum class Missing {
    none,          ///< it can
    silent,        ///< nothing sounds in the band
    noDecay,       ///< nothing falls, or nothing rises above the noise
    noRange,       ///< noise, or the end of the response, comes too soon
    nothingLate,   ///< everything has sounded before the late part begins
    neverReached,  ///< the value that is looked for doesn't come
};

/// A number, or the reason why there is none; the value is not-a-number then.
struct Figure {
    double value = std::numeric_limits<double>::quiet_NaN();
    Missing missing = Missing::none;

    static Figure Of(double value) { return {value, Missing::none}; }
    static Figure None(Missing missing) { return {std::numeric_limits<double>::quiet_NaN(), missing}; }
    bool IsThere() const noexcept { return missing == Missing::none; }
};

/// A decay time and the straight line that it is read from: level(t) = startDb - 60 t / seconds.
struct DecayFit {
    Figure seconds;
    double startDb = 0.0;      ///< of the line at the direct sound
    double correlation = 0.0;  ///< of the line and the curve, 1 for a straight decay
};

/// The energy still to come from each sample on, relative to all of it (M. R. Schroeder, "New method of measuring
/// reverberation time", J. Acoust. Soc. Am. 37(3), 1965).
///
/// Noise is dealt with by subtraction, truncation and correction together, which M. Guski and M. Vorlaender
/// ("Comparison of noise compensation methods for room acoustic impulse response evaluations", Acta Acustica 100, 2014)
/// found the least biased: its mean energy is subtracted, the sum begins where the decay meets it, and what the decay
/// would have gone on to give is added.
class DecayCurve {
public:
    /// @param before      energy that belongs to the direct sound but stands before it
    /// @param energy      of each sample from the direct sound on
    DecayCurve(double before, std::span<double const> energy, NoiseFloor const& floor, double sampleRate);

    bool IsSilent() const noexcept { return total <= 0.0; }
    bool Decays() const noexcept { return decays; }
    /// The level where noise begins or the response ends [dB], negative.
    double EndDb() const noexcept { return levels.empty() ? 0.0 : levels.back(); }

    /// The line through the part between two levels [dB, 0 and below]. A part counts if noise lies 10 dB below its end,
    /// after ISO 3382-1.
    DecayFit Fit(double upperDb, double lowerDb) const;

    /// Levels [dB], one for every `step` samples.
    std::vector<float> Levels(std::size_t step) const;

private:
    std::vector<double> levels;
    double total = 0.0;
    bool decays = false;
    double sampleRate;
};

/// The energy that an exponential decay goes on to give behind the crosspoint.
double EnergyBehind(NoiseFloor const& floor, double sampleRate);

}  // namespace orvanmeasure
