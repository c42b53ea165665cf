#pragma once

#include <memory>
#include <span>

#include "pan/pan.h"

namespace Lume {

/// What there is to know about a panning method before a panner is made. A new one is a class, a value of Pan::Type and
/// a row in pan_factory.cpp.
struct PanKind {
    enum class Outputs { two, loudspeakers, harmonics };
    /// By what a method chooses among its loudspeakers.
    enum class Choice { none, azimuths, pairs, triplets, distances };

    Pan::Type type;
    char const* names[5];  ///< the primary one, then synonyms, then null
    /// Makes the panner of every role that has no maker of its own: a NullPanning for numbers that don't suit.
    Pan* (*create)(unsigned int numInputs, unsigned int numOutputs);
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
    /// The binaural panner of this role.
    Pan* (*createBinaural)(unsigned int numInputs, unsigned int numOutputs);
};

/// A row for each method, in the order of the values; the last one is null.
std::span<PanKind const> PanKinds();
/// A row for each role, in the order of the values.
std::span<PanRole const> PanRoles();

/// Makes a panner. @return null where there is nothing but a NullPanning
std::unique_ptr<Pan> MakePanner(Pan::Type type, Pan::SubType subType, unsigned int numInputs, unsigned int numOutputs);

}  // namespace Lume
