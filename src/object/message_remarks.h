#pragma once

#include <set>
#include <span>
#include <string>
#include <vector>

#include "object/orvanverb.h"
#include "room/control_range.h"

namespace orvanverb {

/// What fronts say of messages that the object takes without a word: atoms that are missing or too many, and values
/// that it brings into their range. Control thread.
class MessageRemarks {
public:
    /// What to say of a message before the object gets it, each for once.
    std::vector<std::string> Of(orvanverb_t const& x, std::string const& selector, std::span<t_atom const> atoms);
    /// The same of an attribute of an object that isn't there yet.
    std::vector<std::string> OfRange(std::string const& attribute, std::span<t_atom const> atoms);

private:
    Lume::RangeRemarks ranges;
    std::set<std::string> said;
};

}  // namespace orvanverb
