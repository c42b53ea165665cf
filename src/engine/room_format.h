#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "pan/pan.h"

namespace Lume {

/// A form of a room's outputs: which panner plays direct sound and early reflections, and how the diffuse field is
/// spread. A row of roomFormats; fronts name them.
///
/// Loudspeakers and microphone techniques get a diffuse field of equal power in each output; ambisonic channels get an
/// isotropic one, each channel with the mean power that waves from everywhere give it; one format of loudspeakers has
/// an isotropic field, too, each with the power of its solid angle (SolidAngleMixing). As many outputs as the room has
/// internal channels are uncorrelated (ComputeDecorrelatedMixing).
struct RoomFormat {
    /// What an output is.
    enum class Outputs : unsigned char { ears, microphones, loudspeakers, harmonics };

    char const* name;
    char const* label;  ///< a few words for people
    Outputs outputs;
    bool inSpace;    ///< whether heights are heard
    bool ambixAxes;  ///< whether the panner's x axis points ahead and its y axis to the left
    Pan* (*make)(unsigned int numInputs, unsigned int numOutputs, Pan::SubType role);
    bool (*supports)(unsigned int numOutputs);
    bool bySolidAngle = false;  ///< whether the diffuse field's power follows where the loudspeakers stand

    /// The panner of direct sound or early reflections, or of the diffuse field. Null if the format has no such number
    /// of outputs.
    std::unique_ptr<Pan> MakePan(unsigned int numInputs, unsigned int numOutputs, Pan::SubType role) const;

    /// A position in the panner's axes.
    CartesianVector ToPanner(CartesianVector const& position) const noexcept {
        return ambixAxes ? CartesianVector{position.y, -position.x, position.z} : position;
    }
};

/// All formats that can be asked for.
extern std::span<RoomFormat const> const roomFormats;

/// The format of a name; null if there is none.
RoomFormat const* FindRoomFormat(std::string_view name);

}  // namespace Lume
