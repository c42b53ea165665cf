#include "orvan_c.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "room/room.h"
#include "support/allocation_count.h"

namespace {

struct Free {
    void operator()(orvan_room* room) const { orvan_free(room); }
    void operator()(char* text) const { orvan_free_text(text); }
};
using RoomPointer = std::unique_ptr<orvan_room, Free>;
using Text = std::unique_ptr<char, Free>;

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr std::size_t blockSize = 64;

/// Plays noise into the first source and gives all that the outputs play, block behind block.
template <class Process>
std::vector<float> Play(std::size_t numSources, std::size_t numSpeakers, Process process) {
    std::vector<std::vector<float>> in(numSources, std::vector<float>(blockSize)), out(numSpeakers, in[0]);
    std::vector<float*> inputs, outputs;
    for (auto& channel : in) inputs.push_back(channel.data());
    for (auto& channel : out) outputs.push_back(channel.data());
    std::vector<float> heard;
    std::uint32_t random = 1;
    for (int block = 0; block < 200; ++block) {
        for (float& sample : in[0]) {
            random = random * 1664525u + 1013904223u;
            sample = block < 20 ? static_cast<float>(random >> 8) / 16777216.0f - 0.5f : 0.0f;
        }
        process(outputs.data(), inputs.data(), block);
        for (auto const& channel : out) heard.insert(heard.end(), channel.begin(), channel.end());
    }
    return heard;
}

std::vector<float> Play(orvan_room* room) {
    return Play(orvan_num_sources(room), orvan_num_speakers(room),
                [&](float** outputs, float** inputs, int) { orvan_process(room, outputs, inputs, blockSize); });
}

bool Says(char const* text, char const* part) {
    return std::strstr(text, part) != nullptr;
}

}  // namespace

// Red if a call reaches another member of Room, if coordinates or angles change places, or if a message doesn't arrive.
TEST(CInterface, PlaysWhatARoomPlays) {
    Lume::Room plain(2, 5, 6);
    plain.Configure(48000.0f, blockSize);
    plain.Set(Lume::ControlIndex("tr0"), 0.7f);
    plain.Set(Lume::ControlIndex("early_start"), 30.0f);
    plain.PlaceSource(0, {2.0f, 0.5f, -0.25f});
    plain.PlaceSource(1, {1.0f, 0.0f, 0.0f});
    plain.PlaceSpeaker(3, {1.0f, -1.5f, 0.0f});
    plain.SetOrientation({40.0f, 5.0f, -3.0f});
    plain.Settle();
    const std::vector<float> wanted = Play(2, 5, [&](float** outputs, float** inputs, int block) {
        if (block == 100) plain.Set(Lume::ControlIndex("gain"), -9.0f);
        if (block == 110) plain.PlaceSource(0, {-1.0f, 3.0f, 0.0f});
        plain.Process(outputs, inputs, blockSize);
    });
    const RoomPointer room(orvan_create(2, 5, 6, nullptr));
    ASSERT_EQ(orvan_configure(room.get(), 48000.0, blockSize, 0, ORVAN_STEADY), ORVAN_OK);
    EXPECT_EQ(orvan_latency(room.get()), 0u);
    EXPECT_EQ(orvan_set_by_name(room.get(), "tr0", 0.7f), ORVAN_OK);
    EXPECT_EQ(orvan_set(room.get(), static_cast<std::size_t>(orvan_find_control("early_start")), 30.0f), ORVAN_OK);
    EXPECT_EQ(orvan_place_source(room.get(), 0, 2.0f, 0.5f, -0.25f), ORVAN_OK);
    EXPECT_EQ(orvan_place_source(room.get(), 1, 1.0f, 0.0f, 0.0f), ORVAN_OK);
    EXPECT_EQ(orvan_place_speaker(room.get(), 3, 1.0f, -1.5f, 0.0f), ORVAN_OK);
    EXPECT_EQ(orvan_turn(room.get(), 40.0f, 5.0f, -3.0f), ORVAN_OK);
    orvan_settle(room.get());
    const std::vector<float> heard = Play(2, 5, [&](float** outputs, float** inputs, int block) {
        const auto gain = static_cast<std::size_t>(orvan_find_control("gain"));
        orvan_status posted = ORVAN_OK;
        if (block == 100) posted = orvan_post_set(room.get(), gain, -9.0f);
        if (block == 110) posted = orvan_post_source(room.get(), 0, -1.0f, 3.0f, 0.0f);
        EXPECT_EQ(posted, ORVAN_OK);
        const long allocations = AllocationCount();
        orvan_process(room.get(), outputs, inputs, blockSize);
        EXPECT_EQ(AllocationCount(), allocations);
    });
    EXPECT_TRUE(heard == wanted);
    EXPECT_GT(*std::max_element(heard.begin(), heard.end()), 0.01f);

    float position[3] = {};
    EXPECT_EQ(orvan_place_source_at(room.get(), 1, 90.0f, 0.0f, 2.0f), ORVAN_OK);
    EXPECT_EQ(orvan_source_position(room.get(), 1, position), ORVAN_OK);
    EXPECT_NEAR(position[0], 2.0f, 1e-5f);  // to the right
    EXPECT_EQ(orvan_place_speaker_at(room.get(), 0, 0.0f, 90.0f, 3.0f), ORVAN_OK);
    EXPECT_EQ(orvan_speaker_position(room.get(), 0, position), ORVAN_OK);
    EXPECT_NEAR(position[2], 3.0f, 1e-5f);
    EXPECT_NEAR(orvan_tail_seconds(room.get(), 60.0), static_cast<double>(plain.Engine().GetTailLength(60.0f)), 1e-6);
}

