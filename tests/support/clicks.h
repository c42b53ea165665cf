#pragma once

#include <span>
#include <vector>

/// What remains of a recorded tone when the tone and its slow sidebands are taken out: clicks, zipper noise, steps.
///
/// Everything within 200 Hz of the tone is removed, by a Fourier transform over the whole recording, so that changes of
/// level and pitch slower than about 5 ms count as the tone's own. The recording is faded in and out over its first and
/// last 15 %, which therefore must hold nothing but a steady tone; what is measured lies between 20 and 80 %.
struct ToneResidual {
    /// Largest absolute sample of the residual over all channels, relative to the largest one of the tone [dB].
    double peakDb;
    /// Where in the recording it stands [s].
    double peakSeconds;
};

/// @param channels  of equal length; their tones share one reference, the loudest of them
/// @param tone      its frequency [Hz], more than 220 Hz
ToneResidual MeasureToneResidual(std::span<std::vector<float> const> channels, double sampleRate, double tone);
