#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "decoders/ambisonic/hoa_decoder.h"
#include "decoders/decoder_factory.h"
#include "decoders/transaural/transaural_decoder.h"
#include "orvanverb/decode/decode_options.h"
#include "orvanverb/decode/sound_field.h"
#include "orvanverb/layout/speaker_layout.h"

namespace program {

/// A decoder as the options ask for it, and what its channels are.
class DecodeSetup {
public:
    /// @throws ProgramError that names option or file, and says what is wrong
    /// @param samplerate  of the recording [Hz], for which ears are made
    DecodeSetup(DecodeOptions const& options, unsigned int numInputs, int samplerate);

    /// Announces the rate and runs over silence until the gains have come to where they belong.
    /// @param newVectorSize  samples of each call of Process, at least those of a block that the filters prescribe
    void Start(int samplerate, unsigned int newVectorSize);

    /// What a scene has before a frame, counted from the recording's first.
    /// @return lines to be shown
    std::vector<std::string> Advance(std::uint64_t beforeFrame);

    /// What to say of a scene that goes on behind the end; empty if it doesn't.
    std::string PendingRemark() const { return soundField ? soundField->PendingRemark() : std::string(); }

    /// Runs the decoder over one vector, in the blocks that its filters prescribe if they do so.
    void Process(float** outputs, float** inputs);

    /// What to tell of filters that were made for another rate; empty if there is nothing.
    std::string RateRemark(int samplerate) const;

    /// Whether nothing sounds behind the end: a sound field stays one.
    bool EndsWithTheInput() const { return field == Field::ambix || field == Field::fuma; }

    unsigned int NumInputs() const { return numInputs; }
    unsigned int NumOutputs() const { return layout.NumOutputs(); }

    /// Order, condition number, regularity and gains of an ambisonic decoder, a line each.
    /// @throws UsageError for another one
    std::string MatrixText() const;

    std::unique_ptr<Lume::Decoder> decoder;
    SpeakerLayout layout;               // positions only if the outputs are loudspeakers
    std::vector<std::string> channels;  // in words, in the order of the file
    std::vector<std::string> warnings;
    std::string remark;                       // what else there is to tell of the channels; empty: nothing
    std::optional<unsigned int> blockLength;  // samples, of a network whose filters were made for blocks of a length

private:
    /// What becomes of a sound field beyond the decoders of the library.
    enum class Field { none, ears, ambix, fuma };

    static Field FieldOf(std::string const& type);
    void SetUpField(DecodeOptions const& options, int samplerate);
    void ChooseOutputs(DecodeOptions const& options);
    void SetUpHarmonics(DecodeOptions const& options);
    void CheckCondition(DecodeOptions const& options);
    void UseAllRad(DecodeOptions const& options);
    void SetUpTransaural(DecodeOptions const& options);

    Field field;
    Lume::DecoderKind const& kind;
    std::unique_ptr<SoundField> soundField;         // in front of the decoder, if there is anything to do
    Lume::HOADecoder* hoa = nullptr;                // the decoder, if it is one of harmonics
    Lume::TransauralDecoder* transaural = nullptr;  // the decoder, if it is transaural
    unsigned int numInputs;
    unsigned int vectorSize = 0;
    std::string filters;  // the file's name; empty for built-in ones
};

/// What --list prints: each type with its numbers of channels, the networks of the transaural one, and the weights of
/// the ambisonic ones.
std::string DecoderList();

}  // namespace program
