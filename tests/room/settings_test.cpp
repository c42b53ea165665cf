#include <gtest/gtest.h>

#include "geometry/azimuth_distance_elevation.h"
#include "room/control_range.h"
#include "room/file_checksum.h"
#include "room/layout_check.h"
#include "room/room.h"
#include "room/setting_remarks.h"
#include "support/failure.h"
#include "support/temporary_file.h"

namespace {

using Lume::ControlIndex;
using Lume::Room;

std::string Joined(std::vector<std::string> const& lines) {
    std::string text;
    for (std::string const& line : lines) text += line + "|";
    return text;
}

/// A room of so many channels with some controls set.
void SetControls(Room& room, std::initializer_list<std::pair<char const*, float>> controls) {
    for (auto const& [name, value] : controls) room.Set(*Lume::FindControl(name), value);
}

}  // namespace

// Red if a front is silent where settings contradict each other, tells of each step of a movement, or of what is right.
TEST(SettingRemarks, TellOfEachContradictionOnce) {
    Room room(1, 4);
    Lume::SettingRemarks remarks;
    EXPECT_EQ(Joined(remarks.Of(room, true)), "");
    SetControls(room, {{"fl", 900.0f}, {"fh", 900.0f}});
    EXPECT_EQ(Joined(remarks.Of(room, true)), "");
    SetControls(room, {{"fh", 800.0f},
                       {"early_start", 60.0f},
                       {"early_end", 50.5f},
                       {"cluster_start", 101.0f},
                       {"cluster_end", 100.0f}});
    room.PlaceSpeaker(3, room.SpeakerPositions()[2]);
    EXPECT_EQ(Joined(remarks.Of(room, false)),
              "fl 900 lies above fh 800 Hz|early_start 60 lies above early_end 50.5 ms|"
              "cluster_start 101 lies above cluster_end 100 ms|");
    SetControls(room, {{"fh", 700.0f}, {"early_start", 61.0f}});
    EXPECT_EQ(Joined(remarks.Of(room, false)), "");
    EXPECT_NE(Joined(remarks.Of(room, true)).find("loudspeakers 3 and 4"), std::string::npos);
    EXPECT_EQ(Joined(remarks.Of(room, true)), "");
}

// The bounds that were measured: passes of the mean line in the decay time, by how many lines there are.
TEST(SettingRemarks, TellWhichRoomsMissTheirDecay) {
    struct Case {
        unsigned int internals;
        float decay, sum, start;
        char const* enough;  // internals; empty if there is nothing to say
    };
    for (auto const& [internals, decay, sum, start, enough] :
         {Case{8, 2.0f, 1.2f, 0.0f, ""}, Case{8, 0.61f, 1.2f, 0.0f, ""}, Case{8, 0.59f, 1.2f, 0.0f, "9 keep it"},
          Case{3, 1.81f, 0.6f, 0.0f, ""}, Case{3, 1.79f, 0.6f, 0.0f, "4 keep it"},
          Case{2, 10.0f, 0.3f, 0.0f, "3 keep it"}, Case{4, 1.5f, 1.19f, 0.0f, ""},
          Case{4, 2.5f, 1.21f, 0.0f, "5 keep it"}, Case{16, 0.1f, 1.2f, 0.0f, "another one keeps it"},
          Case{8, 0.79f, 1.2f, 200.0f, "another one keeps it"}, Case{8, 0.81f, 1.2f, 200.0f, ""},
          Case{9, 5.0f, 1.2f, 140.0f, "another one keeps it"}, Case{9, 5.0f, 1.2f, 130.0f, ""}}) {
        Room room(1, 2, internals);
        SetControls(room,
                    {{"tr0", decay}, {"modaldensity", sum}, {"cluster_start", 50.0f}, {"reverb_start", 50.0f + start}});
        const std::string text = Joined(Lume::SettingRemarks().Of(room, false));
        SCOPED_TRACE(testing::Message() << internals << " " << decay << " " << sum << " " << start << " " << text);
        EXPECT_EQ(text.empty(), *enough == '\0');
        EXPECT_NE(text.find(enough), std::string::npos);
        SetControls(room, {{"infinite", 1.0f}});
        EXPECT_EQ(Joined(Lume::SettingRemarks().Of(room, false)), "");
    }
}

