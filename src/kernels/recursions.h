#pragma once

#include "kernels/kernels.h"
#include "kernels/lanes.h"

/// Recursive filters: a channel waits for its own last output, so that many channels side by side take the time of one.
namespace orvandsp::kernels {
namespace {

/// Shelves of numLanes channels.
struct ShelfLanes : Immediate {
    template <typename Jobs, typename GetShelf>
    ShelfLanes(Jobs const& jobs, GetShelf getShelf) noexcept {
        float const* tapsOf[numLanes];
        float const* memoryOf[numLanes];
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            Shelf const& shelf = getShelf(jobs[lane]);
            tapsOf[lane] = shelf.taps;
            memoryOf[lane] = shelf.memory;
            gain[lane] = shelf.gain;
        }
        Lanes taps[4];
        LoadFrames(taps, tapsOf, 0);
        b0 = taps[0];
        b1 = taps[1];
        b2 = taps[2];
        a1 = taps[3];
        a2 = LoadFrame(tapsOf, 4);
        Lanes memory[4];
        LoadFrames(memory, memoryOf, 0);
        x1 = memory[0];
        x2 = memory[1];
        y1 = memory[2];
        y2 = memory[3];
    }
    template <typename Jobs, typename GetShelf>
    void Keep(Jobs const& jobs, GetShelf getShelf) const noexcept {
        float* memoryOf[numLanes];
        for (std::size_t lane = 0; lane < numLanes; ++lane) memoryOf[lane] = getShelf(jobs[lane]).memory;
        Lanes memory[4] = {x1, x2, y1, y2};
        StoreFrames(memoryOf, 0, memory);
    }
    Lanes operator()(Lanes x) noexcept {
        const Lanes y = b1 * x1 + b2 * x2 + b0 * x - a2 * y2 - a1 * y1;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        return y * gain;
    }
    Lanes b0{}, b1{}, b2{}, a1{}, a2{}, gain{}, x1{}, x2{}, y1{}, y2{};
};

void Shelves(ShelfJob const* jobs, std::size_t numJobs, std::size_t numSamples) {
    // Sixteen lanes are moved in and out more slowly than twice eight.
    if (FitsNarrower(numJobs) || numLanes == 16) return narrower->shelves(jobs, numJobs, numSamples);
    const auto shelfOf = [](ShelfJob const& job) -> Shelf const& { return job.shelf; };
    const auto addresses = [](Group<ShelfJob> const& group, float** outputs, float const** inputs) {
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            outputs[lane] = group[lane].output;
            inputs[lane] = group[lane].input;
        }
    };
    float* outputs[2 * numLanes];
    float const* inputs[2 * numLanes];
    while (numJobs > 0) {
        const Group<ShelfJob> group(jobs, numJobs);
        ShelfLanes filter(group, shelfOf);
        addresses(group, outputs, inputs);
        std::size_t numDone = Least(numJobs, numLanes);
        if (numJobs > numLanes) {
            const Group<ShelfJob> second(jobs + numLanes, numJobs - numLanes);
            addresses(second, outputs + numLanes, inputs + numLanes);
            const auto both = RunTwice<ShelfLanes>(outputs, inputs, numSamples, {filter, {second, shelfOf}});
            filter = both.first;
            both.second.Keep(second, shelfOf);
            numDone = Least(numJobs, 2 * numLanes);
        } else {
            filter = RunLanes(outputs, inputs, numSamples, filter);
        }
        filter.Keep(group, shelfOf);
        jobs += numDone;
        numJobs -= numDone;
    }
}

/// Positions as whole indices, not above them, and fractions.
struct Places {
    LaneInts index;
    Lanes fraction;
};
/// Far beyond any ring; keeps the conversion defined for every float, and not a number becomes the lower limit.
inline Lanes Bounded(Lanes position) noexcept {
    const Lanes limit = Lanes{} + 1073741824.0f;
    const Lanes below = limit < position ? limit : position;
    return -limit < below ? below : -limit;
}
inline Places SplitBounded(Lanes position) noexcept {
    LaneInts index = __builtin_convertvector(position, LaneInts);
    // Cut towards zero; a comparison gives -1 where it holds.
    index += __builtin_convertvector(index, Lanes) > position;
    return {index, position - __builtin_convertvector(index, Lanes)};
}
inline Places Split(Lanes position) noexcept {
    return SplitBounded(Bounded(position));
}
inline Lanes AllpassCoefficient(Lanes fraction) noexcept {
    const Lanes p = 1.0f - fraction;
    return (1.0f - p) / (p + 1.0f);
}

