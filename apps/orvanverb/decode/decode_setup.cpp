#include "orvanverb/decode/decode_setup.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "decoders/ambisonic/all_rad_decoder.h"
#include "decoders/ambisonic/ambisonic_reorder.h"
#include "decoders/binaural/hoa_binaural_decoder.h"
#include "dsp/constants.h"
#include "dsp/orvan_dsp_exception.h"
#include "geometry/speakers.h"
#include "orvanverb/audio/channel_mask.h"
#include "orvanverb/audio/vector_channels.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/decode/transaural_filters.h"
#include "orvanverb/design/transaural_design.h"
#include "orvanverb/hrtf/ears_options.h"
#include "orvanverb/hrtf/engine_loading.h"
#include "orvanverb/hrtf/set_reading.h"
#include "orvanverb/layout/channel_words.h"
#include "pan/binaural/ambisonic_ears_fit.h"

namespace program {

namespace {

using Decoder = Lume::Decoder;

constexpr double settleSeconds = 0.25;  // gains slide for up to 60 ms, delays glide for 50

constexpr char const* fieldTypes[] = {"binaural", "ambix", "fuma"};  // in the order of DecodeSetup::Field

constexpr char const* allRad = "allrad";

/// The row of a type, by its name; that of null for what becomes of a sound field.
Lume::DecoderKind const& FindDecoder(std::string const& name) {
    const Decoder::Type type = Decoder::GetType(name.c_str());
    if (type == Decoder::null && std::find(std::begin(fieldTypes), std::end(fieldTypes), name) == std::end(fieldTypes))
        throw UsageError("--type: '" + name + "' is none; orvanverb decode --list shows them");
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

DecodeSetup::DecodeSetup(DecodeOptions const& options, unsigned int newNumInputs, int samplerate)
    : field(FieldOf(options.type)), kind(FindDecoder(options.type)), numInputs(newNumInputs) {
    if (field != Field::none) {
        SetUpField(options, samplerate);
        return;
    }
    if (options.hrtf) throw UsageError("--hrtf: is for the type binaural");
    if (SoundField::IsNeeded(options)) {
        if (kind.type != Decoder::hoa3d)
            throw UsageError("--fuma, --orientation, --scene: are for hoa3d, binaural, ambix and fuma");
        soundField = std::make_unique<SoundField>(options, numInputs);
    }
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
    if (kind.type == Decoder::hoa2d || kind.type == Decoder::hoa3d) hoa = static_cast<Lume::HOADecoder*>(decoder.get());
    if (kind.type == Decoder::transaural) transaural = static_cast<Lume::TransauralDecoder*>(decoder.get());
    SetUpHarmonics(options);
    if (kind.outputs == Lume::DecoderKind::Outputs::loudspeakers) {
        std::vector<Lume::CartesianVector> positions = layout.positions;
        if (options.ambix || soundField)
            for (Lume::CartesianVector& p : positions) p = ToAmbixAxes(p);
        decoder->SetLoudspeakerPositions(positions.data());
        channels = LoudspeakerWords(layout);
    } else {
        channels = Words(kind.type, NumOutputs());
    }
    CheckCondition(options);
    SetUpTransaural(options);
}

DecodeSetup::Field DecodeSetup::FieldOf(std::string const& type) {
    for (std::size_t i = 0; i < std::size(fieldTypes); ++i)
        if (type == fieldTypes[i]) return static_cast<Field>(i + 1);
    return Field::none;
}

void DecodeSetup::SetUpField(DecodeOptions const& options, int samplerate) {
    if (options.speakers || options.outputs || options.filters || options.subType != "null" || options.crossoverHz ||
        options.weights != "basic" || !options.hoaMethod.empty())
        throw UsageError("--type " + options.type + ": has no loudspeakers, networks or weights to choose");
    if (options.hrtf && field != Field::ears) throw UsageError("--hrtf: is for the type binaural");
    soundField = std::make_unique<SoundField>(options, numInputs);
    const unsigned int order = soundField->Order();
    const auto sn3d = Lume::AmbisonicChannels(order, Lume::SchmidtSeminormalized3D, Lume::IncreasingDegrees);
    if (field == Field::ears) {
        std::unique_ptr<Lume::Hrtf> set;
        if (options.hrtf) {
            EarsCache cache(samplerate, FittingOf(options));
            const std::string path = cache.Playable(*options.hrtf).string();
            RequireSetFile(path, ".hrtf or .coll");
            LoadQuietly(path, [&](std::string const& name) { set = std::make_unique<Lume::Hrtf>(name.c_str()); });
        } else {
            set = std::make_unique<Lume::Hrtf>(Lume::Hrtf::Builtin(static_cast<float>(samplerate)));
        }
        auto ears = std::make_unique<Lume::HOABinauralDecoder>(numInputs);
        try {
            ears->SetEars(Lume::MakeAmbisonicEars(std::move(set), static_cast<float>(samplerate), order,
                                                  Lume::SchmidtSeminormalized3D, true));
        } catch (orvandsp::OrvanDspException const&) {
            throw WorkError(options.hrtf.value_or("the built-in ears") +
                            ": is no set of biquads or impulse responses for two ears");
        }
        remark = "comes " + FixedText(1000.0 * static_cast<double>(ears->GetLatencySamples()) / samplerate, 1) +
                 " ms later than the sound field";
        decoder = std::move(ears);
        layout = SpeakerLayout::Channels(2, frontLeft | frontRight);
        channels = EarWords();
        return;
    }
    if (field == Field::fuma && order > 3)
        throw UsageError("--type fuma: has channels up to the order 3, the recording has the order " +
                         std::to_string(order));
    decoder = std::make_unique<Lume::AmbisonicReorder>(sn3d, field == Field::fuma ? Lume::FumaChannels(order) : sn3d);
    layout = SpeakerLayout::Channels(numInputs, 0);
    if (field == Field::ambix) {
        channels = HarmonicWords(Lume::SortedSphericalHarmonics(order, Lume::IncreasingDegrees), "SN3D", true);
        remark = AxesRemark(true);
    } else {
        for (const char letter : std::string("WXYZRSTUVKLMNOPQ").substr(0, numInputs)) channels.emplace_back(1, letter);
        remark = "FuMa: W is 3 dB softer, x ahead, y to the left";
    }
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
    if (options.ambix && kind.type != Decoder::hoa3d)
        throw UsageError("--ambix: is for hoa3d, binaural, ambix and fuma");
    if (hoa == nullptr) {
        if (options.convention || options.sorting || options.crossoverHz || options.weights != "basic" ||
            !options.hoaMethod.empty())
            throw UsageError("--convention, --sorting, --hoa-method, --weights, --crossover: are for hoa2d and hoa3d");
        return;
    }
    // What pan writes when nobody says otherwise, and what the sound field in front makes of everything.
    const std::string usual = kind.type == Decoder::hoa3d ? "SN3D" : "SN2D";
    const std::string convention = soundField ? usual : options.convention.value_or(usual);
    if (convention.ends_with("3D") != (kind.type == Decoder::hoa3d))
        throw UsageError("--convention: " + options.type + " has no " + convention);
    hoa->SetDecodingConvention(Lume::HOADecoder::GetHOADecodingConvention(convention.c_str()));
    if (!soundField) hoa->SetSphericalHarmonicsSorting(options.sorting.value_or("IncreasingDegrees").c_str());
    const std::string method =
        options.hoaMethod.empty() || options.hoaMethod == allRad ? "pseudoinverse" : options.hoaMethod;
    hoa->SetDecoderMethod(FindByName<Lume::HOADecoder::HOADecoderMethod>("--hoa-method", method, 2,
                                                                         Lume::HOADecoder::GetHOADecoderMethodName));
    hoa->SetDecoderType(FindByName<Lume::HOADecoder::HOADecoderType>("--weights", options.weights, 5,
                                                                     Lume::HOADecoder::GetHOADecoderTypeName));
    if (options.crossoverHz) hoa->SetCrossover(*options.crossoverHz);
}

void DecodeSetup::CheckCondition(DecodeOptions const& options) {
    if (hoa == nullptr) return;
    Lume::HOADecoder::HOADecoderInfos infos;
    hoa->GetDecoderInfos(infos);
    const bool suits = infos.conditionNumber <= Lume::HOADecoder::DecoderConditionningThreshold;
    const bool mayChoose =
        kind.type == Decoder::hoa3d && options.hoaMethod.empty() && options.weights == "basic" && !options.matrix;
    if (options.hoaMethod == allRad || (!suits && mayChoose)) {
        if (!suits && mayChoose)
            remark = "--hoa-method allrad is taken, as these loudspeakers don't suit the order's inversion (" +
                     FixedText(infos.conditionNumber, 1) + " dB)";
        UseAllRad(options);
    } else if (!suits) {
        warnings.push_back("the loudspeakers don't suit this order: a condition number of " +
                           FixedText(infos.conditionNumber, 1) +
                           " dB; --hoa-method allrad, a lower order, more or more even loudspeakers are better");
    }
}

void DecodeSetup::UseAllRad(DecodeOptions const& options) {
    if (kind.type != Decoder::hoa3d || options.weights != "basic" || options.crossoverHz || options.matrix)
        throw UsageError("--hoa-method allrad: is for hoa3d, and has its own weights and no --matrix");
    if (!soundField) soundField = std::make_unique<SoundField>(options, numInputs);
    std::vector<Lume::CartesianVector> positions = layout.positions;
    for (Lume::CartesianVector& p : positions) p = ToAmbixAxes(p);
    hoa = nullptr;
    decoder = std::make_unique<Lume::AllRadDecoder>(numInputs, NumOutputs());
    decoder->SetLoudspeakerPositions(positions.data());
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
    if (soundField) soundField->Start(samplerate, vectorSize);
    decoder->Configure(static_cast<float>(samplerate), blockLength.value_or(vectorSize), true);
    VectorChannels silence(numInputs, vectorSize);
    VectorChannels discarded(NumOutputs(), vectorSize);
    for (double seconds = 0.0; seconds < settleSeconds; seconds += static_cast<double>(vectorSize) / samplerate)
        Process(discarded.Pointers(), silence.Pointers());
}

std::vector<std::string> DecodeSetup::Advance(std::uint64_t beforeFrame) {
    return soundField ? soundField->Advance(beforeFrame) : std::vector<std::string>{};
}

void DecodeSetup::Process(float** outputs, float** inputs) {
    const unsigned int block = blockLength.value_or(vectorSize);
    if (soundField) inputs = soundField->Process(inputs);
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
    text +=
        "binaural      4, 9, 16 ... 64 ambisonic channels to headphones\n"
        "ambix         4, 9, 16 ... 64 ambisonic channels to those of other tools: ACN, SN3D, x ahead\n"
        "fuma          4, 9 or 16 ambisonic channels to W X Y Z, R S T U V, K L M N O P Q\n";
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
