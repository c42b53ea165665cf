#pragma once

#include <bitset>
#include <cstddef>
#include <string>

#include "engine/room_controls.h"

namespace Lume {

/// What fronts do with values outside a control's range: the same everywhere. Any thread.
/// @{

/// A number in the fewest digits that read back to it.
std::string NumberText(float value);

/// The range with its unit: "from 0.1 to 10 s".
std::string RangeText(RoomControl const& control);

/// Whether options and files may give a control this value. No for what is not a number, and for a switch for all but
/// 0 and 1.
bool IsInRange(RoomControl const& control, float value) noexcept;

/// Whether a state may hold it: the same, but for controls that are kept as they came. A switch is on unless 0.
bool MayBeInState(RoomControl const& control, float value) noexcept;

/// What a message to a running room makes of a value that is a number. Real-time safe.
float BroughtIntoRange(RoomControl const& control, float value) noexcept;

/// Remembers which controls were told to have got a value outside their range.
class RangeRemarks {
public:
    /// What to say of a message, for once; empty if there is nothing to say, or it was said.
    std::string Of(RoomControl const& control, float value);

private:
    std::bitset<roomControls.size()> said;
};
/// @}

}  // namespace Lume
