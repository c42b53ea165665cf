#pragma once

#include <memory>
#include <string>
#include <vector>

#include "decoders/decoder.h"
#include "orvanverb/options.h"
#include "orvanverb/speaker_layout.h"

namespace program {

/// A decoder as the options ask for it, and what its channels are.
class DecodeSetup {
public:
    /// @throws ProgramError that names option or file, and says what is wrong
    DecodeSetup(Options const& options, unsigned int numInputs);

    /// Announces the rate and runs over silence until the gains have come to where they belong.
    void Start(int samplerate, unsigned int vectorSize);

    unsigned int NumInputs() const { return numInputs; }
    unsigned int NumOutputs() const { return static_cast<unsigned int>(layout.fileOrder.size()); }

    /// Order, condition number, regularity and gains of an ambisonic decoder, a line each.
    /// @throws UsageError for another one
    std::string MatrixText() const;

    std::unique_ptr<Lume::Decoder> decoder;
    SpeakerLayout layout;               // positions only if the outputs are loudspeakers
    std::vector<std::string> channels;  // in words, in the order of the file
    std::vector<std::string> warnings;

private:
    void ChooseOutputs(Options const& options);
    void SetUpHarmonics(DecodeOptions const& options);
    void CheckCondition();
    void SetUpTransaural(Options const& options);

    Lume::Decoder::Type type;
    unsigned int numInputs;
};

/// What --list prints: each type with its numbers of channels, the networks of the transaural one, and the weights of
/// the ambisonic ones.
std::string DecoderList();

}  // namespace program
