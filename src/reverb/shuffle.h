#pragma once

#include <vector>

#include "dsp/audio_buffer.h"
#include "dsp/signal_processing.h"

namespace Lume {

/// The mixing matrix of the reverberation networks: N channels to N channels, orthogonal, so that the energy of every
/// input is kept, followed by a fixed permutation of the channels.
///
/// | N              | matrix                                                                               |
/// |----------------|--------------------------------------------------------------------------------------|
/// | 12             | three Hadamard matrices of order 4 on channels 0-3, 4-7, 8-11, times 1/2             |
/// | a power of two | the Hadamard matrix of order N, times 1/sqrt(N)                                      |
/// | any other      | the Householder reflection I - (2/N) J, J being all ones                             |
///
/// After J.-M. Jot and A. Chaigne, "Digital delay networks for designing artificial reverberators", 90th AES
/// Convention, 1991. The Hadamard matrix of natural order is its own inverse: without the permutation the second pass
/// through a feedback loop would undo the first one.
class Shuffle : public orvandsp::SignalProcessing {
public:
    /// @param numChannels  N, at most orvandsp::MaxNumChannels
    explicit Shuffle(unsigned int numChannels);

    /// Switches the permutation behind the matrix; on in a new object.
    void UsePermutation(bool use);

    /// Mixes all channels, also the inactive ones. Outputs may be the inputs. Real-time safe as long as numSamples
    /// never exceeds the largest block so far.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;

    void SetSamplerate(float newSamplerate) override;
    /// Process itself calls it for a block of another length.
    void SetMaxBlockSize(unsigned int blockSize) override;
    /// The block has no memory: nothing to clear.
    void Clear() override;

    /// For each output channel the mixed channel that it takes.
    /// @param n  at least 1
    static std::vector<unsigned int> GetPermutationForChannels(unsigned int n);

private:
    enum MixingType : int { general = 0, hadamard = 1, twelveChannels = 2 };

    static MixingType MixingTypeForChannels(unsigned int n);

    void MixGeneral(unsigned int numSamples);

    orvandsp::AudioBuffer work;
    unsigned int numChannels;
    std::vector<float> sum;  // of all channels, in the general case
    std::vector<unsigned int> permutation;
    std::vector<unsigned int> identity;
    MixingType mixingType;
    bool usePermutation = true;
};

}  // namespace Lume
