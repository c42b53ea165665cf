#pragma once

#include "decoders/decoder.h"
#include "decoders/null_decoder.h"
#include "hrtf/hrtf_header_infos.h"
#include "parameters/lume_default_parameters.h"

namespace Lume {

/// Frame of the decoders that play binaural signals over two loudspeakers: they cancel the crosstalk from each
/// loudspeaker to the far ear, so that a listener in the middle hears the binaural signals (Atal and Schroeder,
/// "Apparent sound source translator", US patent 3236949, 1966).
///
/// Two inputs, the left and the right ear's signal, and two outputs, the left and the right loudspeaker. The members
/// differ in the network of their filters, and with it in the data that they take; without data they are silent. A set
/// is used at the rate that it was made for: nothing is converted.
///
/// Setters and LoadFromFile belong to the control thread and must not overlap Process.
class TransauralDecoder : public Decoder {
public:
    /// Two and two channels, whatever the arguments are. The loudspeakers stand at 30 degrees on either side.
    TransauralDecoder(unsigned int numInputs, unsigned int numOutputs);

    /// Whether the loudspeakers last set mirror each other; false until they are set.
    bool IsSpeakersSetupSymmetric() const noexcept { return speakersSetupSymmetric; }
    /// Whether this is a TransauralDecoderRecursiveAsymmetric.
    bool IsTransauralRecursiveAsymmetric() const { return isFor(hrtfBinauralToTransauralRecursiveAsymmetric); }
    /// Whether this is one of the two feed-forward forms.
    bool IsTransauralDecoderFeedforward() const {
        return isFor(hrtfBinauralToTransauralFeedForwardSymmetric) ||
               isFor(hrtfBinauralToTransauralFeedForwardAsymmetric);
    }
    /// Whether this is a TransauralDecoderShufflerSymmetric.
    bool IsTransauralDecoderShufflerSymmetric() const { return isFor(hrtfBinauralToTransauralShufflerSymmetric); }

    /// Sets the two loudspeakers, in any order: the one further to the left is the left one. Takes the filters for
    /// them. The setup counts as symmetric if the positions mirror each other to within 5 cm in each coordinate.
    void SetLoudspeakerPositions(CartesianVector const* positions) override;
    void GetSpeakersPositions(CartesianVector& left, CartesianVector& right) const;

    /// Sets the distance of the ears from the centre of the head [m], limited to 0.01 to 0.25.
    void SetListenerHeadRadius(float metres);
    float GetListenerHeadRadius() const noexcept { return rightEar.x; }  ///< [m]

    /// Takes a set of filters ("kemar" or an empty name: the built-in one, where there is one for the network). It must
    /// be of the expected type, with the expected number of filters, of a kind that the network can process.
    /// @return whether the set suits; if not, nothing changes
    /// @throws orvandsp::OrvanDspException for a file that can't be read; nothing changes then, either
    virtual bool LoadFromFile(char const* path) = 0;

    virtual bool CanProcessThisTypeOfFilter(HrtfFilterType type) const = 0;
    /// How many filters each point of a set must hold.
    virtual unsigned int getExpectedNumberOfFiltersInHrtfFiles() const = 0;
    /// What a set must be made for.
    virtual HrtfType getExpectedHrtfTypeInHrtfFiles() const = 0;
    /// The description of the loaded set, or null. It lives until the next LoadFromFile.
    virtual HrtfHeaderInfos const* GetHrtfHeaderInfos() const = 0;

    /// Takes the filters for the loudspeakers from the set, those of the nearest point; without a set nothing changes.
    virtual void updateFiltersCoefficients() = 0;

protected:
    /// Whether a set with this description suits.
    bool canUse(HrtfHeaderInfos const& infos) const;

    CartesianVector leftSpeaker{-0.5f, 0.8660254f, 0.0f};
    CartesianVector rightSpeaker{0.5f, 0.8660254f, 0.0f};
    CartesianVector leftEar{-LumeDefaultParameters::DefaultHeadRadius, 0.0f, 0.0f};
    CartesianVector rightEar{LumeDefaultParameters::DefaultHeadRadius, 0.0f, 0.0f};
    bool speakersSetupSymmetric = false;

private:
    /// Each network has a type of set of its own.
    bool isFor(HrtfType type) const { return getExpectedHrtfTypeInHrtfFiles() == type; }
};

/// What Create of each member does: a T for two and two channels, a NullDecoder for others.
template <typename T>
Decoder* CreateTransauralDecoder(unsigned int numInputs, unsigned int numOutputs) {
    if (numInputs != 2 || numOutputs != 2) return NullDecoder::Create(numInputs, numOutputs);
    return new T(numInputs, numOutputs);
}

}  // namespace Lume
