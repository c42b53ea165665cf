#pragma once

#include <cstdint>
#include <string>

#include "object/orvan_msp_object.h"
#include "object/recording_box.h"

/// A small object with a dump outlet and one attribute of every kind that the host services tell apart:
///
///     bypass, mute, gains (two floats with a default), level (clipped, with everything that it can say about itself),
///     mode (a symbol with choices), table (counted), seed (not to be reset)            -- what a user sees
///     void (counted, empty), invisible, hush (invisible by a float), varname (of the box), opaque1 to opaque512
struct Probe {
    t_pxobject ob;
    void* box;
    t_symbol* classdescription;
    t_symbol* externalversion;
    std::int32_t mute;
    std::int32_t bypass;
    float level, gains[2], table[4], nothing[2], other;
    std::int32_t seed, tableCount, voidCount;
    t_symbol* mode;
    void* outlet;
};

/// What the setter of "gains" and "level" was called with.
inline std::string probeJournal;

/// Registers the class probe~, once.
void RegisterProbe();

/// A recorded box with one of them.
class ProbeBox : public RecordingBox {
public:
    ProbeBox() : RecordingBox((RegisterProbe(), "probe~")) {}
    Probe* Record() { return reinterpret_cast<Probe*>(Object()); }
};
