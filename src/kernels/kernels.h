#pragma once

#include <cstddef>
#include <cstdint>

/// The loops that cost the most, each written once and compiled for several widths of the processor's registers.
///
/// Kernels work on several channels side by side, one per lane, or on several samples between which there is no
/// recurrence. Every lane does what the code for one channel does, operation by operation, so that neither the width
/// nor its company changes the bits of a channel. What the processor has is found out when the first kernel is asked
/// for; the environment variable ORVAN_LANES (4, 8 or 16) forces a width, for tests and measurements.
///
/// Kernels see plain records and arrays. All of them are real-time safe; an output may be the input of the same job.
namespace orvandsp::kernels {

/// The widest there is: banks collect as many jobs before they call a kernel.
constexpr std::size_t maxLanes = 16;

/// A second-order shelf: y = b1 x1 + b2 x2 + b0 x - a2 y2 - a1 y1, from left to right, and behind it a gain.
struct Shelf {
    float const* taps;  // b0, b1, b2, a1, a2
    float gain;
    float* memory;  // x1, x2, y1, y2
};

struct ShelfJob {
    Shelf shelf;
    float const* input;
    float* output;
};

/// A read head that stands still on a delay line and reads through a first-order allpass.
struct AllpassHead {
    float const* ring;  // with one guard cell behind its end
    int size;           // of the ring [samples]
    float position;     // of the block's first sample [samples], to be folded into the ring
    float* state;       // previous output
    int first;          // sample of the block to begin with
};

struct HeadJob {
    AllpassHead head;
    float* output;
};

/// A head of the late field and what a pass through its line loses.
struct LossyHeadJob {
    AllpassHead head;
    Shelf absorbent;
    Shelf air;
    float* output;
};

/// The cluster and the late field that it feeds, with the mix of both: what one of the room's channels goes through
/// from the lines of the one to the loop of the other. Arrays with an entry for each channel.
///
///     cluster head --+--> x clusterGain --> shelf ----------------+--> mixed
///                    |                                            |
///                    +--> x inGain --+        +--> x outGain --> x lateGain
///                                    |        |
///     late head --> absorbent --> air --------+--(sum)--> loop
struct LateMix {
    AllpassHead const* clusterHeads;
    Shelf const* clusterShelves;
    AllpassHead const* lateHeads;
    Shelf const* absorbents;
    Shelf const* airs;  // null: no losses in air
    float* const* mixed;
    float* const* loops;
    std::size_t first;  // sample of the mixed channels
    float clusterGain, inGain, outGain, lateGain;
};

/// An allpass head whose delay runs along a ramp, or stands still where the ramp has ended.
struct GlidingHead {
    float const* ring;  // with one guard cell behind its end
    int mask;
    float base;      // position of the writer [samples]
    float* delay;    // behind the writer [samples], moved on
    int* remaining;  // samples until it stands still, counted down
    float increment;
    float* state;  // previous output
};

/// A head that is on the move when the block begins.
struct GlideJob {
    GlidingHead head;
    float* output;
};

/// A chain of second-order sections, each taking what the one before it gives: gain, then for each stage
/// y = b2 x2 + b1 x1 + (-a1) y1 + (-a2) y2 + x.
struct Cascade {
    float gain;
    float const* taps;  // b1, b2, -a1, -a2 of each stage
    float* memory;      // x1, x2, y1, y2 of each stage, where the x of a stage are the y of the one before it
};

struct CascadeJob {
    Cascade cascade;
    float const* input;
    float* output;
};

/// What an ear hears of a source: a delay, and behind it a cascade, to which another one may be fading over.
struct EarJob {
    GlidingHead head;
    Cascade cascade;
    Cascade former;
    float* gain;        // of the cascade, moved on
    float* formerGain;  // likewise
    float step, formerStep;
    int remaining;  // samples of the fade; behind them the cascade is heard alone
    float* output;
};
constexpr std::size_t maxCascadeStages = 8;

/// Gains that slide along straight lines through a cycle: start + slope x, where x goes from 0 to 1. Arrays with room
/// for whole registers.
struct GainRamps {
    float const* starts;
    float const* slopes;
    float* gains;  // behind the last sample of a part, where the next one goes on
};

/// Where in the cycle a chunk lies, through which gains go by adding one step for each sample.
struct GainSection {
    float begin, end;  // of the chunk in the cycle, 0 to 1
    float numSteps;    // from its first sample to its last
    bool isFirst;      // of the chunk's parts
};

/// What gainRamps computes: of each ramp a row.
constexpr int gainRowLength = 64;

/// An input that is mixed into an output: with a gain, or with a row of gains.
struct MixTerm {
    static constexpr std::int32_t steady = -1;
    std::uint32_t input;
    std::int32_t row;
    float gain;
};

struct MixSources {
    float const* const* inputs;
    std::size_t first;           // sample of the inputs
    float const* gains;          // rows
    float const* own = nullptr;  // a gain of each input, to be applied ahead of that of the term; null: none
};

struct Kernels {
    std::size_t numLanes;
    void (*shelves)(ShelfJob const* jobs, std::size_t numJobs, std::size_t numSamples);
    void (*allpassHeads)(HeadJob const* jobs, std::size_t numJobs, std::size_t numSamples);
    void (*lossyHeads)(LossyHeadJob const* jobs, std::size_t numJobs, std::size_t numSamples, bool throughAir);
    void (*lateMix)(LateMix const& mix, std::size_t numChannels, std::size_t numSamples);
    void (*glides)(GlideJob const* jobs, std::size_t numJobs, std::size_t numSamples);
    /// Of cascades with one number of stages, 1 to maxCascadeStages.
    void (*cascades)(CascadeJob const* jobs, std::size_t numJobs, std::size_t numStages, std::size_t numSamples);
    /// Of cascades with one number of stages.
    /// @param fading  all of them or none
    void (*ears)(EarJob const* jobs, std::size_t numJobs, std::size_t numStages, std::size_t numSamples, bool fading);