TEST(SettingRemarks, TellOfEarsForAnotherRateAndOfValuesOutOfRange) {
    for (auto const& [rate, speakers, silent] :
         {std::tuple{48000.0f, 2u, true}, {22050.0f, 6u, true}, {22050.0f, 2u, false}}) {
        Room room(1, speakers);
        room.Configure(rate, 64);
        EXPECT_EQ(room.EarsRemark(), silent ? ""
                                            : "the nearest of the built-in ears: made for 44100 Hz, the room runs at "
                                              "22050; orvanverb hrtf convert makes a set for it");
    }

    Lume::RoomControl const& decay = Lume::roomControls[ControlIndex("tr0")];
    Lume::RoomControl const& air = Lume::roomControls[ControlIndex("air")];
    for (const float value : {decay.least, decay.greatest, 1.5f}) EXPECT_TRUE(Lume::IsInRange(decay, value));
    for (const float value : {0.09f, 10.1f, std::nanf("")}) EXPECT_FALSE(Lume::IsInRange(decay, value));
    EXPECT_TRUE(Lume::IsInRange(air, 0.0f) && Lume::IsInRange(air, 1.0f));
    EXPECT_FALSE(Lume::IsInRange(air, 0.5f) || Lume::IsInRange(air, 2.0f));
    Lume::RangeRemarks remarks;
    EXPECT_EQ(remarks.Of(decay, 10.0f), "");
    EXPECT_EQ(remarks.Of(decay, 12.5f), "tr0: 12.5 is not from 0.1 to 10 s, the nearest is taken (said once)");
    EXPECT_EQ(remarks.Of(decay, 0.0f), "");
    EXPECT_EQ(remarks.Of(air, 2.0f), "air: 2 is not from 0 to 1, the nearest is taken (said once)");
}

// Red if one of the things that a method can't tell apart goes unsaid, or if a good layout is blamed.
TEST(LayoutCheck, TellsWhatAMethodCannotPlay) {
    const auto check = [](char const* name, std::vector<std::array<float, 3>> const& places) {
        std::vector<Lume::CartesianVector> positions;
        for (auto const& [azimuth, elevation, distance] : places)
            positions.push_back(Lume::FromAzimuthDistanceElevation(azimuth, distance, elevation));
        for (Lume::PanKind const& kind : Lume::PanKinds())
            if (kind.type == Lume::Pan::GetType(name) && kind.outputs == Lume::PanKind::Outputs::loudspeakers)
                return Joined(Lume::CheckLayout(kind, positions));
        return std::string("none");
    };
    const std::string same = " stand in one place: they always play the same|",
                      azimuth = " stand at one azimuth: no source lies between them, and one of them can stay silent|",
                      gap = ": sources in a gap of 180 degrees or more can be silent|",
                      high = " stands above or below the listener; this method only looks at its azimuth|";
    EXPECT_EQ(check("vbap2d", {{-60, 0, 1}, {60, 0, 1}, {179, 0, 1}}), "");
    EXPECT_EQ(check("vbap2d", {{-121, 0, 1}, {60, 0, 1}, {120, 0, 1}}),
              "no loudspeaker stands between the azimuths -121 and 60" + gap);
    EXPECT_EQ(check("vbap2d", {{-60, 0, 1}, {60, 0, 1}, {180, 0, 1}, {-179.7f, 0, 2}}),
              "loudspeakers 3 and 4" + azimuth);
    EXPECT_EQ(check("vbap2d", {{-60, 0, 1}, {60, 0, 1}, {180, 0, 1}, {-179.3f, 0, 2}}), "");
    EXPECT_EQ(check("vbap2d", {{-60, 0, 1}, {60, 1, 1}, {180, -3, 1}}), "loudspeaker 2" + high);
    EXPECT_EQ(check("vbap2d", {{-60, 0, 1}, {60, 0.5f, 1}, {180, 0, 1}}), "");
    EXPECT_EQ(check("dbap2d", {{-60, 0, 1}, {60, 0, 1}, {60, 0, 1.009f}}), "loudspeakers 2 and 3" + same);
    EXPECT_EQ(check("dbap2d", {{-60, 0, 1}, {60, 0, 1}, {60, 0, 1.02f}}), "");
    EXPECT_EQ(check("dbap2d", {{-90, 0, 1}, {90, 0, 1}, {90, 0, 3}}),
              "the loudspeakers stand in one line: sources beside it are outside and fade|");
    EXPECT_EQ(check("dbap2d", {{-90, 0, 1}, {90, 0, 1}, {89, 0, 3}}), "");
    EXPECT_EQ(check("dbap3d", {{-90, 0, 1}, {90, 0, 1}, {90, 0, 3}}), "");
    EXPECT_EQ(check("dbap3d", {{-90, 0, 1}, {90, 0, 1}, {90, 0.3f, 1}}), "loudspeakers 2 and 3" + same);
    EXPECT_EQ(check("vbap", {{-60, 0, 1}, {60, 0, 1}, {180, 0, 1}, {0, 90, 1}, {45, 89.7f, 2}}),
              "loudspeakers 4 and 5 stand in one direction: one of them can stay silent|");
    EXPECT_EQ(check("vbap", {{-60, 0, 1}, {60, 0, 1}, {180, 0, 1}, {0, 90, 1}, {45, 89.3f, 2}}), "");
}

// The published values of the sum.
TEST(FileChecksum, IsFnv1a) {
    EXPECT_EQ(Lume::Checksum("foobar"), 0x85944171f73967e8u);
    EXPECT_EQ(Lume::FileChecksum(TemporaryFile(".bin", "foobar").name), 0x85944171f73967e8u);
    EXPECT_EQ(Lume::Checksum("\xff"), (0xcbf29ce484222325u ^ 0xffu) * 0x100000001b3u);
    EXPECT_EQ(ComplaintOf([] { Lume::FileChecksum("/nowhere/x"); }), "/nowhere/x: can't be read");
}
