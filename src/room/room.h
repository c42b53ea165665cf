#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/orvan_verb.h"
#include "engine/room_controls.h"
#include "geometry/cartesian_vector.h"
#include "room/ears.h"
#include "room/room_state.h"
#include "room/sample_guard.h"
#include "room/source_gains.h"
#include "room/source_strip.h"
#include "room/steady_vectors.h"

namespace Lume {

/// A room with an engine in it, as everything that makes sound for people uses it: programs, plug-ins, languages.
///
///     Lume::Room room(1, 6);                           // one source, the built-in ring of six loudspeakers
///     room.Configure(48000.0f, 480);                   // rate and block size of the host; room.Latency() samples late
///     room.Set(Lume::ControlIndex("tr0"), 2.5f);       // any time between two blocks
///     room.PlaceSource(0, {-1.0f, 2.0f, 0.0f});
///     room.Process(outputs, inputs, 480);
///
/// What it does beyond the engine: controls and positions by number, with limits; blocks of any size; samples that
/// would never leave a room are kept out, and a room that gives such is emptied; ears that change while it runs; its
/// whole state as a value and as text (RoomState).
///
/// Threads: one at a time. Set, SetDirectLevel, SetRoomLevel, PlaceSource, PlaceSpeaker, SetOrientation, SetMuted,
/// SetBypassed, Clear, TakeEars and Process are real-time safe (no heap, no lock, bounded), though PlaceSpeaker takes
/// longer than a block where it chooses triplets of many loudspeakers; call them on the audio thread between two
/// blocks, or send them from other threads by a RoomQueue. Everything else allocates or reads files and must not run
/// beside Process; of the calls that other threads may make meanwhile there is one, PrepareEars. The thread's
/// floating-point mode stays as it was.
class Room {
public:
    static constexpr float maxCoordinate = 1e6f;                                ///< [m]
    static constexpr std::size_t maxVectorSize = SteadyVectors::maxVectorSize;  ///< [samples]
    static constexpr std::size_t maxBlockSize = 1u << 20;                       ///< [samples]
    static constexpr float minSamplerate = 1000.0f, maxSamplerate = 768000.0f;  ///< [Hz]
    static constexpr unsigned int usualInternals = 8;

    /// A room in which every control stands at its standard and everything at the built-in places for its number.
    /// @param numSources    1 to 64
    /// @param numSpeakers   outputs: 2 (headphones) to 64, in a ring, or what the format has
    /// @param numInternals  2 to 16 channels of the room: more are denser and cost more
    /// @param format        form of the outputs, a row of roomFormats (FindRoomFormat); null: headphones or a ring
    /// @throws std::invalid_argument outside these ranges
    Room(unsigned int numSources, unsigned int numSpeakers, unsigned int numInternals = usualInternals,
         RoomFormat const* format = nullptr);
    /// The same with loudspeakers in other places.
    Room(unsigned int numSources, std::span<CartesianVector const> speakers, unsigned int numInternals = usualInternals,
         RoomFormat const* format = nullptr);
    /// A room around an engine that was configured, which stays as it is.
    /// @throws std::invalid_argument if it wasn't, or has no room's shape
    explicit Room(std::unique_ptr<OrvanVerb> configured);
    ~Room();
    Room(Room const&) = delete;
    Room& operator=(Room const&) = delete;

    unsigned int NumSources() const noexcept { return engine->GetNumInputs(); }
    unsigned int NumSpeakers() const noexcept { return engine->GetNumOutputs(); }
    /// The form of the outputs that was asked for; null for headphones or a ring by their number.
    RoomFormat const* Format() const noexcept { return engine->GetFormat(); }
    /// Whether the outputs are two ears.
    bool HasEars() const noexcept { return engine->IsBinaural(); }
    unsigned int NumInternals() const noexcept { return engine->GetNumInternals(); }
    /// The engine itself. What is set there is what Get and SaveState tell.
    OrvanVerb& Engine() noexcept { return *engine; }

    /// @name Audio
    /// @{

