#pragma once

#include <algorithm>
#include <optional>

#include "dsp/four_channels.h"
#include "filters/delay.h"
#include "filters/interpolation.h"

namespace Lume {

/// Four read heads side by side that stand still on lines with the mode allpass.
class FourAllpassHeads {
public:
    /// Empty if one of the heads isn't there: its line must then be read by itself, and so may the others.
    static std::optional<FourAllpassHeads> From(
        orvandsp::PerLane<std::optional<Delay::AllpassHead>> const& found) noexcept {
        for (auto const& head : found)
            if (!head) return std::nullopt;
        return FourAllpassHeads({*found[0], *found[1], *found[2], *found[3]});
    }

    /// Reads a block from each line, what tapOut gives, and passes it through a filter as FilterFourChannels does. One
    /// pass for both: while one recursion waits for its last output, the other has work.
    template <typename Filter>
    Filter Read(orvandsp::PerLane<float*> outputs, int count, Filter filter) noexcept {
        orvandsp::InSeries<Recursion, Filter> series = {recursion, filter};
        // Straight runs, from the end of one of the rings to the next.
        for (int done = 0; done < count;) {
            int length = count - done;
            orvandsp::PerLane<float const*> newer;
            for (std::size_t lane = 0; lane < orvandsp::numLanes; ++lane) {
                length = std::min(length, heads[lane].size - heads[lane].index);
                newer[lane] = heads[lane].ring + heads[lane].index + 1;
            }
            series = orvandsp::FilterFourChannels(outputs, newer, static_cast<std::size_t>(length), series);
            for (std::size_t lane = 0; lane < orvandsp::numLanes; ++lane) {
                heads[lane].index = (heads[lane].index + length) & (heads[lane].size - 1);
                outputs[lane] += length;
            }
            done += length;
        }
        recursion = series.first;
        for (std::size_t lane = 0; lane < orvandsp::numLanes; ++lane) *heads[lane].state = recursion.state[lane];
        return series.second;
    }

private:
    /// The allpass, fed with the newer neighbours; the older one of a sample is the newer one of the sample before.
    struct Recursion {
        orvandsp::Float4 operator()(orvandsp::Float4 newer) noexcept {
            state = interpolation::Allpass::Next(coefficient, older, newer, state);
            older = newer;
            return state;
        }
        orvandsp::Float4 coefficient;
        orvandsp::Float4 older;
        orvandsp::Float4 state;
    };

    explicit FourAllpassHeads(orvandsp::PerLane<Delay::AllpassHead> const& newHeads) noexcept : heads(newHeads) {
        for (std::size_t lane = 0; lane < orvandsp::numLanes; ++lane) {
            recursion.coefficient[lane] = heads[lane].coefficient;
            recursion.older[lane] = heads[lane].ring[heads[lane].index];
            recursion.state[lane] = *heads[lane].state;
        }
    }

    orvandsp::PerLane<Delay::AllpassHead> heads;
    Recursion recursion;
};

/// A channel to be delayed by a line of its own; output may be input.
struct DelayJob {
    Delay* delay;
    float* output;
    float* input;
};

/// Delays four channels: what Process of each line does. Real-time safe.
/// @param numJobs  those behind repeat the last one
void ProcessFourDelays(orvandsp::PerLane<DelayJob> const& jobs, std::size_t numJobs, int count);

}  // namespace Lume
