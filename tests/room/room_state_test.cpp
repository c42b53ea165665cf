#include "room/room_state.h"

#include <gtest/gtest.h>

#include <fstream>
#include <limits>
#include <stdexcept>

#include "pan/set_file.h"
#include "room/room.h"
#include "room/room_rig.h"
#include "support/failure.h"
#include "support/temporary_file.h"

namespace {

using Lume::ControlIndex;
using Lume::Room;
using Lume::RoomState;

std::string Complaint(std::string const& text) {
    return ComplaintOf([&] { RoomState::Parse(text); });
}

/// What a room plays that begins with a state.
Recording Heard(RoomState const& state, Room& room) {
    room.RestoreState(state);
    room.Configure(48000.0f, 256, state.vectorSize);
    room.Settle();
    return Play(room, 4096, 16384);
}

}  // namespace

// Red if anything that a room was told is missing from its state, or comes back rounded: also times that an object's
// words let past their range, which change what the cluster plays. Red if a room takes the state of another form for
// its own.
TEST(RoomState, BringsBackWhatWasHeardToTheLastBit) {
    const TemporaryFile file(".hrtf", FlatSetFile());
    struct Form {
        char const* format;
        unsigned int speakers;
    };
    for (auto const& [format, speakers] :
         {Form{"", 2}, Form{"", 5}, Form{"stereo", 2}, Form{"vbap", 11}, Form{"dome", 24}, Form{"ambix", 16}}) {
        SCOPED_TRACE(std::string(format) + " " + std::to_string(speakers));
        Room room(2, speakers, 4, Lume::FindRoomFormat(format));
        if (room.HasEars()) room.LoadEars(file.name);
        for (std::size_t i = 0; i < Lume::roomControls.size(); ++i) {
            Lume::RoomControl const& row = Lume::roomControls[i];
            room.Set(i, row.least + (row.greatest - row.least) / (2.0f + static_cast<float>(i) / 37.0f));
        }
        room.Set(ControlIndex("infinite"), 0.0f);
        room.Engine().SetEarlyStart(500.0f);
        room.PlaceSource(1, {0.1f, -1.0f / 3.0f, 1e-3f});
        room.PlaceSpeaker(1, {2.0f, 3.0f, 0.0f});
        room.SetOrientation({100.0f, -20.0f, 0.1f});
        room.SetSourceGain(0, -4.5f);
        room.SetSourceMuted(0, speakers == 5);
        room.SetSourceName(1, "lead \n voice ");
        room.Configure(48000.0f, 256, 32);

        const std::string text = room.SaveState().Text();
        const RoomState state = RoomState::Parse(text);
        Room fresh(2, speakers, 4, Lume::FindRoomFormat(format));
        Room again(state.numSources, state.numSpeakers, state.numInternals, Lume::FindRoomFormat(state.format));
        const Recording first = Heard(room.SaveState(), fresh), second = Heard(state, again);
        EXPECT_GT(LevelDb(first[1]), -80.0);
        EXPECT_TRUE(first == second);
        EXPECT_EQ(again.SaveState().Text(), text);
        EXPECT_NE(text.find("\nsourcesgains -4.5 0\n"), std::string::npos);
        EXPECT_EQ(again.SourceStrips()[1].name, "lead   voice");
        Room other(2, speakers, 4, Lume::FindRoomFormat(speakers == 2 ? "xy" : "dbap3d"));
        EXPECT_THROW(other.RestoreState(state), std::invalid_argument);
    }
}

