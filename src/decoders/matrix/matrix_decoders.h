#pragma once

#include <optional>

#include "decoders/fixed_decoder.h"
#include "decoders/matrix/ltrt.h"
#include "decoders/matrix/matrix_format.h"
#include "filters/delay.h"
#include "filters/hl_shelf.h"
#include "filters/low_pass.h"

namespace Lume {

/// What a matrix decoder does to the surround channel, so that leaking front sound isn't drawn to the rear: 15 ms of
/// delay (the ear goes by the first wavefront), less bass and treble, and nothing above 7 kHz.
class SurroundChain {
public:
    SurroundChain();

    /// Filters one channel in place. Real-time safe.
    void Process(float* samples, unsigned long numSamples);

    /// Calls an operation with the delay, the shelf and the low-pass.
    template <typename Operation>
    void ForEach(Operation operation) {
        operation(delay);
        operation(shelf);
        operation(lowPass);
    }

private:
    Delay delay;
    HLShelf shelf;
    LowPass lowPass;
};

/// A decoder that is a table, if need be with a SurroundChain behind its last output.
class MatrixDecoder : public FixedDecoder {
public:
    MatrixDecoder(MatrixFormat const& format, bool hasSurroundChain);

    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override {
        if (chain) chain->ForEach([](auto& stage) { stage.Clear(); });
    }

private:
    MatrixFormat const& table;
    std::optional<SurroundChain> chain;
};

template <MatrixFormat const& format, bool hasSurroundChain>
class MatrixDecoderOf : public MatrixDecoder {
public:
    MatrixDecoderOf() : MatrixDecoder(format, hasSurroundChain) {}

    /// Null for any other numbers of channels than those of the format.
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs) {
        return numInputs == format.numInputs && numOutputs == format.numOutputs ? new MatrixDecoderOf : nullptr;
    }
};

using LCRS2LRSDecoder = MatrixDecoderOf<lcrs2lrs, false>;
using LRS2LCRSDecoder = MatrixDecoderOf<lrs2lcrs, false>;
using LtRt2LRSDecoder = MatrixDecoderOf<ltrt2lrs, true>;
using LtRt2LCRSDecoder = MatrixDecoderOf<ltrt2lcrs, true>;

/// An encoder to Lt/Rt: forwards everything to its LtRt.
template <LtRt::InputFormat format>
class LtRtEncoder : public FixedDecoder {
public:
    LtRtEncoder() { initDecoder(encoder.GetNumInputs(), encoder.GetNumOutputs()); }

    /// Null for any other numbers of channels than those of the format to 2.
    static Decoder* Create(unsigned int numInputs, unsigned int numOutputs) {
        return numInputs == format && numOutputs == 2 ? new LtRtEncoder : nullptr;
    }

    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override {
        encoder.Process(outputs, inputs, numSamples, activeInputs);
    }
    void SetSamplerate(float newSamplerate) override {
        FixedDecoder::SetSamplerate(newSamplerate);
        encoder.SetSamplerate(newSamplerate);
    }
    void SetMaxBlockSize(unsigned int blockSize) override {
        FixedDecoder::SetMaxBlockSize(blockSize);
        encoder.SetMaxBlockSize(blockSize);
    }
    void Clear() override { encoder.Clear(); }

private:
    LtRt encoder{format};
};

using LRS2LtRtDecoder = LtRtEncoder<LtRt::LRS>;
using LCRS2LtRtDecoder = LtRtEncoder<LtRt::LCRS>;

/// The decoder of type surround for numbers of channels: 2 are Lt/Rt, 3 are LRS, and 4 are LCRS. A NullDecoder where
/// there is nothing to convert.
Decoder* CreateSurroundDecoder(unsigned int numInputs, unsigned int numOutputs);

}  // namespace Lume
