#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "dsp/audio_buffer.h"
#include "dsp/ramp.h"
#include "dsp/signal_processing.h"
#include "engine/room_format.h"
#include "filters/multi_faded_hl_shelf.h"
#include "geometry/cartesian_vector.h"
#include "geometry/orientation.h"
#include "hrtf/hrtf_header_infos.h"
#include "pan/pan.h"
#include "parameters/hl_shelf_parameters.h"
#include "parameters/lume_default_parameters.h"
#include "parameters/reverb_dsp_parameters.h"
#include "reverb/cluster.h"
#include "reverb/delgen.h"
#include "reverb/early.h"
#include "reverb/reverb.h"

namespace Lume {

class BinauralPanning;
class Hrtf;

/// The room reverberator and spatialiser: N source signals in, M loudspeaker signals (or two binaural ones) out.
///
///     inputs -> direct shelf --+--> x 1/d^2, direct gain ------------------------------> direct panner --+
///                              |                                                                        |
///                              +--> x 1/d, summed -> room shelf -> early -> cluster -> late             |
///                                                                    |         |         |              +-> outputs
///                                   early gains, early gain, shelf <-+         |         |              |
///                                        |                                     |         |              |
///                                        +--> early panner (2 virtual sources) ----------------------->-+
///                                             cluster gain, cluster shelf <----+         |              |
///                                                           |       reverb gain <--------+              |
///                                                           +--> sum, diffuse panner ----------------->-+
///
/// Between them C internal channels carry the room. Early, cluster and late block stand in series, each fed with the
/// raw output of the one before it. The room hears the sources behind the direct shelf and before the direct gain. More
/// than two outputs are panned over a horizontal ring of loudspeakers, two are binaural.
///
/// Life: construct, Configure (this builds the panners and fixes N and M), then set parameters and call Process. Before
/// the first Configure only Configure, the parameter setters and SupportsConfiguration may be called. Until the layer
/// gains (SetDirectGain, SetEarlyGain, SetClusterGain, SetReverbGain) are set for the first time they stand at zero and
/// the outputs are silent.
///
/// Setters don't report. A value outside its range is taken as it comes, except where a clamp is named; one that isn't
/// finite changes nothing (minus infinity switches a level off); levels and bands stay within 200 dB, places within
/// 1000 km. A sample that isn't finite, or is beyond 1e15, counts as 0: nothing that comes in can stay in the room for
/// good. A getter gives the value that its setter would have to get to make this engine as it is.
///
/// Setters start ramps, crossfades and glides; the times below say how long a change takes to be complete. After
/// Configure none of them allocates, but for LoadHrtf, SetHrtf and MakeEars. Nothing is synchronised, and nothing may
/// run beside Process: some setters clear or lengthen the delay lines that it reads. Call them on its thread, between
/// two blocks; RoomQueue brings messages there from other threads.
class OrvanVerb : public orvandsp::SignalProcessing {
public:
    /// Time in which a layer gain reaches its new value [ms].
    static constexpr float DefaultRampTime = 100.0f;

    /// @param numInternals  channels of the room, 2 to 16; more of them give a denser room and cost more
    /// @throws OrvanDspException if the late reverberator can't be built with that number (1, or above 64)
    explicit OrvanVerb(unsigned int numInternals);
    ~OrvanVerb() override;

    OrvanVerb(OrvanVerb const&) = delete;
    OrvanVerb& operator=(OrvanVerb const&) = delete;

    /// Whether an engine of that shape works: 1 to 64 sources, 1 to 64 loudspeakers that the panning method serves (two
    /// are binaural; on a ring at least three), 2 to 16 internal channels. Configure doesn't ask: ask first.
    static bool SupportsConfiguration(unsigned int numSources, unsigned int numSpeakers, unsigned int numInternals);

    /// The same for a format that is asked for.
    static bool SupportsConfiguration(RoomFormat const& format, unsigned int numSources, unsigned int numSpeakers,
                                      unsigned int numInternals);

