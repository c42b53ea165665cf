#pragma once

#include <span>
#include <string>
#include <vector>

#include "geometry/cartesian_vector.h"

/// What the plug-ins of the bundle are, for the shared object and for the program that writes the bundle's texts.
namespace lv2 {

/// The URI of everything in the bundle begins with it, and never changes: sessions remember it.
inline constexpr char const* uriBase = "urn:orvanverb:lv2:";

/// One output port.
struct Output {
    char const* name;
    char const* designation;     ///< in the vocabulary of port groups; null if it has no word for it
    unsigned int engineChannel;  ///< which of the engine's outputs it plays
};

/// One plug-in of the bundle.
struct Variant {
    char const* symbol;  ///< the end of its URI
    char const* name;    ///< what hosts list
    unsigned int numSources;
    std::span<Output const> outputs;
    char const* inputGroup;  ///< class of its port groups in that vocabulary
    char const* outputGroup;

    std::string Uri() const { return std::string(uriBase) + symbol; }
    bool IsHeadphones() const { return outputs.size() == 2; }
};

std::span<Variant const> Variants();

enum class PortKind : unsigned char {
    input,
    output,
    events,  ///< messages of the host: which file the ears are in
    notify,  ///< answers
    enabled,
    freeWheeling,
    latency,
    control,  ///< of the room; index in Lume::roomControls
    active,   ///< whether a source is heard
    azimuth,
    elevation,
    distance,
    level  ///< peak of an output
};

/// A port of a variant. Its place in PortsOf is its number.
struct Port {
    PortKind kind;
    unsigned int index;  ///< of the source, output or control
};

std::vector<Port> PortsOf(Variant const& variant);

/// Where a new plug-in's source stands, in whole degrees; its distance is 1 m.
float StandardAzimuthDeg(Variant const& variant, unsigned int source);

/// @name Ranges of a source's ports
/// @{
inline constexpr float maxElevationDeg = 90.0f;
inline constexpr float minDistance = 0.3f, maxDistance = 100.0f;  // [m]
/// @}

}  // namespace lv2
