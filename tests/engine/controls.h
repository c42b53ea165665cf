#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/orvan_verb.h"

/// A control of the engine with its range.
struct Control {
    std::string name;
    float low, high;
    float usual;  // the default
    std::function<void(Lume::OrvanVerb&, float)> set;
};

/// Every control that takes a number. Positions are given as distance and listener's azimuth of source 0 and as a turn
/// of the loudspeaker ring; switches count as on from 0.5.
std::vector<Control> const& AllControls();
