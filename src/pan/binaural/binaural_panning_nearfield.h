#pragma once

#include <memory>
#include <string>
#include <vector>

#include "dsp/ramp.h"
#include "hrtf/hrtf.h"
#include "hrtf/hrtf_filtering.h"
#include "hrtf/nearfield_compensation_filters.h"
#include "pan/binaural/binaural_panning.h"
#include "pan/binaural/ear_pairs.h"
#include "pan/null_panning.h"

namespace Lume {

/// Binaural panner with measured filters for sources that may come close to the head: each ear takes the direction in
/// which it sees the source (after Romblom and Cook, "Near-field compensation for HRTF processing", 125th AES
/// Convention, 2008), levels follow the distance, and further filters, if a set of them is loaded, turn the measured
/// far responses into near ones.
///
/// It starts with the built-in set and without compensation filters. A source sounds as measured on the sphere of the
/// measurement, and fades in with its first position. Every change glides.
class BinauralPanningNearfield : public BinauralPanning {
public:
    BinauralPanningNearfield(unsigned int numInputs, unsigned int numOutputs);

    /// A NullPanning for any number of outputs but two.
    static Pan* Create(unsigned int numInputs, unsigned int numOutputs);

    /// Takes a set of binaural filters in biquad or FIR form ("kemar" or an empty name: the built-in one).
    /// @return whether the set suits; if not, the old one stays
    /// @throws orvandsp::OrvanDspException for a file that can't be read; the old set stays then, too
    bool LoadFromFile(char const* path) override { return SetHrtf(std::make_unique<Hrtf>(path)); }
    /// The same with a set that was loaded.
    bool SetHrtf(std::unique_ptr<Hrtf> newHrtf);
    HrtfHeaderInfos const* GetHrtfHeaderInfos() const override { return &hrtf->GetHrtfHeaderInfos(); }
    /// The same for a set of near-field compensation filters.
    bool LoadCompensationFilters(char const* path);
    /// The header of the compensation filters, or null.
    HrtfHeaderInfos const* GetCompensationFiltersInfo() const {
        return compensationFilters ? &compensationFilters->GetHrtfHeaderInfos() : nullptr;
    }

    /// What is done to the sources. Each of these places every source again.
    void EnableHrtfFilters(bool enabled) { Enable(hrtfFilters, enabled); }            // on at first
    void EnableNearfieldFilters(bool enabled) { Enable(nearfieldFilters, enabled); }  // on at first
    void EnableDistanceAttenuation(bool enabled) {
        Enable(distanceAttenuation, enabled);
    }  // level by 1 / distance; on at first
    void EnableCrossEarsHrtfSelection(bool enabled) {
        Enable(crossEarsSelection, enabled);
    }  // a direction for each ear; on at first
    void EnableDelaysCorrection(bool enabled) {
        Enable(delaysCorrection, enabled);
    }  // delays by the ears' distances from their directions' points
    void EnableGainsCorrection(bool enabled) {
        Enable(gainsCorrection, enabled);
    }  // level by 1 / distance from each ear

    /// Kept between 0 and the radius of the measurement. Reaches each source with its next position.
    void SetListenerHeadRadius(float metres) override;
    /// Sources don't get louder within this distance; at least the head's radius. Places every source again.
    void SetMinimumRadiusAroundListener(float metres);
    /// Radius of the sphere on which the filters were measured, where the level is 1. Reaches each source with its next
    /// position.
    void SetHRTFMeasurementSphereRadius(float metres) { measurementSphereRadius = metres; }

    /// Change how the ears are filtered. @param update  places every source again
    void setHrtfFilterType(HRTFFilterType type, bool update);
    void setNearfieldFilterType(HRTFFilterType type, bool update);

    /// Crossfade time of all filters, and time of the gains' next slides that aren't told their own [ms].
    void SetFilterCrossFadeTime(float milliseconds) override;
    using BinauralPanning::SetFIRFiltersImplementationMethod;
    void SetFIRFiltersImplementationMethod(orvandsp::Filter::FIRImplementation implementation) override;
    /// The flag makes no difference here.
    void setSourceRelativePosition(unsigned int index, CartesianVector const& position, bool flag) override;

    // The steps of the choice of directions, open to tools that show them.

    /// The measured direction for each ear. A source within the minimum radius is lifted onto its sphere first.
    void getCrossEarsHRTFPoints(CartesianVector const& position, HrtfPoint& left, HrtfPoint& right) const;
    /// Where the line from an ear through a position meets the sphere of the measurement.
    CartesianVector getCrossEarsPosition(CartesianVector const& position, CartesianVector const& ear) const;

    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void ProcessAdding(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    /// Silences the filters. Gains that are on their way go on.
    void Clear() override;
    void SetNumInputs(unsigned int newNumInputs) override;
    /// Glide time of the delays [ms].
    void SetInterpolationTime(float milliseconds) override;

private:
    enum Option : unsigned int {
        hrtfFilters = 1,
        nearfieldFilters = 2,
        distanceAttenuation = 4,
        crossEarsSelection = 8,
        delaysCorrection = 16,
        gainsCorrection = 32,
    };
    void Enable(Option option, bool enabled);
    bool IsEnabled(Option option) const noexcept { return (options & option) != 0; }
    void SetEars();

    void SelectPoints(unsigned int index, CartesianVector const& position);
    void SetGains(unsigned int index, CartesianVector const& position);
    void SetDelays(unsigned int index, CartesianVector const& position);
    void RunVoice(unsigned int index, float* input, unsigned long numSamples);

    HRTFFilterType hrtfFilterType = biquadFilters;
    HRTFFilterType nearfieldFilterType = noFilter;
    std::unique_ptr<Hrtf> hrtf;                                         // never null
    std::unique_ptr<NearfieldCompensationFilters> compensationFilters;  // null until loaded
    unsigned int numHrtfCoefficients = 25;                              // per ear
    unsigned int numNearfieldCoefficients = 25;                         // per ear
    unsigned int options = hrtfFilters | nearfieldFilters | distanceAttenuation | crossEarsSelection;
    float minimumRadius = LumeDefaultParameters::MinRadius;                                     // [m]
    float measurementSphereRadius = LumeDefaultParameters::DefaultHRTFMeasurementSphereRadius;  // [m]
    CartesianVector headCentre;
    CartesianVector leftEar;
    CartesianVector rightEar;
    // One per input:
    EarPairs<HrtfFiltering> hrtfChains;
    EarPairs<HrtfFiltering> nearfieldChains;
    std::vector<orvandsp::Ramp> leftGains;
    std::vector<orvandsp::Ramp> rightGains;
    std::vector<float> leftGainValues;  // where the ramps go
    std::vector<float> rightGainValues;
    std::vector<HrtfPoint> leftPoints;
    std::vector<HrtfPoint> rightPoints;
    std::vector<float> leftDelays;  // [ms]
    std::vector<float> rightDelays;

    std::vector<float> leftBuffer;
    std::vector<float> rightBuffer;
};

}  // namespace Lume
