#include "engine/room_controls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "engine/controls.h"

namespace {

using Lume::OrvanVerb;
using Lume::RoomControl;
using Lume::roomControls;

// Red if a row names the setter or the getter of its neighbour, or if a setter writes another's value.
TEST(RoomControls, EachReachesItsOwnValueOnly) {
    for (RoomControl const& control : roomControls) {
        OrvanVerb engine(4);
        const OrvanVerb untouched(4);
        const float value = control.get(engine) == control.greatest ? control.least : control.greatest;
        control.set(engine, value);
        for (RoomControl const& other : roomControls)
            EXPECT_EQ(other.get(engine), &other == &control ? value : other.get(untouched))
                << control.name << " seen by " << other.name;
    }
}

// Red if a record of a layer or of the late field drops a value, or hands it to its neighbour.
TEST(RoomControls, RecordsBringEveryValue) {
    OrvanVerb engine(4);
    for (auto const set : {&OrvanVerb::SetDirectParameters, &OrvanVerb::SetRoomParameters,
                           &OrvanVerb::SetEarlyParameters, &OrvanVerb::SetClusterParameters})
        (engine.*set)({1.0f, 2.0f, 3.0f, 4.0f, 500.0f, 6000.0f});
    engine.SetReverbParameters({1.0f, 2.0f, 0.3f, 0.4f, 0.5f, 600.0f, 7000.0f});
    const auto expect = [&](std::string const& name, float value) {
        EXPECT_EQ(roomControls[Lume::FindControl(name).value()].get(engine), value) << name;
    };
    for (std::string const layer : {"direct", "room", "early", "cluster"}) {
        float value = 0.0f;
        for (char const* gain : {"_gain", "_gain_low", "_gain_medium", "_gain_high"}) expect(layer + gain, ++value);
        expect(layer + "_freq_low", 500.0f), expect(layer + "_freq_high", 6000.0f);
    }
    expect("gain", 1.0f), expect("tr0", 2.0f), expect("trl", 0.3f), expect("trm", 0.4f), expect("trh", 0.5f);
    expect("fl", 600.0f), expect("fh", 7000.0f);
}

// Red if a row is copied and not finished.
TEST(RoomControls, AreNamedOnceAndStartWithinTheirRange) {
    std::set<std::string> names;
    for (RoomControl const& control : roomControls) {
        EXPECT_TRUE(names.insert(control.name).second) << control.name;
        EXPECT_LT(control.least, control.greatest) << control.name;
        EXPECT_EQ(std::clamp(control.standard, control.least, control.greatest), control.standard) << control.name;
        EXPECT_TRUE(control.scale != Lume::Scale::logarithmic || control.least > 0.0f) << control.name;
        EXPECT_EQ(&roomControls[Lume::FindControl(control.name).value()], &control);
    }
    EXPECT_FALSE(Lume::FindControl("tr").has_value());
}

// What the table says of changes is what was measured: red if a row promises a ramp where a small change is heard.
TEST(RoomControls, SayHowChangesSound) {
    for (RoomControl const& control : roomControls) {
        auto const& measured = AllControls();
        const auto found = std::find_if(measured.begin(), measured.end(),
                                        [&](Control const& other) { return other.name == control.name; });
        EXPECT_EQ(control.change == Lume::Change::ramps, found->smallLimit <= -60.0) << control.name;
    }
}

}  // namespace