    /// @param rows  room for whole registers of ramps
    void (*gainRamps)(GainRamps const& ramps, std::size_t numRamps, GainSection const& section, float* rows,
                      std::size_t numSamples);
    /// Adds terms to outputs, in their order.
    /// @param ends     behind the last term of each output; those of the first one begin at `begin`
    /// @param first    sample of the outputs
    /// @param replace  the first product replaces what the output holds
    void (*mix)(float* const* outputs, std::size_t first, std::size_t numOutputs, MixSources const& sources,
                MixTerm const* terms, std::size_t begin, std::size_t const* ends, std::size_t numSamples, bool replace);

    /// Groups of channels through the Hadamard matrix of their number, in natural order and without scale, then
    /// scaled; output c is mixed channel order[c].
    /// @param groupSize   a power of two, at most 64
    /// @param numGroups   groups of so many channels
    void (*hadamard)(float* const* outputs, float const* const* inputs, std::size_t groupSize, std::size_t numGroups,
                     unsigned int const* order, float scale, std::size_t numSamples);
    /// output = tapped * outGain, tapped = tapped + inGain * input
    /// @param first  sample of outputs and inputs
    void (*feedback)(float* const* tapped, float* const* outputs, float const* const* inputs, std::size_t first,
                     std::size_t numChannels, float inGain, float outGain, std::size_t numSamples);

    /// Fades from a to b: out = gainsB b + gainsA a, with gains for each sample.
    void (*fade)(float* out, float const* a, float const* b, float const* gainsA, float const* gainsB,
                 std::size_t numSamples);
    /// Whether all samples of all channels are numbers up to a magnitude.
    bool (*staysWithin)(float const* const* ins, std::size_t numChannels, float limit, std::size_t numSamples);
    /// @param gains  one per channel
    void (*scale)(float* const* outs, float const* const* ins, float const* gains, std::size_t numChannels,
                  std::size_t numSamples);
    void (*addScaled)(float* const* outs, float const* const* ins, float gain, std::size_t numChannels,
                      std::size_t numSamples);

    /// Index of the point that is nearest to a place, of equally near ones the first. Distances that aren't numbers
    /// lose to all others, but for that of the first point, which then is the answer.
    std::size_t (*nearest)(float const* x, float const* y, float const* z, std::size_t numPoints, float toX, float toY,
                           float toZ);
};

/// The kernels for this processor.
Kernels const& Get();
/// Those of 4, 8 or 16 lanes; null where the processor or the build doesn't have them.
Kernels const* OfWidth(std::size_t numLanes);

}  // namespace orvandsp::kernels
