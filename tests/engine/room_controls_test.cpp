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
