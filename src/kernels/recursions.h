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

/// Samples of numLanes channels one after the other, in which several filters work without moving them in and out.
constexpr std::size_t maxFrames = 64;

/// Calls run(first, number) for parts of a block that frames hold.
template <typename Run>
inline void ForEachPart(std::size_t numSamples, Run run) noexcept {
    for (std::size_t first = 0; first < numSamples; first += maxFrames)
        run(first, Least(maxFrames, numSamples - first));
}

inline void LoadAllFrames(Lanes (&frames)[maxFrames], float const* const* inputs, std::size_t first,
                          std::size_t number) noexcept {
    std::size_t k = 0;
    for (; k + 4 <= number; k += 4) {
        Lanes some[4];
        LoadFrames(some, inputs, first + k);
        for (std::size_t i = 0; i < 4; ++i) frames[k + i] = some[i];
    }
    for (; k < number; ++k) frames[k] = LoadFrame(inputs, first + k);
}
inline void StoreAllFrames(float* const* outputs, std::size_t first, std::size_t number,
                           Lanes const (&frames)[maxFrames]) noexcept {
    std::size_t k = 0;
    for (; k + 4 <= number; k += 4) {
        Lanes some[4] = {frames[k], frames[k + 1], frames[k + 2], frames[k + 3]};
        StoreFrames(outputs, first + k, some);
    }
    for (; k < number; ++k) StoreFrame(outputs, first + k, frames[k]);
}

/// Allpass heads on the move: for each sample the place between two neighbours, and from that the coefficient. Some may
/// stand still.
struct GlideLanes {
    GlideLanes(Group<GlidingHead> const& heads, std::size_t numSamples) noexcept {
        const auto count = static_cast<float>(numSamples);
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            GlidingHead const& head = heads[lane];
            ring[lane] = head.ring;
            base[lane] = head.base;
            delay[lane] = *head.delay;
            increment[lane] = head.increment;
            remaining[lane] = *head.remaining;
            mask[lane] = head.mask;
            state[lane] = *head.state;
            // Where samples have whole numbers that are exact, and on the move to the end of the block.
            const float way = count * head.increment;
            const float begin = head.base - *head.delay;
            const bool moves = *head.remaining > 0;
            if (!(begin > -limit && begin < limit && count < limit) ||
                (moves && !(way > -limit && way < limit && static_cast<std::int32_t>(numSamples) <= *head.remaining)))
                plain = false;
            if (!moves) increment[lane] = 0.0f;
        }
        const Places places = Split(base + __builtin_convertvector(mask + 1, Lanes) - delay);
        stands = remaining <= 0;
        standing = places.fraction;
        standingIndex = places.index;
    }

    /// Reads samples, of which the first one has this number in the block.
    void Read(std::int32_t first, std::int32_t number, Lanes (&frames)[maxFrames]) noexcept {
        for (std::int32_t k = 0; k < number;) {
            const std::int32_t end = plain ? ReadRow(first, k, number, frames) : k;
            if (end == k) frames[k] = ReadOne(first + k);
            k = end == k ? k + 1 : end;
        }
    }

    void Keep(Group<GlidingHead> const& heads, std::size_t numSamples) const noexcept {
        const auto count = static_cast<std::int32_t>(numSamples);
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            GlidingHead const& head = heads[lane];
            *head.delay = delay[lane];
            // Only once: a job may be there in several lanes.
            *head.remaining =
                remaining[lane] > count ? remaining[lane] - count : (remaining[lane] < 0 ? remaining[lane] : 0);
            *head.state = state[lane];
        }
    }

