#pragma once

#include <cstdint>

#include "engine/orvan_verb.h"
#include "object/host_api.h"
#include "room/room.h"

/// The record of one object orvanverb~: an engine, a copy of every parameter as the user set it, and the vectors of
/// the present signal chain. It holds no signal processing.
///
/// The host allocates it zero-filled and reaches the fields of attributes by their place, so it stays a plain record:
/// that is why room and engine are bare pointers. It begins as orvanmax::_OrvanMspObject does.
struct orvanverb_t {
    static constexpr unsigned int MaxSignals = 256;
    static constexpr unsigned int MaxPositions = 64;  ///< sources, and loudspeakers
    static constexpr unsigned int MaxDelays = 64;     ///< room for delays; numinternals are in use
    static constexpr unsigned int NumShelfValues =
        6;  ///< global, low, medium and high gain [dB], low and high crossover [Hz]

    t_pxobject ob;
    void* box;                              ///< the patcher's box, told of every change
    t_symbol* classdescription;             ///< never written: the text is the attribute's label
    t_symbol* externalversion;              ///< never written, likewise
    std::int32_t mute;                      ///< 0 or 1
    std::int32_t bypass;                    ///< 0 or 1
    float* inputs[MaxSignals];              ///< one vector per source
    float* outputs[MaxSignals];             ///< one vector per loudspeaker
    std::int16_t connected[MaxSignals];     ///< handed to the engine, which doesn't read it; all 0
    Lume::Room* holder;                     ///< owned; null until it is built and after free
    Lume::OrvanVerb* engine;                ///< that of the holder; null as long as there is none
    std::uint8_t initialized;               ///< 1 once the engine stands: the sizes are fixed from then on
    std::uint32_t speakerspositions_count;  ///< 3 * numspeakers
    std::uint32_t sourcespositions_count;   ///< 3 * numsources
    std::uint32_t numsources;
    std::uint32_t numspeakers;
    std::uint32_t numinternals;                 ///< channels of the room, and length of delays
    float sourcespositions[3 * MaxPositions];   ///< x, y, z of each source [m]
    float speakerspositions[3 * MaxPositions];  ///< x, y, z of each loudspeaker [m]
    float gain;                                 ///< of the late field [dB]
    float tr0;                                  ///< decay time [s]
    float trl, trm, trh;                        ///< factors of tr0 for the low, medium and high band
    float fl, fh;                               ///< crossovers of the bands [Hz]
    float airfreq;                              ///< roll-off of air absorption [Hz]
    std::int32_t air;                           ///< 0 or 1
    std::int32_t infinite;                      ///< 0 or 1
    float modaldensity;
    float delays[MaxDelays];  ///< [ms]; kept for the user, the engine makes its own
    float direct[NumShelfValues], room[NumShelfValues], early[NumShelfValues], cluster[NumShelfValues];
    float early_start, early_end;  ///< [ms]
    float early_distr;
    float early_width;  ///< [degrees]
    float early_shape;
    float cluster_start, cluster_end;  ///< [ms]
    float cluster_distr;
    float reverb_start;  ///< [ms]
};

/// @name Life
/// All of it runs on the control thread but for orvanverb_perform.
/// @{

/// Constructor. Two passes over the creation attributes: the first one brings the sizes, the engine is built and all
/// attributes go to their defaults, the second one brings what the user asked for to the engine.
/// @return null if the host has no record or no dictionary for it, or if there can be no engine of these sizes; the
///         record of a refused object is the host's to discard
void* orvanverb_new(t_symbol* name, short count, t_atom* atoms);

/// Gives the engines of all objects that are made from now on a random sequence of their own, instead of the process's
/// rand(): front ends that share a process with others call it once.
void orvanverb_seed(std::uint32_t seed);

/// Gives the rooms of all objects that are made from now on a form of their outputs, for fronts that offer more than
/// the class does; null: headphones or a ring by their number, as a new process has it.
void orvanverb_format(Lume::RoomFormat const* format);

/// Builds the engine, once, and configures it for 44100 Hz and 64 samples, so that it takes parameters before audio
/// starts.
/// @return the engine, or null; the console says why
Lume::OrvanVerb* orvanverb_initialize(orvanverb_t* x);

/// Destructor: leaves the signal chain, then deletes the engine.
void orvanverb_free(orvanverb_t* x);

/// Message dsp: configures the engine for the rate and vector size of the chain and enters the callback. The signals
/// are all inlets, then all outlets.
void orvanverb_dsp(orvanverb_t* x, t_signal** signals, short* count);

/// Audio callback. Its words: itself, the record, the number of samples. Audio thread; real-time safe.
t_int* orvanverb_perform(t_int* w);

/// Message assist: writes the text of an inlet (direction 1) or outlet (2); otherwise leaves the text as it is.
void orvanverb_assist(orvanverb_t* x, void* box, long direction, unsigned long index, char* text);

/// Message clear: silences the room.
void orvanverb_clear(orvanverb_t* x);
/// @}

/// @name From the record to the engine
/// Without an engine nothing is sent; the notifications of the box are.
/// @{

/// All early and cluster times, and the start of the late field; one notification.
void orvanverb_update_time_structure(orvanverb_t* x);
/// All that belongs to the late field but its start; no notification.
void orvanverb_update_reverb(orvanverb_t* x);
/// All loudspeakers, then all sources; two notifications.
void orvanverb_update_speakerspositions(orvanverb_t* x);
/// All sources; no notification.
void orvanverb_update_sourcespositions(orvanverb_t* x);

/// Tells the box that the object has changed.
void orvanverb_notify(orvanverb_t* x);
/// @}

/// Sets sources, loudspeakers or both to the layouts on which a new engine stands, as attributes. The record of a new
/// object holds zeros instead: front ends that make sound call this, so that record and engine agree.
void orvanverb_place_defaults(orvanverb_t* x, bool sources, bool speakers);

/// The record of an object of this class, for fronts that hold it by the host's pointer; null for any other object.
orvanverb_t* orvanverb_record(t_object* object);

/// The room that an object stands on, for fronts that run it themselves: they Configure and Process it instead of
/// starting a signal chain, and send messages to the object between two blocks. Its mute and bypass are brought to
/// those of the record, so ask anew for each block.
Lume::Room& orvanverb_room(orvanverb_t* x);

/// The host's view of the record.
inline t_object* orvanverb_object(orvanverb_t* x) {
    return &x->ob.z_ob;
}
