#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hrtf/sdif_set.h"

namespace program {

/// What a set says about itself, a line each: "subject  KEMAR".
std::vector<std::string> DescribeHeader(Lume::HrtfHeaderInfos const& header, std::optional<unsigned int> blockLength);

/// A short check of a set.
struct SetCheck {
    std::vector<std::string> findings;  // lines as those of the header
    std::vector<std::string> faults;    // what makes it sound wrong, a sentence each
};
SetCheck CheckSet(Lume::SdifSet const& set);

/// Of these faults, those of the filters: a set that has one can't be played.
std::vector<std::string> FaultsOfFilters(Lume::SdifSet const& set);

}  // namespace program