    /// Asks for a form of the outputs, before the first Configure; later calls do nothing. Without one, two outputs are
    /// binaural, and more of them a ring with a diffuse field of four signals.
    /// @param format  a row of roomFormats
    void SetFormat(RoomFormat const& format);
    /// The format that was asked for; null without one.
    RoomFormat const* GetFormat() const noexcept { return format; }
    /// Whether the outputs are the two ears of somebody with headphones.
    bool IsBinaural() const noexcept;

    using SignalProcessing::Configure;

    /// The first call fixes the shape and puts sources and loudspeakers at the default layouts for their numbers; the
    /// sources' level rises from zero in 30 ms. Each later call announces rate and block size, clears all audio memory
    /// and ignores the shape.
    /// @param newSamplerate  [Hz]
    /// @param maxBlockSize   largest number of samples of one call to Process. Keep to one size of calls, from 1 to 64
    ///                       or a multiple of 64: the late field takes its loop lengths from it. Others change them
    ///                       within each call, and with them the decay: calls of 480 samples make 3.3 s of 2 s, of 100
    ///                       samples 7 s, and an infinite room then grows. SteadyVectors cuts any blocks to vectors of
    ///                       one size; Room does it inside
    void Configure(float newSamplerate, unsigned int maxBlockSize, unsigned int numSources, unsigned int numSpeakers);

    /// From nine internal channels on each change of the early reflections draws their gains anew: from the C library's
    /// rand(), which the whole process shares, or, from this call on, as a rand() that was just seeded so would. Then
    /// the same settings always give the same gains, whatever came before.
    void SetRandomSeed(std::uint32_t seed) { randomSeed = seed; }

    /// Whether a first Configure has succeeded.
    bool IsInitialized() const noexcept { return initialized; }
    unsigned int GetNumInternals() const noexcept { return numInternals; }

    /// @name Frame
    /// @{
    /// Real-time safe. The outputs may be the inputs.
    /// @param activeInputs  not read: an unconnected input is a silent signal
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    /// Returns to silence; parameters, positions and running ramps stay. So does what the air filters of the late field
    /// remember.
    void Clear() override;
    /// Clear, and the air filters too: nothing that ever came in is heard again. Real-time safe.
    void Silence();

    /// How long to go on after the input has ended until the room has fallen by so many decibels [s]: an upper bound
    /// for the present controls, 60 for what is heard, 90 for what is recorded. Infinite for an infinite room.
    float GetTailLength(float decibels = 60.0f) const;
    /// How much later than the input the direct sound leaves [samples]: none.
    static constexpr unsigned int GetLatency() noexcept { return 0; }
    /// @}

    /// @name Positions
    /// @{
    /// Places a source; the default layouts are those of Speakers. Its direct sound falls with the square of its
    /// distance, deliberately steeper than its share of the room, which falls with the distance: 1 m has gain 1 in
    /// both. Levels take 30 ms, directions the panner's 30 ms cycle. The early reflections follow the source that was
    /// placed last: two virtual sources stand on either side of it (SetEarlyWidth).
    /// @param source    below the number of sources (6 before Configure); others are ignored
    /// @param position  [m]; the distance counts as 0.3 to 100 m
    void SetSourcePosition(unsigned int source, CartesianVector const& position);

    /// Turns the listener's head in the room: whatever the outputs are, directions are heard as the head has them, and
    /// distances stay. Formats without heights (RoomFormat::inSpace), and loudspeakers in a ring, follow the yaw alone.
    /// The loudspeakers turn with the head, and so does the diffuse field, which comes from everywhere. Takes the
    /// panner's 30 ms cycle. Real-time safe, at the cost of placing every source.
    /// @param newOrientation  one that isn't finite changes nothing
    void SetOrientation(Orientation const& newOrientation);
    Orientation const& GetOrientation() const noexcept { return orientation; }

    /// Places the loudspeakers: what they play of direct sound and early reflections changes within 30 ms. The diffuse
    /// field doesn't know where loudspeakers stand, but in formats that say so (RoomFormat::bySolidAngle). Takes no
    /// memory; vbap, dome and vdbap, which choose triplets, take up to 4 ms for 24 loudspeakers and 17 for 48. Without
    /// effect on the two channels of a binaural engine.
    /// @param positions  one per loudspeaker [m]
    void SetSpeakersPositions(CartesianVector const* positions);

