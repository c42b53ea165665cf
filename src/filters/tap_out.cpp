#include "filters/tap_out.h"

namespace Lume {

void TapOut::SetDelay(float ms, bool immediately) {
    if (ms > line->GetMaxDelay()) line->SetMaxDelay(ms);
    delayRamp.Start(ms * samplerate * 0.001f, immediately ? 0.0f : interpolationTime);
}

void TapOut::SetSamplerate(float newSamplerate) {
    const float remembered = GetDelay();
    samplerate = newSamplerate;
    delayRamp.SetSamplerate(newSamplerate);
    if (remembered > line->GetMaxDelay()) line->SetMaxDelay(remembered);
    delayRamp.Start(remembered * newSamplerate * 0.001f, interpolationTime);
}

}  // namespace Lume
