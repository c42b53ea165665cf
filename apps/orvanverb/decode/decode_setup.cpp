#include "orvanverb/decode/decode_setup.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "dsp/constants.h"
#include "geometry/speakers.h"
#include "orvanverb/audio/channel_mask.h"
#include "orvanverb/audio/vector_channels.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/decode/transaural_filters.h"
#include "orvanverb/design/transaural_design.h"
#include "orvanverb/hrtf/engine_loading.h"
#include "orvanverb/hrtf/set_reading.h"
#include "orvanverb/layout/channel_words.h"

namespace program {

namespace {

using Decoder = Lume::Decoder;

constexpr double settleSeconds = 0.25;  // gains slide for up to 60 ms, delays glide for 50

/// The row of a type, by its name.
Lume::DecoderKind const& FindDecoder(std::string const& name) {
    const Decoder::Type type = Decoder::GetType(name.c_str());
    if (type == Decoder::null) throw UsageError("--type: '" + name + "' is none; orvanverb decode --list shows them");
    return Lume::DecoderKinds()[static_cast<std::size_t>(type)];
}

unsigned int UsualOutputs(Decoder::Type type, unsigned int numInputs) {
    if (type == Decoder::uhj2bformat) return numInputs == 4 ? 4 : 3;
    if (type == Decoder::surround && numInputs == 2) return 4;
    return 2;
}

std::vector<std::string> Words(Decoder::Type type, unsigned int numOutputs) {
    std::vector<std::string> words;
    if (type == Decoder::uhj2bformat)
        words = {"W: from everywhere", "X", "Y", "Z: up"};
    else if (type == Decoder::bformat2uhj)
        words = {"left", "right", "T", "Q"};
    else if (numOutputs == 2)
        words = {"left total", "right total"};
    else if (numOutputs == 3)
        words = {"left", "right", "surround"};
    else
        words = {"left", "centre", "right", "surround"};
    words.resize(numOutputs);
    return words;
}

/// Refuses a word that the engine would take for its first value.
template <typename Value, typename NameOf>
Value FindByName(char const* option, std::string const& word, int count, NameOf nameOf) {
    std::string names;
    for (int i = 0; i < count; ++i) {
        char const* const name = nameOf(static_cast<Value>(i));
        if (word == name) return static_cast<Value>(i);
        names.append(" ").append(name);
    }
    throw UsageError(std::string(option) + ": '" + word + "' is none; there are" + names);
}

}  // namespace

DecodeSetup::DecodeSetup(DecodeOptions const& options, unsigned int newNumInputs)
    : kind(FindDecoder(options.type)), numInputs(newNumInputs) {
    ChooseOutputs(options);
    const Decoder::SubType subType = Decoder::GetSubType(options.subType.c_str());
    if (subType == Decoder::nullSubType && options.subType != "null")
        throw UsageError("--sub-type: '" + options.subType + "' is none; orvanverb decode --list shows them");
    if (subType != Decoder::nullSubType && kind.type != Decoder::transaural)
        throw UsageError("--sub-type: is for the type transaural");
    decoder = Lume::MakeDecoder(kind.type, subType, numInputs, NumOutputs());
    if (!decoder)
        throw UsageError("--type " + options.type + ": doesn't take " + std::to_string(numInputs) + " channels to " +
                         std::to_string(NumOutputs()) + "; it takes " + kind.takes);
    hoa = dynamic_cast<Lume::HOADecoder*>(decoder.get());
    transaural = dynamic_cast<Lume::TransauralDecoder*>(decoder.get());
    SetUpHarmonics(options);
    if (kind.outputs == Lume::DecoderKind::Outputs::loudspeakers) {
        std::vector<Lume::CartesianVector> positions = layout.positions;
        if (options.ambix)
            for (Lume::CartesianVector& p : positions) p = ToAmbixAxes(p);
        decoder->SetLoudspeakerPositions(positions.data());
        channels = LoudspeakerWords(layout);
    } else {
        channels = Words(kind.type, NumOutputs());
    }
    CheckCondition();
    SetUpTransaural(options);
}

void DecodeSetup::ChooseOutputs(DecodeOptions const& options) {
    if (kind.outputs == Lume::DecoderKind::Outputs::loudspeakers) {
        if (options.outputs) throw UsageError("--outputs: this type has one for each of the --speakers");
        layout = SpeakerLayout::Parse(options.speakers.value_or(kind.type == Decoder::transaural ? "2"
                                                                : kind.type == Decoder::hoa3d    ? "cube"
                                                                                                 : "8"));
        return;
    }
    if (options.speakers) throw UsageError("--speakers: this type's outputs are channels of a format; see --outputs");
    const unsigned int count = options.outputs.value_or(UsualOutputs(kind.type, numInputs));
    layout = SpeakerLayout::Channels(count, count == 2 ? frontLeft | frontRight : 0);
}

void DecodeSetup::SetUpHarmonics(DecodeOptions const& options) {
    if (options.ambix && kind.type != Decoder::hoa3d) throw UsageError("--ambix: is for the type hoa3d");
    if (hoa == nullptr) {
        if (options.convention || options.sorting || options.crossoverHz || options.weights != "basic" ||
            options.hoaMethod != "pseudoinverse")
            throw UsageError("--convention, --sorting, --hoa-method, --weights, --crossover: are for hoa2d and hoa3d");
        return;
    }
    // What pan writes when nobody says otherwise.
    const std::string usual = kind.type == Decoder::hoa3d ? "SN3D" : "SN2D";
    const std::string convention = options.convention.value_or(usual);
    if (convention.ends_with("3D") != (kind.type == Decoder::hoa3d))
        throw UsageError("--convention: " + options.type + " has no " + convention);
    hoa->SetDecodingConvention(Lume::HOADecoder::GetHOADecodingConvention(convention.c_str()));
    hoa->SetSphericalHarmonicsSorting(options.sorting.value_or("IncreasingDegrees").c_str());
    hoa->SetDecoderMethod(FindByName<Lume::HOADecoder::HOADecoderMethod>("--hoa-method", options.hoaMethod, 2,
                                                                         Lume::HOADecoder::GetHOADecoderMethodName));
    hoa->SetDecoderType(FindByName<Lume::HOADecoder::HOADecoderType>("--weights", options.weights, 5,
                                                                     Lume::HOADecoder::GetHOADecoderTypeName));
    if (options.crossoverHz) hoa->SetCrossover(*options.crossoverHz);
}

void DecodeSetup::CheckCondition() {
    if (hoa == nullptr) return;
    Lume::HOADecoder::HOADecoderInfos infos;
    hoa->GetDecoderInfos(infos);
    if (!(infos.conditionNumber <= Lume::HOADecoder::DecoderConditionningThreshold))
        warnings.push_back("the loudspeakers don't suit this order: a condition number of " +
                           FixedText(infos.conditionNumber, 1) +
                           " dB; a lower order, more or more even loudspeakers are better");
}

void DecodeSetup::SetUpTransaural(DecodeOptions const& options) {
    if (transaural == nullptr) {
        if (options.filters) throw UsageError("--filters: is for the type transaural");
        return;
    }
    if (options.filters) {
        filters = *options.filters;
        LoadFilters(filters, *transaural);
        if (filters.ends_with(".bin2trans")) {
            blockLength = BlockLengthOf(filters);
            if (const std::string other = OtherPair(filters, *transaural); !other.empty()) warnings.push_back(other);
        }
    } else {
        // A network that the built-in set doesn't suit refuses it, in one way or the other.
        try {
            LoadQuietly("kemar", [&](std::string const& name) { transaural->LoadFromFile(name.c_str()); });
        } catch (WorkError const&) {
        }
    }
    const Lume::HrtfType expected = transaural->getExpectedHrtfTypeInHrtfFiles();
    if (transaural->GetHrtfHeaderInfos() == nullptr)
        warnings.push_back(
            "this network has no built-in filters: the output is silent without --filters; orvanverb "
            "hrtf transaural kemar OUT.bin2trans --network " +
            NetworkFor(expected) + " makes some");
    if ((IsSymmetricNetwork(expected) || expected == Lume::hrtfBinaural) && !transaural->IsSpeakersSetupSymmetric())
        warnings.push_back(
            "the loudspeakers don't mirror each other, and this network takes the left one for both; an "
            "asymmetric one suits them");
}

void DecodeSetup::Start(int samplerate, unsigned int newVectorSize) {
    vectorSize = newVectorSize;
    decoder->Configure(static_cast<float>(samplerate), blockLength.value_or(vectorSize), true);
    VectorChannels silence(numInputs, vectorSize);
    VectorChannels discarded(NumOutputs(), vectorSize);
    for (double seconds = 0.0; seconds < settleSeconds; seconds += static_cast<double>(vectorSize) / samplerate)
        Process(discarded.Pointers(), silence.Pointers());
}

void DecodeSetup::Process(float** outputs, float** inputs) {
    const unsigned int block = blockLength.value_or(vectorSize);
    std::vector<float*> from(inputs, inputs + NumInputs()), to(outputs, outputs + NumOutputs());
    for (unsigned int n = 0; n < vectorSize; n += block) {
        decoder->Process(to.data(), from.data(), block, orvandsp::allActiveInputs);
        for (auto* const pointers : {&from, &to})
            for (float*& pointer : *pointers) pointer += block;
    }
}

std::string DecodeSetup::RateRemark(int samplerate) const {
    Lume::HrtfHeaderInfos const* const header = transaural != nullptr ? transaural->GetHrtfHeaderInfos() : nullptr;
    if (header == nullptr || header->samplingRate == static_cast<unsigned int>(samplerate)) return {};
    return (filters.empty() ? std::string("the built-in filters") : filters) + ": made for " +
           std::to_string(header->samplingRate) + " Hz, the output has " + std::to_string(samplerate) +
           "; orvanverb hrtf " + (header->hrtfType == Lume::hrtfBinaural ? "convert" : "transaural") +
           " --rate makes some for it";
}

std::string DecodeSetup::MatrixText() const {
    if (hoa == nullptr) throw UsageError("--matrix: is for the types hoa2d and hoa3d");
    Lume::HOADecoder::HOADecoderInfos infos;
    hoa->GetDecoderInfos(infos);
    orvandsp::MatrixDouble matrix;
    hoa->GetDecoderMatrix(matrix);
    std::string text = "order " + std::to_string(infos.order) + ", " +
                       Lume::HOADecoder::GetHOADecoderMethodName(infos.decoderMethod) + ", " +
                       Lume::HOADecoder::GetHOADecoderTypeName(infos.decoderType) + "\n";
    text += "condition number " + FixedText(infos.conditionNumber, 2) + " dB\n";
    text += "regularity " + FixedText(infos.regularity, 9) + ", semi-regularity " + FixedText(infos.semiRegularity, 9) +
            "\n";
    for (std::size_t c = 0; c < channels.size(); ++c) {
        text += "channel " + std::to_string(c + 1) + " (" + channels[c] + "):";
        const std::size_t output = layout.fileOrder[c];
        for (unsigned int input = 0; input < numInputs; ++input)
            text.append(" ").append(FixedText(output < NumOutputs() ? matrix[input][output] : 0.0, 6));
        text += "\n";
    }
    return text;
}

std::string DecoderList() {
    std::string text = "type          what it takes\n";
    const auto add = [&text](Lume::DecoderKind const& kind) {
        std::string name = kind.names[0];
        name.resize(14, ' ');
        text += name + kind.takes + "\n";
    };
    for (Lume::DecoderKind const& kind : Lume::DecoderKinds())
        if (kind.type != Decoder::null && kind.type != Decoder::transaural) add(kind);
    add(Lume::DecoderKinds()[Decoder::transaural]);
    text += "\nsub-type of transaural (the first one unless another is named)\n";
    for (Lume::TransauralNetwork const& network : Lume::TransauralNetworks().subspan(1))
        text += std::string("  ") + network.names[0] + "\n";
    text += "\nweights of hoa2d and hoa3d\n";
    for (int i = 0; i < 5; ++i)
        text += std::string("  ") +
                Lume::HOADecoder::GetHOADecoderTypeName(static_cast<Lume::HOADecoder::HOADecoderType>(i)) + "\n";
    return text;
}

}  // namespace program
