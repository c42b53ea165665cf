#include "engine/orvan_verb.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <functional>
#include <tuple>

#include "engine/engine_rig.h"
#include "support/channels.h"
#include "support/failure.h"
#include "support/signals.h"

namespace {

using Lume::OrvanVerb;

/// Noise that depends on nothing but channel and time.
float Noise(unsigned int channel, std::size_t t) {
    static const std::vector<float> noise = MakeNoise(1, 1 << 16);
    return noise[(t + 977 * channel) % noise.size()];
}

void SetAllLayers(OrvanVerb& engine, float direct, float early, float cluster, float reverb) {
    engine.SetDirectGain(direct);
    engine.SetEarlyGain(early);
    engine.SetClusterGain(cluster);
    engine.SetReverbGain(reverb);
}

TEST(OrvanVerb, SupportsConfiguration) {
    for (auto const& [sources, speakers, internals] : {std::array{1u, 2u, 2u}, {64, 64, 16}, {6, 3, 8}})
        EXPECT_TRUE(OrvanVerb::SupportsConfiguration(sources, speakers, internals)) << sources;
    for (auto const& [sources, speakers, internals] :
         {std::array{1u, 1u, 2u}, {0, 2, 2}, {65, 2, 2}, {1, 65, 2}, {1, 0, 8}, {1, 2, 1}, {1, 2, 17}})
        EXPECT_FALSE(OrvanVerb::SupportsConfiguration(sources, speakers, internals))
            << sources << " " << speakers << " " << internals;
    EXPECT_NE(FailureOf([] { OrvanVerb one(1); }).message, "");
}

// Red if the direct sound doesn't fall with the square of the distance and the room send with the distance itself, if
// the distance isn't limited to 0.3 to 100 m, or if the scale isn't sqrt(N/C).
TEST(OrvanVerb, DirectSoundFallsWithTheSquareOfTheDistanceAndTheRoomWithTheDistance) {
    EngineRig rig(2, 6, 8), room(1, 4, 8);
    rig.engine.SetDirectGain(0.0f);
    room.engine.SetEarlyGain(0.0f);
    const auto roomEnergyAt = [&](double distance) {
        room.engine.SetSourcePosition(0, At(0.0, 0.0, distance));
        room.Settle();
        return Energy(room.ImpulseResponse(0.1));
    };
    const double roomReference = roomEnergyAt(1.0);
    EXPECT_GT(roomReference, 0.1);
    const struct {
        double distance, gain;
    } cases[] = {{1.0, 1.0}, {2.0, 0.25}, {0.5, 4.0}, {0.1, 1.0 / 0.09}, {100.0, 1e-4}, {900.0, 1e-4}};
    for (auto const& c : cases) {
        rig.engine.SetSourcePosition(0, At(90.0, 0.0, c.distance));
        rig.engine.SetSourcePosition(1, At(-90.0));
        const auto levels = rig.ConstantLevels();
        // The ramp ends beside its target by a rounding of where it came from.
        EXPECT_NEAR(levels[2], 0.5 * c.gain, 0.5e-4 * c.gain + 1e-6) << c.distance;
        EXPECT_NEAR(levels[5], 0.5, 0.5e-4);
        EXPECT_NEAR(roomEnergyAt(c.distance) / (roomReference * c.gain), 1.0, 1e-4) << c.distance;
    }
}

// Red if a source comes out elsewhere than where it stands, if left and right are mirrored, if two loudspeakers don't
// share a source between them at constant power, or if the loudspeakers' positions don't reach the panner.
TEST(OrvanVerb, SourcesSoundWhereTheyStand) {
    EngineRig rig(1, 6, 4);
    rig.engine.SetDirectGain(0.0f);
    const double azimuths[] = {-45, 45, 90, 135, -135, -90};  // the default layout: front left first
    for (std::size_t speaker = 0; speaker < 6; ++speaker) {
        rig.engine.SetSourcePosition(0, At(azimuths[speaker]));
        const auto levels = rig.ConstantLevels();
        for (std::size_t c = 0; c < 6; ++c) EXPECT_NEAR(levels[c], c == speaker ? 0.5 : 0.0, 1e-4) << speaker << c;
    }
    for (double azimuth = -180.0; azimuth < 180.0; azimuth += 10.0) {
        rig.engine.SetSourcePosition(0, At(azimuth));
        const auto levels = rig.ConstantLevels();
        double power = 0.0;
        for (const float level : levels) power += static_cast<double>(level * level);
        EXPECT_NEAR(power, 0.25, 1e-4) << azimuth;
    }
    rig.engine.SetSpeakersPositions(Ring(6, 10.0, 2.0).data());
    rig.engine.SetSourcePosition(0, At(130.0));
    EXPECT_NEAR(rig.ConstantLevels()[2], 0.5, 1e-4);
}

// Two outputs are ears. Red if the ring's panner serves them, if left and right are mirrored, if a layer is missing, or
// if positions of loudspeakers count.
TEST(OrvanVerb, TwoOutputsAreEars) {
    using Layer = void (OrvanVerb::*)(float);
    const auto energies = [](Layer layer, double azimuth) {
        EngineRig rig(1, 2, 8);
        (rig.engine.*layer)(0.0f);
        rig.engine.SetSourcePosition(0, At(azimuth));
        const Lume::CartesianVector swapped[] = {At(30.0), At(-30.0)};
        rig.engine.SetSpeakersPositions(swapped);
        rig.Settle();
        const auto recording = rig.ImpulseResponse(0.5);
        return std::pair{Energy({recording[0]}), Energy({recording[1]})};
    };
    const auto atRight = energies(&OrvanVerb::SetDirectGain, 90.0);
    const auto atLeft = energies(&OrvanVerb::SetDirectGain, -90.0);
    EXPECT_GT(atRight.second, 0.999 * atRight.first);
    EXPECT_GT(atLeft.first, 0.999 * atLeft.second);
    const auto early = energies(&OrvanVerb::SetEarlyGain, -90.0);
    EXPECT_GT(early.first, early.second);
    for (const Layer layer : {&OrvanVerb::SetClusterGain, &OrvanVerb::SetReverbGain}) {
        const auto diffuse = energies(layer, -90.0);
        EXPECT_GT(diffuse.first, 0.01);
        EXPECT_NEAR(diffuse.first / diffuse.second, 1.0, 0.3);
    }
}

// Red if the room hears the direct gain, or doesn't hear the direct shelf; if a layer's gain or shelf acts on the next
// block's feed; if the late field passes the cluster's shelf.
TEST(OrvanVerb, ControlsOfALayerReachWhatTheyShould) {
    struct Layers {
        bool direct, early, cluster, reverb;
    };
    const auto record = [](Layers heard, auto change) {
        EngineRig rig(1, 4, 8);
        SetAllLayers(rig.engine, 0.0f, 0.0f, 0.0f, 0.0f);
        // A layer that isn't heard is 400 dB down: no more than a rounding is left of it.
        if (!heard.direct) rig.engine.SetDirectGain(-800.0f);
        if (!heard.early) rig.engine.SetEarlyGain(-800.0f);
        if (!heard.cluster) rig.engine.SetClusterGain(-800.0f);
        if (!heard.reverb) rig.engine.SetReverbGain(-800.0f);
        change(rig.engine);
        rig.Settle();
        return rig.ImpulseResponse(0.4);
    };
    const auto nothing = [](OrvanVerb&) {};
    const Layers direct{true, false, false, false}, early{false, true, false, false};
    const Layers cluster{false, false, true, false}, reverb{false, false, false, true};

    const auto directGain = [](OrvanVerb& e) { e.SetDirectGain(-900.0f); };
    for (const Layers layer : {early, cluster, reverb})
        ExpectSameBits(record(layer, nothing), record(layer, directGain));

    const auto directShelf = [](OrvanVerb& e) { e.SetDirectGainMedium(-20.0f); };
    const auto roomShelf = [](OrvanVerb& e) { e.SetRoomGain(-20.0f); };
    for (const Layers layer : {early, cluster, reverb}) {
        EXPECT_LT(Energy(record(layer, directShelf)), 0.8 * Energy(record(layer, nothing)));
        EXPECT_NEAR(Energy(record(layer, roomShelf)) / Energy(record(layer, nothing)), 0.01, 2e-4);
    }
    ExpectSameBits(record(direct, nothing), record(direct, roomShelf));

    const auto earlyLayer = [](OrvanVerb& e) {
        e.SetEarlyGainMedium(-20.0f);
        e.SetEarlyShape(0.0f);
        e.SetEarlyWidth(90.0f);
    };
    for (const Layers layer : {cluster, reverb}) ExpectSameBits(record(layer, nothing), record(layer, earlyLayer));
    const auto clusterLayer = [](OrvanVerb& e) {
        e.SetClusterParameters({-800.0f, 0.0f, -20.0f, 0.0f, 300.0f, 3000.0f});
    };
    ExpectSameBits(record(early, nothing), record(early, clusterLayer));
    ExpectSameBits(record(reverb, nothing), record(reverb, clusterLayer));
}

// Red if decibels are those of another quantity, or a gain is applied by the ramp and by the shelf.
TEST(OrvanVerb, LayerGainsAreDecibelsAndActOnce) {
    using Set = std::function<void(OrvanVerb&, float)>;
    const auto layer = [](void (OrvanVerb::*set)(Lume::HLShelfParameters const&)) -> Set {
        return [set](OrvanVerb& e, float gain) { (e.*set)({.gain = gain}); };
    };
    const auto room = [](OrvanVerb& e, float gain) {
        e.SetEarlyGain(0.0f);
        e.SetRoomParameters({.gain = gain});
    };
    const auto reverb = [](OrvanVerb& e, float gain) { e.SetReverbParameters({.gain = gain}); };
    for (Set const& set : {layer(&OrvanVerb::SetDirectParameters), layer(&OrvanVerb::SetEarlyParameters),
                           layer(&OrvanVerb::SetClusterParameters), Set(room), Set(reverb)}) {
        const auto energyAt = [&](float gain) {
            EngineRig rig(1, 4, 8);
            set(rig.engine, gain);
            rig.Settle();
            return Energy(rig.ImpulseResponse(0.5));
        };
        EXPECT_NEAR(energyAt(-12.0f) / energyAt(0.0f), std::pow(10.0, -1.2), 1e-4);
    }
}

// Red if an engine with a seed draws from the process, another sequence than a process with that seed, or on from where
// an earlier change ended: then a state wouldn't bring back what was heard.
TEST(OrvanVerb, OwnRandomGainsDependOnTheSettingsAlone) {
    OpenEngine process(12), own(12);
    own.SetRandomSeed(7);
    for (OpenEngine* engine : {&process, &own}) engine->Configure(48000.0f, 64, 1, 4);
    std::srand(7);
    process.SetEarlyShape(0.6f);
    std::srand(99);
    for (const float shape : {0.2f, 0.6f}) own.SetEarlyShape(shape);
    EXPECT_EQ(own.earlyGains, process.earlyGains);
    const int next = std::rand();
    std::srand(99);
    EXPECT_EQ(next, std::rand());
}

// Red if layers sound before their gain is set, or if the first configuration starts at full level.
TEST(OrvanVerb, BeginsSilentAndRises) {
    EngineRig rig(1, 4, 4);
    EXPECT_EQ(Energy(rig.Run(9600, Noise)), 0.0);

    EngineRig other(1, 4, 4);
    other.engine.SetDirectGain(0.0f);
    const auto recording = other.Run(9600, [](unsigned int, std::size_t) { return 1.0f; });
    const auto levelAt = [&](std::size_t t) { return std::hypot(recording[0][t], recording[1][t]); };
    EXPECT_EQ(levelAt(63), 0.0f);
    EXPECT_NEAR(levelAt(9000), 0.5f, 1e-4f);
    EXPECT_LT(levelAt(2400), 0.35f);  // half of the 100 ms of the layer's gain
}

// Red if a ramp of the distance takes its 30 ms for those of another rate.
TEST(OrvanVerb, DistanceRampsTakeTheirTimeAtAnyRate) {
    using Layer = void (OrvanVerb::*)(float);
    for (auto const& [layer, latency, halfway] : {std::tuple{Layer(&OrvanVerb::SetDirectGain), 0.0, 0.625f},
                                                  {Layer(&OrvanVerb::SetEarlyGain), 0.02222, 0.75f}}) {
        EngineRig rig(1, 4, 2, 192000.0f);
        rig.engine.SetEarlyShape(0.0f);  // one tap
        (rig.engine.*layer)(0.0f);
        const auto levelAfter = [&](double seconds) {
            const auto recording = rig.Run(rig.Samples(seconds), [](unsigned int, std::size_t) { return 1.0f; });
            return std::hypot(recording[0].back(), recording[1].back());
        };
        rig.engine.SetSourcePosition(0, At(0.0));
        const float near = levelAfter(0.3);
        rig.engine.SetSourcePosition(0, At(0.0, 0.0, 2.0));
        EXPECT_NEAR(levelAfter(latency + 0.015) / near, halfway, 0.01f);
    }
}

TEST(OrvanVerb, ClearAndSecondConfigureEmptyIt) {
    EngineRig rig(2, 4, 8);
    SetAllLayers(rig.engine, 0.0f, 0.0f, 0.0f, 0.0f);
    rig.engine.UseAirAbsorption(false);
    rig.Settle();
    rig.Run(24000, Noise);
    rig.engine.Clear();
    EXPECT_EQ(Energy(rig.Silence(1.0)), 0.0);

    // The shape stays as it was.
    rig.Run(24000, Noise);
    rig.engine.Configure(48000.0f, 64, 5, 3);
    EXPECT_EQ(rig.engine.GetNumInputs(), 2u);
    EXPECT_EQ(rig.engine.GetNumOutputs(), 4u);
    EXPECT_TRUE(rig.engine.IsInitialized());
    EXPECT_EQ(Energy(rig.Silence(1.0)), 0.0);
}

// Red if the flags reach a block, or if an output is written before all inputs are read.
TEST(OrvanVerb, EveryInputCountsAndOutputsMayBeInputs) {
    const auto record = [](auto prepare) {
        EngineRig rig(4, 4, 8);
        SetAllLayers(rig.engine, 0.0f, 0.0f, 0.0f, 0.0f);
        prepare(rig);
        return rig.Run(9600, Noise);
    };
    const auto reference = record([](EngineRig&) {});
    const short inactive[orvandsp::MaxNumChannels] = {};
    ExpectSameBits(reference, record([&](EngineRig& rig) { rig.activeInputs = inactive; }));
    ExpectSameBits(reference, record([](EngineRig& rig) { rig.outputs = rig.inputs; }));
}

}  // namespace
