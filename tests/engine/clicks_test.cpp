#include "support/clicks.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <map>
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
        if (other.name.ends_with(" gain low")) other.set(rig.engine, 6.0f);
        if (other.name.ends_with(" gain high")) other.set(rig.engine, -6.0f);
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

/// What is left over at most, for a small change and for one to the worse end of the range [dB below the tone]: about 2
/// dB above what is measured, and -60 where a small change stays below it. What is louder jumps, or moves in steps, on
/// purpose; docs/engine.md says which and why.
struct Limit {
    double small, full;
};
const std::map<std::string, Limit> limits = {
    {"direct gain", {-60, -53}},
    {"direct gain low", {-60, -28}},
    {"direct gain medium", {-60, -34}},
    {"direct gain high", {-60, -39}},
    {"direct crossover low", {-60, -30}},
    {"direct crossover high", {-60, -7}},
    {"room gain", {-60, -54}},
    {"room gain low", {-60, -34}},
    {"room gain medium", {-60, -34}},
    {"room gain high", {-60, -46}},
    {"room crossover low", {-60, -36}},
    {"room crossover high", {-60, -16}},
    {"early gain", {-60, -46}},
    {"early gain low", {-60, -38}},
    {"early gain medium", {-60, -30}},
    {"early gain high", {-60, -40}},
    {"early crossover low", {-60, -48}},
    {"early crossover high", {-60, -10}},
    {"cluster gain", {-60, -48}},
    {"cluster gain low", {-60, -40}},
    {"cluster gain medium", {-60, -31}},
    {"cluster gain high", {-60, -47}},
    {"cluster crossover low", {-60, -44}},
    {"cluster crossover high", {-60, -19}},
    {"early start", {-27, -1}},
    {"early end", {-25, -5}},
    {"early distribution", {-30, -9}},
    {"early shape", {-39, -7}},
    {"early width", {-60, -47}},
    {"cluster start", {-14, -3}},
    {"cluster end", {-47, -2}},
    {"cluster distribution", {-38, -5}},
    {"reverb gain", {-60, -41}},
    {"decay time", {-41, -16}},
    {"relative decay low", {-52, -19}},
    {"relative decay medium", {-42, -11}},
    {"relative decay high", {-55, -16}},
    {"reverb crossover low", {-60, -44}},
    {"reverb crossover high", {-60, -10}},
    {"reverb start", {-15, -8}},
    {"modal density", {-15, -13}},
    {"air rolloff frequency", {-57, 2}},
    {"air absorption", {-38, -38}},
    {"infinite", {-19, -19}},
    {"source distance", {-60, -38}},
    {"source azimuth", {-60, -43}},
    {"elevation", {-60, -74}},
    {"loudspeaker ring", {-60, -45}},
};

/// Where a change starts: the default, but for shelves that aren't flat.
float StartOf(Control const& control) {
    if (control.name.ends_with(" gain low")) return 6.0f;
    if (control.name.ends_with(" gain high")) return -6.0f;
    return control.usual;
}

double ResidualOfSmallChange(Control const& control) {
    const float from = StartOf(control);
    return ResidualOfChange(control, from, from + (control.small - control.usual));
}

// Red if a ramp, a crossfade or a glide gets lost between a control and the sound, or if a jump grows.
TEST(EngineClicks, SmallChangesStayBelowTheirLimits) {
    ASSERT_EQ(limits.size(), AllControls().size());
    for (Control const& control : AllControls())
        EXPECT_LT(ResidualOfSmallChange(control), limits.at(control.name).small) << control.name;
}

// Prints the figures of docs/engine.md.
TEST(EngineClicks, SLOW_FullChangesStayBelowTheirLimits) {
    for (Control const& control : AllControls()) {
        const float from = StartOf(control);
        const double full =
            std::max(ResidualOfChange(control, from, control.low), ResidualOfChange(control, from, control.high));
        std::printf("%-24s small %6.1f dB, full %6.1f dB\n", control.name.c_str(), ResidualOfSmallChange(control),
                    full);
        EXPECT_LT(full, limits.at(control.name).full) << control.name;
    }
}

}  // namespace
