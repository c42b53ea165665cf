#pragma once

#include <cstddef>
#include <cstdint>

#if !defined(ORVAN_KERNEL_LANES)
#error "For the sources of kernels alone: they say first how many lanes there are."
#endif

/// A register of ORVAN_KERNEL_LANES samples, one per lane, and how samples come in and out of it.
///
/// Kernels are compiled several times, some of them for processors that not everybody has. Nothing of that may get into
/// code that others share: everything here and in the kernels lies in an unnamed namespace, and no function or template
/// of the standard library is called.
namespace orvandsp::kernels {
namespace {

constexpr std::size_t numLanes = ORVAN_KERNEL_LANES;

using Lanes [[gnu::vector_size(numLanes * sizeof(float))]] = float;
using LaneInts [[gnu::vector_size(numLanes * sizeof(float))]] = std::int32_t;
using LaneWords [[gnu::vector_size(numLanes * sizeof(float))]] = std::uint32_t;
using Four [[gnu::vector_size(4 * sizeof(float))]] = float;

inline bool AllZero(LaneInts value) noexcept {
    // Halves upon each other: element by element the compiler moves each through a register of its own.
#if ORVAN_KERNEL_LANES == 16
    const auto eight = __builtin_shufflevector(value, value, 0, 1, 2, 3, 4, 5, 6, 7) |
                       __builtin_shufflevector(value, value, 8, 9, 10, 11, 12, 13, 14, 15);
#elif ORVAN_KERNEL_LANES == 8
    const auto eight = value;
#endif
#if ORVAN_KERNEL_LANES == 4
    const auto four = value;
#else
    const auto four =
        __builtin_shufflevector(eight, eight, 0, 1, 2, 3) | __builtin_shufflevector(eight, eight, 4, 5, 6, 7);
#endif
    std::int64_t words[2];
    __builtin_memcpy(words, &four, sizeof words);
    return (words[0] | words[1]) == 0;
}
inline bool AllNegative(LaneInts value) noexcept {
    return AllZero(~value >> 31);
}

/// numLanes samples in a row.
inline Lanes Load(float const* samples) noexcept {
    Lanes result;
    __builtin_memcpy(&result, samples, sizeof result);
    return result;
}
inline void Store(float* samples, Lanes value) noexcept {
    __builtin_memcpy(samples, &value, sizeof value);
}

inline Four LoadFour(float const* samples) noexcept {
    Four result;
    __builtin_memcpy(&result, samples, sizeof result);
    return result;
}
inline void StoreFour(float* samples, Four value) noexcept {
    __builtin_memcpy(samples, &value, sizeof value);
}

// NOLINTBEGIN(bugprone-macro-parentheses): indices are numbers

// A pattern over four lanes of two registers, repeated in each four lanes: a and b index the first register, c and d
// the second one.
#if ORVAN_KERNEL_LANES == 4
#define ORVAN_SHUFFLE(x, y, a, b, c, d) __builtin_shufflevector(x, y, a, b, 4 + c, 4 + d)
#define ORVAN_UNPACK(x, y, a, b) __builtin_shufflevector(x, y, a, 4 + a, b, 4 + b)
#elif ORVAN_KERNEL_LANES == 8
#define ORVAN_SHUFFLE(x, y, a, b, c, d) __builtin_shufflevector(x, y, a, b, 8 + c, 8 + d, 4 + a, 4 + b, 12 + c, 12 + d)
#define ORVAN_UNPACK(x, y, a, b) __builtin_shufflevector(x, y, a, 8 + a, b, 8 + b, 4 + a, 12 + a, 4 + b, 12 + b)
#else
#define ORVAN_SHUFFLE(x, y, a, b, c, d)                                                                             \
    __builtin_shufflevector(x, y, a, b, 16 + c, 16 + d, 4 + a, 4 + b, 20 + c, 20 + d, 8 + a, 8 + b, 24 + c, 24 + d, \
                            12 + a, 12 + b, 28 + c, 28 + d)
#define ORVAN_UNPACK(x, y, a, b)                                                                                    \
    __builtin_shufflevector(x, y, a, 16 + a, b, 16 + b, 4 + a, 20 + a, 4 + b, 20 + b, 8 + a, 24 + a, 8 + b, 24 + b, \
                            12 + a, 28 + a, 12 + b, 28 + b)
#endif
// NOLINTEND(bugprone-macro-parentheses)

/// Rows to columns within each four lanes: lane i of row j changes places with lane j of row i.
inline void Transpose(Lanes (&rows)[4]) noexcept {
    const Lanes low01 = ORVAN_UNPACK(rows[0], rows[1], 0, 1);
    const Lanes high01 = ORVAN_UNPACK(rows[0], rows[1], 2, 3);
    const Lanes low23 = ORVAN_UNPACK(rows[2], rows[3], 0, 1);
    const Lanes high23 = ORVAN_UNPACK(rows[2], rows[3], 2, 3);
    rows[0] = ORVAN_SHUFFLE(low01, low23, 0, 1, 0, 1);
    rows[1] = ORVAN_SHUFFLE(low01, low23, 2, 3, 2, 3);
    rows[2] = ORVAN_SHUFFLE(high01, high23, 0, 1, 0, 1);
    rows[3] = ORVAN_SHUFFLE(high01, high23, 2, 3, 2, 3);
}

/// Two neighbours of each lane: at[lane][0] and at[lane][1]. A load takes both.
inline void LoadNeighbours(float const* const (&at)[numLanes], Lanes& first, Lanes& second) noexcept {
    using Pairs [[gnu::vector_size(numLanes * sizeof(float))]] = double;
    // Of each four lanes the first two here, the others there: so they lie as a shuffle within four lanes needs them.
    Pairs here{}, there{};
    // Elements by numbers that are known: with the sanitizers g++ 12 puts others into the wrong ones.
#pragma GCC unroll 8
    for (std::size_t i = 0; i < numLanes / 2; ++i) {
        const std::size_t lane = i / 2 * 4 + i % 2;
        double pair;
        __builtin_memcpy(&pair, at[lane], sizeof pair);
        here[i] = pair;
        __builtin_memcpy(&pair, at[lane + 2], sizeof pair);
        there[i] = pair;
    }
    Lanes a, b;
    __builtin_memcpy(&a, &here, sizeof a);
    __builtin_memcpy(&b, &there, sizeof b);
    first = ORVAN_SHUFFLE(a, b, 0, 2, 0, 2);
    second = ORVAN_SHUFFLE(a, b, 1, 3, 1, 3);
}

#undef ORVAN_SHUFFLE
#undef ORVAN_UNPACK

/// Four samples of each of four arrays' groups: lanes 4 g to 4 g + 3 hold a row of arrays[4 g + row].
inline Lanes LoadRow(float const* const* arrays, std::size_t row, std::size_t first) noexcept {
    const Four a = LoadFour(arrays[row] + first);
#if ORVAN_KERNEL_LANES == 4
    return a;
#else
    const Four b = LoadFour(arrays[4 + row] + first);
    const auto ab = __builtin_shufflevector(a, b, 0, 1, 2, 3, 4, 5, 6, 7);
#if ORVAN_KERNEL_LANES == 8
    return ab;
#else
    const Four c = LoadFour(arrays[8 + row] + first);
    const Four d = LoadFour(arrays[12 + row] + first);
    const auto cd = __builtin_shufflevector(c, d, 0, 1, 2, 3, 4, 5, 6, 7);
    return __builtin_shufflevector(ab, cd, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
#endif
#endif
}

inline void StoreRow(float* const* arrays, std::size_t row, std::size_t first, Lanes value) noexcept {
#if ORVAN_KERNEL_LANES == 4
    StoreFour(arrays[row] + first, value);
#elif ORVAN_KERNEL_LANES == 8
    StoreFour(arrays[row] + first, __builtin_shufflevector(value, value, 0, 1, 2, 3));
    StoreFour(arrays[4 + row] + first, __builtin_shufflevector(value, value, 4, 5, 6, 7));
#else
    StoreFour(arrays[row] + first, __builtin_shufflevector(value, value, 0, 1, 2, 3));
    StoreFour(arrays[4 + row] + first, __builtin_shufflevector(value, value, 4, 5, 6, 7));
    StoreFour(arrays[8 + row] + first, __builtin_shufflevector(value, value, 8, 9, 10, 11));
    StoreFour(arrays[12 + row] + first, __builtin_shufflevector(value, value, 12, 13, 14, 15));
#endif
}

/// The upper half of the lanes in both halves, and the lower one.
inline Lanes UpperInBoth(Lanes value) noexcept {
#if ORVAN_KERNEL_LANES == 4
    return __builtin_shufflevector(value, value, 2, 3, 2, 3);
#elif ORVAN_KERNEL_LANES == 8
    return __builtin_shufflevector(value, value, 4, 5, 6, 7, 4, 5, 6, 7);
#else
    return __builtin_shufflevector(value, value, 8, 9, 10, 11, 12, 13, 14, 15, 8, 9, 10, 11, 12, 13, 14, 15);
#endif
}
inline Lanes LowerInBoth(Lanes value) noexcept {
#if ORVAN_KERNEL_LANES == 4
    return __builtin_shufflevector(value, value, 0, 1, 0, 1);
#elif ORVAN_KERNEL_LANES == 8
    return __builtin_shufflevector(value, value, 0, 1, 2, 3, 0, 1, 2, 3);
#else
    return __builtin_shufflevector(value, value, 0, 1, 2, 3, 4, 5, 6, 7, 0, 1, 2, 3, 4, 5, 6, 7);
#endif
}

/// Four samples of numLanes arrays, as four frames with an array in each lane.
inline void LoadFrames(Lanes (&frames)[4], float const* const* arrays, std::size_t first) noexcept {
    for (std::size_t row = 0; row < 4; ++row) frames[row] = LoadRow(arrays, row, first);
    Transpose(frames);
}
/// Writes what LoadFrames reads.
inline void StoreFrames(float* const* arrays, std::size_t first, Lanes (&frames)[4]) noexcept {
    Transpose(frames);
    for (std::size_t row = 0; row < 4; ++row) StoreRow(arrays, row, first, frames[row]);
}

inline Lanes LoadFrame(float const* const* arrays, std::size_t index) noexcept {
    Lanes frame{};
    for (std::size_t lane = 0; lane < numLanes; ++lane) frame[lane] = arrays[lane][index];
    return frame;
}
inline void StoreFrame(float* const* arrays, std::size_t index, Lanes frame) noexcept {
    for (std::size_t lane = 0; lane < numLanes; ++lane) arrays[lane][index] = frame[lane];
}

inline std::size_t Least(std::size_t a, std::size_t b) noexcept {
    return b < a ? b : a;
}

/// Two frames side by side, and the arrays that they come from or go to.
struct Pair {
    Lanes a, b;
};
template <typename Sample>
struct PairOfArrays {
    Sample* const* a;
    Sample* const* b;
};
inline void LoadFrames(Pair (&frames)[4], PairOfArrays<float const> const& arrays, std::size_t first) noexcept {
    Lanes a[4], b[4];
    LoadFrames(a, arrays.a, first);
    LoadFrames(b, arrays.b, first);
    for (std::size_t i = 0; i < 4; ++i) frames[i] = {a[i], b[i]};
}
inline void StoreFrames(PairOfArrays<float> const& arrays, std::size_t first, Pair (&frames)[4]) noexcept {
    Lanes a[4], b[4];
    for (std::size_t i = 0; i < 4; ++i) {
        a[i] = frames[i].a;
        b[i] = frames[i].b;
    }
    StoreFrames(arrays.a, first, a);
    StoreFrames(arrays.b, first, b);
}
inline Pair LoadFrame(PairOfArrays<float const> const& arrays, std::size_t index) noexcept {
    return {LoadFrame(arrays.a, index), LoadFrame(arrays.b, index)};
}
inline void StoreFrame(PairOfArrays<float> const& arrays, std::size_t index, Pair frame) noexcept {
    StoreFrame(arrays.a, index, frame.a);
    StoreFrame(arrays.b, index, frame.b);
}

/// A filter that takes a frame and returns one has this for a base if it returns what comes of that very frame.
struct Immediate {
    static constexpr std::size_t lag = 0;
    using Output = Lanes;
};

/// Filters in a row, of which the second one takes what the first one made of the sample before, so that no step waits
/// for the whole row: the processor doesn't look far enough ahead to find other work meanwhile.
///
/// A run of samples begins with Fill and ends with Drain, `lag` times each.
template <typename First, typename Second>
struct InSeries {
    static constexpr std::size_t lag = Second::lag + 1;
    using Output = typename Second::Output;
    template <typename Frame>
    Output operator()(Frame x) noexcept {
        const Output result = second(between);
        between = first(x);
        return result;
    }
    template <std::size_t number, typename Frame>
    void Fill(Frame x) noexcept {
        if constexpr (number > 0) second.template Fill<number - 1>(between);
        between = first(x);
    }
    template <std::size_t number>
    Output Drain() noexcept {
        if constexpr (number == 0)
            return second(between);
        else
            return second.template Drain<number - 1>();
    }
    /// A sample of its own, which is no part of a run.
    template <typename Frame>
    Output Alone(Frame x) noexcept {
        if constexpr (lag > 1)
            return second.Alone(first(x));
        else
            return second(first(x));
    }
    First first{};
    Second second{};
    typename First::Output between{};
};

/// Runs numLanes channels, sample by sample, through filters in series.
/// @param outputs, inputs  arrays, or pairs of them
/// @param filter           by reference: several of them are more than registers hold, and copying them takes time
template <typename Outputs, typename Inputs, typename First, typename Second>
inline void RunLanes(Outputs const& outputs, Inputs const& inputs, std::size_t numSamples,
                     InSeries<First, Second>& filter) noexcept {
    constexpr std::size_t lag = InSeries<First, Second>::lag;
    static_assert(lag == 1 || lag == 2);
    std::size_t k = 0;
    if (numSamples >= 4) {
        decltype(LoadFrame(inputs, 0)) in[4];
        typename Second::Output out[4];
        LoadFrames(in, inputs, 0);
        filter.template Fill<0>(in[0]);
        if constexpr (lag > 1) filter.template Fill<1>(in[1]);
        for (std::size_t i = lag; i < 4; ++i) out[i - lag] = filter(in[i]);
        for (k = 4; k + 4 <= numSamples; k += 4) {
            LoadFrames(in, inputs, k);
            for (std::size_t i = 0; i < lag; ++i) out[4 - lag + i] = filter(in[i]);
            StoreFrames(outputs, k - 4, out);
            for (std::size_t i = lag; i < 4; ++i) out[i - lag] = filter(in[i]);
        }
        out[4 - lag] = filter.template Drain<0>();
        if constexpr (lag > 1) out[3] = filter.template Drain<1>();
        StoreFrames(outputs, k - 4, out);
    }
    for (; k < numSamples; ++k) StoreFrame(outputs, k, filter.Alone(LoadFrame(inputs, k)));
}

/// Runs numLanes channels, sample by sample, through a filter.
/// @param filter  by value, so that its state stays in registers
/// @return the filter with its state behind the last sample
template <typename Filter>
inline Filter RunLanes(float* const* outputs, float const* const* inputs, std::size_t numSamples,
                       Filter filter) noexcept {
    static_assert(Filter::lag == 0);
    std::size_t k = 0;
    for (; k + 4 <= numSamples; k += 4) {
        Lanes frames[4];
        LoadFrames(frames, inputs, k);
        for (Lanes& frame : frames) frame = filter(frame);
        StoreFrames(outputs, k, frames);
    }
    for (; k < numSamples; ++k) StoreFrame(outputs, k, filter(LoadFrame(inputs, k)));
    return filter;
}

template <typename Filter>
struct TwoOf {
    Filter first, second;
};

/// Two groups of channels in one loop: while the recursion of one waits for its last output, the other has work.
/// @param outputs, inputs  2 numLanes arrays
template <typename Filter>
inline TwoOf<Filter> RunTwice(float* const* outputs, float const* const* inputs, std::size_t numSamples,
                              TwoOf<Filter> filters) noexcept {
    auto& [a, b] = filters;
    std::size_t k = 0;
    for (; k + 4 <= numSamples; k += 4) {
        Lanes framesA[4], framesB[4];
        LoadFrames(framesA, inputs, k);
        LoadFrames(framesB, inputs + numLanes, k);
        for (std::size_t i = 0; i < 4; ++i) {
            framesA[i] = a(framesA[i]);
            framesB[i] = b(framesB[i]);
        }
        StoreFrames(outputs, k, framesA);
        StoreFrames(outputs + numLanes, k, framesB);
    }
    for (; k < numSamples; ++k) {
        StoreFrame(outputs, k, a(LoadFrame(inputs, k)));
        StoreFrame(outputs + numLanes, k, b(LoadFrame(inputs + numLanes, k)));
    }
    return filters;
}

/// Jobs for all lanes; those behind the end repeat the last one, which computes the same bits in each of its lanes.
template <typename Job>
struct Group {
    Group(Job const* jobs, std::size_t numJobs) noexcept {
        for (std::size_t lane = 0; lane < numLanes; ++lane) job[lane] = &jobs[Least(lane, numJobs - 1)];
    }
    /// A part of each job of another group.
    template <typename Whole>
    Group(Group<Whole> const& group, Job Whole::*part) noexcept {
        for (std::size_t lane = 0; lane < numLanes; ++lane) job[lane] = &(group[lane].*part);
    }
    /// Takes half of the jobs of another group, from a lane on.
    void TakeUpperHalf(Group const& others, std::size_t from) noexcept {
        for (std::size_t lane = 0; lane < numLanes / 2; ++lane) job[numLanes / 2 + lane] = others.job[from + lane];
    }
    Job const& operator[](std::size_t lane) const noexcept { return *job[lane]; }
    Job const* job[numLanes];
};

/// Calls run(jobs, number) with numLanes jobs and once with what is left.
template <typename Job, typename Run>
inline void ForEachGroup(Job* jobs, std::size_t numJobs, Run run) noexcept {
    for (std::size_t first = 0; first < numJobs; first += numLanes) run(jobs + first, Least(numLanes, numJobs - first));
}

}  // namespace
}  // namespace orvandsp::kernels
