#include "common/hosted_room.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "dsp/floating_point_mode.h"
#include "hrtf/hrtf.h"
#include "object/orvanverb.h"
#include "object/orvanverb_class.h"
#include "orvanverb/design/set_conversion.h"
#include "orvanverb/hrtf/sdif_set_writer.h"
#include "patcher/api.h"
#include "room/file_checksum.h"
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

// Red if a room of many channels differs from those of other fronts, or if a state whose ears have gone is lost whole.
TEST(HostedRoom, PlaysAsEveryFrontAndRestoresWhatItCan) {
    std::string said;
    plugin::HostedRoom room(max::ParseAtoms("@numsources 1 @numspeakers 4 @numinternals 16"),
                            {[&](max::ConsoleLevel, std::string const& text) { said += text; }, {}, {}});
    Lume::Room plain(1, 4, 16);
    room.Start(48000.0f, 64);
    plain.Configure(48000.0f, 64);
    std::vector<std::vector<float>> out(8, std::vector<float>(64));
    std::vector<float*> outputs;
    for (auto& channel : out) outputs.push_back(channel.data());
    for (int i = 0; i < 300; ++i) {
        const std::vector<float> in(64, i == 200 ? 0.5f : 0.0f);
        float const* const inputs[] = {in.data()};
        room.Process(inputs, outputs.data());
        plain.Process(outputs.data() + 4, inputs, 64);
        for (std::size_t c = 0; c < 4; ++c) ASSERT_EQ(out[c], out[c + 4]) << i;
    }
    Lume::RoomState state = room.NamedState();
    state.ears = {"/nowhere.hrtf", 1};
    state.controls[Lume::ControlIndex("tr0")] = 3.5f;
    room.Restore(state);
    EXPECT_NE(said.find("nowhere.hrtf"), said.npos) << said;
    EXPECT_EQ(Text(*room.Value("tr0")), "3.500000 ");
}

/// Measurements that everybody has, and a user's cache with a set that stands for what was fitted for 48 kHz.
struct FittedOnce {
    FittedOnce() {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder / "orvanverb");
        std::filesystem::copy("/usr/share/libmysofa/MIT_KEMAR_normal_pinna.sofa", sofa);
        const std::string bytes = program::SdifSetBytes(program::CopySet(Lume::Hrtf::Builtin(96000.0f)), "me");
        char name[100];
        std::snprintf(name, sizeof name, "%016" PRIx64 "-48000-" ORVANVERB_VERSION "-%016" PRIx64 ".hrtf",
                      Lume::FileChecksum(sofa), Lume::Checksum(bytes));
        std::ofstream(folder / "orvanverb" / name, std::ios::binary) << bytes;
        setenv("XDG_CACHE_HOME", folder.c_str(), 1);
    }
    ~FittedOnce() { std::filesystem::remove_all(folder); }

    std::filesystem::path folder = std::filesystem::path(testing::TempDir()) / ("fitted" + std::to_string(getpid()));
    std::filesystem::path sofa = folder / "my head.sofa";
};

// Red if measurements are fitted again each time or for another rate, if a state names what lies in a cache, or if the
// host has to wait for a fit that nobody wants any more.
TEST(HostedRoom, FitsMeasurementsBesideTheHost) {
    const FittedOnce fitted;
    std::vector<std::string> lines;
    plugin::HostedRoom room(max::ParseAtoms("@numsources 1 @numspeakers 2"),
                            {[&](max::ConsoleLevel, std::string const& text) { lines.push_back(text); }, {}, {}});
    const auto wait = [&] {
        while (!room.TakeEars()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    };
    room.ExpectRate(48000.0f);
    room.LoadEars(fitted.sofa);
    EXPECT_EQ(room.NamedState().ears.path, fitted.sofa);
    wait();
    const Lume::RoomState state = room.NamedState();
    EXPECT_EQ(state.ears.path, fitted.sofa);
    room.Start(48000.0f, 64);
    EXPECT_TRUE(room.TakeEars());
    room.Restore(state);
    EXPECT_TRUE(room.TakeEars());
    EXPECT_EQ(lines, std::vector<std::string>{});

    room.Start(44100.0f, 64);
    while (lines.empty()) EXPECT_FALSE(room.TakeEars());
    EXPECT_EQ(lines[0], fitted.sofa.string() + ": fitting 1420 filters for 44100 Hz, which takes a while ...");
    const auto begin = std::chrono::steady_clock::now();
    room.LoadEars(ORVAN_SET);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    wait();
    EXPECT_EQ(room.NamedState().ears.path, ORVAN_SET);

    room.Start(48000.0f, 64);
    room.Restore(state);
    wait();
    EXPECT_EQ(room.NamedState().Text(), state.Text());
    std::ofstream(fitted.sofa, std::ios::app) << " ";
    room.LoadEars(ORVAN_SET);
    wait();
    room.Restore(state);
    EXPECT_THROW(wait(), std::runtime_error);
    EXPECT_EQ(room.NamedState().ears.path, ORVAN_SET);
    EXPECT_EQ(lines.size(), 1u);
}