    /// Announces the host's rate [Hz] and its blocks, and empties the room.
    /// @param samplerate  minSamplerate to maxSamplerate
    /// @param blockSize   [samples], 1 to maxBlockSize
    /// @param vectorSize  samples of one run of the engine, a power of two from 16 to 8192; 0 chooses, see
    ///                    SteadyVectors. Rooms sound the same to the last bit only at the same vector size
    /// @throws std::invalid_argument outside these ranges; nothing has changed then
    void Configure(float samplerate, std::size_t blockSize, std::size_t vectorSize = 0,
                   SteadyVectors::Blocks blocks = SteadyVectors::Blocks::Steady);
    float Samplerate() const noexcept { return engine->GetSamplerate(); }
    std::size_t BlockSize() const noexcept { return vectors.BlockSize(); }
    std::size_t VectorSize() const noexcept { return vectors.VectorSize(); }
    /// How late outputs come [samples].
    std::size_t Latency() const noexcept { return vectors.Latency(); }

    /// Runs over silence until every fade and glide of the settings has ended, so that the first sample of a recording
    /// meets the room as it was asked for. Costs as much as a quarter of a second of sound.
    void Settle();

    /// Processes one block.
    /// @param outputs, inputs  one pointer per loudspeaker and per source; may be the same arrays, in any order
    void Process(float* const* outputs, float const* const* inputs, std::size_t numSamples);

    /// Empties the room: nothing that ever came in is heard again.
    void Clear();

    /// Silence, or the inputs as they are, instead of the room. Muting wins. The room stands still meanwhile.
    void SetMuted(bool newMuted) noexcept { muted = newMuted; }
    void SetBypassed(bool newBypassed) noexcept { bypassed = newBypassed; }

    /// Input samples that weren't finite, or beyond SampleGuard::maxSample, and became 0.
    std::uint64_t NumBadInputs() const noexcept { return guard.NumReplaced(); }
    /// Output samples that were such: the room was emptied, and faded in again.
    std::uint64_t NumBadOutputs() const noexcept { return outputGuard.NumBad(); }
    /// @}

    /// @name Controls and places
    /// @{

    /// Sets a control, which sends one setter of the engine.
    /// @param control  place in roomControls
    /// @param value    brought into the control's range
    /// @return false, and nothing has changed, if there is no such control or the value is not a number
    bool Set(std::size_t control, float value);
    /// @param control  below roomControls.size()
    float Get(std::size_t control) const { return roomControls[control].get(*engine); }

    /// Level of the direct sound, and of all that the room answers, on top of every control: to balance the two without
    /// touching the room. No part of its state. Real-time safe, in 100 ms.
    /// @param gainDb  default 0; minus infinity switches off
    /// @return false, and nothing has changed, for what is no level
    bool SetDirectLevel(float gainDb);
    bool SetRoomLevel(float gainDb);
    float DirectLevel() const noexcept { return engine->GetDirectLevel(); }
    float RoomLevel() const noexcept { return engine->GetRoomLevel(); }

    /// What to tell of a room that has so few channels that it can't keep its decay time; empty if there is nothing.
    std::string InternalsRemark() const;

