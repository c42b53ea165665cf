/* A room with sources and loudspeakers in it, for C and every language that can call C.
 *
 *     orvan_room *room = orvan_create(1, 6, 0, NULL);      one source, the built-in ring of six
 *     if (!room) { puts(orvan_error(NULL)); exit(1); }
 *     orvan_configure(room, 48000, 256, 0, ORVAN_STEADY);  rate, block size
 *     orvan_set_by_name(room, "tr0", 2.5f);                seconds
 *     orvan_place_source(room, 0, -1, 2, 0);               metres: x to the right, y ahead, z up
 *     orvan_process(room, outputs, inputs, 256);           every 256 samples
 *     orvan_free(room);
 *
 * Threads. A room is used by one thread at a time. Calls that are marked "real-time" neither allocate nor lock nor
 * wait, and may stand in an audio callback between two blocks; the others must not run beside orvan_process. One other
 * thread, the same all the time, may steer a running room by the calls orvan_post_...: they act with the next block.
 * The thread's floating-point mode is afterwards as it was.
 *
 * Stability. Calls and structs of this header keep their meaning and layout for as long as the shared library keeps its
 * number (liborvan_c.so.1): structs only grow at their end and are only made by the library.
 *
 * Errors. A call that can fail gives an orvan_status; orvan_error tells why in words. A call that failed has changed
 * nothing. No call ends the program.
 */
#ifndef ORVAN_C_H
#define ORVAN_C_H

#include <orvan/version.h>
#include <stddef.h>

#if defined(__GNUC__)
#define ORVAN_API __attribute__((visibility("default")))
#else
#define ORVAN_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef struct orvan_room orvan_room;

typedef enum orvan_status {
    ORVAN_OK = 0,
    ORVAN_BAD_ARGUMENT = 1, /* out of its range, not a number, no such control, source or loudspeaker */
    ORVAN_BAD_FILE = 2,     /* can't be read, or isn't what it should be */
    ORVAN_QUEUE_FULL = 3,   /* the message is lost: send it again after the next block */
    ORVAN_FAILED = 4        /* no memory, for example */
} orvan_status;

/* The version of the library, such as "4.2.6". ORVAN_VERSION_STRING is that of this header. */
ORVAN_API const char* orvan_version(void);

/* Why the last failed call for this room failed. With NULL: the same for this thread's calls orvan_create,
 * orvan_create_from_state and orvan_post_... Valid until the next call that fails; empty if none has. */
ORVAN_API const char* orvan_error(const orvan_room* room);

/* ---- Controls: what can be set, with unit and range ---------------------------------------------------------------
 */

typedef enum orvan_scale { ORVAN_LINEAR = 0, ORVAN_LOGARITHMIC = 1, ORVAN_ON_OFF = 2 } orvan_scale;

typedef enum orvan_group {
    ORVAN_LATE = 0,
    ORVAN_DIRECT = 1,
    ORVAN_WHOLE_ROOM = 2,
    ORVAN_EARLY = 3,
    ORVAN_CLUSTER = 4
} orvan_group;

typedef struct orvan_control {
    const char* name;       /* for files and orvan_find_control; never changes */
    const char* label;      /* a few words for people */
    const char* usual_name; /* what the field usually calls it, or "" */
    const char* unit;       /* "dB", "Hz", "ms", "s", "degrees", or "" */
    const char* what;       /* what it does */
    float least, greatest, standard;
    orvan_scale scale; /* how a dial should run over the range */
    orvan_group group; /* the part of the room that it belongs to */
} orvan_control;

ORVAN_API size_t orvan_num_controls(void);
/* NULL if id isn't below orvan_num_controls(). Ids may be others in another version of the library: keep names. */
ORVAN_API const orvan_control* orvan_control_info(size_t id);
/* The id of a name; -1 if there is none. Real-time. */
ORVAN_API long orvan_find_control(const char* name);

/* ---- Life ---------------------------------------------------------------------------------------------------------
 */

/* A room in which every control stands at its standard and everything at the built-in places.
 * sources: 1 to 64. speakers: 2 to 64 outputs. internals: channels of the room, 2 to 16, more are denser and cost more;
 * 0 takes 8. format: what the outputs are, such as "stereo", "dome" or "ambix"; NULL takes headphones for 2 outputs and
 * a ring of loudspeakers for more. NULL if it can't be made: orvan_error(NULL) tells why. */
ORVAN_API orvan_room* orvan_create(unsigned int sources, unsigned int speakers, unsigned int internals,
                                   const char* format);
/* The names of the formats, from 0 on, and a few words about each; NULL behind the last one. */
ORVAN_API const char* orvan_format_name(size_t index);
ORVAN_API const char* orvan_format_label(size_t index);
/* A room of the sizes and settings that a state tells, see orvan_save_state. */
ORVAN_API orvan_room* orvan_create_from_state(const char* text);
/* NULL is taken, and nothing happens. */
ORVAN_API void orvan_free(orvan_room* room);

ORVAN_API unsigned int orvan_num_sources(const orvan_room* room);
ORVAN_API unsigned int orvan_num_speakers(const orvan_room* room);
ORVAN_API unsigned int orvan_num_internals(const orvan_room* room);
/* The format that was asked for; NULL if none was. */
ORVAN_API const char* orvan_format(const orvan_room* room);

/* ---- Audio --------------------------------------------------------------------------------------------------------
 */

typedef enum orvan_blocks {
    ORVAN_STEADY = 0, /* every block has the size that was announced */
    ORVAN_VARYING = 1 /* any size up to it: costs vector size - 1 samples of latency */
} orvan_blocks;

