#include "engine/controls.h"

#include <array>

#include "engine/engine_rig.h"

namespace {

using Lume::OrvanVerb;
using Defaults = Lume::LumeDefaultParameters;

constexpr float MinFrequency = 20.0f, MaxFrequency = 20000.0f;

using Setter = void (OrvanVerb::*)(float);

struct Limits {
    double small, full;
};

std::vector<Control> MakeControls() {
    std::vector<Control> controls;
    const auto add = [&](std::string const& name, float low, float high, float usual, float small, Limits limits,
                         auto set) {
        controls.push_back({name, low, high, usual, small, limits.small, limits.full,
                            [=](OrvanVerb& e, float value) { std::invoke(set, e, value); }});
    };
    const auto addLayer = [&](std::string const& name, std::array<Limits, 6> const& limits, Setter gain, Setter low,
                              Setter medium, Setter high, Setter crossoverLow, Setter crossoverHigh) {
        add(name + " gain", -60.0f, 10.0f, 0.0f, 1.0f, limits[0], gain);
        add(name + " gain low", -30.0f, 30.0f, 0.0f, 1.0f, limits[1], low);
        add(name + " gain medium", -30.0f, 30.0f, 0.0f, 1.0f, limits[2], medium);
        add(name + " gain high", -30.0f, 30.0f, 0.0f, 1.0f, limits[3], high);
        add(name + " crossover low", MinFrequency, MaxFrequency, 250.0f, 275.0f, limits[4], crossoverLow);
        add(name + " crossover high", MinFrequency, MaxFrequency, 4000.0f, 4400.0f, limits[5], crossoverHigh);
    };
    addLayer("direct", {{{-60, -53}, {-60, -28}, {-60, -34}, {-60, -39}, {-60, -30}, {-60, -7}}},
             &OrvanVerb::SetDirectGain, &OrvanVerb::SetDirectGainLow, &OrvanVerb::SetDirectGainMedium,
             &OrvanVerb::SetDirectGainHigh, &OrvanVerb::SetDirectCrossoverFrequencyLow,
             &OrvanVerb::SetDirectCrossoverFrequencyHigh);
    addLayer("room", {{{-60, -54}, {-60, -34}, {-60, -34}, {-60, -46}, {-60, -36}, {-60, -16}}},
             &OrvanVerb::SetRoomGain, &OrvanVerb::SetRoomGainLow, &OrvanVerb::SetRoomGainMedium,
             &OrvanVerb::SetRoomGainHigh, &OrvanVerb::SetRoomCrossoverFrequencyLow,
             &OrvanVerb::SetRoomCrossoverFrequencyHigh);
    addLayer("early", {{{-60, -46}, {-60, -38}, {-60, -30}, {-60, -40}, {-60, -48}, {-60, -10}}},
             &OrvanVerb::SetEarlyGain, &OrvanVerb::SetEarlyGainLow, &OrvanVerb::SetEarlyGainMedium,
             &OrvanVerb::SetEarlyGainHigh, &OrvanVerb::SetEarlyCrossoverFrequencyLow,
             &OrvanVerb::SetEarlyCrossoverFrequencyHigh);
    addLayer("cluster", {{{-60, -48}, {-60, -40}, {-60, -31}, {-60, -47}, {-60, -44}, {-60, -19}}},
             &OrvanVerb::SetClusterGain, &OrvanVerb::SetClusterGainLow, &OrvanVerb::SetClusterGainMedium,
             &OrvanVerb::SetClusterGainHigh, &OrvanVerb::SetClusterCrossoverFrequencyLow,
             &OrvanVerb::SetClusterCrossoverFrequencyHigh);
    // Times [ms] change by 1.
    const auto addTime = [&](std::string const& name, float low, float high, float usual, Limits limits, Setter set) {
        add(name, low, high, usual, usual + 1.0f, limits, set);
    };
    addTime("early start", Defaults::MinEarlyStart, Defaults::MaxEarlyStart, Defaults::DefaultEarlyStart, {-27, -1},
            &OrvanVerb::SetEarlyStart);
    addTime("early end", Defaults::MinEarlyEnd, Defaults::MaxEarlyEnd, Defaults::DefaultEarlyEnd, {-25, -5},
            &OrvanVerb::SetEarlyEnd);
    add("early distribution", 0.1f, 0.9f, 0.5f, 0.52f, {-30, -9}, &OrvanVerb::SetEarlyDistribution);
    add("early shape", 0.0f, 1.0f, 0.5f, 0.52f, {-39, -7}, &OrvanVerb::SetEarlyShape);
    add("early width", 10.0f, 180.0f, 30.0f, 35.0f, {-60, -47}, &OrvanVerb::SetEarlyWidth);
    addTime("cluster start", Defaults::MinClusterStart, Defaults::MaxClusterStart, Defaults::DefaultClusterStart,
            {-14, -3}, &OrvanVerb::SetClusterStart);
    addTime("cluster end", Defaults::MinClusterEnd, Defaults::MaxClusterEnd, Defaults::DefaultClusterEnd, {-47, -2},
            &OrvanVerb::SetClusterEnd);
    add("cluster distribution", 0.1f, 0.9f, 0.5f, 0.52f, {-38, -5}, &OrvanVerb::SetClusterDistribution);
    add("reverb gain", -30.0f, 30.0f, 0.0f, 1.0f, {-60, -41}, &OrvanVerb::SetReverbGain);
    add("decay time", 0.1f, 10.0f, Defaults::DefaultDecayTime, Defaults::DefaultDecayTime + 0.2f, {-41, -16},
        &OrvanVerb::SetDecayTime);
    add("relative decay low", 0.1f, 10.0f, 1.0f, 1.1f, {-52, -19}, &OrvanVerb::SetRelativeDecayLow);
    add("relative decay medium", 0.1f, 10.0f, 1.0f, 1.1f, {-42, -11}, &OrvanVerb::SetRelativeDecayMedium);
    add("relative decay high", 0.1f, 1.0f, 0.5f, 0.55f, {-55, -16}, &OrvanVerb::SetRelativeDecayHigh);
    add("reverb crossover low", MinFrequency, MaxFrequency, 250.0f, 275.0f, {-60, -44},
        &OrvanVerb::SetReverbCrossoverFrequencyLow);
    add("reverb crossover high", MinFrequency, MaxFrequency, 8000.0f, 8800.0f, {-60, -10},
        &OrvanVerb::SetReverbCrossoverFrequencyHigh);
    addTime("reverb start", Defaults::MinReverbStart, Defaults::MaxReverbStart, Defaults::DefaultReverbStart, {-15, -8},
            &OrvanVerb::SetReverbStart);
    add("modal density", Defaults::MinReverbModalDensity, Defaults::MaxReverbModalDensity,
        Defaults::DefaultReverbModalDensity, 0.9f, {-15, -13}, &OrvanVerb::SetReverbModalDensity);
    add("air rolloff frequency", MinFrequency, MaxFrequency, 10000.0f, 11000.0f, {-57, 2},
        &OrvanVerb::SetAirAbsorptionRolloffFrequency);
    add("air absorption", 0.0f, 1.0f, 1.0f, 0.0f, {-38, -38},
        [](OrvanVerb& e, float on) { e.UseAirAbsorption(on >= 0.5f); });
    add("infinite", 0.0f, 1.0f, 0.0f, 1.0f, {-19, -19}, [](OrvanVerb& e, float on) { e.SetInfinite(on >= 0.5f); });
    add("source distance", 0.3f, 100.0f, 1.0f, 1.1f, {-60, -38},
        [](OrvanVerb& e, float m) { e.SetSourcePosition(0, At(-45.0, static_cast<double>(m))); });
    add("source azimuth", -180.0f, 180.0f, -45.0f, -40.0f, {-60, -43},
        [](OrvanVerb& e, float degrees) { e.SetSourcePosition(0, At(static_cast<double>(degrees), 1.0)); });
    add("elevation", -80.0f, 80.0f, 0.0f, 5.0f, {-60, -74}, &OrvanVerb::SetElevation);
    add("loudspeaker ring", -180.0f, 180.0f, 0.0f, 5.0f, {-60, -45}, [](OrvanVerb& e, float turn) {
        const std::vector<Lume::CartesianVector> ring = Ring(e.GetNumOutputs(), static_cast<double>(turn));
        e.SetSpeakersPositions(ring.data());
    });
    return controls;
}

}  // namespace

std::vector<Control> const& AllControls() {
    static const std::vector<Control> controls = MakeControls();
    return controls;
}
