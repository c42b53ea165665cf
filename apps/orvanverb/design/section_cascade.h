#pragma once

#include <array>
#include <complex>
#include <cstddef>
#include <span>
#include <vector>

namespace program {

/// A cascade of six second-order sections as a fit sees it: stable and minimum-phase whatever its parameters are.
///
/// A quadratic 1 + c1 z^-1 + c2 z^-2 has its zeros within a radius R when (c1 / R, c2 / R^2) lies in the triangle
/// |c2'| < 1, |c1'| < 1 + c2'. The unbounded parameters (u, v) reach just that: c2' = tanh u, c1' = (1 + tanh u) tanh
/// v. Zeros may come nearer to the circle than poles: a high rate brings all of what is heard close to 1, and a notch
/// at 2 kHz that is deeper than the radius allows takes what is beside it along.
class SectionCascade {
public:
    static constexpr std::size_t numStages = 6;
    /// The gain in decibels, (u, v) of each numerator, (u, v) of each denominator.
    static constexpr std::size_t numParameters = 1 + 4 * numStages;
    static constexpr double largestPoleRadius = 0.9945, largestZeroRadius = 0.9985;

    struct Quadratic {
        double c1 = 0.0, c2 = 0.0;
    };

    /// Flat at 0 dB.
    SectionCascade() = default;
    /// @param numerators, denominators  numStages each; what lies outside the radius is brought in
    SectionCascade(std::span<Quadratic const> numerators, std::span<Quadratic const> denominators);

    Quadratic Numerator(std::size_t stage) const { return At(stage); }
    Quadratic Denominator(std::size_t stage) const { return At(numStages + stage); }

    /// The coefficient set of an engine's cascade: the gain, then b1, b2, a1, a2 of each stage.
    std::array<float, numParameters> Coefficients() const;

    std::array<double, numParameters> parameters{};

private:
    Quadratic At(std::size_t place) const;
};

/// Levels of cascades at some frequencies.
class CascadeLevels {
public:
    CascadeLevels(std::span<double const> frequencies, double samplerate);

    /// @param level        [dB], one per frequency
    /// @param derivatives  of the level by each parameter, frequencies x parameters; may be null
    void Compute(SectionCascade const& cascade, std::vector<double>& level, std::vector<double>* derivatives) const;

private:
    std::vector<double> cos1, cos2;  // of the angle of each frequency, and of twice that
};

/// Response of a coefficient set at a frequency [Hz].
std::complex<double> ResponseOfSections(std::span<float const> coefficients, double hertz, double samplerate);

/// The same filter with its stages rearranged: each denominator gets the numerator that leaves the flattest stage, and
/// the stages follow each other such that no signal between two of them peaks more than it must. Single precision
/// then loses least.
std::array<float, SectionCascade::numParameters> OrderStages(SectionCascade const& cascade, double samplerate);

}  // namespace program