private:
    static constexpr float limit = 4194304.0f;

    /// Where a sample is read.
    Places Place(std::int32_t sample) const noexcept {
        const Places places = Split(base - delay + static_cast<float>(sample));
        return {stands ? standingIndex + sample : places.index, stands ? standing : places.fraction};
    }

    Lanes ReadOne(std::int32_t sample) noexcept {
        const auto [index, fraction] = Place(sample);
        delay = remaining > sample ? delay + increment : delay;
        float const* at[numLanes];
        for (std::size_t lane = 0; lane < numLanes; ++lane) at[lane] = ring[lane] + (index[lane] & mask[lane]);
        Lanes older, newer;
        LoadNeighbours(at, older, newer);
        state = AllpassCoefficient(fraction) * (newer - state) + older;
        return state;
    }

    /// Reads as long as each head comes to the next sample of its ring each time, as most do in most blocks.
    /// @param k  frame to begin with
    /// @return the frame behind the last one
    std::int32_t ReadRow(std::int32_t first, std::int32_t k, std::int32_t number, Lanes (&frames)[maxFrames]) noexcept {
        const LaneInts wholes = Place(first + k).index;
        const LaneInts index = wholes & mask;
        const Lanes begin = __builtin_convertvector(wholes - (first + k), Lanes);
        Lanes older{};
        float const* newer[numLanes];
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            const std::int32_t endOfRing = k + mask[lane] + 1 - index[lane];
            number = endOfRing < number ? endOfRing : number;
            older[lane] = ring[lane][index[lane]];
            newer[lane] = ring[lane] + index[lane] + 1 - k;
        }
        // Copies, so that they stay in registers.
        const Lanes from = base, step = increment, standingFraction = standing;
        const LaneInts isStanding = stands;
        Lanes behind = delay, last = state;
        for (bool stays = true; stays && k < number;) {
            Lanes fractions[4], delays[5];
            LaneInts inRow[4];
            delays[0] = behind;
            for (std::int32_t i = 0; i < 4; ++i) {
                const Lanes sample = Lanes{} + static_cast<float>(first + k + i);
                const Lanes fraction = from - delays[i] + sample - (begin + sample);
                fractions[i] = isStanding ? standingFraction : fraction;
                delays[i + 1] = delays[i] + step;
                // From 0 to below 1 both of these are below 0, elsewhere one of them isn't.
                constexpr std::uint32_t one = 0x3f800000;
                const auto bits = reinterpret_cast<LaneWords>(fractions[i]);
                inRow[i] = reinterpret_cast<LaneInts>((bits - one) & ~bits);
            }
            Lanes row[4];
            LoadFrames(row, newer, static_cast<std::size_t>(k));
            const auto next = [&](std::int32_t i) {
                last = AllpassCoefficient(fractions[i]) * (row[i] - last) + older;
                older = row[i];
                frames[k + i] = last;
            };
            stays = k + 4 <= number && AllNegative(inRow[0] & inRow[1] & inRow[2] & inRow[3]);
            if (stays) {
                for (std::int32_t i = 0; i < 4; ++i) next(i);
                behind = delays[4];
                k += 4;
            } else {
                // Those that come before the end, or before a head leaves its row.
                std::int32_t i = 0;
                for (; k + i < number && i < 4 && AllNegative(inRow[i]); ++i) next(i);
                behind = delays[i];
                k += i;
            }
        }
        delay = behind;
        state = last;
        return k;
    }

    float const* ring[numLanes];
    Lanes base{}, delay{}, increment{}, state{};
    LaneInts remaining{}, mask{};
    LaneInts stands{};  // all bits
    Lanes standing{};   // fraction of a head that stands still
    LaneInts standingIndex{};
    bool plain = true;
};

void Glides(GlideJob const* jobs, std::size_t numJobs, std::size_t numSamples) {
    // Sixteen lanes are moved in and out more slowly than twice eight.
    if (FitsNarrower(numJobs) || numLanes == 16) return narrower->glides(jobs, numJobs, numSamples);
    ForEachGroup(jobs, numJobs, [=](GlideJob const* some, std::size_t number) {
        const Group<GlideJob> group(some, number);
        const Group<GlidingHead> heads(group, &GlideJob::head);
        GlideLanes glide(heads, numSamples);
        float* outputs[numLanes];
        for (std::size_t lane = 0; lane < numLanes; ++lane) outputs[lane] = group[lane].output;
        ForEachPart(numSamples, [&](std::size_t first, std::size_t count) {
            Lanes frames[maxFrames];
            glide.Read(static_cast<std::int32_t>(first), static_cast<std::int32_t>(count), frames);
            StoreAllFrames(outputs, first, count, frames);
        });
        glide.Keep(heads, numSamples);
    });
}