    /// A position with its coordinates brought within maxCoordinate.
    static CartesianVector Limited(CartesianVector const& position) noexcept;
    /// Straight above and below, where there is no azimuth, a source keeps the one that it had.
    /// @param position  [m]; x to the right, y ahead, z up. Coordinates are brought within maxCoordinate
    /// @return false, and nothing has changed, if there is no such source or a coordinate is not a number
    bool PlaceSource(unsigned int source, CartesianVector const& position);
    CartesianVector SourcePosition(unsigned int source) const { return engine->GetSourcePosition(source); }
    /// Level of a source ahead of the room, from the next block on in a ramp of 20 ms.
    /// @param gainDb  brought into SourceStrip::silentDb to greatestDb
    /// @return false, and nothing has changed, if there is no such source or the gain is not a number
    bool SetSourceGain(unsigned int source, float gainDb) noexcept;
    bool SetSourceMuted(unsigned int source, bool newMuted) noexcept;
    /// Control characters become blanks, and what is beyond 64 bytes goes. Allocates.
    bool SetSourceName(unsigned int source, std::string_view name);
    std::vector<SourceStrip> const& SourceStrips() const noexcept { return strips; }
    /// Turns the listener's head: OrvanVerb::SetOrientation.
    /// @return false, and nothing has changed, if an angle is not finite
    bool SetOrientation(Orientation const& orientation);
    Orientation const& GetOrientation() const noexcept { return engine->GetOrientation(); }
    /// The same as for a source for a loudspeaker, and for all of them. The formats vbap, dome and vdbap choose
    /// triplets: up to 4 ms for 24 loudspeakers, 17 for 48.
    bool PlaceSpeaker(unsigned int speaker, CartesianVector const& position);
    bool PlaceSpeakers(std::span<CartesianVector const> positions);
    std::vector<CartesianVector> const& SpeakerPositions() const { return engine->GetSpeakersPositions(); }
    /// @}

    /// @name Ears: the filters of headphones
    /// @{

    /// Reads a .hrtf or .coll file and makes ears for this room of it. Any thread, also while the room runs, but not
    /// beside Configure.
    /// @throws std::runtime_error "FILE: FIELD: why" for a file that can't be used, or a room that isn't on headphones
    Ears PrepareEars(std::filesystem::path const& file) const;
    /// Gives the room these ears. If it runs they fade in from the next block on, over 30 ms. In return the object
    /// holds ears that have gone out of use: to be deleted elsewhere.
    /// @return false, and nothing has changed, if they were prepared before the last Configure
    bool TakeEars(Ears& ears) noexcept;
    /// Both at once.
    void LoadEars(std::filesystem::path const& file);
    /// Loads the ears of a state, if it has others.
    /// @throws std::runtime_error as LoadEars, and if the file has changed since the state was saved
    void RestoreEars(EarsFile const& wanted);
    EarsFile const& CurrentEars() const noexcept { return earsFile; }
    /// Takes the built-in ears that were made for the room's rate, or the nearest, unless others were loaded. Configure
    /// has done so; for whoever configures the engine past the room.
    void MatchBuiltinEars();
    /// What to tell about ears that were made for another rate than the room's, at which they sound shifted in
    /// frequency; empty if there is nothing to tell.
    std::string EarsRemark() const;
    /// The description of the filters, null without headphones.
    HrtfHeaderInfos const* EarsInfos() const { return engine->GetHrtfHeaderInfos(); }
    /// @}

    /// @name State
    /// @{
    RoomState SaveState() const;
    /// Brings the room to a state. What a new room then plays, any other new room does, to the last bit, if it runs at
    /// the same vector size, which is the caller's to Configure. A room that has played keeps traces of where its
    /// delays were, some 40 to 80 dB below what it plays.
    /// @throws std::invalid_argument if the sizes are others, std::runtime_error if the ears' file can't be used or has
    ///         changed; the room is as it was
    void RestoreState(RoomState const& state);
    /// @}

private:
    void AimGain(unsigned int source) noexcept;
    void PlaceBuiltInSpeakers();
    void ProcessVector(float* const* outputs, float const** inputs);
    void Bypass(float* const* outputs, float const** inputs);
    void UseSet(std::unique_ptr<Hrtf> set, EarsFile file);

    std::unique_ptr<OrvanVerb> engine;
    SteadyVectors vectors;
    SampleGuard guard;
    OutputGuard outputGuard;
    SourceGains gains;
    std::vector<SourceStrip> strips;
    bool muted = false, bypassed = false;
    bool runs = false;                          // since it was made
    float fadeIn = 1.0f;                        // gain of the outputs: below 1 after the room was emptied
    std::vector<float> bypassCopies;            // of the inputs
    std::unique_ptr<BinauralPanning> nextEars;  // to be exchanged, or out of use
    bool earsWait = false;                      // nextEars are to be exchanged
    EarsFile earsFile;
    std::vector<std::string> unknownState;
};

}  // namespace Lume