// Red if the format slips: files of this version will be read for years.
TEST(RoomState, IsTextWithNames) {
    RoomState state;
    state.numSources = 1;
    state.vectorSize = 64;
    state.ears = {"/sets/my ears #2.hrtf", 0x8f3c0a6b5d21e794u};
    state.sources = {{0.0f, 0.1f, -2.0f}};
    state.controls[ControlIndex("tr0")] = 1.0f / 3.0f;
    const std::string text = state.Text("/states");
    EXPECT_EQ(
        text.substr(0, text.find("gain")),
        "orvanverb-state 1\nnumsources 1\nvector 64\nears 8f3c0a6b5d21e794 ../sets/my ears #2.hrtf\nmute 0\nbypass 0\n"
        "sourcespositions 0 0.1 -2\n");
    EXPECT_NE(text.find("\ntr0 0.33333334\n"), std::string::npos);
    const RoomState again = RoomState::Parse(text, "/states");
    EXPECT_EQ(again.ears.path.lexically_normal(), state.ears.path);
    EXPECT_EQ(again.controls, state.controls);
}

// Red if a state of another version of this program loses what that one knows, or brings noise for what it doesn't.
TEST(RoomState, TakesOlderAndNewerStates) {
    const RoomState state = RoomState::Parse("orvanverb-state 1\r\n# by hand\n\ntr0 3\nlate_width 0.5 left\n");
    EXPECT_EQ(state.controls[ControlIndex("tr0")], 3.0f);
    EXPECT_EQ(state.controls[ControlIndex("fl")], 250.0f);
    ASSERT_EQ(state.unknown, std::vector<std::string>{"late_width 0.5 left"});
    Room room(1, 2);
    room.RestoreState(state);
    EXPECT_NE(room.SaveState().Text().find("\nlate_width 0.5 left\n"), std::string::npos);
}

// Red if the files that earlier programs saved can't be opened any more.
TEST(RoomState, ReadsAttributesWithoutAVersion) {
    const RoomState state = RoomState::Parse(
        "# A state of orvanverb~.\nair 0\nbypass 0\ncluster -3. 0. 1.5 0. 177. 5657.\ndelays 0. 0.\nearly_start 500.\n"
        "numinternals 4\nnumsources 1\nsourcespositions -0.5 0.8660254 0.\n");
    EXPECT_EQ(state.numInternals, 4u);
    EXPECT_EQ(state.controls[ControlIndex("cluster_gain")], -3.0f);
    EXPECT_EQ(state.controls[ControlIndex("cluster_gain_medium")], 1.5f);
    EXPECT_EQ(state.controls[ControlIndex("cluster_freq_high")], 5657.0f);
    EXPECT_EQ(state.controls[ControlIndex("early_start")], 500.0f);
    EXPECT_EQ(state.sources[0].y, 0.8660254f);
    EXPECT_EQ(Complaint("early 0. 0. 0. 0. 177.\n"), "1: early: a value is missing");
}

TEST(RoomState, SaysWhatIsWrongAndWhere) {
    const std::string head = "orvanverb-state 1\n";
    EXPECT_EQ(Complaint("tr0 3\ndance 4\n"),
              "2: dance: is in no state; orvanverb-state 1 is expected in front of them");
    EXPECT_EQ(Complaint("orvanverb-state 2\n"), "1: orvanverb-state: version 1 is expected, not 2");
    EXPECT_EQ(Complaint(head + "tr0 11\n"), "2: tr0: 11 is not from 0.1 to 10 s");
    EXPECT_EQ(Complaint(head + "late_width \x1b[2J\n"), "2: is no text") << "a terminal would obey it";
    EXPECT_EQ(Complaint(head + "tr0 nan\n"), "2: tr0: 'nan' is not finite");
    EXPECT_EQ(Complaint(head + "tr0 3s\n"), "2: tr0: '3s' is no number that is expected here");
    EXPECT_EQ(Complaint(head + "tr0 3 4\n"), "2: tr0: one value is expected, '4' is too many");
    EXPECT_EQ(Complaint(head + "\nsourcespositions 1 2\n"), "3: sourcespositions: positions are three numbers each");
    EXPECT_EQ(Complaint(head + "numsources 2\nsourcespositions 1 2 3\n"),
              "sourcespositions: 2 positions are expected, not 1");
    EXPECT_EQ(Complaint(head + "tr0\n"), "2: tr0: a value is missing");
    EXPECT_EQ(Complaint(head + "vector 48\n"), "2: vector: a power of two from 16 to 8192 is expected, not 48");
    for (auto const& [line, why] : {
             std::pair("sourcespositions 1 2 2e6", "'2e6' is farther away than 1e+06 m"),
             std::pair("sourcesgains 0 25", "25 is not from -120 to 20 dB"),
             std::pair("format square", "'square' is none; there are"),
             std::pair("ears 12 ", "a file is expected behind the checksum"),
             std::pair("orientation 1 2", "a value is missing"),
             std::pair("numsources 1\nsourcesgains 0 0", "sourcesgains, sourcesmutes, sourcename: there are 1 sources"),
         })
        EXPECT_NE(Complaint(head + line + "\n").find(why), std::string::npos) << Complaint(head + line + "\n");
    const std::string early = "early 0. 0. 0. 0. 177. 5657.";
    EXPECT_EQ(Complaint(early + " 1.\n"), "1: early: six values are expected, '1.' is too many");
    EXPECT_EQ(Complaint(head + "early_start 500\n"), "") << "an object's words let it past its range";
}

