#pragma once

#include <memory>
#include <vector>

#include "filters/faded_fir_time_domain_filter.h"
#include "hrtf/spherical_harmonic_manager.h"
#include "math/fft.h"
#include "pan/binaural/binaural_panning.h"
#include "pan/binaural/ear_pairs.h"
#include "pan/null_panning.h"

namespace Lume {

/// Binaural panner whose filters come from a set in spherical harmonics: it sums the harmonics up for any direction, so
/// that sources move without steps from one measured direction to the next.
///
/// Without data it is silent, and a source is silent until it has been given a position.
class BinauralPanningSphericalHarmonics : public BinauralPanning {
public:
    BinauralPanningSphericalHarmonics(unsigned int numInputs, unsigned int numOutputs);

    /// A NullPanning for any number of outputs but two.
    static Pan* Create(unsigned int numInputs, unsigned int numOutputs);

    /// @return false, and nothing changes, for a set that isn't one of spherical harmonics for two ears or has no
    /// length
    /// @throws orvandsp::OrvanDspException for unnormalised harmonics, and for a length that is no power of two
    bool LoadFromFile(char const* path) override { return Take(std::make_unique<SphericalHarmonicManager>(path)); }
    SphericalHarmonicBasisXmlInfo const& GetSphericalHarmonicInfo() const noexcept;
    /// Gives every source the filters of its position again.
    void updateFiltersCoefficients() { forceUpdate(false); }

    using BinauralPanning::SetFIRFiltersImplementationMethod;
    /// Places every source again; the filters are always in direct form.
    void SetFIRFiltersImplementationMethod(orvandsp::Filter::FIRImplementation implementation) override;
    void SetFilterCrossFadeTime(float milliseconds) override;
    /// Does nothing: there are no delays.
    void SetInterpolationTime(float milliseconds) override;
    void setSourceRelativePosition(unsigned int index, CartesianVector const& position, bool flag) override;

    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    /// Scales everything that the outputs hold after each source: earlier sources, and what was there before, get the
    /// factor again (kept: quirks.md 22).
    void ProcessAdding(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override {
        voices.ForEach([](FadedFIRTimeDomainFilter& ear) { ear.Clear(); });
    }
    void SetNumInputs(unsigned int newNumInputs) override;

protected:
    /// What LoadFromFile does with a set.
    bool Take(std::unique_ptr<SphericalHarmonicManager> loaded);

private:
    static constexpr unsigned int DefaultFilterOrder = 511;
    void SetEar(FadedFIRTimeDomainFilter& ear, orvandsp::MatrixComplex const& basis,
                std::vector<std::complex<float>> const& harmonics, bool flag) const;

    std::unique_ptr<SphericalHarmonicManager> data;
    std::unique_ptr<orvandsp::FFT<float>> fft;  // null until data are there
    unsigned int filterLength = 0;              // [samples]
    unsigned int filterOrder = DefaultFilterOrder;
    orvandsp::MatrixComplex const* basisLeft = nullptr;  // in the data
    orvandsp::MatrixComplex const* basisRight = nullptr;
    unsigned int harmonicOrder = 0;
    SphericalHarmonicsNormalization normalization = SchmidtSeminormalized3D;
    std::vector<bool> coefficientsReady;  // one per input
    EarPairs<FadedFIRTimeDomainFilter> voices;
};

}  // namespace Lume