    /// Loads the filters of a binaural engine's direct sound from a .hrtf or .coll file, or the built-in ones for the
    /// name "kemar"; impulse responses run by fast convolution. The sources' present filters stay until then.
    /// Allocates: not while Process runs.
    /// @return false, and nothing has changed, if the engine isn't binaural or the set isn't one for two ears
    /// @throws OrvanDspException, and nothing has changed, if the file can't be read
    bool LoadHrtf(char const* path);

    /// The same with a set that is loaded.
    bool SetHrtf(std::unique_ptr<Hrtf> set);

    /// Makes ears from a set, for ExchangeEars: all of the work that takes time and memory. May run beside Process and
    /// every setter, but not beside Configure, SetSamplerate and SetMaxBlockSize.
    /// @return null if the engine isn't binaural or the set isn't one for two ears
    std::unique_ptr<BinauralPanning> MakeEars(std::unique_ptr<Hrtf> set) const;

    /// Gives the sources other ears, in a crossfade of 30 ms. Real-time safe.
    /// @param ears  from MakeEars of this engine, configured as it is now. In return holds the ears that were in use
    ///              before the last exchange, or null: to be deleted on another thread
    /// @return false, and nothing has changed, while a crossfade runs
    bool ExchangeEars(std::unique_ptr<BinauralPanning>& ears);

    /// The description of the set in use, null if the engine isn't binaural.
    HrtfHeaderInfos const* GetHrtfHeaderInfos() const;

    /// Lifts all sources to one elevation, for good: azimuth and distance stay. 30 ms.
    /// @param degrees  -90 to 90, default 0
    void SetElevation(float degrees);

    /// Where a source was placed last; one beyond the number of sources is at the origin.
    CartesianVector GetSourcePosition(unsigned int source) const {
        return source < sourcePositions.size() ? sourcePositions[source] : CartesianVector{};
    }
    /// Where the loudspeakers were placed last, one position each.
    std::vector<CartesianVector> const& GetSpeakersPositions() const noexcept { return speakerPositions; }
    /// @}

    /// @name Direct sound
    /// The shelf colours the room as well, which hears the sources behind it; the gain doesn't.
    ///
    /// All gains of this class are in dB, default 0. Shelf gains and crossovers crossfade in 30 ms. That of the direct
    /// layer takes 5 ms for the seventh source and later ones.
    /// @{
    /// All six at once, gain included.
    void SetDirectParameters(HLShelfParameters const& parameters) { SetParameters(directLayer, parameters); }
    /// Level of the direct sound, -60 to 10 dB, in 100 ms.
    void SetDirectGain(float gainDb) { SetGain(directLayer, gainDb); }
    /// Band below the low crossover, -30 to 30 dB.
    void SetDirectGainLow(float gainDb) { Set(directLayer.parameters.gainLow, gainDb, directLayer); }
    /// Band between the crossovers, -30 to 30 dB.
    void SetDirectGainMedium(float gainDb) { Set(directLayer.parameters.gainMed, gainDb, directLayer); }
    /// Band above the high crossover, -30 to 30 dB.
    void SetDirectGainHigh(float gainDb) { Set(directLayer.parameters.gainHigh, gainDb, directLayer); }
    /// 20 to 20000 Hz, default 250.
    void SetDirectCrossoverFrequencyLow(float frequencyHz) {
        Set(directLayer.parameters.freqLow, frequencyHz, directLayer);
    }
    /// 20 to 20000 Hz, default 4000.
    void SetDirectCrossoverFrequencyHigh(float frequencyHz) {
        Set(directLayer.parameters.freqHigh, frequencyHz, directLayer);
    }
    HLShelfParameters const& GetDirectParameters() const noexcept { return directLayer.parameters; }
    /// @}

