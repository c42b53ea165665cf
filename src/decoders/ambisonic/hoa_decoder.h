#pragma once

#include <vector>

#include "decoders/ambisonic/multi_ambisonic_shelving.h"
#include "decoders/decoder.h"
#include "dsp/audio_buffer.h"
#include "harmonics/spherical_harmonics.h"
#include "math/real_matrix.h"
#include "mix/signal_matrix.h"

namespace Lume {

/// Frame of the ambisonic decoders of any order: channels into loudspeaker feeds through one matrix of gains, which is
/// computed from the loudspeaker positions, with weights per degree before it (Daniel, "Représentation de champs
/// acoustiques", thesis, Université Paris 6, 2000).
///
/// Positions are in the listener's frame, azimuths as HOAPanning has them: what that encodes, this decodes. Distances
/// make no difference. New gains slide. Until the loudspeakers are set they stand on a regular ring.
class HOADecoder : public Decoder {
public:
    /// How the matrix is made.
    enum HOADecoderMethod : int {
        projection = 0,     ///< each loudspeaker takes the sound field in its own direction
        pseudoinverse = 1,  ///< re-encoding the feeds gives the channels back, as far as the layout allows
    };

    /// Which weights apply.
    enum HOADecoderType : int {
        basic = 0,        ///< none
        inphase = 1,      ///< in-phase weights; for large audiences
        maxre = 2,        ///< max-rE weights
        basicmaxre = 3,   ///< none below the crossover, max-rE above
        maxreinphase = 4  ///< in-phase weights below the crossover, max-rE above
    };

    /// How the channels are scaled; see SphericalHarmonicsNormalization.
    enum HOADecodingConvention : int { SN3D = 0, N3D = 1, SN2D = 4, N2D = 5 };

    struct HOADecoderInfos {
        unsigned int order = 0;
        HOADecoderMethod decoderMethod = pseudoinverse;
        HOADecoderType decoderType = basic;
        unsigned int dimensionFlag = 1;  // 1 in space, 0 in the plane
        HOADecodingConvention decodingConvention = SN3D;
        double conditionNumber = 0.0;  // [dB]
        double regularity = 0.0;       // CheckLoudspeakersSetupRegularity()
        double semiRegularity = 0.0;   // CheckLoudspeakersSetupSemiRegularity()
        SphericalHarmonicsSorting sorting = IncreasingDegrees;
    };

    /// A condition number beyond which a layout is doubtful [dB], for users: nothing here depends on it.
    static constexpr double DecoderConditionningThreshold = 20.0;

    void SetLoudspeakerPositions(CartesianVector const* positions) override;

    /// Stores the convention as far as the decoder's dimension has it, and computes the matrix anew.
    virtual void SetDecodingConvention(HOADecodingConvention convention) = 0;

    /// Computes both matrices, the condition number and the weights from the positions.
    virtual void computeReencodingMatrix() = 0;
    /// The gains of one loudspeaker in the matrix in use. @param gains  one per input
    virtual void getSpeakerGains(unsigned int speaker, double* gains) const;

    /// Computes the matrix anew, for the present positions.
    void forceUpdate() { SetLoudspeakerPositions(speakerPositions.data()); }

    /// Each computes the matrix anew; a value that is none changes nothing. New gains slide, weights jump.
    void SetDecoderMethod(HOADecoderMethod method);
    void SetDecoderType(HOADecoderType type);
    void SetSphericalHarmonicsSorting(SphericalHarmonicsSorting newSorting);
    /// By names; an unknown one counts as the value 0.
    void SetDecoderMethod(char const* name) { SetDecoderMethod(GetHOADecoderMethod(name)); }
    void SetDecoderType(char const* name) { SetDecoderType(GetHOADecoderType(name)); }
    void SetDecodingConvention(char const* name) { SetDecodingConvention(GetHOADecodingConvention(name)); }
    void SetSphericalHarmonicsSorting(char const* name);

    /// The crossover of the types with two bands [Hz].
    void SetCrossover(float frequency) { shelving.SetCrossover(frequency); }

    /// The matrix in use: a row per channel, a column per loudspeaker.
    void GetDecoderMatrix(orvandsp::MatrixDouble& matrix) const;
    void GetDecoderInfos(HOADecoderInfos& infos) const;

    /// How regular a layout is, as determinants with E the channels by loudspeakers matrix of the projection decoder:
    /// of E transpose(E) / numOutputs, and of E transpose(E).
    double CheckLoudspeakersSetupRegularity() const;
    double CheckLoudspeakersSetupSemiRegularity() const;

    /// Decodes. The types inphase and maxre weight the input arrays themselves, which hold the weighted signals
    /// afterwards (kept: quirks.md 27). Real-time safe while the block length is steady.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;

    static HOADecoderMethod GetHOADecoderMethod(char const* name);
    static HOADecoderType GetHOADecoderType(char const* name);
    static HOADecodingConvention GetHOADecodingConvention(char const* name);
    /// Empty for a value that is none.
    static char const* GetHOADecoderMethodName(HOADecoderMethod method);
    static char const* GetHOADecoderTypeName(HOADecoderType type);
    static char const* GetHOADecodingConventionName(HOADecodingConvention convention);

protected:
    /// @param numInputs, numOutputs  at most MaxNumChannels each
    HOADecoder(unsigned int numInputs, unsigned int numOutputs, HOADecoderMethod method, HOADecoderType type,
               HOADecodingConvention convention);

    /// What the dimensions share of computeReencodingMatrix: from the encoding vector of each loudspeaker.
    void ComputeMatrices(std::vector<std::vector<double>> const& encodings);

    unsigned int order = 0;
    HOADecoderMethod decoderMethod;
    HOADecoderType decoderType;
    unsigned int dimensionFlag = 1;  // only reported
    HOADecodingConvention decodingConvention;
    SignalMatrix mixer;
    orvandsp::MatrixDouble encodingMatrix;  // the projection decoder
    orvandsp::MatrixDouble decodingMatrix;
    double conditionNumber = 0.0;  // [dB]
    std::vector<CartesianVector> speakerPositions;
    SphericalHarmonicsSorting sorting = IncreasingDegrees;
    MultiAmbisonicShelving shelving;
    std::vector<double> maxReGains;
    std::vector<double> inPhaseGains;

private:
    void ProcessBands(float** outputs, float** inputs, unsigned long numSamples);

    orvandsp::AudioBuffer low;
    orvandsp::AudioBuffer high;
};

}  // namespace Lume
