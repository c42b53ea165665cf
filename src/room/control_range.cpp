#include "room/control_range.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace Lume {

std::string NumberText(float value) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

std::string RangeText(RoomControl const& control) {
    const std::string range = "from " + NumberText(control.least) + " to " + NumberText(control.greatest);
    return *control.unit != '\0' ? range + " " + control.unit : range;
}

bool IsInRange(RoomControl const& control, float value) noexcept {
    // Written as "inside", so that a NaN is refused.
    if (!(value >= control.least && value <= control.greatest)) return false;
    return control.scale != Scale::onOff || value == std::floor(value);
}

bool MayBeInState(RoomControl const& control, float value) noexcept {
    if (control.outOfRange == OutOfRange::kept) return std::isfinite(value);
    return value >= control.least && value <= control.greatest;
}

float BroughtIntoRange(RoomControl const& control, float value) noexcept {
    return std::clamp(value, control.least, control.greatest);
}

std::string RangeRemarks::Of(RoomControl const& control, float value) {
    const auto index = static_cast<std::size_t>(&control - roomControls.data());
    if (BroughtIntoRange(control, value) == value || said[index]) return {};
    said.set(index);
    return std::string(control.name) + ": " + NumberText(value) + " is not " + RangeText(control) +
           ", the nearest is taken (said once)";
}

}  // namespace Lume
