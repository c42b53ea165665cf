#include "decoders/matrix/ltrt_encoder.h"

namespace Lume {

LtRtEncoder::LtRtEncoder(LtRt::InputFormat format) : encoder(format) {
    initDecoder(encoder.GetNumInputs(), encoder.GetNumOutputs());
}

void LtRtEncoder::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    encoder.Process(outputs, inputs, numSamples, activeInputs);
}

void LtRtEncoder::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    encoder.SetSamplerate(newSamplerate);
}

void LtRtEncoder::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    encoder.SetMaxBlockSize(blockSize);
}

void LtRtEncoder::Clear() {
    encoder.Clear();
}

void LtRtEncoder::SetLoudspeakerPositions(CartesianVector const* /*positions*/) {}

}  // namespace Lume
