#pragma once

#include <vector>

#include "parameters/lume_default_parameters.h"

namespace Lume {

/// Generator of a set of delays that sounds like a room and not like a comb: spread from a minimum to a maximum without
/// common measure, crowded towards one end or the other on demand.
///
/// Up to sixteen delays sit at fixed positions taken from near-primes, more at a random walk that is the same every
/// time. The positions p in 0 to 1 are bent to p^e with e chosen such that their mean moves towards the distribution:
/// below 0.5 the delays crowd towards the minimum, above it towards the maximum. They rise and stay fractional
/// milliseconds.
///
/// Control side only.
class Delgen {
public:
    static constexpr float minMinimum = 1.0f;       ///< [ms]
    static constexpr float DefaultMinimum = 20.0f;  ///< [ms]
    static constexpr float minSum = 0.0f;           ///< [ms]
    static constexpr float minMaximum = 0.0f;       ///< [ms]
    static constexpr float DefaultMaximum = 40.0f;  ///< [ms]
    static constexpr float DefaultMinimumEchoDensity = 3.0f;
    static constexpr float MinDistribution = LumeDefaultParameters::MinDistribution;
    static constexpr float MaxDistribution = LumeDefaultParameters::MaxDistribution;
    static constexpr float DefaultDistribution = LumeDefaultParameters::DefaultDistribution;

    /// @param newMinimum  shortest delay [ms]; taken as at least 1
    /// @param newMaximum  longest delay [ms]; raised to give the set room, see SetMinMax
    /// @param newDistribution  passed over: a new generator has the default distribution (kept: quirks.md 10)
    Delgen(unsigned int newNumDelays, float newMinimum, float newMaximum, float newDistribution);

    /// Sets the number of delays. The distribution goes back to its default.
    void SetNumDelays(unsigned int newNumDelays);
    /// Sets the shortest delay [ms], not above the maximum.
    void SetMinimum(float newMinimum);
    /// Sets the longest delay [ms], not below the minimum.
    void SetMaximum(float newMaximum);
    /// Sets where the delays crowd, limited to 0.1 and 0.9.
    void SetDistribution(float newDistribution);

    /// Sets the range [ms] and the distribution. A range narrower than the widest table position is wide in samples is
    /// widened upwards (kept: quirks.md 11).
    /// @return the delays, in rising order
    float* SetMinMax(float newMinimum, float newMaximum, float newDistribution);

    /// Chooses the maximum such that the sum of the delays comes near a given one. Minimum and distribution are taken
    /// as they are.
    /// @param newSum  [ms]
    /// @return the delays
    float* SetMinSum(float newMinimum, float newSum, float newDistribution);
    /// The same with the present minimum and distribution.
    void SetSum(float newSum);

    float GetMinimum() const noexcept { return minimum; }
    float GetMaximum() const noexcept { return maximum; }
    float GetDistribution() const noexcept { return distribution; }
    /// The sum of the delays as computed, before each was limited to the range [ms].
    float GetSum() const noexcept { return sum; }
    unsigned int GetNumDelays() const noexcept { return numDelays; }
    /// GetNumDelays() values [ms].
    float* GetDelays() noexcept { return delays.data(); }
    float const* GetDelays() const noexcept { return delays.data(); }

private:
    /// Lays out the positions for the number of delays.
    void init();
    void InitRandomWalk();
    void InitTable();
    /// Takes a range as a new generator does, with the default distribution.
    void Restart(float newMinimum, float newMaximum);
    /// Computes the delays from range and distribution.
    void recalc();

    std::vector<float> delays;                   // [ms]
    std::vector<float> positions;                // 0 to 1; beyond 1 for table entries that aren't selected
    std::vector<unsigned int> selectionIndices;  // number of delays from which on a table entry takes part
    unsigned int numDelays;
    float sum = 0.0f;      // [ms]
    float minimum = 0.0f;  // [ms]
    float maximum = 0.0f;  // [ms]
    float distribution = DefaultDistribution;
    float meanPosition = 0.0f;  // of the positions in use
    std::vector<float> bent;    // the positions to the power of the last exponent
    float bentBy = 0.0f;
};

}  // namespace Lume
