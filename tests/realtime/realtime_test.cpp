#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <mutex>
#include <random>
#include <string>

#include "common/hosted_room.h"
#include "decoders/decoder_factory.h"
#include "engine/room_format.h"
#include "filters/air_absorption.h"
#include "filters/faded_biquad_cascade.h"
#include "filters/faded_fir_filter.h"
#include "filters/faded_iir_filter.h"
#include "filters/faded_low_pass.h"
#include "filters/multi_delay.h"
#include "filters/multi_faded_hl_shelf.h"
#include "filters/multi_faded_low_pass.h"
#include "filters/multi_hl_shelf.h"
#include "orvanverb/room/room_object.h"
#include "pan/pan_factory.h"
#include "patcher/api.h"
#include "realtime/watched_thread.h"
#include "reverb/cluster.h"
#include "reverb/early.h"
#include "reverb/reverb.h"
#include "reverb/shuffle.h"
#include "room/room_queue.h"
#include "support/channels.h"

// Everything that makes sound, on a thread on which memory, locks and the kernel are out of bounds.

namespace {

using Random = std::mt19937;
using Step = std::function<void(Random&)>;

constexpr unsigned int block = 64;
constexpr float rate = 48000.0f;

unsigned int Below(unsigned int limit, Random& random) {
    return static_cast<unsigned int>(random()) % limit;
}

float Uniform(Random& random) {
    return static_cast<float>(random()) * 0x1p-32f;
}

Lume::CartesianVector Somewhere(Random& random) {
    const auto coordinate = [&] { return 8.0f * Uniform(random) - 4.0f; };
    return {coordinate(), coordinate(), coordinate()};
}

/// One step ahead makes what the first block may still make.
void Watch(std::string const& name, Step const& step, int numSteps = 60) {
    Random random(7);
    step(random);
    const Trespasses seen = WatchThread([&] {
        for (int i = 0; i < numSteps; ++i) step(random);
    });
    EXPECT_EQ(seen.allocations, 0) << name;
    EXPECT_EQ(seen.frees, 0) << name;
    EXPECT_EQ(seen.locks, 0) << name;
    EXPECT_EQ(seen.systemCalls, 0) << name;
}

/// Blocks of one length, each behind a change.
template <class Processing>
void WatchBlocks(
    std::string const& name, Processing& processing,
    std::function<void(Processing&, Random&)> const& change = [](Processing&, Random&) {}) {
    processing.Configure(rate, block, true);
    const Channels in(processing.GetNumInputs(), block, 0.25f), out(processing.GetNumOutputs(), block, 0.0f);
    std::vector<float*> inputs = in.pointers, outputs = out.pointers;
    Watch(name, [&](Random& random) {
        change(processing, random);
        processing.Process(outputs.data(), inputs.data(), block, orvandsp::allActiveInputs);
    });
}

// Red if the watch looks away: without it every other test here is green.
TEST(RealTime, TrespassesAreSeen) {
    std::mutex mutex;
    const Trespasses seen = WatchThread([&mutex] {
        void* volatile memory = malloc(100);  // not to be left out
        free(memory);
        const std::lock_guard<std::mutex> lock(mutex);
        getppid();
    });
#if !defined(__SANITIZE_THREAD__) && !defined(__SANITIZE_ADDRESS__)
    EXPECT_EQ(seen.allocations, 1);
    EXPECT_EQ(seen.frees, 1);
    EXPECT_EQ(seen.locks, 1);
    EXPECT_EQ(seen.systemCalls, 1);
#endif
}

TEST(RealTime, Panners) {
    for (Lume::PanKind const& kind : Lume::PanKinds())
        for (Lume::PanRole const& role : Lume::PanRoles())
            for (unsigned int numOutputs = 2; numOutputs <= 9; ++numOutputs)
                for (const unsigned int numInputs : {1u, 3u}) {
                    if (!kind.supports(numOutputs)) continue;
                    const auto panner = Lume::MakePanner(kind.type, role.subType, numInputs, numOutputs);
                    if (panner == nullptr) continue;
                    for (unsigned int i = 0; i < numInputs; ++i) panner->SetSourcePosition(i, {0, 1, 0}, false);
                    WatchBlocks<Lume::Pan>(std::string(kind.names[0]) + " " + role.names[0] + " " +
                                               std::to_string(numInputs) + " to " + std::to_string(numOutputs),
                                           *panner, [](Lume::Pan& pan, Random& random) {
                                               pan.SetSourcePosition(Below(pan.GetNumInputs(), random),
                                                                     Somewhere(random), random() % 2 == 0);
                                           });
                }
}

TEST(RealTime, Decoders) {
    for (Lume::DecoderKind const& kind : Lume::DecoderKinds())
        for (const unsigned int numInputs : {2u, 3u, 4u, 5u, 7u, 9u, 16u})
            for (const unsigned int numOutputs : {2u, 3u, 4u, 8u, 16u}) {
                if (!kind.supports(numInputs, numOutputs)) continue;
                for (Lume::TransauralNetwork const& network : Lume::TransauralNetworks()) {
                    if (kind.type != Lume::Decoder::transaural && network.subType != Lume::Decoder::nullSubType)
                        continue;
                    const auto decoder = Lume::MakeDecoder(kind.type, network.subType, numInputs, numOutputs);
                    if (decoder != nullptr)
                        WatchBlocks(std::string(kind.names[0]) + " " + network.names[0] + " " +
                                        std::to_string(numInputs) + " to " + std::to_string(numOutputs),
                                    *decoder);
                }
            }
}

TEST(RealTime, Blocks) {
    using Lume::Reverb;
    for (const unsigned int channels : {4u, 8u, 16u}) {
        const std::unique_ptr<Reverb> reverb(Reverb::Create(channels, rate));
        WatchBlocks<Reverb>("late field", *reverb, [](Reverb& late, Random& random) {
            late.SetDecayTime(0.1f + 9.0f * Uniform(random));
            late.SetRelativeDecayHigh(Uniform(random));
            late.SetInfinite(random() % 8 == 0);
            if (random() % 8 == 0) late.Clear();
        });
        const std::unique_ptr<Lume::Cluster> cluster(Lume::Cluster::Create(channels, rate));
        WatchBlocks("cluster", *cluster);
        Lume::Shuffle shuffle(channels);
        WatchBlocks("shuffle", shuffle);
        Lume::MultiHLShelf shelves(channels);
        WatchBlocks("shelves", shelves);
        Lume::MultiFadedHLShelf fadedShelves(channels);
        WatchBlocks("faded shelves", fadedShelves);
        Lume::MultiFadedLowPass lowPasses(channels);
        WatchBlocks("faded low-passes", lowPasses);
    }
    std::vector<float> taps(512, 0.01f);
    const auto fade = [&taps](auto& filter, Random&) { filter.SetCoefficients(taps.data(), false); };
    Lume::FadedFIRFilter fir(200);
    WatchBlocks<Lume::FadedFIRFilter>("faded FIR filter", fir, fade);
    Lume::FadedIIRFilter iir(4);
    WatchBlocks<Lume::FadedIIRFilter>("faded IIR filter", iir, fade);
    Lume::FadedBiquadCascade cascade(6);
    WatchBlocks<Lume::FadedBiquadCascade>("faded cascade", cascade, fade);
}

/// A room of each shape, told anything by its owner and by a queue.
TEST(RealTime, Rooms) {
    struct Shape {
        Lume::RoomFormat const* format;
        unsigned int numSources, numOutputs, numInternals;
    };
    std::vector<Shape> shapes{{nullptr, 1, 2, 8}, {nullptr, 3, 2, 16}, {nullptr, 2, 3, 2},
                              {nullptr, 4, 8, 9}, {nullptr, 64, 4, 8}, {nullptr, 1, 64, 16}};
    for (Lume::RoomFormat const& format : Lume::roomFormats)
        for (unsigned int numOutputs = 2, found = 0; numOutputs <= 64 && found < 2; ++numOutputs)
            if (format.supports(numOutputs)) shapes.push_back({&format, 2, numOutputs, 7 + 4 * found++});
    for (Shape const& shape : shapes) {
        Lume::RoomFormat const* const format = shape.format;
        const unsigned int numSources = shape.numSources, numOutputs = shape.numOutputs;
        Lume::Room room(numSources, numOutputs, shape.numInternals, format);
        const std::string name = format != nullptr ? format->name : "usual";
        Lume::RoomQueue queue;
        room.Configure(rate, 48, 64);
        const Channels in(numSources, 48, 0.25f), out(numOutputs, 48, 0.0f);
        const std::vector<float*> inputs = in.pointers, outputs = out.pointers;
        Watch(
            name + " " + std::to_string(numOutputs),
            [&](Random& random) {
                const std::size_t control = random() % Lume::roomControls.size();
                Lume::RoomControl const& row = Lume::roomControls[control];
                const float part = random() % 2 == 0 ? static_cast<float>(random() % 2) : Uniform(random);
                const float value = row.least + part * (row.greatest - row.least);
                if (random() % 2 == 0)
                    room.Set(control, value);
                else
                    queue.Set(control, value);
                room.PlaceSource(Below(numSources, random), Somewhere(random));
                if (random() % 4 == 0) queue.PlaceSpeaker(Below(numOutputs, random), Somewhere(random));
                room.SetMuted(random() % 16 == 0);
                room.SetBypassed(random() % 16 == 0);
                if (random() % 16 == 0) room.Clear();
                queue.Deliver(room);
                room.Process(outputs.data(), inputs.data(), 48);
            },
            200);
    }
}

/// What Pd and the program call for each of their blocks.
TEST(RealTime, Fronts) {
    const Channels in(2, block, 0.25f), out(4, block, 0.0f);
    plugin::HostedRoom hosted(max::ParseAtoms("@numsources 2 @numspeakers 4"), {});
    hosted.Start(rate, block);
    Watch("hosted room", [&](Random&) { hosted.Process(in.pointers.data(), out.pointers.data()); });
    program::EarsCache ears(48000, program::EarsCache::Fitting::anew);
    program::RoomObject object(2, 4, "8", nullptr, ears);
    object.Start(48000, block);
    Watch("program", [&](Random&) { object.Process(out.pointers.data(), in.pointers.data()); });
}

}  // namespace
