#pragma once

#include <memory>
#include <span>

#include "decoders/decoder.h"
#include "hrtf/hrtf_header_infos.h"

namespace Lume {

/// What there is to know about a type of decoder before one is made. A new one is a class, a value of Decoder::Type and
/// a row in decoder_factory.cpp.
struct DecoderKind {
    enum class Outputs { loudspeakers, channels };  ///< feeds, or the channels of a format

    Decoder::Type type;
    char const* names[5];  ///< the primary one, then synonyms, then null
    /// Makes one; what it makes of numbers of channels that don't suit is its own matter.
    Decoder* (*create)(unsigned int numInputs, unsigned int numOutputs);
    bool (*supports)(unsigned int numInputs, unsigned int numOutputs);
    Outputs outputs;
    char const* takes;  ///< the numbers of channels, in words
};

/// A network of the transaural type.
struct TransauralNetwork {
    Decoder::SubType subType;
    char const* names[3];
    Decoder* (*create)(unsigned int numInputs, unsigned int numOutputs);
    HrtfType takes;  ///< what its sets are made for
};

/// A row for each type, in the order of the values.
std::span<DecoderKind const> DecoderKinds();
/// A row for each network, in the order of the values; that of nullSubType is the default one.
std::span<TransauralNetwork const> TransauralNetworks();

/// Makes a decoder of a type that supports the numbers of channels. @return null where there is nothing but a
/// NullDecoder for them
std::unique_ptr<Decoder> MakeDecoder(Decoder::Type type, Decoder::SubType subType, unsigned int numInputs,
                                     unsigned int numOutputs);

}  // namespace Lume