// Red if the C table differs from the one that everybody else has.
TEST(CInterface, TellsTheControls) {
    ASSERT_EQ(orvan_num_controls(), Lume::roomControls.size());
    for (std::size_t i = 0; i < orvan_num_controls(); ++i) {
        orvan_control const* const control = orvan_control_info(i);
        EXPECT_EQ(orvan_find_control(control->name), static_cast<long>(i));
        EXPECT_STREQ(control->unit, Lume::roomControls[i].unit);
        EXPECT_EQ(control->standard, Lume::roomControls[i].standard);
    }
    EXPECT_EQ(orvan_control_info(static_cast<std::size_t>(orvan_find_control("fl")))->scale, ORVAN_LOGARITHMIC);
    EXPECT_EQ(orvan_control_info(static_cast<std::size_t>(orvan_find_control("infinite")))->scale, ORVAN_ON_OFF);
    EXPECT_EQ(orvan_find_control("tro"), -1);
    EXPECT_EQ(orvan_find_control(nullptr), -1);
    EXPECT_EQ(orvan_control_info(orvan_num_controls()), nullptr);
    std::size_t formats = 0;
    while (orvan_format_name(formats) != nullptr) EXPECT_NE(orvan_format_label(formats++), nullptr);
    EXPECT_GT(formats, 10u);
}