/// Cascades of numLanes channels. The inputs that a stage remembers are the outputs that the one before it remembers.
struct CascadeLanes {
    CascadeLanes(Group<Cascade> const& cascades, std::size_t number) noexcept : numStages(number) {
        float const* tapsOf[numLanes];
        float const* memoryOf[numLanes];
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            gain[lane] = cascades[lane].gain;
            tapsOf[lane] = cascades[lane].taps;
            memoryOf[lane] = cascades[lane].memory;
        }
        for (std::size_t i = 0; i < numStages; ++i) {
            LoadFrames(taps[i], tapsOf, 4 * i);
            Lanes memory[4];  // x1, x2, y1, y2
            LoadFrames(memory, memoryOf, 4 * i);
            before[i] = memory[0];
            beforeThat[i] = memory[1];
            before[i + 1] = memory[2];
            beforeThat[i + 1] = memory[3];
        }
    }
    /// Filters frames; outputs may be inputs.
    void Run(Lanes* outputs, Lanes const* inputs, std::size_t number) noexcept {
        constexpr void (*run[maxCascadeStages])(CascadeLanes&, Lanes*, Lanes const*, std::size_t) noexcept = {
            RunStages<1>, RunStages<2>, RunStages<3>, RunStages<4>,
            RunStages<5>, RunStages<6>, RunStages<7>, RunStages<8>};
        run[numStages - 1](*this, outputs, inputs, number);
    }
    void Keep(Group<Cascade> const& cascades) const noexcept {
        float* memoryOf[numLanes];
        for (std::size_t lane = 0; lane < numLanes; ++lane) memoryOf[lane] = cascades[lane].memory;
        for (std::size_t i = 0; i < numStages; ++i) {
            Lanes memory[4] = {before[i], beforeThat[i], before[i + 1], beforeThat[i + 1]};
            StoreFrames(memoryOf, 4 * i, memory);
        }
    }

private:
    template <std::size_t N>
    static void RunStages(CascadeLanes& kept, Lanes* outputs, Lanes const* inputs, std::size_t number) noexcept {
        // Copies, so that they stay in registers.
        const Lanes gain = kept.gain;
        Lanes taps[N][4], before[N + 1], beforeThat[N + 1];
        for (std::size_t i = 0; i < N; ++i)
            for (std::size_t j = 0; j < 4; ++j) taps[i][j] = kept.taps[i][j];
        for (std::size_t i = 0; i <= N; ++i) {
            before[i] = kept.before[i];
            beforeThat[i] = kept.beforeThat[i];
        }
#pragma GCC unroll 4
        for (std::size_t k = 0; k < number; ++k) {
            Lanes v = inputs[k] * gain;
            for (std::size_t i = 0; i < N; ++i) {
                const Lanes y = taps[i][1] * beforeThat[i] + taps[i][0] * before[i] + taps[i][2] * before[i + 1] +
                                taps[i][3] * beforeThat[i + 1] + v;
                beforeThat[i] = before[i];
                before[i] = v;
                v = y;
            }
            beforeThat[N] = before[N];
            before[N] = v;
            outputs[k] = v;
        }
        for (std::size_t i = 0; i <= N; ++i) {
            kept.before[i] = before[i];
            kept.beforeThat[i] = beforeThat[i];
        }
    }

    std::size_t numStages;
    Lanes gain{};
    Lanes taps[maxCascadeStages][4];         // b1, b2, -a1, -a2
    Lanes before[maxCascadeStages + 1];      // input of the first stage, then the output of each
    Lanes beforeThat[maxCascadeStages + 1];  // one sample older
};

