#include "engine/controls.h"

#include "engine/engine_rig.h"

namespace {

using Lume::OrvanVerb;

constexpr float MinGain = -60.0f, MaxGain = 10.0f;          // of a layer [dB]
constexpr float MinBandGain = -30.0f, MaxBandGain = 30.0f;  // of a band [dB]
constexpr float MinFrequency = 20.0f, MaxFrequency = 20000.0f;

using Setter = void (OrvanVerb::*)(float);

std::vector<Control> MakeControls() {
    std::vector<Control> controls;
    const auto add = [&](std::string const& name, float low, float high, float usual, float small, Setter setter) {
        controls.push_back({name, low, high, usual, small, [=](OrvanVerb& e, float value) { (e.*setter)(value); }});
    };
    const auto addLayer = [&](std::string const& name, Setter gain, Setter low, Setter medium, Setter high,
                              Setter freqLow, Setter freqHigh) {
        add(name + " gain", MinGain, MaxGain, 0.0f, 1.0f, gain);
        add(name + " gain low", MinBandGain, MaxBandGain, 0.0f, 1.0f, low);
        add(name + " gain medium", MinBandGain, MaxBandGain, 0.0f, 1.0f, medium);
        add(name + " gain high", MinBandGain, MaxBandGain, 0.0f, 1.0f, high);
        add(name + " crossover low", MinFrequency, MaxFrequency, 250.0f, 275.0f, freqLow);
        add(name + " crossover high", MinFrequency, MaxFrequency, 4000.0f, 4400.0f, freqHigh);
    };
    addLayer("direct", &OrvanVerb::SetDirectGain, &OrvanVerb::SetDirectGainLow, &OrvanVerb::SetDirectGainMedium,
             &OrvanVerb::SetDirectGainHigh, &OrvanVerb::SetDirectCrossoverFrequencyLow,
             &OrvanVerb::SetDirectCrossoverFrequencyHigh);
    addLayer("room", &OrvanVerb::SetRoomGain, &OrvanVerb::SetRoomGainLow, &OrvanVerb::SetRoomGainMedium,
             &OrvanVerb::SetRoomGainHigh, &OrvanVerb::SetRoomCrossoverFrequencyLow,
             &OrvanVerb::SetRoomCrossoverFrequencyHigh);
    addLayer("early", &OrvanVerb::SetEarlyGain, &OrvanVerb::SetEarlyGainLow, &OrvanVerb::SetEarlyGainMedium,
             &OrvanVerb::SetEarlyGainHigh, &OrvanVerb::SetEarlyCrossoverFrequencyLow,
             &OrvanVerb::SetEarlyCrossoverFrequencyHigh);
    addLayer("cluster", &OrvanVerb::SetClusterGain, &OrvanVerb::SetClusterGainLow, &OrvanVerb::SetClusterGainMedium,
             &OrvanVerb::SetClusterGainHigh, &OrvanVerb::SetClusterCrossoverFrequencyLow,
             &OrvanVerb::SetClusterCrossoverFrequencyHigh);

    using Defaults = Lume::LumeDefaultParameters;
    add("early start", Defaults::MinEarlyStart, Defaults::MaxEarlyStart, Defaults::DefaultEarlyStart,
        Defaults::DefaultEarlyStart + 1.0f, &OrvanVerb::SetEarlyStart);
    add("early end", Defaults::MinEarlyEnd, Defaults::MaxEarlyEnd, Defaults::DefaultEarlyEnd,
        Defaults::DefaultEarlyEnd + 1.0f, &OrvanVerb::SetEarlyEnd);
    add("early distribution", 0.1f, 0.9f, 0.5f, 0.52f, &OrvanVerb::SetEarlyDistribution);
    add("early shape", 0.0f, 1.0f, 0.5f, 0.52f, &OrvanVerb::SetEarlyShape);
    add("early width", 10.0f, 180.0f, 30.0f, 35.0f, &OrvanVerb::SetEarlyWidth);
    add("cluster start", Defaults::MinClusterStart, Defaults::MaxClusterStart, Defaults::DefaultClusterStart,
        Defaults::DefaultClusterStart + 1.0f, &OrvanVerb::SetClusterStart);
    add("cluster end", Defaults::MinClusterEnd, Defaults::MaxClusterEnd, Defaults::DefaultClusterEnd,
        Defaults::DefaultClusterEnd + 1.0f, &OrvanVerb::SetClusterEnd);
    add("cluster distribution", 0.1f, 0.9f, 0.5f, 0.52f, &OrvanVerb::SetClusterDistribution);

    add("reverb gain", -30.0f, 30.0f, 0.0f, 1.0f, &OrvanVerb::SetReverbGain);
    add("decay time", 0.1f, 10.0f, Defaults::DefaultDecayTime, Defaults::DefaultDecayTime + 0.2f,
        &OrvanVerb::SetDecayTime);
    add("relative decay low", 0.1f, 10.0f, 1.0f, 1.1f, &OrvanVerb::SetRelativeDecayLow);
    add("relative decay medium", 0.1f, 10.0f, 1.0f, 1.1f, &OrvanVerb::SetRelativeDecayMedium);
    add("relative decay high", 0.1f, 1.0f, 0.5f, 0.55f, &OrvanVerb::SetRelativeDecayHigh);
    add("reverb crossover low", MinFrequency, MaxFrequency, 250.0f, 275.0f, &OrvanVerb::SetReverbCrossoverFrequencyLow);
    add("reverb crossover high", MinFrequency, MaxFrequency, 8000.0f, 8800.0f,
        &OrvanVerb::SetReverbCrossoverFrequencyHigh);
    add("reverb start", Defaults::MinReverbStart, Defaults::MaxReverbStart, Defaults::DefaultReverbStart,
        Defaults::DefaultReverbStart + 1.0f, &OrvanVerb::SetReverbStart);
    add("modal density", Defaults::MinReverbModalDensity, Defaults::MaxReverbModalDensity,
        Defaults::DefaultReverbModalDensity, 0.9f, &OrvanVerb::SetReverbModalDensity);
    add("air rolloff frequency", MinFrequency, MaxFrequency, 10000.0f, 11000.0f,
        &OrvanVerb::SetAirAbsorptionRolloffFrequency);
    controls.push_back(
        {"air absorption", 0.0f, 1.0f, 1.0f, 0.0f, [](OrvanVerb& e, float on) { e.UseAirAbsorption(on >= 0.5f); }});
    controls.push_back({"infinite", 0.0f, 1.0f, 0.0f, 1.0f, [](OrvanVerb& e, float on) { e.SetInfinite(on >= 0.5f); }});

    controls.push_back({"source distance", 0.3f, 100.0f, 1.0f, 1.1f, [](OrvanVerb& e, float distance) {
                            e.SetSourcePosition(0, At(-45.0, static_cast<double>(distance)));
                        }});
    controls.push_back({"source azimuth", -180.0f, 180.0f, -45.0f, -40.0f, [](OrvanVerb& e, float degrees) {
                            e.SetSourcePosition(0, At(static_cast<double>(degrees), 1.0));
                        }});
    add("elevation", -80.0f, 80.0f, 0.0f, 5.0f, &OrvanVerb::SetElevation);
    controls.push_back({"loudspeaker ring", -180.0f, 180.0f, 0.0f, 5.0f, [](OrvanVerb& e, float turn) {
                            std::vector<Lume::CartesianVector> ring(e.GetNumOutputs());
                            const double step = 360.0 / static_cast<double>(ring.size());
                            for (std::size_t i = 0; i < ring.size(); ++i)
                                ring[i] = At(static_cast<double>(i) * step + static_cast<double>(turn), 1.0);
                            e.SetSpeakersPositions(ring.data());
                        }});
    return controls;
}

}  // namespace

std::vector<Control> const& AllControls() {
    static const std::vector<Control> controls = MakeControls();
    return controls;
}