/// The first-order allpass, fed with the newer neighbours; the older one of a sample is the newer one of the sample
/// before.
struct HeadLanes : Immediate {
    Lanes operator()(Lanes newer) noexcept {
        state = coefficient * (newer - state) + older;
        older = newer;
        return state;
    }
    Lanes coefficient{}, older{}, state{};
};

inline HeadLanes& HeadsOf(HeadLanes& heads) noexcept {
    return heads;
}
template <typename Losses>
inline HeadLanes& HeadsOf(InSeries<HeadLanes, Losses>& series) noexcept {
    return series.first;
}

/// Reads numLanes heads.
/// @param filter  the heads, alone or with what they read passes through
template <typename Jobs, typename Filter>
inline Filter ReadHeads(Jobs const& jobs, std::size_t numSamples, Filter filter) noexcept {
    float* outputs[numLanes];
    int indices[numLanes];
    Lanes position{};
    for (std::size_t lane = 0; lane < numLanes; ++lane) {
        outputs[lane] = jobs[lane].output;
        position[lane] = jobs[lane].head.position;
        HeadsOf(filter).state[lane] = *jobs[lane].head.state;
    }
    const auto [wholes, fraction] = Split(position);
    HeadsOf(filter).coefficient = AllpassCoefficient(fraction);
    for (std::size_t lane = 0; lane < numLanes; ++lane) {
        AllpassHead const& head = jobs[lane].head;
        indices[lane] = wholes[lane] & (head.size - 1);
        HeadsOf(filter).older[lane] = head.ring[indices[lane]];
    }
    // Straight runs, from the end of one of the rings to the next.
    for (std::size_t done = 0; done < numSamples;) {
        std::size_t length = numSamples - done;
        float const* newer[numLanes];
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            AllpassHead const& head = jobs[lane].head;
            length = Least(length, static_cast<std::size_t>(head.size - indices[lane]));
            newer[lane] = head.ring + indices[lane] + 1;
        }
        filter = RunLanes(outputs, newer, length, filter);
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            indices[lane] = (indices[lane] + static_cast<int>(length)) & (jobs[lane].head.size - 1);
            outputs[lane] += length;
        }
        done += length;
    }
    for (std::size_t lane = 0; lane < numLanes; ++lane) *jobs[lane].head.state = HeadsOf(filter).state[lane];
    return filter;
}

void AllpassHeads(HeadJob const* jobs, std::size_t numJobs, std::size_t numSamples) {
    if (FitsNarrower(numJobs)) return narrower->allpassHeads(jobs, numJobs, numSamples);
    ForEachGroup(jobs, numJobs, [=](HeadJob const* some, std::size_t number) {
        ReadHeads(Group<HeadJob>(some, number), numSamples, HeadLanes());
    });
}

void LossyHeads(LossyHeadJob const* jobs, std::size_t numJobs, std::size_t numSamples, bool throughAir) {
    if (FitsNarrower(numJobs)) return narrower->lossyHeads(jobs, numJobs, numSamples, throughAir);
    const auto absorbentOf = [](LossyHeadJob const& job) -> Shelf const& { return job.absorbent; };
    const auto airOf = [](LossyHeadJob const& job) -> Shelf const& { return job.air; };
    ForEachGroup(jobs, numJobs, [&](LossyHeadJob const* some, std::size_t number) {
        const Group<LossyHeadJob> group(some, number);
        ShelfLanes absorbent(group, absorbentOf);
        if (throughAir) {
            using Losses = InSeries<ShelfLanes, ShelfLanes>;
            const auto [lost, air, _] =
                ReadHeads(group, numSamples,
                          InSeries<HeadLanes, Losses>{.second = {absorbent, ShelfLanes(group, airOf)}})
                    .second;
            lost.Keep(group, absorbentOf);
            air.Keep(group, airOf);
        } else {
            ReadHeads(group, numSamples, InSeries<HeadLanes, ShelfLanes>{.second = absorbent})
                .second.Keep(group, absorbentOf);
        }
    });
}

