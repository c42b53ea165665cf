#include "orvanverb/room_engine.h"

#include <stdexcept>

#include "orvanverb/vector_channels.h"
#include "parameters/reverb_dsp_parameters.h"

namespace program {

namespace {

// Glides after a change of sample rate last 50 ms, layer gains 100 ms; the panners begin a cycle of 30 ms only when the
// one before it has ended.
constexpr double settleSeconds = 0.25;

}  // namespace

RoomEngine::RoomEngine(unsigned int numSources, std::span<Lume::CartesianVector const> speakers,
                       RoomSettings const& settings, int newSamplerate, unsigned int newVectorSize)
    : samplerate(newSamplerate),
      vectorSize(newVectorSize),
      muted(settings.mute != 0.0f),
      bypassed(settings.bypass != 0.0f),
      engine(static_cast<unsigned int>(settings.numinternals)) {
    const auto numSpeakers = static_cast<unsigned int>(speakers.size());
    const auto rate = static_cast<float>(samplerate);
    if (!Lume::OrvanVerb::SupportsConfiguration(numSources, numSpeakers,
                                                static_cast<unsigned int>(settings.numinternals)))
        throw std::invalid_argument("RoomEngine: the engine has no room of this shape");
    engine.Configure(rate, vectorSize, numSources, numSpeakers);
    if (!engine.IsInitialized()) throw std::runtime_error("RoomEngine: the engine could not be set up");
    engine.SetSpeakersPositions(speakers.data());
    Apply(settings);
}

void RoomEngine::Apply(RoomSettings const& settings) {
    engine.SetDirectParameters(settings.direct);
    engine.SetRoomParameters(settings.room);
    engine.SetEarlyParameters(settings.early);
    engine.SetClusterParameters(settings.cluster);

    engine.SetEarlyStart(settings.earlyStart);
    engine.SetEarlyEnd(settings.earlyEnd);
    engine.SetEarlyDistribution(settings.earlyDistr);
    engine.SetClusterStart(settings.clusterStart);
    engine.SetClusterEnd(settings.clusterEnd);
    engine.SetClusterDistribution(settings.clusterDistr);
    engine.SetReverbStart(settings.reverbStart);
    engine.SetEarlyWidth(settings.earlyWidth);
    engine.SetEarlyShape(settings.earlyShape);

    engine.SetReverbParameters(
        {settings.gain, settings.tr0, settings.trl, settings.trm, settings.trh, settings.fl, settings.fh});
    engine.SetReverbModalDensity(settings.modaldensity);
    engine.UseAirAbsorption(settings.air != 0.0f);
    engine.SetAirAbsorptionRolloffFrequency(settings.airfreq);
    engine.SetInfinite(settings.infinite != 0.0f);
}

void RoomEngine::PlaceSource(unsigned int index, Lume::CartesianVector const& position) {
    engine.SetSourcePosition(index, position);
}

void RoomEngine::Settle() {
    VectorChannels silence(NumSources(), vectorSize);
    VectorChannels discarded(NumSpeakers(), vectorSize);
    for (double seconds = 0.0; seconds < settleSeconds; seconds += static_cast<double>(vectorSize) / samplerate)
        Process(discarded.Pointers(), silence.Pointers());
}

void RoomEngine::Process(float** outputs, float** inputs) {
    if (muted)
        engine.Mute(outputs, vectorSize);
    else if (bypassed)
        engine.Bypass(outputs, inputs, vectorSize);
    else
        engine.Process(outputs, inputs, vectorSize, orvandsp::allActiveInputs);
}

}  // namespace program
