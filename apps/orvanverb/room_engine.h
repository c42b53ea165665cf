#pragma once

#include <span>

#include "engine/orvan_verb.h"
#include "geometry/cartesian_vector.h"
#include "orvanverb/room_settings.h"

namespace program {

/// The room that a rendering runs through: everything that the program wants of it, and the only place that knows the
/// engine.
///
/// It always runs at one vector size: the engine's late field takes its loop lengths from the size of the calls.
class RoomEngine {
public:
    /// @param numSources  1 to 64; each starts at its place in the built-in layout for that count
    /// @param speakers    positions of 2 to 64 loudspeakers
    /// @param samplerate  [Hz]
    /// @param vectorSize  samples of each call of Process, a power of two from 16 on
    RoomEngine(unsigned int numSources, std::span<Lume::CartesianVector const> speakers, RoomSettings const& settings,
               int samplerate, unsigned int vectorSize);

    void PlaceSource(unsigned int index, Lume::CartesianVector const& position);

    /// Runs over silence until every fade and glide that the settings started has ended, so that the first sample of a
    /// recording meets the room as it was asked for.
    void Settle();

    /// Processes one vector of finite samples. Real-time safe.
    void Process(float** outputs, float** inputs);

    unsigned int NumSources() const { return engine.GetNumInputs(); }
    unsigned int NumSpeakers() const { return engine.GetNumOutputs(); }
    unsigned int VectorSize() const { return vectorSize; }
    int Samplerate() const { return samplerate; }

private:
    void Apply(RoomSettings const& settings);

    int samplerate;  // [Hz]
    unsigned int vectorSize;
    bool muted;
    bool bypassed;
    Lume::OrvanVerb engine;
};

}  // namespace program