    /// @name Room
    /// Colours all that the room answers: early, cluster and late field. Ranges as for the direct sound.
    /// @{
    void SetRoomParameters(HLShelfParameters const& parameters) { SetParameters(roomLayer, parameters); }
    /// Level of the whole room, -60 to 10 dB. A part of the shelf, and so in 30 ms.
    void SetRoomGain(float gainDb) { SetGain(roomLayer, gainDb); }
    void SetRoomGainLow(float gainDb) { Set(roomLayer.parameters.gainLow, gainDb, roomLayer); }
    void SetRoomGainMedium(float gainDb) { Set(roomLayer.parameters.gainMed, gainDb, roomLayer); }
    void SetRoomGainHigh(float gainDb) { Set(roomLayer.parameters.gainHigh, gainDb, roomLayer); }
    void SetRoomCrossoverFrequencyLow(float frequencyHz) { Set(roomLayer.parameters.freqLow, frequencyHz, roomLayer); }
    void SetRoomCrossoverFrequencyHigh(float frequencyHz) {
        Set(roomLayer.parameters.freqHigh, frequencyHz, roomLayer);
    }
    HLShelfParameters const& GetRoomParameters() const noexcept { return roomLayer.parameters; }
    /// @}

    /// @name Levels of the whole layers
    /// What is heard of the direct sound, and of all that the room answers, on top of every other gain: for whoever
    /// balances the two without touching the room. They belong to no set of parameters. Default 0, minus infinity
    /// switches off; in 100 ms.
    /// @{
    void SetDirectLevel(float gainDb);
    void SetRoomLevel(float gainDb);
    float GetDirectLevel() const noexcept { return directLevel; }
    float GetRoomLevel() const noexcept { return roomLevel; }
    /// @}

    /// @name Early reflections
    /// Gain and shelf act on what is heard of the early reflections, not on what they feed into the cluster. Ranges as
    /// for the direct sound.
    /// @{
    void SetEarlyParameters(HLShelfParameters const& parameters) { SetParameters(earlyLayer, parameters); }
    /// Level of the early reflections, -60 to 10 dB, in 100 ms.
    void SetEarlyGain(float gainDb) { SetGain(earlyLayer, gainDb); }
    void SetEarlyGainLow(float gainDb) { Set(earlyLayer.parameters.gainLow, gainDb, earlyLayer); }
    void SetEarlyGainMedium(float gainDb) { Set(earlyLayer.parameters.gainMed, gainDb, earlyLayer); }
    void SetEarlyGainHigh(float gainDb) { Set(earlyLayer.parameters.gainHigh, gainDb, earlyLayer); }
    void SetEarlyCrossoverFrequencyLow(float frequencyHz) {
        Set(earlyLayer.parameters.freqLow, frequencyHz, earlyLayer);
    }
    void SetEarlyCrossoverFrequencyHigh(float frequencyHz) {
        Set(earlyLayer.parameters.freqHigh, frequencyHz, earlyLayer);
    }
    HLShelfParameters const& GetEarlyParameters() const noexcept { return earlyLayer.parameters; }

    /// Time of the first early reflection [ms], clamped to 1 to 120, default 22.22. Delays glide in 50 ms, which shifts
    /// their pitch; the cluster, whose times are absolute, is moved along. So do the next two.
    void SetEarlyStart(float milliseconds);
    /// Time of the last early reflection [ms], clamped to 1 to 120 and not before the first, default 39.71. A range
    /// below 3.288 ms is widened to that.
    void SetEarlyEnd(float milliseconds);
    /// Whether reflections crowd at the start (low) or at the end (high) of their range, clamped to 0.1 to 0.9, default
    /// 0.5.
    void SetEarlyDistribution(float distribution);
    /// Envelope of the reflections, clamped to 0 to 1: falling below 0.5, flat at 0.5 (the default), rising above; at 0
    /// and 1 a single reflection remains. The gains change with the next block, without a ramp. With more than 8
    /// internal channels each call draws a new slight spread of the gains.
    void SetEarlyShape(float shape);
    /// Angle between the two virtual sources that play the early reflections, on either side of the source that was
    /// placed last: 10 to 180 degrees, default 30. 30 ms. Places every source again, so that the last one counts.
    void SetEarlyWidth(float degrees);
    float GetEarlyStart() const noexcept { return earlyStart; }
    float GetEarlyEnd() const noexcept { return earlyEnd; }
    float GetEarlyDistribution() const noexcept { return earlyDistribution; }
    float GetEarlyShape() const noexcept { return earlyShape; }
    float GetEarlyWidth() const noexcept { return earlyWidth; }
    /// @}

