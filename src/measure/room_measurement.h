#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "measure/band.h"
#include "measure/decay.h"
#include "measure/direct_sound.h"
#include "measure/echo_density.h"

namespace orvanmeasure {

/// What ISO 3382-1 tells of a response within one band. Decay times are exact to 1 %, energy ratios to 0.1 dB where the
/// response is (tests show it); WhyInexact says where noise or the band's filter keep them from it.
struct BandFigures {
    Band band;
    DecayFit edt;                         ///< 0 to -10 dB
    DecayFit t20;                         ///< -5 to -25 dB
    DecayFit t30;                         ///< -5 to -35 dB
    Figure c50Db, c80Db;                  ///< early over late energy, parted 50 or 80 ms behind the direct sound
    Figure d50;                           ///< early share, 0 to 1
    Figure centreSeconds;                 ///< Ts, the centre of gravity of the energy
    Figure iaccEarly, iaccLate, iaccAll;  ///< of two channels: up to 80 ms, from there on, both
    NoiseFloor floor;
    double endDb = 0.0;        ///< where the curve meets noise, or ends
    std::vector<float> curve;  ///< the decay curve [dB], one value every `curveStepSeconds`
};

inline constexpr double curveStepSeconds = 0.001;

/// How alike the late parts of two channels are.
struct ChannelPair {
    std::size_t first, second;  ///< channels, from 0
    double correlation;         ///< -1 to 1, without a shift
};

/// All that can be told of a response.
struct RoomMeasurement {
    double sampleRate = 0.0;
    std::size_t numChannels = 0;
    std::size_t length = 0;             ///< samples, without silence behind the last sound
    std::optional<DirectSound> direct;  ///< nothing: the response is silent, and nothing else is told
    BandFigures whole;                  ///< of the whole spectrum
    std::vector<BandFigures> bands;
    EchoDensity density;
    std::vector<ChannelPair> neighbours;  ///< of more than two channels, the last one and the first among them
    std::optional<ChannelPair> mostAlike;
    double centroidStepSeconds = 0.0;
    std::vector<float> centroidHz;  ///< of the spectrum over time, from the direct sound on

    /// The mean of the octaves (or thirds) around 500 Hz and 1 kHz of a decay time [s], the usual single number.
    Figure Mid(DecayFit BandFigures::*fit) const;
};

/// Measures an impulse response. Energies of all channels are summed: for the feeds of loudspeakers, that is what an
/// omnidirectional microphone among them would hear.
/// @param response    channels of equal length, at least one sample, finite
/// @param sampleRate  [Hz]
RoomMeasurement Measure(Channels response, double sampleRate, BandWidth width);

/// A sentence that says why a figure of a band is missing; empty if it isn't.
/// @param lowerDb  the end of the part that it would be read from: -10, -25, -35; 0 for what is no decay time
std::string WhyMissing(Figure const& figure, BandFigures const& band, double lowerDb);

/// A sentence that says why a decay time may be off by more than 1 %; empty if it is exact, or missing.
/// @param lowerDb  as above
std::string WhyInexact(DecayFit const& fit, BandFigures const& band, double lowerDb);

/// The same for what parts the energy at a time [s] behind the direct sound, by more than 0.1 dB.
std::string WhyInexact(double partingSeconds, BandFigures const& band);

}  // namespace orvanmeasure
