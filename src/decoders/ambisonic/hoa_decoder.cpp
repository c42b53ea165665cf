#include "decoders/ambisonic/hoa_decoder.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <string>

#include "geometry/speakers.h"
#include "harmonics/spherical_harmonics.h"
#include "math/lu.h"
#include "math/pseudo_inverse.h"

namespace Lume {

namespace {

constexpr char const* methodNames[] = {"projection", "pseudoinverse"};
constexpr char const* typeNames[] = {"basic", "inphase", "maxre", "basicmaxre", "maxreinphase"};

template <typename Enumeration>
Enumeration Find(std::map<std::string, Enumeration> const& map, char const* name) {
    const auto found = map.find(name);
    return found == map.end() ? static_cast<Enumeration>(0) : found->second;
}

/// Multiplies each channel by its gain.
void Weight(orvandsp::AudioBuffer& buffer, std::vector<double> const& gains) {
    for (unsigned int i = 0; i < buffer.GetNumChannels(); ++i) buffer.ApplyGain(i, static_cast<float>(gains[i]));
}

}  // namespace

HOADecoder::HOADecoder(unsigned int numberOfInputs, unsigned int numberOfOutputs, HOADecoderMethod method,
                       HOADecoderType type, HOADecodingConvention convention)
    : decoderMethod(method),
      decoderType(type),
      decodingConvention(convention),
      mixer(numberOfInputs, numberOfOutputs),
      encodingMatrix(numberOfInputs, numberOfOutputs, 0.0),
      decodingMatrix(numberOfInputs, numberOfOutputs, 0.0),
      shelving(numberOfInputs),
      maxReGains(numberOfInputs, 1.0),
      inPhaseGains(numberOfInputs, 1.0),
      low(numberOfInputs, 512),
      high(numberOfInputs, 512) {
    initDecoder(numberOfInputs, numberOfOutputs);
    Speakers::GetRegularlySpaced(speakerPositions, numOutputs);
}

void HOADecoder::SetLoudspeakerPositions(CartesianVector const* positions) {
    if (positions != speakerPositions.data()) speakerPositions.assign(positions, positions + numOutputs);
    computeReencodingMatrix();
    std::vector<double> gains(numInputs);
    std::vector<float> narrowed(numInputs);
    for (unsigned int j = 0; j < numOutputs; ++j) {
        getSpeakerGains(j, gains.data());
        std::transform(gains.begin(), gains.end(), narrowed.begin(),
                       [](double gain) { return static_cast<float>(gain); });
        mixer.SetColumnGains(j, narrowed.data());
    }
}

void HOADecoder::ComputeMatrices(std::vector<std::vector<double>> const& encodings) {
    for (unsigned int j = 0; j < numOutputs; ++j)
        for (unsigned int i = 0; i < numInputs; ++i) encodingMatrix[i][j] = encodings[j][i];
    orvandsp::MatrixDouble inverse;
    PseudoInverse(encodingMatrix, inverse, conditionNumber);
    decodingMatrix = Transpose(inverse);
    for (unsigned int i = 0; i < numInputs; ++i)
        for (double& gain : encodingMatrix[i]) gain /= numOutputs;
    conditionNumber = static_cast<double>(10.0f * std::log10(static_cast<float>(conditionNumber)));
}

void HOADecoder::getSpeakerGains(unsigned int speaker, double* gains) const {
    orvandsp::MatrixDouble const& matrix = decoderMethod == projection ? encodingMatrix : decodingMatrix;
    for (unsigned int i = 0; i < numInputs; ++i) gains[i] = matrix[i][speaker];
}

void HOADecoder::SetDecoderMethod(HOADecoderMethod method) {
    if (method != projection && method != pseudoinverse) return;
    decoderMethod = method;
    forceUpdate();
}

void HOADecoder::SetDecoderType(HOADecoderType type) {
    if (static_cast<unsigned int>(type) > maxreinphase) return;
    decoderType = type;
    forceUpdate();
}

void HOADecoder::SetSphericalHarmonicsSorting(SphericalHarmonicsSorting newSorting) {
    sorting = newSorting;
    forceUpdate();
}

void HOADecoder::SetSphericalHarmonicsSorting(char const* name) {
    SetSphericalHarmonicsSorting(GetSphericalHarmonicsSorting(name));
}

void HOADecoder::GetDecoderMatrix(orvandsp::MatrixDouble& matrix) const {
    matrix = decoderMethod == projection ? encodingMatrix : decodingMatrix;
}

void HOADecoder::GetDecoderInfos(HOADecoderInfos& infos) const {
    infos = {order,
             decoderMethod,
             decoderType,
             dimensionFlag,
             decodingConvention,
             conditionNumber,
             CheckLoudspeakersSetupRegularity(),
             CheckLoudspeakersSetupSemiRegularity(),
             sorting};
}

double HOADecoder::CheckLoudspeakersSetupRegularity() const {
    orvandsp::MatrixDouble scaled = encodingMatrix;
    for (unsigned int i = 0; i < numInputs; ++i)
        for (double& element : scaled[i]) element *= 1.0 / numOutputs;
    return Determinant(orvandsp::MatrixDouble(scaled * Transpose(encodingMatrix)));
}

double HOADecoder::CheckLoudspeakersSetupSemiRegularity() const {
    return Determinant(orvandsp::MatrixDouble(encodingMatrix * Transpose(encodingMatrix)));
}

void HOADecoder::Process(float** outputs, float** inputs, unsigned long numSamples, short const* /*activeInputs*/) {
    if (decoderType == basicmaxre || decoderType == maxreinphase) {
        ProcessBands(outputs, inputs, numSamples);
        return;
    }
    if (decoderType == inphase || decoderType == maxre) {
        orvandsp::AudioBuffer view(inputs, numInputs, static_cast<unsigned int>(numSamples), 0);
        Weight(view, decoderType == inphase ? inPhaseGains : maxReGains);
    }
    mixer.Process(outputs, inputs, numSamples, orvandsp::allActiveInputs);
}

void HOADecoder::ProcessBands(float** outputs, float** inputs, unsigned long numSamples) {
    const auto length = static_cast<unsigned int>(numSamples);
    for (orvandsp::AudioBuffer* band : {&low, &high})
        if (band->GetNumSamples() != length) band->Resize(numInputs, length);
    shelving.Process(low.GetChannels(), high.GetChannels(), inputs, numSamples);
    Weight(high, maxReGains);
    if (decoderType == maxreinphase) Weight(low, inPhaseGains);
    low.AddFrom(high, 1.0f);
    mixer.Process(outputs, low.GetChannels(), numSamples, orvandsp::allActiveInputs);
}

void HOADecoder::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    mixer.SetSamplerate(newSamplerate);
    shelving.SetSamplerate(newSamplerate);
}