    /// @name Cluster: the dense reflections between early ones and late field
    /// Gain and shelf act on what is heard of the cluster, not on what it feeds into the late field. Ranges as for the
    /// direct sound.
    /// @{
    void SetClusterParameters(HLShelfParameters const& parameters) { SetParameters(clusterLayer, parameters); }
    /// Level of the cluster, -60 to 10 dB, in 100 ms.
    void SetClusterGain(float gainDb) { SetGain(clusterLayer, gainDb); }
    void SetClusterGainLow(float gainDb) { Set(clusterLayer.parameters.gainLow, gainDb, clusterLayer); }
    void SetClusterGainMedium(float gainDb) { Set(clusterLayer.parameters.gainMed, gainDb, clusterLayer); }
    void SetClusterGainHigh(float gainDb) { Set(clusterLayer.parameters.gainHigh, gainDb, clusterLayer); }
    void SetClusterCrossoverFrequencyLow(float frequencyHz) {
        Set(clusterLayer.parameters.freqLow, frequencyHz, clusterLayer);
    }
    void SetClusterCrossoverFrequencyHigh(float frequencyHz) {
        Set(clusterLayer.parameters.freqHigh, frequencyHz, clusterLayer);
    }
    HLShelfParameters const& GetClusterParameters() const noexcept { return clusterLayer.parameters; }

    /// Time of the first cluster reflection [ms], 1 to 300, default 42.47. What counts is its distance from the early
    /// start, clamped to 1 to 300. Delays glide in 50 ms, here and in the next two; the late field, whose start is
    /// absolute, moves against the cluster's at once, with the jump that SetReverbStart describes.
    void SetClusterStart(float milliseconds);
    /// Time of the last cluster reflection [ms], 1 to 300, default 105.64. What counts is its distance from the early
    /// end, not below that of the starts, and clamped to 300.
    void SetClusterEnd(float milliseconds);
    /// Whether reflections crowd at the start (low) or at the end (high) of their range, clamped to 0.1 to 0.9, default
    /// 0.5.
    void SetClusterDistribution(float distribution);
    float GetClusterStart() const noexcept { return clusterStart; }
    float GetClusterEnd() const noexcept { return clusterEnd; }
    float GetClusterDistribution() const noexcept { return clusterDistribution; }
    /// @}