// Whole characters count, of one to four bytes; a name is cut between two of them.
TEST(RoomState, TextsAreUtf8) {
    for (char const* const text : {"", "a\tb\r\n", "\xc3\xa4", "\xe2\x82\xac!", "\xf0\x9f\x8e\xb5"})
        EXPECT_TRUE(Lume::IsText(text)) << text;
    for (char const* const text :
         {"\x1b", "\x7f", "\x80", "\xc3", "\xc3z", "\xe2\x82", "\xe2\x82z", "\xf0\x9f\x8e", "\xf8\x80\x80\x80\x80"})
        EXPECT_FALSE(Lume::IsText(text)) << text;
    const std::string letters(63, 'x');
    EXPECT_EQ(Lume::LimitedName(letters + "yz"), letters + "y");
    EXPECT_EQ(Lume::LimitedName(letters + "\xe2\x82\xac"), letters);
    EXPECT_EQ(Lume::LimitedName(" \x01 a\x7f"
                                "b \n"),
              "a b");
    EXPECT_EQ(Lume::LimitedName("  "), "");
}

// Red if a room changes although its new state can't be had.
TEST(RoomState, LeavesTheRoomAsItWasIfItCannotBeHad) {
    const TemporaryFile file(".hrtf", FlatSetFile());
    Room room(1, 2);
    room.LoadEars(file.name);
    RoomState state = room.SaveState();
    state.controls[ControlIndex("tr0")] = 7.0f;
    std::ofstream(file.name, std::ios::app) << "more";
    Room other(1, 2);
    EXPECT_THROW(other.RestoreState(state), std::runtime_error);
    EXPECT_NE(other.Get(ControlIndex("tr0")), 7.0f);
    state.ears.checksum += 1;  // of that very path
    EXPECT_THROW(room.RestoreState(state), std::runtime_error);
    state.ears = {};
    constexpr float infinity = std::numeric_limits<float>::infinity();
    for (const Lume::CartesianVector& nowhere :
         {Lume::CartesianVector{infinity, 0.0f, 0.0f}, {0.0f, infinity, 0.0f}, {0.0f, 0.0f, infinity}}) {
        state.sources = {nowhere};
        EXPECT_THROW(room.RestoreState(state), std::invalid_argument);
    }
    state.sources = {};
    state.controls.back() = infinity;
    EXPECT_THROW(room.RestoreState(state), std::invalid_argument);
    state.controls.pop_back();
    EXPECT_THROW(room.RestoreState(state), std::invalid_argument);
    state.controls = room.SaveState().controls;
    state.numSources = 2;
    EXPECT_THROW(room.RestoreState(state), std::invalid_argument);
    EXPECT_NE(room.Get(ControlIndex("tr0")), 7.0f);
}
