#include "common/hosted_room.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "dsp/floating_point_mode.h"
#include "object/orvanverb.h"
#include "object/orvanverb_class.h"
#include "patcher/api.h"
#include "support/allocation_count.h"

namespace {

plugin::HostedRoom MakeRoom(char const* words) {
    return {max::ParseAtoms(words),
            {[](max::ConsoleLevel level, std::string const& text) {
                 if (level != max::ConsoleLevel::post) ADD_FAILURE() << text;
             },
             {},
             {}}};
}

std::string Text(std::vector<max::t_atom> const& atoms) {
    std::string text;
    for (max::t_atom const& atom : atoms) text.append(max::AtomText(atom)).append(" ");
    return text;
}

/// The state of a bare object that was told to stand in the built-in layout of its sources or loudspeakers.
std::string StateOf(std::string const& words, bool sources, bool speakers) {
    const orvandsp::FloatingPointMode unchanged;
    orvanverb_main();
    max::Box box("orvanverb~ " + words);
    orvanverb_place_defaults(orvanverb_record(box.Object()), sources, speakers);
    return Text(box.GetState());
}

bool DenormalsCount() {
    volatile float tiny = 1e-40f;
    return tiny * 1.0f != 0.0f;
}

}  // namespace

// Red if the record of a new room stays at zeros, or if places that the user typed are overwritten.
TEST(HostedRoom, StandsInTheBuiltInLayoutUnlessPlaced) {
    constexpr char plain[] = "@numsources 2 @numspeakers 5";
    EXPECT_EQ(Text(MakeRoom(plain).State()), StateOf(plain, true, true));
    constexpr char sources[] = "@numsources 2 @numspeakers 5 @sourcespositions 1 2 3 0 0 0";
    EXPECT_EQ(Text(MakeRoom(sources).State()), StateOf(sources, false, true));
    constexpr char speakers[] = "@numsources 1 @numspeakers 3 @speakerspositions -1 1 0 1 1 0 0 -2 0";
    EXPECT_EQ(Text(MakeRoom(speakers).State()), StateOf(speakers, true, false));
}

// The engine runs without denormal numbers and leaves the processor so. Red if any way into the room does that too.
TEST(HostedRoom, LeavesNoTraceOnTheFloatingPointMode) {
    ASSERT_TRUE(DenormalsCount());
    plugin::HostedRoom room = MakeRoom("@numspeakers 2");
    EXPECT_TRUE(DenormalsCount());
    room.Start(44100.0f, 64);
    EXPECT_TRUE(DenormalsCount());
    room.Send("clear", {});
    EXPECT_TRUE(DenormalsCount());
    room.Restore(room.State());
    EXPECT_TRUE(DenormalsCount());
    float block[64] = {1.0f};
    float const* const inputs[] = {block, block, block, block, block, block};
    float* outputs[] = {block, block};
    const long before = AllocationCount();
    room.Process(inputs, outputs);
    EXPECT_EQ(AllocationCount(), before);
    EXPECT_TRUE(DenormalsCount());
}

// Red if ears that are loaded while audio runs don't arrive, or if ones that can't be used leave a trace.
TEST(HostedRoom, LoadsEarsBesideTheAudio) {
    plugin::HostedRoom room = MakeRoom("@numsources 1 @numspeakers 2");
    room.Start(48000.0f, 64);
    std::vector<float> block(64, 0.1f);
    float const* const inputs[] = {block.data()};
    float* const outputs[] = {block.data(), block.data()};
    const auto wait = [&] {
        while (!room.TakeEars()) room.Process(inputs, outputs);
    };
    room.LoadEars(ORVAN_SET);
    wait();
    const Lume::RoomState state = room.NamedState();
    EXPECT_EQ(state.ears.path, ORVAN_SET);
    room.LoadEars("/nowhere.hrtf");
    EXPECT_THROW(wait(), std::runtime_error);
    EXPECT_EQ(room.NamedState().Text(), state.Text());
}