    /// @name Late field
    /// @{
    /// All seven at once, gain included.
    void SetReverbParameters(ReverbDspParameters const& parameters);
    /// Level of the late field, -30 to 30 dB, default 0, in 100 ms.
    void SetReverbGain(float gainDb);
    /// Time in which the late field falls by 60 dB [s], 0.1 to 10, default 1.995. The filters of the network change at
    /// once, its input gain in 30 ms; a change of that gain by more than 10 dB empties the network and jumps. So do the
    /// other decay settings.
    void SetDecayTime(float seconds);
    /// Decay below the low crossover as a factor of the decay time, 0.1 to 10, default 1.
    void SetRelativeDecayLow(float factor);
    /// Decay between the crossovers as a factor of the decay time, 0.1 to 10, default 1.
    void SetRelativeDecayMedium(float factor);
    /// Decay above the high crossover as a factor of the decay time, 0.1 to 1, default 0.5.
    void SetRelativeDecayHigh(float factor);
    /// 20 to 20000 Hz, default 250.
    void SetReverbCrossoverFrequencyLow(float frequencyHz);
    /// 20 to 20000 Hz, default 8000.
    void SetReverbCrossoverFrequencyHigh(float frequencyHz);
    /// Start of the late field [ms], 1 to 500, default 95.37. What counts is its distance from the cluster start,
    /// clamped to 0 to 500. The delays of the network jump: a sounding tail is torn.
    void SetReverbStart(float milliseconds);
    /// Sum of the network's delays [s], clamped to 0.2 to 4, default 0.86: more gives a smoother, slower room. Jumps as
    /// SetReverbStart does.
    void SetReverbModalDensity(float seconds);
    /// Holds the tail for ever (air absorption, if on, still takes its highs). Default false; at once.
    void SetInfinite(bool newInfinite);
    /// Whether a late field that is emptied because its gain jumps loses what the air filters hold, too, which an
    /// infinite room gives back 20 dB too loud and more. Default false.
    void SilenceAirOnRestart(bool silence);
    /// Whether the late field loses highs to the air. Default true; at once.
    void UseAirAbsorption(bool use);
    /// Frequency from which on the air absorbs [Hz], 20 to 20000, default 10000; at once.
    void SetAirAbsorptionRolloffFrequency(float frequencyHz);
    ReverbDspParameters GetReverbParameters() const noexcept {
        return {reverbGain,        decayTime,    relativeDecayLow, relativeDecayMedium,
                relativeDecayHigh, crossoverLow, crossoverHigh};
    }
    float GetReverbStart() const noexcept { return reverbStart; }
    float GetReverbModalDensity() const noexcept { return modalDensity; }
    bool IsInfinite() const noexcept { return infinite; }
    bool UsesAirAbsorption() const noexcept { return useAirAbsorption; }
    float GetAirAbsorptionRolloffFrequency() const noexcept { return airAbsorptionRolloffFrequency; }
    /// @}

protected:
    /// A shelf over some channels, and a level: a ramp of its own unless the shelf does it.
    struct Layer {
        enum Level { ramped, gainInShelf };
        explicit Layer(unsigned int numChannels, Level newLevel = ramped) : shelf(numChannels), level(newLevel) {}

        MultiFadedHLShelf shelf;
        HLShelfParameters parameters;
        Level level;
        orvandsp::Ramp gainRamp;
    };
    void SetParameters(Layer& layer, HLShelfParameters const& parameters);
    void SetGain(Layer& layer, float gainDb);
    /// Stores a value among the layer's parameters.
    void Set(float& stored, float value, Layer& layer);
    static void UpdateShelf(Layer& layer);

    bool CreatePanners(unsigned int numSources, unsigned int numSpeakers);
    std::unique_ptr<Pan> MakePan(unsigned int numInputs, unsigned int numSpeakers, Pan::SubType role) const;
    void PlaceInPanner(unsigned int source);
    void PlaceReflections(unsigned int source);
    CartesianVector ToPanner(CartesianVector const& position) const;
    float** AtTheDoor(float** inputs, unsigned long numSamples);
    void SendToRoom(unsigned long numSamples);
    void AddDirectLayer(float** outputs, unsigned long numSamples, float gain);
    void CrossfadeEars(float** outputs, unsigned long numSamples);
    void EndEarsCrossfade();
    void AddEarlyLayer(float** outputs, float** reflections, unsigned long numSamples, float gain, bool roomWaits);
    void MixLateLayer(float** reflections, unsigned long numSamples, float clusterScale, float reverbScale);
    bool MixLateLayerAtOnce(float** reflections, unsigned long numSamples, float clusterScale, float reverbScale);
    void UpdateEarlyDelays();
    void UpdateEarlyGains();
    void UpdateClusterDelays();
    void UpdateReverbDelays();
    float ReverbDistribution() const noexcept;
    /// Takes the memory for the longest delays that setters can ask for.
    void MakeRoom();

