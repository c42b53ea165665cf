#include "pan/binaural/binaural_panning_spherical_harmonics.h"

#include <algorithm>

#include "dsp/constants.h"
#include "dsp/orvan_dsp_exception.h"
#include "harmonics/spherical_harmonics.h"

namespace Lume {

namespace {

void Scale(float* signal, unsigned long numSamples) {
    for (unsigned long i = 0; i < numSamples; ++i) signal[i] *= orvandsp::sqrt2div2;
}

}  // namespace

BinauralPanningSphericalHarmonics::BinauralPanningSphericalHarmonics(unsigned int numberOfInputs,
                                                                     unsigned int numberOfOutputs)
    : BinauralPanning(numberOfInputs, numberOfOutputs), data(std::make_unique<SphericalHarmonicManager>("")) {
    BinauralPanningSphericalHarmonics::SetNumInputs(numberOfInputs);
}

bool BinauralPanningSphericalHarmonics::Take(std::unique_ptr<SphericalHarmonicManager> loaded) {
    SphericalHarmonicBasisXmlInfo const& info = loaded->GetSphericalHarmonicInfo();
    if (info.hrtfType != hrtfBinaural || info.filterType != hrtfSHCoeff) return false;
    if (info.normalization == Unnormalized)
        throw orvandsp::OrvanDspException("Cannot process Unnormalized spherical harmonics (instable)", __FILE__,
                                          __LINE__);
    const unsigned int length = info.numFrequencyBins;
    if (length == 0) return false;
    // Throws for a wrong length, before anything has changed.
    const auto size = static_cast<float>(length);
    auto transform = std::make_unique<orvandsp::FFT<float>>(length, 0.5f, size, 1.0f, 1.0f / size);

    filterLength = length;
    filterOrder = length - 1;
    harmonicOrder = info.maxOrder;
    normalization = info.normalization;
    fft = std::move(transform);
    basisLeft = &loaded->GetSphericalBasisLeft();
    basisRight = &loaded->GetSphericalBasisRight();
    data = std::move(loaded);
    if (filterOrder != 0) voices.ForEach([this](FadedFIRTimeDomainFilter& ear) { ear.SetOrder(filterOrder); });
    forceUpdate(false);
    return true;
}

SphericalHarmonicBasisXmlInfo const& BinauralPanningSphericalHarmonics::GetSphericalHarmonicInfo() const noexcept {
    return data->GetSphericalHarmonicInfo();
}

void BinauralPanningSphericalHarmonics::SetFIRFiltersImplementationMethod(
    orvandsp::Filter::FIRImplementation /*implementation*/) {
    forceUpdate(false);
}

void BinauralPanningSphericalHarmonics::SetFilterCrossFadeTime(float milliseconds) {
    voices.ForEach([=](FadedFIRTimeDomainFilter& ear) { ear.SetCrossFadeTime(milliseconds); });
}

void BinauralPanningSphericalHarmonics::SetInterpolationTime(float /*milliseconds*/) {}

void BinauralPanningSphericalHarmonics::setSourceRelativePosition(unsigned int index, CartesianVector const& position,
                                                                  bool flag) {
    if (!fft || basisLeft == nullptr || basisRight == nullptr) return;
    const auto exact = SphericalHarmonicsBasis(harmonicOrder, position, normalization, IncreasingDegrees);
    std::vector<std::complex<float>> harmonics(exact.size());
    std::transform(exact.begin(), exact.end(), harmonics.begin(), [](std::complex<double> value) {
        return std::complex<float>(static_cast<float>(value.real()), static_cast<float>(value.imag()));
    });
    SetEar(voices[index].left, *basisLeft, harmonics, flag);
    SetEar(voices[index].right, *basisRight, harmonics, flag);
    coefficientsReady[index] = true;
}

void BinauralPanningSphericalHarmonics::SetEar(FadedFIRTimeDomainFilter& ear, orvandsp::MatrixComplex const& basis,
                                               std::vector<std::complex<float>> const& harmonics, bool flag) const {
    std::vector<std::complex<float>> spectrum(filterLength);
    const std::size_t numRows = std::min<std::size_t>(harmonics.size(), basis.GetNumRows());
    const std::size_t numBins = std::min<std::size_t>(filterLength, basis.GetNumColumns());
    for (std::size_t row = 0; row < numRows; ++row)
        for (std::size_t bin = 0; bin < numBins; ++bin) spectrum[bin] += harmonics[row] * basis[row][bin];
    fft->process(spectrum.data(), orvandsp::FFT<float>::inverse);
    // A filter of a single tap keeps the order that it had.
    std::vector<float> taps(std::max(filterLength, ear.GetNumCoefficients()));
    std::transform(spectrum.begin(), spectrum.end(), taps.begin(),
                   [](std::complex<float> value) { return value.real(); });
    ear.SetCoefficients(taps.data(), flag);
}

void BinauralPanningSphericalHarmonics::Process(float** outputs, float** inputs, unsigned long numSamples,
                                                short const* activeInputs) {
    // With the input in the place of an output both ears must read it before either is written.
    if (numInputs != 1 || outputs[0] == inputs[0]) {
        ProcessOntoSilence(outputs, inputs, numSamples, activeInputs);
        return;
    }
    if (activeInputs[0] == 0 || !coefficientsReady[0]) {
        Silence(outputs, numSamples);
        return;
    }
    voices[0].left.ProcessBlock(outputs[0], inputs[0], numSamples, false);
    voices[0].right.ProcessBlock(outputs[1], inputs[0], numSamples, false);
    Scale(outputs[0], numSamples);
    Scale(outputs[1], numSamples);
}

void BinauralPanningSphericalHarmonics::ProcessAdding(float** outputs, float** inputs, unsigned long numSamples,
                                                      short const* activeInputs) {
    for (unsigned int i = 0; i < numInputs; ++i) {
        if (activeInputs[i] == 0 || !coefficientsReady[i]) continue;
        voices[i].left.ProcessBlock(outputs[0], inputs[i], numSamples, true);
        voices[i].right.ProcessBlock(outputs[1], inputs[i], numSamples, true);
        Scale(outputs[0], numSamples);
        Scale(outputs[1], numSamples);
    }
}

void BinauralPanningSphericalHarmonics::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    voices.ForEach([=](FadedFIRTimeDomainFilter& ear) { ear.SetSamplerate(newSamplerate); });
}

void BinauralPanningSphericalHarmonics::SetMaxBlockSize(unsigned int blockSize) {
    StoreMaxBlockSize(blockSize);
    voices.ForEach([=](FadedFIRTimeDomainFilter& ear) { ear.SetMaxBlockSize(blockSize); });
}

void BinauralPanningSphericalHarmonics::SetNumInputs(unsigned int newNumInputs) {
    BinauralPanning::SetNumInputs(newNumInputs);
    coefficientsReady.resize(newNumInputs, false);
    const auto prepare = [this](FadedFIRTimeDomainFilter& ear) {
        ear.SetOrder(filterOrder);
        ear.Configure(samplerate, buffersize, false);
    };
    voices.Resize(newNumInputs, prepare, DefaultFilterOrder);
}

// Not in the header: a page leaves this panner out, by a Create of its own.
Pan* BinauralPanningSphericalHarmonics::Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
    return CreateIf<BinauralPanningSphericalHarmonics>(requestedOutputs == 2, requestedInputs, requestedOutputs);
}

}  // namespace Lume