/// Allpass heads on the move: for each sample the place between two neighbours, and from that the coefficient.
struct GlideLanes {
    explicit GlideLanes(Group<GlideJob> const& jobs, std::int32_t numSamples) noexcept {
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            GlideJob const& job = jobs[lane];
            ring[lane] = job.ring;
            base[lane] = job.base;
            delay[lane] = *job.delay;
            increment[lane] = job.increment;
            remaining[lane] = *job.remaining;
            mask[lane] = job.mask;
            state[lane] = *job.state;
            // Far from what a whole number holds, and on the move to the end of the block.
            const float way = static_cast<float>(numSamples) * job.increment;
            if (!(job.base - *job.delay > -limit && job.base - *job.delay < limit && way > -limit && way < limit &&
                  numSamples <= *job.remaining))
                plain = false;
        }
    }

    /// Four samples, the first of which has this number in the block.
    void Read(std::int32_t first, Lanes (&frames)[4]) noexcept {
        Lanes fractions[4];
        LaneInts indices[4];
        LaneInts jumps{};
        for (std::int32_t i = 0; i < 4; ++i) {
            Place(first + i, indices[i], fractions[i]);
            jumps |= indices[i] ^ (indices[0] + i);
        }
        if (AllZero(jumps)) {
            // Each head reads five samples in a row, as most do most of the time.
            float const* at[numLanes];
            for (std::size_t lane = 0; lane < numLanes; ++lane) at[lane] = ring[lane] + indices[0][lane];
            Lanes newer[4];
            LoadFrames(frames, at, 0);
            LoadFrames(newer, at, 1);
            for (std::int32_t i = 0; i < 4; ++i) frames[i] = Next(fractions[i], frames[i], newer[i]);
        } else {
            for (std::int32_t i = 0; i < 4; ++i) frames[i] = ReadAt(indices[i], fractions[i]);
        }
    }
    Lanes Read(std::int32_t sample) noexcept {
        LaneInts index;
        Lanes fraction;
        Place(sample, index, fraction);
        return ReadAt(index, fraction);
    }

    void Keep(Group<GlideJob> const& jobs, std::int32_t numSamples) const noexcept {
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            GlideJob const& job = jobs[lane];
            *job.delay = delay[lane];
            // Only once: a job may be there in several lanes.
            *job.remaining = remaining[lane] > numSamples ? remaining[lane] - numSamples
                                                          : (remaining[lane] < 0 ? remaining[lane] : 0);
            *job.state = state[lane];
        }
    }

private:
    static constexpr float limit = 268435456.0f;

    /// The older neighbour's index in the ring, and how far behind it the sample lies; moves on.
    void Place(std::int32_t sample, LaneInts& index, Lanes& fraction) noexcept {
        Lanes position = base - delay + static_cast<float>(sample);
        if (plain) {
            delay += increment;
        } else {
            position = Bounded(position);
            delay = remaining > sample ? delay + increment : delay;
        }
        const Places places = SplitBounded(position);
        index = places.index & mask;
        fraction = places.fraction;
    }
    Lanes ReadAt(LaneInts index, Lanes fraction) noexcept {
        float const* at[numLanes];
        for (std::size_t lane = 0; lane < numLanes; ++lane) at[lane] = ring[lane] + index[lane];
        Lanes older, newer;
        LoadNeighbours(at, older, newer);
        return Next(fraction, older, newer);
    }
    Lanes Next(Lanes fraction, Lanes older, Lanes newer) noexcept {
        state = AllpassCoefficient(fraction) * (newer - state) + older;
        return state;
    }

    float const* ring[numLanes];
    Lanes base{}, delay{}, increment{}, state{};
    LaneInts remaining{}, mask{};
    bool plain = true;
};

