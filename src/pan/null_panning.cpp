#include "pan/null_panning.h"

namespace Lume {

NullPanning::NullPanning() {
    numInputs = 0;
    numOutputs = 0;
}

Pan* NullPanning::Create(unsigned int /*requestedInputs*/, unsigned int /*requestedOutputs*/) {
    return new NullPanning;
}

void NullPanning::Process(float** /*outputs*/, float** /*inputs*/, unsigned long /*numSamples*/,
                          short const* /*activeInputs*/) {}

void NullPanning::ProcessAdding(float** /*outputs*/, float** /*inputs*/, unsigned long /*numSamples*/,
                                short const* /*activeInputs*/) {}

void NullPanning::SetSourcePosition(unsigned int /*index*/, CartesianVector const& /*position*/, bool /*flag*/) {}

void NullPanning::SetSourcePositions(CartesianVector const* /*positions*/) {}

void NullPanning::SetLoudspeakerPositions(CartesianVector const* /*positions*/) {}

void NullPanning::SetNumInputs(unsigned int /*newNumInputs*/) {
    numInputs = 0;
}

void NullPanning::SetNumOutputs(unsigned int /*newNumOutputs*/) {
    numOutputs = 0;
}

void NullPanning::SetInterpolationTime(float /*milliseconds*/) {}

void NullPanning::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
}

void NullPanning::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
}

void NullPanning::Clear() {}

}  // namespace Lume
