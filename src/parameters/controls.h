#pragma once

#include "parameters/control.h"
#include "parameters/hl_shelf_parameters.h"
#include "parameters/lume_default_parameters.h"
#include "parameters/reverb_dsp_parameters.h"

namespace Lume {

/// Every scalar of the room, in one place: what is written here is what the object's attributes, options, state files,
/// plug-ins' lists and the documents' tables say. Files that list the controls keep this order.
///
/// A new control is a row here, and a setter and a getter in the engine. Its attribute is null: the object's attributes
/// are a fixed set, and the control reaches people by its name.
template <class E>
struct Controls {
    using P = LumeDefaultParameters;
    using Shelf = HLShelfParameters;
    using Late = ReverbDspParameters;
    using enum Scale;
    using enum ControlGroup;
    using enum Change;
    using enum OutOfRange;

    /// Where the bands of a new room's shelves meet [Hz]. A shelf by itself has others.
    static constexpr float shelfFreqLow = 177.0f;
    static constexpr float shelfFreqHigh = 5657.0f;

    // clang-format off
    static constexpr Control<E> rows[] = {
        {"gain", "gain", 0, "late reverberation gain", "reverb level", "dB",
         P::MinHLShelfGaindB, P::MaxHLShelfGaindB, P::DefaultReverbGain, linear, late, ramps, taken,
         Set<E, &E::SetReverbGain>, GetMember<E, &E::GetReverbParameters, &Late::gain>},
        {"modaldensity", "modaldensity", 0, "modal density", "size", "s",
         P::MinReverbModalDensity, P::MaxReverbModalDensity, P::DefaultReverbModalDensity, logarithmic, late, jumps, limited,
         Set<E, &E::SetReverbModalDensity>, Get<E, &E::GetReverbModalDensity>},
        {"tr0", "tr0", 0, "global decay time", "RT60", "s",
         P::MinDecayTime, P::MaxDecayTime, P::DefaultDecayTime, logarithmic, late, jumps, taken,
         Set<E, &E::SetDecayTime>, GetMember<E, &E::GetReverbParameters, &Late::decayTime>},
        {"trl", "trl", 0, "relative decay time at low freq", "bass multiplier", "",
         P::MinDecayTimeLow, P::MaxDecayTimeLow, P::DefaultRelativeDecayLow, logarithmic, late, jumps, taken,
         Set<E, &E::SetRelativeDecayLow>, GetMember<E, &E::GetReverbParameters, &Late::relativeDecayLow>},
        {"trm", "trm", 0, "relative decay time at med freq", "mid multiplier", "",
         P::MinDecayTimeMed, P::MaxDecayTimeMed, P::DefaultRelativeDecayMedium, logarithmic, late, jumps, taken,
         Set<E, &E::SetRelativeDecayMedium>, GetMember<E, &E::GetReverbParameters, &Late::relativeDecayMedium>},
        {"trh", "trh", 0, "relative decay time at high freq", "treble multiplier, damping", "",
         P::MinDecayTimeHigh, P::MaxDecayTimeHigh, P::DefaultRelativeDecayHigh, logarithmic, late, jumps, taken,
         Set<E, &E::SetRelativeDecayHigh>, GetMember<E, &E::GetReverbParameters, &Late::relativeDecayHigh>},
        {"fl", "fl", 0, "low/med crossover frequency", "low crossover", "Hz",
         P::MinHLShelfFrequency, P::MaxHLShelfFrequency, P::DefaultReverbCrossoverFrequencyLow, logarithmic, late, jumps, taken,
         Set<E, &E::SetReverbCrossoverFrequencyLow>, GetMember<E, &E::GetReverbParameters, &Late::crossoverFrequencyLow>},
        {"fh", "fh", 0, "med/high crossover frequency", "high crossover", "Hz",
         P::MinHLShelfFrequency, P::MaxHLShelfFrequency, P::DefaultReverbCrossoverFrequencyHigh, logarithmic, late, jumps, taken,
         Set<E, &E::SetReverbCrossoverFrequencyHigh>, GetMember<E, &E::GetReverbParameters, &Late::crossoverFrequencyHigh>},
        {"air", "air", 0, "air absorption", "air absorption", "",
         0.0f, 1.0f, 0.0f, onOff, late, jumps, limited,
         Switch<E, &E::UseAirAbsorption>, Get<E, &E::UsesAirAbsorption>},
        {"airfreq", "airfreq", 0, "air rolloff frequency", "high cut", "Hz",
         P::MinHLShelfFrequency, P::MaxHLShelfFrequency, P::DefaultAirRolloffFrequency, logarithmic, late, jumps, taken,
         Set<E, &E::SetAirAbsorptionRolloffFrequency>, Get<E, &E::GetAirAbsorptionRolloffFrequency>},
        {"infinite", "infinite", 0, "infinite reverb", "freeze", "",
         0.0f, 1.0f, 0.0f, onOff, late, jumps, limited,
         Switch<E, &E::SetInfinite>, Get<E, &E::IsInfinite>},
        {"direct_gain", "direct", 0, "direct gain", "dry level", "dB",
         P::MinHLShelfGlobalGaindB, P::MaxHLShelfGlobalGaindB, P::HLShelfDefaultGain, linear, direct, ramps, taken,
         Set<E, &E::SetDirectGain>, GetMember<E, &E::GetDirectParameters, &Shelf::gain>},
        {"direct_gain_low", "direct", 1, "direct gain, low band", "direct low shelf", "dB",
         P::MinHLShelfGaindB, P::MaxHLShelfGaindB, P::HLShelfDefaultGainLow, linear, direct, ramps, taken,
         Set<E, &E::SetDirectGainLow>, GetMember<E, &E::GetDirectParameters, &Shelf::gainLow>},
        {"direct_gain_medium", "direct", 2, "direct gain, medium band", "direct mid band", "dB",
         P::MinHLShelfGaindB, P::MaxHLShelfGaindB, P::HLShelfDefaultGainMed, linear, direct, ramps, taken,
         Set<E, &E::SetDirectGainMedium>, GetMember<E, &E::GetDirectParameters, &Shelf::gainMed>},
        {"direct_gain_high", "direct", 3, "direct gain, high band", "direct high shelf", "dB",
         P::MinHLShelfGaindB, P::MaxHLShelfGaindB, P::HLShelfDefaultGainHigh, linear, direct, ramps, taken,
         Set<E, &E::SetDirectGainHigh>, GetMember<E, &E::GetDirectParameters, &Shelf::gainHigh>},
        {"direct_freq_low", "direct", 4, "direct low/med crossover frequency", "direct low crossover", "Hz",
         P::MinHLShelfFrequency, P::MaxHLShelfFrequency, shelfFreqLow, logarithmic, direct, ramps, taken,
         Set<E, &E::SetDirectCrossoverFrequencyLow>, GetMember<E, &E::GetDirectParameters, &Shelf::freqLow>},
        {"direct_freq_high", "direct", 5, "direct med/high crossover frequency", "direct high crossover", "Hz",
         P::MinHLShelfFrequency, P::MaxHLShelfFrequency, shelfFreqHigh, logarithmic, direct, ramps, taken,
         Set<E, &E::SetDirectCrossoverFrequencyHigh>, GetMember<E, &E::GetDirectParameters, &Shelf::freqHigh>},
        {"room_gain", "room", 0, "room gain", "wet level", "dB",
         P::MinHLShelfGlobalGaindB, P::MaxHLShelfGlobalGaindB, P::HLShelfDefaultGain, linear, room, ramps, taken,
         Set<E, &E::SetRoomGain>, GetMember<E, &E::GetRoomParameters, &Shelf::gain>},
        {"room_gain_low", "room", 1, "room gain, low band", "room low shelf", "dB",
         P::MinHLShelfGaindB, P::MaxHLShelfGaindB, P::HLShelfDefaultGainLow, linear, room, ramps, taken,
         Set<E, &E::SetRoomGainLow>, GetMember<E, &E::GetRoomParameters, &Shelf::gainLow>},
        {"room_gain_medium", "room", 2, "room gain, medium band", "room mid band", "dB",
         P::MinHLShelfGaindB, P::MaxHLShelfGaindB, P::HLShelfDefaultGainMed, linear, room, ramps, taken,
         Set<E, &E::SetRoomGainMedium>, GetMember<E, &E::GetRoomParameters, &Shelf::gainMed>},
        {"room_gain_high", "room", 3, "room gain, high band", "room high shelf", "dB",
         P::MinHLShelfGaindB, P::MaxHLShelfGaindB, P::HLShelfDefaultGainHigh, linear, room, ramps, taken,
         Set<E, &E::SetRoomGainHigh>, GetMember<E, &E::GetRoomParameters, &Shelf::gainHigh>},
        {"room_freq_low", "room", 4, "room low/med crossover frequency", "room low crossover", "Hz",
         P::MinHLShelfFrequency, P::MaxHLShelfFrequency, shelfFreqLow, logarithmic, room, ramps, taken,
         Set<E, &E::SetRoomCrossoverFrequencyLow>, GetMember<E, &E::GetRoomParameters, &Shelf::freqLow>},
        {"room_freq_high", "room", 5, "room med/high crossover frequency", "room high crossover", "Hz",
         P::MinHLShelfFrequency, P::MaxHLShelfFrequency, shelfFreqHigh, logarithmic, room, ramps, taken,
         Set<E, &E::SetRoomCrossoverFrequencyHigh>, GetMember<E, &E::GetRoomParameters, &Shelf::freqHigh>},
        {"early_gain", "early", 0, "early gain", "early level", "dB",
         P::MinHLShelfGlobalGaindB, P::MaxHLShelfGlobalGaindB, P::HLShelfDefaultGain, linear, early, ramps, taken,
         Set<E, &E::SetEarlyGain>, GetMember<E, &E::GetEarlyParameters, &Shelf::gain>},
        {"early_gain_low", "early", 1, "early gain, low band", "early low shelf", "dB",
         P::MinHLShelfGaindB, P::MaxHLShelfGaindB, P::HLShelfDefaultGainLow, linear, early, ramps, taken,
         Set<E, &E::SetEarlyGainLow>, GetMember<E, &E::GetEarlyParameters, &Shelf::gainLow>},
        {"early_gain_medium", "early", 2, "early gain, medium band", "early mid band", "dB",
         P::MinHLShelfGaindB, P::MaxHLShelfGaindB, P::HLShelfDefaultGainMed, linear, early, ramps, taken,
         Set<E, &E::SetEarlyGainMedium>, GetMember<E, &E::GetEarlyParameters, &Shelf::gainMed>},
        {"early_gain_high", "early", 3, "early gain, high band", "early high shelf", "dB",
         P::MinHLShelfGaindB, P::MaxHLShelfGaindB, P::HLShelfDefaultGainHigh, linear, early, ramps, taken,
         Set<E, &E::SetEarlyGainHigh>, GetMember<E, &E::GetEarlyParameters, &Shelf::gainHigh>},
        {"early_freq_low", "early", 4, "early low/med crossover frequency", "early low crossover", "Hz",
         P::MinHLShelfFrequency, P::MaxHLShelfFrequency, shelfFreqLow, logarithmic, early, ramps, taken,
         Set<E, &E::SetEarlyCrossoverFrequencyLow>, GetMember<E, &E::GetEarlyParameters, &Shelf::freqLow>},
        {"early_freq_high", "early", 5, "early med/high crossover frequency", "early high crossover", "Hz",
         P::MinHLShelfFrequency, P::MaxHLShelfFrequency, shelfFreqHigh, logarithmic, early, ramps, taken,
         Set<E, &E::SetEarlyCrossoverFrequencyHigh>, GetMember<E, &E::GetEarlyParameters, &Shelf::freqHigh>},
        {"cluster_gain", "cluster", 0, "cluster gain", "diffuse level", "dB",
         P::MinHLShelfGlobalGaindB, P::MaxHLShelfGlobalGaindB, P::HLShelfDefaultGain, linear, cluster, ramps, taken,
         Set<E, &E::SetClusterGain>, GetMember<E, &E::GetClusterParameters, &Shelf::gain>},
        {"cluster_gain_low", "cluster", 1, "cluster gain, low band", "cluster low shelf", "dB",
         P::MinHLShelfGaindB, P::MaxHLShelfGaindB, P::HLShelfDefaultGainLow, linear, cluster, ramps, taken,
         Set<E, &E::SetClusterGainLow>, GetMember<E, &E::GetClusterParameters, &Shelf::gainLow>},
        {"cluster_gain_medium", "cluster", 2, "cluster gain, medium band", "cluster mid band", "dB",
         P::MinHLShelfGaindB, P::MaxHLShelfGaindB, P::HLShelfDefaultGainMed, linear, cluster, ramps, taken,
         Set<E, &E::SetClusterGainMedium>, GetMember<E, &E::GetClusterParameters, &Shelf::gainMed>},
        {"cluster_gain_high", "cluster", 3, "cluster gain, high band", "cluster high shelf", "dB",
         P::MinHLShelfGaindB, P::MaxHLShelfGaindB, P::HLShelfDefaultGainHigh, linear, cluster, ramps, taken,
         Set<E, &E::SetClusterGainHigh>, GetMember<E, &E::GetClusterParameters, &Shelf::gainHigh>},
        {"cluster_freq_low", "cluster", 4, "cluster low/med crossover frequency", "cluster low crossover", "Hz",
         P::MinHLShelfFrequency, P::MaxHLShelfFrequency, shelfFreqLow, logarithmic, cluster, ramps, taken,
         Set<E, &E::SetClusterCrossoverFrequencyLow>, GetMember<E, &E::GetClusterParameters, &Shelf::freqLow>},
        {"cluster_freq_high", "cluster", 5, "cluster med/high crossover frequency", "cluster high crossover", "Hz",
         P::MinHLShelfFrequency, P::MaxHLShelfFrequency, shelfFreqHigh, logarithmic, cluster, ramps, taken,
         Set<E, &E::SetClusterCrossoverFrequencyHigh>, GetMember<E, &E::GetClusterParameters, &Shelf::freqHigh>},
        {"early_start", "early_start", 0, "early start", "pre-delay", "ms",
         P::MinEarlyStart, P::MaxEarlyStart, P::DefaultEarlyStart, linear, early, glides, limited,
         Set<E, &E::SetEarlyStart>, Get<E, &E::GetEarlyStart>},
        {"early_end", "early_end", 0, "early end", "early spread", "ms",
         P::MinEarlyEnd, P::MaxEarlyEnd, P::DefaultEarlyEnd, linear, early, glides, limited,
         Set<E, &E::SetEarlyEnd>, Get<E, &E::GetEarlyEnd>},
        {"early_distr", "early_distr", 0, "early distribution centroid", "early spacing", "",
         P::MinDistribution, P::MaxDistribution, P::DefaultEarlyDistr, linear, early, glides, limited,
         Set<E, &E::SetEarlyDistribution>, Get<E, &E::GetEarlyDistribution>},
        {"early_width", "early_width", 0, "early width", "early stereo width", "degrees",
         P::MinEarlyWidth, P::MaxEarlyWidth, P::DefaultEarlyWidth, linear, early, ramps, taken,
         Set<E, &E::SetEarlyWidth>, Get<E, &E::GetEarlyWidth>},
        {"early_shape", "early_shape", 0, "early shape", "early envelope", "",
         P::MinEarlyShape, P::MaxEarlyShape, P::DefaultEarlyShape, linear, early, jumps, limited,
         Set<E, &E::SetEarlyShape>, Get<E, &E::GetEarlyShape>},
        {"cluster_start", "cluster_start", 0, "cluster start", "diffusion start", "ms",
         P::MinClusterStart, P::MaxClusterStart, P::DefaultClusterStart, linear, cluster, jumps, limited,
         Set<E, &E::SetClusterStart>, Get<E, &E::GetClusterStart>},
        {"cluster_end", "cluster_end", 0, "cluster end", "diffusion end", "ms",
         P::MinClusterEnd, P::MaxClusterEnd, P::DefaultClusterEnd, linear, cluster, glides, limited,
         Set<E, &E::SetClusterEnd>, Get<E, &E::GetClusterEnd>},
        {"cluster_distr", "cluster_distr", 0, "cluster distribution centroid", "diffusion spacing", "",
         P::MinDistribution, P::MaxDistribution, P::DefaultClusterDistr, linear, cluster, glides, limited,
         Set<E, &E::SetClusterDistribution>, Get<E, &E::GetClusterDistribution>},
        {"reverb_start", "reverb_start", 0, "reverb start", "reverb pre-delay", "ms",
         P::MinReverbStart, P::MaxReverbStart, P::DefaultReverbStart, linear, late, jumps, limited,
         Set<E, &E::SetReverbStart>, Get<E, &E::GetReverbStart>},
    };
    // clang-format on
};

}  // namespace Lume
