#pragma once

namespace Lume {

/// A fixed conversion between formats of up to four channels, as a table. Each input is scaled; each output is the sum
/// or the difference of two scaled inputs, scaled in its turn.
///
/// Channels: Lt/Rt are left and right total; LRS left, right, surround; LCRS left, centre, right, surround.
struct MatrixFormat {
    static constexpr unsigned int maxChannels = 4;
    static constexpr unsigned int nothing = maxChannels;  // in place of a second input

    struct Output {
        unsigned int first, second = nothing;
        float sign = 1.0f;  // of the second
        float gain = 1.0f;  // of both
    };

    unsigned int numInputs, numOutputs;
    float inputGains[maxChannels];
    Output outputs[maxChannels];

    /// Converts; the output arrays may be the input arrays. Real-time safe.
    void Mix(float* const* to, float* const* from, unsigned long numSamples) const noexcept;
};

/// The centre goes to both sides, 3 dB lower.
extern const MatrixFormat lcrs2lrs;
/// The centre is what both sides share. Not the inverse of lcrs2lrs.
extern const MatrixFormat lrs2lcrs;
/// The surround is the difference of the two; it still has to go through a SurroundChain.
extern const MatrixFormat ltrt2lrs;
/// The same with the sum of the two as a centre.
extern const MatrixFormat ltrt2lcrs;
/// What the encoder to Lt/Rt shifts in phase: left, right, and the surround 3 dB lower.
extern const MatrixFormat lrs2fronts;
/// The same with the centre in both sides.
extern const MatrixFormat lcrs2fronts;

}  // namespace Lume
