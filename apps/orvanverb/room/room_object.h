#pragma once

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "geometry/cartesian_vector.h"
#include "patcher/box.h"

namespace program {

/// The room that a rendering runs through: an object orvanverb~ in its box, driven by messages, as in a patch.
///
/// It always runs at one vector size: the engine's late field takes its loop lengths from the size of the calls.
class RoomObject {
public:
    /// Makes an object. It has no positions yet: see PlaceSources and PlaceSpeakers.
    /// @param numInternals  as typed, for the object to judge
    /// @throws std::invalid_argument with the object's own words if it refuses
    RoomObject(unsigned int numSources, unsigned int numSpeakers, std::string const& numInternals);

    /// Sends a message, as a user types it.
    /// @throws std::invalid_argument with the object's first line of complaint. What it only warns of or posts is in
    ///         TakeRemarks
    void Tell(std::string_view message);
    void Tell(char const* selector, std::vector<max::t_atom> atoms);
    /// The lines that were no complaints, since the last call: "warn: text".
    std::vector<std::string> TakeRemarks();

    /// Puts every source at its place in the built-in layout for their number.
    void PlaceSources();
    void PlaceSource(unsigned int index, Lume::CartesianVector const& position);
    void PlaceSpeakers(std::span<Lume::CartesianVector const> positions);
    std::vector<Lume::CartesianVector> SourcePositions() { return Positions("sourcespositions"); }
    std::vector<Lume::CartesianVector> SpeakerPositions() { return Positions("speakerspositions"); }

    /// Loads the filters of the headphones.
    /// @throws WorkError that names the file
    void LoadHrtf(std::string const& path);
    /// What to tell of them at the rate of Start; empty if there is nothing.
    std::string HrtfRateRemark(std::string const& path) const;

    /// The values of all attributes that a state holds, each with its name, in the order of the state.
    struct Value {
        std::string name;
        std::vector<max::t_atom> atoms;
    };
    std::vector<Value> Values();
    /// The same as the flat list that the object saves and restores.
    std::vector<max::t_atom> State();
    /// @throws std::invalid_argument as Tell
    void Restore(std::vector<max::t_atom> const& state);

    /// Starts audio, and runs over silence until every fade and glide of the settings has ended, so that the first
    /// sample of a recording meets the room as it was asked for.
    /// @param newSamplerate  [Hz]
    /// @param vectorSize     samples of each call of Process, a power of two from 16 on
    void Start(int newSamplerate, unsigned int vectorSize);

    /// Tells the rate of a room that only keeps positions, so that a scene knows its time. Start does it too.
    void SetSamplerate(int newSamplerate) { samplerate = newSamplerate; }

    /// Processes one vector of finite samples. Real-time safe.
    void Process(float** outputs, float** inputs) { box.Process(inputs, outputs); }

    unsigned int NumSources() const { return static_cast<unsigned int>(box.NumSignalInlets()); }
    unsigned int NumSpeakers() const { return static_cast<unsigned int>(box.NumSignalOutlets()); }
    unsigned int VectorSize() const { return static_cast<unsigned int>(box.VectorSize()); }
    int Samplerate() const { return samplerate; }

private:
    void Hear(max::ConsoleLevel level, std::string const& text);
    void ThrowComplaint();
    std::vector<Lume::CartesianVector> Positions(char const* attribute);

    int samplerate = 0;     // [Hz]
    std::string complaint;  // the first line that is an error, not thrown yet
    std::vector<std::string> remarks;
    max::Box box;
};

}  // namespace program
