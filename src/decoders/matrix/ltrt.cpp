#include "decoders/matrix/ltrt.h"

#include <algorithm>

#include "decoders/matrix/matrix_format.h"
#include "dsp/constants.h"

namespace Lume {

namespace {

// Gain, b1, b2, a1, a2 of allpass sections.
constexpr float front1[] = {0.94657f, -2.0561819f, 1.056446f, -1.9463201f, 0.94657f};
constexpr float front2[] = {0.06338f, -13.2177334f, 15.7778473f, -0.83774f, 0.06338f};
constexpr float rear1[] = {-0.260502f, -0.0986173f, -3.838742f, 0.02569f, -0.260502f};
constexpr float rear2[] = {0.870686f, -2.146009f, 1.1485196f, -1.8685f, 0.870686f};

BiquadCascade MakeSection(float const (&coefficients)[5]) {
    float set[5];
    std::copy_n(coefficients, 5, set);
    BiquadCascade section(1);
    section.SetCoefficients(set);
    return section;
}

}  // namespace

LtRt::LtRt(InputFormat format)
    : scratch(format == LCRS ? 4 : 3, 512),
      inputFormat(format),
      left1(MakeSection(front1)),
      left2(MakeSection(front2)),
      right1(MakeSection(front1)),
      right2(MakeSection(front2)),
      surround1(MakeSection(rear1)),
      surround2(MakeSection(rear2)) {
    numInputs = scratch.GetNumChannels();
    numOutputs = 2;
    shelf.SetAll(0.0f, -18.0f, 0.0f, 5.0f, 35.0f, 2000.0f);
    lowPass.SetCutOffFrequency(7000.0f);
    lowPass.SetDamping(orvandsp::sqrt2);
}

void LtRt::Process(float** outputs, float** inputs, unsigned long numSamples, short const* /*activeInputs*/) {
    const auto length = static_cast<unsigned int>(numSamples);
    if (scratch.GetNumSamples() != length) scratch.Resize(numInputs, length);
    (inputFormat == LCRS ? lcrs2fronts : lrs2fronts).Mix(scratch.GetChannels(), inputs, numSamples);
    float* const l = scratch.GetChannel(0);
    float* const r = scratch.GetChannel(1);
    float* const s = scratch.GetChannel(2);
    shelf.Process(s, s, numSamples);
    lowPass.Process(s, s, numSamples);

    left1.Process(l, l, numSamples);
    left2.Process(l, l, numSamples);
    right1.Process(r, r, numSamples);
    right2.Process(r, r, numSamples);
    surround1.Process(s, s, numSamples);
    surround2.Process(s, s, numSamples);
    for (unsigned long n = 0; n < numSamples; ++n) {
        outputs[0][n] = s[n] + l[n];
        outputs[1][n] = r[n] - s[n];
    }
}

template <typename Operation>
void LtRt::ForEachFilter(Operation operation) {
    operation(shelf);
    operation(lowPass);
    for (BiquadCascade* section : {&left1, &left2, &right1, &right2, &surround1, &surround2}) operation(*section);
}

void LtRt::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    ForEachFilter([=](auto& filter) { filter.SetSamplerate(newSamplerate); });
}

void LtRt::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    scratch.Resize(numInputs, blockSize);
    ForEachFilter([=](auto& filter) { filter.SetMaxBlockSize(blockSize); });
}

void LtRt::Clear() {
    scratch.Clear();
    ForEachFilter([](auto& filter) { filter.Clear(); });
}

}  // namespace Lume
