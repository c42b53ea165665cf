#pragma once

#include <span>
#include <string>

#include "parameters/hl_shelf_parameters.h"
#include "parameters/lume_default_parameters.h"

namespace program {

/// Everything that shapes a room, by the names and with the defaults and ranges of the object's attributes.
struct RoomSettings {
    RoomSettings();

    /// Sets a control by its name: one number, or six for the filters `direct`, `room`, `early` and `cluster` (overall,
    /// low, medium and high gain [dB], low and high crossover [Hz]).
    /// @throws std::invalid_argument that says what is wrong: an unknown name, a wrong count of values, a value that is
    ///         no number or outside its range
    void Set(std::string const& name, std::span<std::string const> values);

    /// Reads a preset: a file with one NAME VALUE... a line.
    /// @throws WorkError that names file and line
    void Load(std::string const& path);

    // Switches and counts are whole numbers; as floats they fit into one table with the others.
    float numinternals = 8.0f;  // internal channels of the room effect
    float mute = 0.0f;
    float bypass = 0.0f;

    float gain = Lume::LumeDefaultParameters::DefaultReverbGain;  // of the late field [dB]
    float modaldensity = Lume::LumeDefaultParameters::DefaultReverbModalDensity;
    float tr0 = Lume::LumeDefaultParameters::DefaultDecayTime;         // [s]
    float trl = Lume::LumeDefaultParameters::DefaultRelativeDecayLow;  // factors of tr0
    float trm = Lume::LumeDefaultParameters::DefaultRelativeDecayMedium;
    float trh = Lume::LumeDefaultParameters::DefaultRelativeDecayHigh;
    float fl = Lume::LumeDefaultParameters::DefaultReverbCrossoverFrequencyLow;   // [Hz]
    float fh = Lume::LumeDefaultParameters::DefaultReverbCrossoverFrequencyHigh;  // [Hz]
    float air = 0.0f;
    float airfreq = Lume::LumeDefaultParameters::DefaultAirRolloffFrequency;  // [Hz]
    float infinite = 0.0f;

    Lume::HLShelfParameters direct;
    Lume::HLShelfParameters room;
    Lume::HLShelfParameters early;
    Lume::HLShelfParameters cluster;

    float earlyStart = Lume::LumeDefaultParameters::DefaultEarlyStart;  // [ms]
    float earlyEnd = Lume::LumeDefaultParameters::DefaultEarlyEnd;      // [ms]
    float earlyDistr = Lume::LumeDefaultParameters::DefaultEarlyDistr;
    float earlyWidth = Lume::LumeDefaultParameters::DefaultEarlyWidth;  // [degrees]
    float earlyShape = Lume::LumeDefaultParameters::DefaultEarlyShape;
    float clusterStart = Lume::LumeDefaultParameters::DefaultClusterStart;  // [ms]
    float clusterEnd = Lume::LumeDefaultParameters::DefaultClusterEnd;      // [ms]
    float clusterDistr = Lume::LumeDefaultParameters::DefaultClusterDistr;
    float reverbStart = Lume::LumeDefaultParameters::DefaultReverbStart;  // [ms]
};

}  // namespace program
