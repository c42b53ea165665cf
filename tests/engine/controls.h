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
    float
        small;  // a small change from it, as one makes by ear: 1 dB, 1 ms, 5 degrees, a tenth of a frequency or factor
    /// What the two changes may add to a tone at most [dB below the tone]: about 2 dB above what is measured, and -60
    /// where a small change stays below it. What is louder jumps, or moves in steps, on purpose; docs/engine.md says
    /// which and why.
    double smallLimit, fullLimit;
    std::function<void(Lume::OrvanVerb&, float)> set;
};

/// Every control that takes a number. Positions are given as distance and listener's azimuth of source 0 and as a turn
/// of the loudspeaker ring; switches are on unless 0.
std::vector<Control> const& AllControls();
