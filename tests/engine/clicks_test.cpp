#include "support/clicks.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <numbers>

#include "engine/controls.h"
#include "engine/engine_rig.h"

namespace {

constexpr double tone = 1000.0;

/// What a change of one control adds to a tone from a source at the left, in a usual room with all layers at 0 dB and
/// shelves that aren't flat.
double ResidualOfChange(Control const& control, float from, float to) {
    EngineRig rig(1, 4, 8);
    for (Control const& other : AllControls()) other.set(rig.engine, other.usual);
    for (Control const& other : AllControls()) {
        if (other.name.ends_with("_gain_low")) other.set(rig.engine, 6.0f);
        if (other.name.ends_with("_gain_high")) other.set(rig.engine, -6.0f);
    }
    control.set(rig.engine, from);

    // A soft start: a hard one would ring in the room for seconds.
    double phase = 0.0;
    double level = 0.0;
    const double turn = 2.0 * std::numbers::pi * tone / static_cast<double>(rig.rate);
    const auto play = [&](double seconds) {
        return rig.Run(rig.Samples(seconds), [&](unsigned int, std::size_t) {
            phase = std::remainder(phase + turn, 2.0 * std::numbers::pi);
            level = std::min(1.0, level + 10.0 / static_cast<double>(rig.rate));
            return static_cast<float>(0.5 * level * level * (3.0 - 2.0 * level) * std::sin(phase));
        });
    };
    play(1.2);
    EngineRig::Recording recording = play(0.18);
    control.set(rig.engine, to);
    const EngineRig::Recording after = play(0.5);
    for (std::size_t c = 0; c < recording.size(); ++c)
        recording[c].insert(recording[c].end(), after[c].begin(), after[c].end());
    return MeasureToneResidual(recording, static_cast<double>(rig.rate), tone).peakDb;
}

/// Where a change starts: the default, but for shelves that aren't flat.
float StartOf(Control const& control) {
    if (control.name.ends_with("_gain_low")) return 6.0f;
    if (control.name.ends_with("_gain_high")) return -6.0f;
    return control.usual;
}

double ResidualOfSmallChange(Control const& control) {
    const float from = StartOf(control);
    return ResidualOfChange(control, from, from + (control.small - control.usual));
}

// Red if a ramp, a crossfade or a glide gets lost between a control and the sound, or if a jump grows.
TEST(EngineClicks, SmallChangesStayBelowTheirLimits) {
    for (Control const& control : AllControls())
        EXPECT_LT(ResidualOfSmallChange(control), control.smallLimit) << control.name;
}

// Prints the figures of docs/engine.md.
TEST(EngineClicks, SLOW_FullChangesStayBelowTheirLimits) {
    for (Control const& control : AllControls()) {
        const float from = StartOf(control);
        const double full =
            std::max(ResidualOfChange(control, from, control.low), ResidualOfChange(control, from, control.high));
        std::printf("%-24s small %6.1f dB, full %6.1f dB\n", control.name.c_str(), ResidualOfSmallChange(control),
                    full);
        EXPECT_LT(full, control.fullLimit) << control.name;
    }
}

}  // namespace