/* Announces rate and blocks, and empties the room.
 * samplerate: 1000 to 768000 Hz. block_size: 1 to 1048576 samples. vector_size: samples of one run inside, a power of
 * two from 16 to 8192, or 0 to let the room choose. Rooms sound the same to the last bit only at the same vector size;
 * the program orvanverb renders at 64. */
ORVAN_API orvan_status orvan_configure(orvan_room* room, double samplerate, size_t block_size, size_t vector_size,
                                       orvan_blocks blocks);
ORVAN_API double orvan_samplerate(const orvan_room* room);
ORVAN_API size_t orvan_vector_size(const orvan_room* room);
/* How late outputs come [samples]; 0 for steady blocks of a multiple of 16 and no vector size asked for. */
ORVAN_API size_t orvan_latency(const orvan_room* room);
/* How long to go on behind the input until the room has fallen by so many decibels [s]; infinite for an endless one. */
ORVAN_API double orvan_tail_seconds(const orvan_room* room, double decibels);

/* Lets fades and glides of the settings end, so that the first sample meets the room as it was asked for. For offline
 * work: costs as much as a quarter of a second of sound. */
ORVAN_API void orvan_settle(orvan_room* room);

/* Processes one block. Real-time. One pointer for each loudspeaker and each source; outputs may stand on inputs, in any
 * order, and inputs are otherwise left as they are. Samples that aren't finite, or beyond 1e6, count as 0. */
ORVAN_API void orvan_process(orvan_room* room, float* const* outputs, float* const* inputs, size_t num_samples);
/* How many input samples counted as 0. Real-time. */
ORVAN_API unsigned long long orvan_bad_inputs(const orvan_room* room);

/* Empties the room: nothing that ever came in is heard again. Real-time. */
ORVAN_API void orvan_clear(orvan_room* room);
/* Silence, or the inputs as they are, instead of the room; 0 or 1. Muting wins. Real-time. */
ORVAN_API void orvan_mute(orvan_room* room, int on);
ORVAN_API void orvan_bypass(orvan_room* room, int on);

/* ---- Settings and places ------------------------------------------------------------------------------------------
 */

/* Sets a control; a value beyond its range becomes the nearest within, one that is not a number is refused.
 * Real-time.*/
ORVAN_API orvan_status orvan_set(orvan_room* room, size_t id, float value);
ORVAN_API orvan_status orvan_set_by_name(orvan_room* room, const char* name, float value);
/* The value that was set; 0 if there is no such control. Real-time. */
ORVAN_API float orvan_get(const orvan_room* room, size_t id);

/* Places a source or a loudspeaker, counted from 0 [m]. Coordinates are limited to 1e6. Real-time; but with many
 * loudspeakers those of vbap, vdbap and dome take longer than a block: 4 ms for 24, 17 ms for 48. */
ORVAN_API orvan_status orvan_place_source(orvan_room* room, unsigned int source, float x, float y, float z);
ORVAN_API orvan_status orvan_place_speaker(orvan_room* room, unsigned int speaker, float x, float y, float z);
/* The same by angles [degrees]: azimuth 0 ahead and positive to the right, elevation positive up; distance [m]. */
ORVAN_API orvan_status orvan_place_source_at(orvan_room* room, unsigned int source, float azimuth, float elevation,
                                             float distance);
ORVAN_API orvan_status orvan_place_speaker_at(orvan_room* room, unsigned int speaker, float azimuth, float elevation,
                                              float distance);
/* Turns the listener's head [degrees]: to the right, up, right ear down. Real-time. */
ORVAN_API orvan_status orvan_turn(orvan_room* room, float yaw, float pitch, float roll);
/* Where it stands: x, y, z. Real-time. */
ORVAN_API orvan_status orvan_source_position(orvan_room* room, unsigned int source, float position[3]);
ORVAN_API orvan_status orvan_speaker_position(orvan_room* room, unsigned int speaker, float position[3]);

/* ---- State and ears -----------------------------------------------------------------------------------------------
 */

/* All that the room was told, as lines of text that people can read and any version reads. To be given back by
 * orvan_free_text; NULL without memory. */
ORVAN_API char* orvan_save_state(orvan_room* room);
ORVAN_API void orvan_free_text(char* text);
/* Brings a room of the same sizes to a state. What is missing takes its standard. */
ORVAN_API orvan_status orvan_restore_state(orvan_room* room, const char* text);

/* Loads the filters of a room on headphones from a .hrtf or .coll file; NULL takes the built-in ones. */
ORVAN_API orvan_status orvan_load_ears(orvan_room* room, const char* file);

/* ---- From one other thread, while the room runs -------------------------------------------------------------------
 */

/* What the calls without "post" do, with the next block. Never wait, never allocate. Whether there is such a source or
 * loudspeaker shows only then: a message for none is passed over. */
ORVAN_API orvan_status orvan_post_set(orvan_room* room, size_t id, float value);
ORVAN_API orvan_status orvan_post_source(orvan_room* room, unsigned int source, float x, float y, float z);
ORVAN_API orvan_status orvan_post_speaker(orvan_room* room, unsigned int speaker, float x, float y, float z);
ORVAN_API orvan_status orvan_post_turn(orvan_room* room, float yaw, float pitch, float roll);
ORVAN_API orvan_status orvan_post_clear(orvan_room* room);
ORVAN_API orvan_status orvan_post_mute(orvan_room* room, int on);
ORVAN_API orvan_status orvan_post_bypass(orvan_room* room, int on);
/* Reads a file on this thread; the new ears fade in with the next block. Allocates. Not beside orvan_configure. */
ORVAN_API orvan_status orvan_post_ears(orvan_room* room, const char* file);

#ifdef __cplusplus
}
#endif

#endif