    std::uint32_t numInternals;
    RoomFormat const* format = nullptr;                           // asked for
    float earlyStart = LumeDefaultParameters::DefaultEarlyStart;  // [ms]
    float earlyEnd = LumeDefaultParameters::DefaultEarlyEnd;      // [ms]
    float earlyDistribution = LumeDefaultParameters::DefaultEarlyDistr;
    float earlyWidth = LumeDefaultParameters::DefaultEarlyWidth;  // [degrees]
    float earlyShape = LumeDefaultParameters::DefaultEarlyShape;
    float clusterStart = LumeDefaultParameters::DefaultClusterStart;  // absolute [ms]
    float clusterEnd = LumeDefaultParameters::DefaultClusterEnd;      // absolute [ms]
    float clusterDistribution = LumeDefaultParameters::DefaultClusterDistr;
    float decayTime = LumeDefaultParameters::DefaultDecayTime;      // [s]
    float reverbStart = LumeDefaultParameters::DefaultReverbStart;  // absolute [ms]
    float modalDensity = LumeDefaultParameters::DefaultReverbModalDensity;
    float reverbGain = LumeDefaultParameters::DefaultReverbGain;  // [dB]
    float relativeDecayLow = LumeDefaultParameters::DefaultRelativeDecayLow;
    float relativeDecayMedium = LumeDefaultParameters::DefaultRelativeDecayMedium;
    float relativeDecayHigh = LumeDefaultParameters::DefaultRelativeDecayHigh;
    float crossoverLow = LumeDefaultParameters::DefaultReverbCrossoverFrequencyLow;    // [Hz]
    float crossoverHigh = LumeDefaultParameters::DefaultReverbCrossoverFrequencyHigh;  // [Hz]
    bool useAirAbsorption = LumeDefaultParameters::DefaultReverbAirAbsorption;
    float airAbsorptionRolloffFrequency = LumeDefaultParameters::DefaultAirRolloffFrequency;  // [Hz]
    bool infinite = LumeDefaultParameters::DefaultReverbInfinite;
    float elevation = 0.0f;                      // [degrees]
    float directLevel = 0.0f, roomLevel = 0.0f;  // of whole layers [dB]

    std::unique_ptr<Early> early;
    std::unique_ptr<Cluster> cluster;
    std::unique_ptr<Reverb> reverb;
    std::unique_ptr<Pan> directPan;   // N to M
    std::unique_ptr<Pan> formerPan;   // N to 2: the ears before the last exchange
    unsigned long earsFaded = 0;      // samples of the crossfade between the two that have gone by
    unsigned long earsFadeTime = 0;   // [samples]
    std::unique_ptr<Pan> earlyPan;    // 2 to M
    std::unique_ptr<Pan> diffusePan;  // C to M
    Layer directLayer;
    Layer roomLayer;
    Layer earlyLayer;
    Layer clusterLayer;
    orvandsp::Ramp reverbGainRamp;
    orvandsp::Ramp directLevelRamp{1.0f, 1.0f, 1.0f};
    orvandsp::Ramp roomLevelRamp{1.0f, 1.0f, 1.0f};
    std::unique_ptr<orvandsp::AudioBuffer> sourceBus;    // N channels
    std::unique_ptr<orvandsp::AudioBuffer> roomBus;      // 1 channel
    std::unique_ptr<orvandsp::AudioBuffer> earlyMixBus;  // 2 channels
    std::unique_ptr<orvandsp::AudioBuffer> lateMixBus;   // C channels, as the next three
    std::unique_ptr<orvandsp::AudioBuffer> earlyBus;
    std::unique_ptr<orvandsp::AudioBuffer> clusterBus;
    std::unique_ptr<orvandsp::AudioBuffer> reverbBus;
    Delgen earlyDelgen;
    Delgen clusterDelgen;
    Delgen spareDelgen;  // for the late field, which has come to own its generator; nothing uses it
    bool initialized = false;
    std::vector<orvandsp::Ramp> directDistanceRamps;  // 1/d^2 of each source
    std::vector<orvandsp::Ramp> roomSendRamps;        // 1/d of each source
    std::vector<CartesianVector> sourcePositions;
    unsigned int lastPlaced = 0;  // the source that the early reflections follow
    Orientation orientation;
    std::optional<RotationMatrix> roomToHead;  // none for the head that looks ahead
    std::vector<CartesianVector> speakerPositions;
    std::optional<std::uint32_t> randomSeed;  // for the early gains, if they aren't the process's to draw
    std::vector<float> earlyGains;            // one signed gain per early tap
    std::vector<float*> doorInputs;           // the inputs that Process works on
};

}  // namespace Lume