void Glides(GlideJob const* jobs, std::size_t numJobs, std::size_t numSamples) {
    // Sixteen lanes are moved in and out more slowly than twice eight.
    if (FitsNarrower(numJobs) || numLanes == 16) return narrower->glides(jobs, numJobs, numSamples);
    ForEachGroup(jobs, numJobs, [=](GlideJob const* some, std::size_t number) {
        const Group<GlideJob> group(some, number);
        const auto count = static_cast<std::int32_t>(numSamples);
        GlideLanes glide(group, count);
        float* outputs[numLanes];
        for (std::size_t lane = 0; lane < numLanes; ++lane) outputs[lane] = group[lane].output;
        std::int32_t k = 0;
        for (; k + 4 <= count; k += 4) {
            Lanes frames[4];
            glide.Read(k, frames);
            StoreFrames(outputs, static_cast<std::size_t>(k), frames);
        }
        for (; k < count; ++k) StoreFrame(outputs, static_cast<std::size_t>(k), glide.Read(k));
        glide.Keep(group, count);
    });
}

/// N stages in a row. The inputs that a stage remembers are the outputs that the one before it remembers.
template <std::size_t N>
struct CascadeLanes : Immediate {
    explicit CascadeLanes(Group<CascadeJob> const& jobs) noexcept {
        float const* tapsOf[numLanes];
        float const* memoryOf[numLanes];
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            gain[lane] = jobs[lane].gain;
            tapsOf[lane] = jobs[lane].taps;
            memoryOf[lane] = jobs[lane].memory;
        }
        for (std::size_t i = 0; i < N; ++i) {
            LoadFrames(taps[i], tapsOf, 4 * i);
            Lanes memory[4];  // x1, x2, y1, y2
            LoadFrames(memory, memoryOf, 4 * i);
            before[i] = memory[0];
            beforeThat[i] = memory[1];
            before[i + 1] = memory[2];
            beforeThat[i + 1] = memory[3];
        }
    }
    Lanes operator()(Lanes x) noexcept {
        Lanes v = x * gain;
        for (std::size_t i = 0; i < N; ++i) {
            const Lanes y = taps[i][1] * beforeThat[i] + taps[i][0] * before[i] + taps[i][2] * before[i + 1] +
                            taps[i][3] * beforeThat[i + 1] + v;
            beforeThat[i] = before[i];
            before[i] = v;
            v = y;
        }
        beforeThat[N] = before[N];
        before[N] = v;
        return v;
    }
    void Keep(Group<CascadeJob> const& jobs) const noexcept {
        float* memoryOf[numLanes];
        for (std::size_t lane = 0; lane < numLanes; ++lane) memoryOf[lane] = jobs[lane].memory;
        for (std::size_t i = 0; i < N; ++i) {
            Lanes memory[4] = {before[i], beforeThat[i], before[i + 1], beforeThat[i + 1]};
            StoreFrames(memoryOf, 4 * i, memory);
        }
    }
    Lanes gain{};
    Lanes taps[N][4];         // b1, b2, -a1, -a2
    Lanes before[N + 1];      // input of the first stage, then the output of each
    Lanes beforeThat[N + 1];  // one sample older
};

template <std::size_t N>
void RunCascades(CascadeJob const* jobs, std::size_t numJobs, std::size_t numSamples) {
    ForEachGroup(jobs, numJobs, [=](CascadeJob const* some, std::size_t number) {
        const Group<CascadeJob> group(some, number);
        float* outputs[numLanes];
        float const* inputs[numLanes];
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            outputs[lane] = group[lane].output;
            inputs[lane] = group[lane].input;
        }
        RunLanes(outputs, inputs, numSamples, CascadeLanes<N>(group)).Keep(group);
    });
}

void Cascades(CascadeJob const* jobs, std::size_t numJobs, std::size_t numStages, std::size_t numSamples) {
    if (FitsNarrower(numJobs)) return narrower->cascades(jobs, numJobs, numStages, numSamples);
    constexpr void (*run[maxCascadeStages])(CascadeJob const*, std::size_t, std::size_t) = {
        RunCascades<1>, RunCascades<2>, RunCascades<3>, RunCascades<4>,
        RunCascades<5>, RunCascades<6>, RunCascades<7>, RunCascades<8>};
    run[numStages - 1](jobs, numJobs, numSamples);
}

}  // namespace
}  // namespace orvandsp::kernels
