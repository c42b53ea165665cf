#pragma once

#include <cstddef>
#include <vector>

#include "hrtf/hrtf_header_infos.h"
#include "math/real_transform.h"

namespace program {

/// What a transaural network's filters have to keep to.
struct TransauralLimits {
    int samplerate = 44100;        // [Hz]
    std::size_t length = 512;      // samples of each filter
    double maxGainDb = 18.0;       // that cancelling may ask of the loudspeakers, on top of equalising the near ear
    unsigned int blockLength = 2;  // samples by which the loops of the recursive networks come late
};

/// Whether a network is for pairs of loudspeakers that mirror each other.
bool IsSymmetricNetwork(Lume::HrtfType network);
/// Whether a network runs in a loop that comes a block late.
bool HasBlockLateLoop(Lume::HrtfType network);

/// Makes the filters of one transaural network, in the order in which it takes them, from the impulse responses between
/// two loudspeakers and two ears.
///
/// What the networks invert isn't quite what was measured:
/// - In the lows both ears hear the same, and telling them apart would take any amount of gain. The ways to the far
///   ears fade out there, as far as the largest gain wants it: cancelling ends, and what both ears are to hear alike
///   stays as it is.
/// - Below 120 Hz and above 16 kHz, where measurements end, the ears are asked for what the near ones hear there by
///   themselves, so that nothing is amplified that isn't there.
/// - A symmetric network gets the mean of both sides, in level and in phase.
///
/// Above 10 kHz errors count less, since no head holds that still.
class TransauralDesign {
public:
    /// The impulse responses from a loudspeaker (first letter) to an ear (second letter), of one length.
    struct Ways {
        std::vector<double> ll, lr, rl, rr;
    };

    /// @param network    one of the types for loudspeakers
    /// @param wayLength  samples of the impulse responses
    TransauralDesign(Lume::HrtfType network, TransauralLimits const& limits, std::size_t wayLength);

    /// The filters for a pair of loudspeakers, one behind the other. What the ears hear comes a quarter of the filters'
    /// length later than from bare loudspeakers, but for networks with an inverse determinant, which has the least
    /// phase.
    std::vector<float> Filters(Ways const& ways) const;

private:
    struct Plant;
    using Filter = std::vector<double>;

    Plant Prepare(Ways const& ways) const;
    /// gain / way, as far as that can be had, behind the common delay.
    Filter Inverse(Plant const& plant, orvandsp::Spectrum const& way, double gain) const;
    /// The ratio of a far ear's way to a near ear's, begun one block early.
    Filter LoopFilter(Plant const& plant, orvandsp::Spectrum const& far, orvandsp::Spectrum const& near) const;
    /// The inverse determinant.
    Filter InverseDeterminant(Plant const& plant) const;
    /// Both filters from one ear's signal to the loudspeakers.
    std::vector<Filter> LeastSquares(Plant const& plant, bool rightEar) const;
    /// The first samples of the response of (a + sign b) / 2.
    Filter Half(orvandsp::Spectrum const& a, double sign, orvandsp::Spectrum const& b) const;

    double Frequency(std::size_t bin) const { return transform.FrequencyOf(bin, limits.samplerate); }

    Lume::HrtfType network;
    TransauralLimits limits;
    double maxGain;
    // Of a fit: a way w is inverted as w / (w^2 + effort), at most 1 / (2 sqrt(effort)). That is 5 dB above the largest
    // gain, as fits of some length smooth their peaks; a price that keeps to it would cost more cancelling than that.
    double effort;
    orvandsp::RealTransform transform;
    std::vector<double> importance;  // of an error, per bin
};

}  // namespace program