void Cascades(CascadeJob const* jobs, std::size_t numJobs, std::size_t numStages, std::size_t numSamples) {
    if (FitsNarrower(numJobs)) return narrower->cascades(jobs, numJobs, numStages, numSamples);
    ForEachGroup(jobs, numJobs, [=](CascadeJob const* some, std::size_t number) {
        const Group<CascadeJob> group(some, number);
        const Group<Cascade> cascades(group, &CascadeJob::cascade);
        CascadeLanes filter(cascades, numStages);
        float* outputs[numLanes];
        float const* inputs[numLanes];
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            outputs[lane] = group[lane].output;
            inputs[lane] = group[lane].input;
        }
        ForEachPart(numSamples, [&](std::size_t first, std::size_t count) {
            Lanes frames[maxFrames];
            LoadAllFrames(frames, inputs, first, count);
            filter.Run(frames, frames, count);
            StoreAllFrames(outputs, first, count, frames);
        });
        filter.Keep(cascades);
    });
}

/// Fades over from former filters to others.
struct FadeLanes {
    FadeLanes() noexcept = default;
    explicit FadeLanes(Group<EarJob> const& jobs) noexcept {
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            gain[lane] = *jobs[lane].gain;
            formerGain[lane] = *jobs[lane].formerGain;
            step[lane] = jobs[lane].step;
            formerStep[lane] = jobs[lane].formerStep;
            remaining[lane] = jobs[lane].remaining;
        }
    }
    Lanes operator()(Lanes x, Lanes former) noexcept {
        const Lanes mixed = gain * x + formerGain * former;
        const Lanes result = remaining > 0 ? mixed : x;
        gain += step;
        formerGain += formerStep;
        remaining -= 1;
        return result;
    }
    void Keep(Group<EarJob> const& jobs) const noexcept {
        for (std::size_t lane = 0; lane < numLanes; ++lane) {
            *jobs[lane].gain = gain[lane];
            *jobs[lane].formerGain = formerGain[lane];
        }
    }
    Lanes gain{}, formerGain{}, step{}, formerStep{};
    LaneInts remaining{};
};

void Ears(EarJob const* jobs, std::size_t numJobs, std::size_t numStages, std::size_t numSamples, bool fading) {
    // Former cascades have the upper lanes where twice as many of them take little more time.
    if (FitsNarrower(fading && numLanes == 8 ? 2 * numJobs : numJobs))
        return narrower->ears(jobs, numJobs, numStages, numSamples, fading);
    ForEachGroup(jobs, numJobs, [=](EarJob const* some, std::size_t number) {
        Group<EarJob> group(some, number);
        const bool haveLanes = fading && 2 * number <= numLanes;
        if (haveLanes) group.TakeUpperHalf(group, 0);
        const Group<GlidingHead> heads(group, &EarJob::head);
        Group<Cascade> cascades(group, &EarJob::cascade);
        const Group<Cascade> formers(group, fading ? &EarJob::former : &EarJob::cascade);
        if (haveLanes) cascades.TakeUpperHalf(formers, numLanes / 2);
        GlideLanes glide(heads, numSamples);
        CascadeLanes cascade(cascades, numStages);
        // Else they run behind one another.
        CascadeLanes former(formers, fading && !haveLanes ? numStages : 0);
        FadeLanes fade;
        if (fading) fade = FadeLanes(group);
        float* outputs[numLanes];
        for (std::size_t lane = 0; lane < numLanes; ++lane) outputs[lane] = group[lane].output;
        ForEachPart(numSamples, [&](std::size_t first, std::size_t count) {
            Lanes frames[maxFrames];
            glide.Read(static_cast<std::int32_t>(first), static_cast<std::int32_t>(count), frames);
            Lanes formerFrames[maxFrames];
            if (fading && !haveLanes) former.Run(formerFrames, frames, count);
            cascade.Run(frames, frames, count);
            for (std::size_t k = 0; fading && k < count; ++k)
                frames[k] =
                    haveLanes ? LowerInBoth(fade(frames[k], UpperInBoth(frames[k]))) : fade(frames[k], formerFrames[k]);
            StoreAllFrames(outputs, first, count, frames);
        });
        glide.Keep(heads, numSamples);
        cascade.Keep(cascades);
        former.Keep(formers);
        if (fading) fade.Keep(group);
    });
}

}  // namespace
}  // namespace orvandsp::kernels