// Red if an exception gets out, if something wrong is taken, or if a failure leaves no words or a trace.
TEST(CInterface, SaysWhatItRefuses) {
    for (auto const& [sources, speakers, internals, format, why] :
         {std::tuple{65u, 6u, 0u, "", "1 to 64 sources, 2 to 64 loudspeakers"},
          {1u, 1u, 0u, "", "not 1, 1 and 8"},
          {1u, 6u, 17u, "", "2 to 16 internal"},
          {1u, 5u, 0u, "ambix", "ambix has no 5 outputs"},
          {1u, 6u, 0u, "wurst", "no format 'wurst'"}}) {
        EXPECT_EQ(orvan_create(sources, speakers, internals, *format != '\0' ? format : nullptr), nullptr);
        EXPECT_TRUE(Says(orvan_error(nullptr), why)) << orvan_error(nullptr);
    }
    EXPECT_EQ(orvan_create_from_state(nullptr), nullptr);
    EXPECT_EQ(orvan_create_from_state("wurst"), nullptr);
    orvan_free(nullptr);

    const RoomPointer room(orvan_create(1, 6, 0, nullptr));
    EXPECT_STREQ(orvan_error(room.get()), "");
    EXPECT_EQ(orvan_configure(room.get(), 0.0, 64, 0, ORVAN_STEADY), ORVAN_BAD_ARGUMENT);
    EXPECT_TRUE(Says(orvan_error(room.get()), "1000 to 768000 Hz")) << orvan_error(room.get());
    EXPECT_EQ(orvan_set_by_name(room.get(), "tro", 1.0f), ORVAN_BAD_ARGUMENT);
    EXPECT_TRUE(Says(orvan_error(room.get()), "no such control"));
    EXPECT_EQ(orvan_set_by_name(room.get(), "tr0", notANumber), ORVAN_BAD_ARGUMENT);
    EXPECT_EQ(orvan_place_source(room.get(), 1, 0.0f, 0.0f, 0.0f), ORVAN_BAD_ARGUMENT);
    EXPECT_EQ(orvan_place_source(room.get(), 0, notANumber, 0.0f, 0.0f), ORVAN_BAD_ARGUMENT);
    EXPECT_EQ(orvan_place_source_at(room.get(), 0, 1e30f, 0.0f, 1.0f), ORVAN_BAD_ARGUMENT);
    EXPECT_EQ(orvan_place_speaker(room.get(), 6, 0.0f, 0.0f, 0.0f), ORVAN_BAD_ARGUMENT);
    EXPECT_TRUE(Says(orvan_error(room.get()), "no such loudspeaker"));
    EXPECT_EQ(orvan_restore_state(room.get(), "orvanverb-state 1\ntr0 wurst\n"), ORVAN_BAD_ARGUMENT);
    EXPECT_TRUE(Says(orvan_error(room.get()), "wurst"));
    EXPECT_EQ(orvan_load_ears(room.get(), "/no/such.hrtf"), ORVAN_BAD_ARGUMENT);
    EXPECT_EQ(orvan_get(room.get(), static_cast<std::size_t>(orvan_find_control("tr0"))), 1.995f);

    const RoomPointer headphones(orvan_create(1, 2, 0, nullptr));
    EXPECT_EQ(orvan_load_ears(headphones.get(), "/no/such.hrtf"), ORVAN_BAD_FILE);
    EXPECT_TRUE(Says(orvan_error(headphones.get()), "/no/such.hrtf: No such file")) << orvan_error(headphones.get());
    EXPECT_EQ(orvan_post_ears(headphones.get(), "/no/such.hrtf"), ORVAN_BAD_FILE);
    EXPECT_EQ(orvan_load_ears(headphones.get(), nullptr), ORVAN_OK);
    int lost = 0;
    for (int i = 0; i < 100000; ++i) lost += orvan_post_clear(headphones.get()) == ORVAN_QUEUE_FULL ? 1 : 0;
    EXPECT_GT(lost, 0);
}

// Red if a state loses a size, the format or a control on its way.
TEST(CInterface, BringsAStateBack) {
    const RoomPointer room(orvan_create(2, 4, 9, "ambix"));
    orvan_set_by_name(room.get(), "tr0", 3.1415927f);
    orvan_place_source(room.get(), 1, -2.0f, 1.0f, 0.5f);
    const Text saved(orvan_save_state(room.get()));
    const RoomPointer again(orvan_create_from_state(saved.get()));
    ASSERT_NE(again, nullptr) << orvan_error(nullptr);
    EXPECT_STREQ(orvan_format(again.get()), "ambix");
    EXPECT_STREQ(Text(orvan_save_state(again.get())).get(), saved.get());
    for (orvan_room* const each : {room.get(), again.get()}) orvan_configure(each, 48000.0, 64, 0, ORVAN_STEADY);
    EXPECT_TRUE(Play(room.get()) == Play(again.get()));
    const RoomPointer other(orvan_create(2, 4, 9, "ambix"));
    EXPECT_EQ(orvan_restore_state(other.get(), saved.get()), ORVAN_OK);
    EXPECT_STREQ(Text(orvan_save_state(other.get())).get(), saved.get());
    EXPECT_EQ(orvan_restore_state(RoomPointer(orvan_create(1, 6, 0, nullptr)).get(), saved.get()), ORVAN_BAD_ARGUMENT);
}
