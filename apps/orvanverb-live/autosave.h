#pragma once

#include <optional>
#include <string>

#include "orvanverb-live/room/desk.h"

namespace live {

/// Checks that the file of --autosave can be written: that it isn't there, or is a state.
/// @throws program::WorkError
void RequireAutosave(std::optional<std::string> const& path);

/// Writes how the desk's room is.
/// @throws program::WorkError
void Autosave(std::optional<std::string> const& path, Desk const& desk);

}  // namespace live
