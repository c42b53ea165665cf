#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "hrtf/sdif_set.h"

namespace program {

/// Each with its name: "subject", "KEMAR".
using SetFacts = std::vector<std::pair<std::string, std::string>>;

/// What a set says about itself.
SetFacts DescribeHeader(Lume::HrtfHeaderInfos const& header, std::optional<unsigned int> blockLength);

/// A short check of a set.
struct SetCheck {
    SetFacts findings;
    std::vector<std::string> faults;  // what makes it sound wrong, a sentence each
};
SetCheck CheckSet(Lume::SdifSet const& set);

/// Of these faults, those of the filters: a set that has one can't be played.
std::vector<std::string> FaultsOfFilters(Lume::SdifSet const& set);

}  // namespace program
