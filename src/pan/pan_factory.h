#pragma once

#include <memory>
#include <span>

#include "pan/pan.h"

namespace Lume {

class AmplitudePanning;
class BinauralPanning;
class BinauralPanningDirect;
class BinauralPanningNearfield;
class HOAPanning;
class VbapPanning;

/// A class of panners: what makes one, and each as what it is beyond a Pan. Null for what it isn't.
struct PanClass {
    /// A NullPanning for numbers that don't suit.
    Pan* (*create)(unsigned int numInputs, unsigned int numOutputs);
    AmplitudePanning* (*asAmplitudes)(Pan& panner);
    VbapPanning* (*asTriplets)(Pan& panner);
    HOAPanning* (*asHarmonics)(Pan& panner);
    BinauralPanning* (*asBinaural)(Pan& panner);
    BinauralPanningDirect* (*asDirect)(Pan& panner);
    BinauralPanningNearfield* (*asNearfield)(Pan& panner);
};

/// What there is to know about a panning method before a panner is made. A new one is a class, a value of Pan::Type and
/// a row in pan_factory.cpp.
struct PanKind {
    enum class Outputs { two, loudspeakers, harmonics };
    /// By what a method chooses among its loudspeakers.
    enum class Choice { none, azimuths, pairs, triplets, distances };

    Pan::Type type;
    char const* names[5];  ///< the primary one, then synonyms, then null
    PanClass panner;       ///< of every role that has none of its own
    bool (*supports)(unsigned int numOutputs);
    Outputs outputs;
    Choice choice;
    bool inSpace;  ///< heights are heard
    bool hasTail;  ///< it sounds on behind the end of its input
    unsigned int usualOutputs;
    char const* summary;
};

/// A role of a panner.
struct PanRole {
    Pan::SubType subType;
    char const* names[3];
    PanClass binaural;  ///< the binaural panner of this role
};

/// A row for each method, in the order of the values; the last one is null.
std::span<PanKind const> PanKinds();
/// A row for each role, in the order of the values.
std::span<PanRole const> PanRoles();

/// The class of a method's panner in a role: the diffuse role overrides the method, whatever that is; only the binaural
/// method tells the other roles apart.
PanClass const& PanClassOf(Pan::Type type, Pan::SubType subType);

/// Makes a panner. @return null where there is nothing but a NullPanning
std::unique_ptr<Pan> MakePanner(Pan::Type type, Pan::SubType subType, unsigned int numInputs, unsigned int numOutputs);

}  // namespace Lume