void HOADecoder::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    mixer.SetMaxBlockSize(blockSize);
    shelving.SetMaxBlockSize(blockSize);
    low.Resize(numInputs, blockSize);
    high.Resize(numInputs, blockSize);
}

void HOADecoder::Clear() {
    mixer.Clear();
    shelving.Clear();
}

HOADecoder::HOADecoderMethod HOADecoder::GetHOADecoderMethod(char const* name) {
    static const std::map<std::string, HOADecoderMethod> methods = {{"projection", projection},
                                                                    {"pseudoinverse", pseudoinverse}};
    return Find(methods, name);
}

HOADecoder::HOADecoderType HOADecoder::GetHOADecoderType(char const* name) {
    // Kept: quirks.md 31.
    static const std::map<std::string, HOADecoderType> types = {{"basic", basic},
                                                                {"Basic", basic},
                                                                {"inphase", inphase},
                                                                {"InIhase", inphase},
                                                                {"maxre", maxre},
                                                                {"MaxRe", maxre},
                                                                {"basicmaxre", basicmaxre},
                                                                {"BasicMaxRe", basicmaxre},
                                                                {"maxreinphase", maxreinphase},
                                                                {"MaxReInPhase", maxreinphase}};
    return Find(types, name);
}

HOADecoder::HOADecodingConvention HOADecoder::GetHOADecodingConvention(char const* name) {
    // Not quite the names of the encoders: "sn3D" here, "SN3d" there. Both stand.
    static const std::map<std::string, HOADecodingConvention> conventions = {
        {"SemiNormalization3D", SN3D}, {"seminormalized3d", SN3D}, {"SN3D", SN3D}, {"sn3d", SN3D}, {"sn3D", SN3D},
        {"FullNormalization3D", N3D},  {"fullnormalized3d", N3D},  {"N3D", N3D},   {"n3d", N3D},   {"n3D", N3D},
        {"SemiNormalization2D", SN2D}, {"seminormalized2d", SN2D}, {"SN2D", SN2D}, {"sn2d", SN2D}, {"sn2D", SN2D},
        {"FullNormalization2D", N2D},  {"fullnormalized2d", N2D},  {"N2D", N2D},   {"n2d", N2D},   {"n2D", N2D},
    };
    return Find(conventions, name);
}

char const* HOADecoder::GetHOADecoderMethodName(HOADecoderMethod method) {
    const auto index = static_cast<unsigned int>(method);
    return index < std::size(methodNames) ? methodNames[index] : "";
}

char const* HOADecoder::GetHOADecoderTypeName(HOADecoderType type) {
    const auto index = static_cast<unsigned int>(type);
    return index < std::size(typeNames) ? typeNames[index] : "";
}

char const* HOADecoder::GetHOADecodingConventionName(HOADecodingConvention convention) {
    return GetAmbisonicConventionName(convention);
}

}  // namespace Lume
