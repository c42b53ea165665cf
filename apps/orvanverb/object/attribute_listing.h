#pragma once

#include <string>

namespace program {

/// The attributes of orvanverb~ that a user sets, as a table for people: name, type, default, range, unit, label.
std::string AttributeTable();

/// The same for programs: a JSON array with one object an attribute. What an attribute doesn't have is null; the
/// defaults of lists are lists.
std::string AttributeJson();

}  // namespace program
