#include "mix/delay_gain_pair.h"

namespace Lume {

void DelayGainPair::Set(float leftMs, float rightMs, float left, float right, bool flag) {
    leftDelay.SetDelay(leftMs, flag);
    rightDelay.SetDelay(rightMs, flag);
    leftGain.SetValue(left, flag);
    rightGain.SetValue(right, flag);
}

void DelayGainPair::Configure(float newSamplerate, unsigned int blockSize) {
    leftDelay.Configure(newSamplerate, blockSize, false);
    rightDelay.Configure(newSamplerate, blockSize, false);
    leftGain.SetSamplerate(newSamplerate);
    rightGain.SetSamplerate(newSamplerate);
}

void DelayGainPair::SetInterpolationTime(float milliseconds) {
    leftGain.SetTimeConstant(milliseconds);
    rightGain.SetTimeConstant(milliseconds);
    leftDelay.SetInterpolationTime(milliseconds);
    rightDelay.SetInterpolationTime(milliseconds);
}

void DelayGainPair::SetSamplerate(float newSamplerate) {
    leftDelay.SetSamplerate(newSamplerate);
    rightDelay.SetSamplerate(newSamplerate);
    leftGain.SetSamplerate(newSamplerate);
    rightGain.SetSamplerate(newSamplerate);
}

void DelayGainPair::SetMaxBlockSize(unsigned int blockSize) {
    leftDelay.SetMaxBlockSize(blockSize);
    rightDelay.SetMaxBlockSize(blockSize);
}

void DelayGainPair::Clear() {
    leftDelay.Clear();
    rightDelay.Clear();
}

}  // namespace Lume
