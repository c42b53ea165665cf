#pragma once

#include <string>

namespace program {

/// The controls of the room as a table for people: name, default, range, unit, and what each does.
std::string ControlTable();

/// All that the table of controls says, for programs: a JSON array with one object a control. What a control doesn't
/// have is null.
std::string ControlJson();

}  // namespace program
