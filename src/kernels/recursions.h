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

/// The heads of numLanes jobs on their ways around their rings.
struct HeadsOnRings {
    /// @param heads  made ready to read
    template <typename Jobs, typename GetHead>
    HeadsOnRings(Jobs const& jobs, GetHead getHead, HeadLanes& heads) noexcept {
        Lanes position{};
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            head[lane] = &getHead(jobs[lane]);
            position[lane] = head[lane]->position;
            heads.state[lane] = *head[lane]->state;
        }
        const auto [wholes, fraction] = Split(position);
        heads.coefficient = AllpassCoefficient(fraction);
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            index[lane] = (wholes[lane] + head[lane]->first) & (head[lane]->size - 1);
            heads.older[lane] = head[lane]->ring[index[lane]];
        }
    }
    /// The newer neighbours of the samples to come, and how many of them lie in a row, if not more than `length`.
    std::size_t FindRun(float const* (&newer)[numLanes], std::size_t length) const noexcept {
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            length = Least(length, static_cast<std::size_t>(head[lane]->size - index[lane]));
            newer[lane] = head[lane]->ring + index[lane] + 1;
        }
        return length;
    }
    void MoveOn(std::size_t length) noexcept {
        for (std::size_t lane = 0; lane < numLanes; ++lane)
            index[lane] = (index[lane] + static_cast<int>(length)) & (head[lane]->size - 1);
    }
    void Keep(HeadLanes const& heads) const noexcept {
        for (std::size_t lane = 0; lane < numLanes; ++lane) *head[lane]->state = heads.state[lane];
    }
    AllpassHead const* head[numLanes];
    int index[numLanes];
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
    HeadsOnRings heads(
        jobs, [](auto const& job) -> AllpassHead const& { return job.head; }, HeadsOf(filter));
    float* outputs[numLanes];
    for (std::size_t lane = 0; lane < numLanes; ++lane) outputs[lane] = jobs[lane].output;
    // Straight runs, from the end of one of the rings to the next.
    for (std::size_t done = 0; done < numSamples;) {
        float const* newer[numLanes];
        const std::size_t length = heads.FindRun(newer, numSamples - done);
        if constexpr (Filter::lag > 0)
            RunLanes(outputs, newer, length, filter);
        else
            filter = RunLanes(outputs, newer, length, filter);
        heads.MoveOn(length);
        for (float*& output : outputs) output += length;
        done += length;
    }
    heads.Keep(HeadsOf(filter));
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

/// What LateMix draws, in three steps, each of which takes what the one before it made of the sample before.
struct MixHeads : Immediate {
    using Output = Pair;
    Pair operator()(Pair newer) noexcept { return {cluster(newer.a), late(newer.b)}; }
    HeadLanes cluster, late;
};
struct MixShelves {
    static constexpr std::size_t lag = 0;
    struct Output {
        Lanes cluster, coloured, late;
    };
    Output operator()(Pair read) noexcept { return {read.a, shelf(read.a * clusterGain), absorbent(read.b)}; }
    ShelfLanes shelf, absorbent;
    float clusterGain;
};
struct MixLoops {
    static constexpr std::size_t lag = 0;
    using Output = Pair;
    Pair operator()(MixShelves::Output x) noexcept {
        const Lanes aired = air(x.late);
        const Lanes lost = throughAir ? aired : x.late;
        return {x.coloured + lost * outGain * lateGain, lost + inGain * x.cluster};
    }
    ShelfLanes air;
    LaneInts throughAir;  // in lanes, so that no second loop is made for an air without losses
    float inGain, outGain, lateGain;
};

void MixGroup(LateMix const& mix, std::size_t firstChannel, std::size_t number, std::size_t numSamples) {
    const auto itself = [](auto const& job) -> auto const& {
        return job;
    };
    const Group<Shelf> shelves(mix.clusterShelves + firstChannel, number);
    const Group<Shelf> absorbents(mix.absorbents + firstChannel, number);
    const Group<Shelf> airs((mix.airs != nullptr ? mix.airs : mix.absorbents) + firstChannel, number);
    InSeries<MixHeads, InSeries<MixShelves, MixLoops>> filter = {
        .second = {.first = {.shelf = ShelfLanes(shelves, itself),
                             .absorbent = ShelfLanes(absorbents, itself),
                             .clusterGain = mix.clusterGain},
                   .second = {.air = ShelfLanes(airs, itself),
                              .throughAir = LaneInts{} - (mix.airs != nullptr ? 1 : 0),
                              .inGain = mix.inGain,
                              .outGain = mix.outGain,
                              .lateGain = mix.lateGain}}};
    auto& [heads, losses, _] = filter;
    HeadsOnRings cluster(Group<AllpassHead>(mix.clusterHeads + firstChannel, number), itself, heads.cluster);
    HeadsOnRings late(Group<AllpassHead>(mix.lateHeads + firstChannel, number), itself, heads.late);
    float* mixed[numLanes];
    float* loops[numLanes];
    for (std::size_t lane = 0; lane < numLanes; ++lane) {
        const std::size_t channel = firstChannel + Least(lane, number - 1);
        mixed[lane] = mix.mixed[channel] + mix.first;
        loops[lane] = mix.loops[channel];
    }
    for (std::size_t done = 0; done < numSamples;) {
        float const* newerOfCluster[numLanes];
        float const* newerOfLate[numLanes];
        const std::size_t length = late.FindRun(newerOfLate, cluster.FindRun(newerOfCluster, numSamples - done));
        RunLanes(PairOfArrays<float>{mixed, loops}, PairOfArrays<float const>{newerOfCluster, newerOfLate}, length,
                 filter);
        cluster.MoveOn(length);
        late.MoveOn(length);
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            mixed[lane] += length;
            loops[lane] += length;
        }
        done += length;
    }
    cluster.Keep(heads.cluster);
    late.Keep(heads.late);
    losses.first.shelf.Keep(shelves, itself);
    losses.first.absorbent.Keep(absorbents, itself);
    if (mix.airs != nullptr) losses.second.air.Keep(airs, itself);
}

void MixLate(LateMix const& mix, std::size_t numChannels, std::size_t numSamples) {
    // Sixteen lanes are moved in and out more slowly than twice eight.
    if (FitsNarrower(numChannels) || numLanes == 16) return narrower->lateMix(mix, numChannels, numSamples);
    for (std::size_t first = 0; first < numChannels; first += numLanes)
        MixGroup(mix, first, Least(numLanes, numChannels - first), numSamples);
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
