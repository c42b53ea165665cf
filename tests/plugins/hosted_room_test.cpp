#include "common/hosted_room.h"

#include <gtest/gtest.h>

#include "common/floating_point_mode.h"
#include "geometry/speakers.h"
#include "host/orvanverb_class.h"
#include "max/api.h"
#include "support/allocation_count.h"
#include "support/signals.h"

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

/// The state of an object that was told these messages.
std::string StateAfter(char const* words, std::vector<std::string> const& messages) {
    const plugin::FloatingPointMode unchanged;
    orvanverb_main();
    max::Box box(std::string("orvanverb~ ") + words);
    for (std::string const& message : messages) EXPECT_TRUE(box.Send(message));
    return Text(box.GetState());
}

/// "speakerspositions x y z ..." of the built-in layout.
std::string Layout(std::string const& attribute, unsigned int number) {
    std::vector<Lume::CartesianVector> positions;
    Lume::Speakers::GetDefaultForChannels(positions, number);
    std::string message = attribute;
    for (auto const& [x, y, z] : positions)
        for (const float value : {x, y, z}) {
            char text[32];
            std::snprintf(text, sizeof text, " %.9g", static_cast<double>(value));
            message += text;
        }
    return message;
}

bool DenormalsCount() {
    volatile float tiny = 1e-40f;
    return tiny * 1.0f != 0.0f;
}

/// What the room answers to a second of noise from one source.
std::vector<std::vector<float>> Render(std::size_t blockSize, std::size_t numBlocks) {
    plugin::HostedRoom room = MakeRoom("@numsources 1 @numspeakers 4 @tr0 0.5");
    room.Start(48000.0f, blockSize);
    std::vector<float> noise = MakeNoise(1u, blockSize * numBlocks);
    std::vector<std::vector<float>> channels(4, std::vector<float>(noise.size()));
    bool clean = true;
    for (std::size_t begin = 0; begin < noise.size(); begin += blockSize) {
        float const* const input = &noise[begin];
        float* outputs[4];
        for (std::size_t c = 0; c < 4; ++c) outputs[c] = &channels[c][begin];
        const long before = AllocationCount();
        room.Process(&input, outputs);
        clean = clean && AllocationCount() == before && DenormalsCount();
    }
    EXPECT_TRUE(clean) << "a block allocated memory, or left the floating-point mode changed";
    return channels;
}

}  // namespace

// Red if the record of a new room stays at zeros, or if places that the user typed are overwritten.
TEST(HostedRoom, StandsInTheBuiltInLayoutUnlessPlaced) {
    constexpr char sizes[] = "@numsources 2 @numspeakers 5";
    EXPECT_EQ(Text(MakeRoom(sizes).State()),
              StateAfter(sizes, {Layout("speakerspositions", 5), Layout("sourcespositions", 2)}));
    constexpr char sources[] = "@numsources 2 @numspeakers 5 @sourcespositions 1 2 3 0 0 0";
    EXPECT_EQ(Text(MakeRoom(sources).State()), StateAfter(sources, {Layout("speakerspositions", 5)}));
    constexpr char speakers[] = "@numsources 1 @numspeakers 3 @speakerspositions -1 1 0 1 1 0 0 -2 0";
    EXPECT_EQ(Text(MakeRoom(speakers).State()), StateAfter(speakers, {Layout("sourcespositions", 1)}));
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
    Render(64, 1);  // looks at it after each block
}

// Red if blocks of a host reach the engine as they are: its late field would change.
TEST(HostedRoom, SoundsTheSameInBlocksOfAnySize) {
    const auto in16 = Render(16, 3000), in100 = Render(100, 480), in64 = Render(64, 750), in192 = Render(192, 250);
    constexpr std::size_t late = 12;
    for (std::size_t c = 0; c < 4; ++c) {
        EXPECT_GT(EnergyOf(std::span(in16[c]).subspan(24000)), 0.1);
        EXPECT_TRUE(std::equal(in100[c].begin() + late, in100[c].end(), in16[c].begin()));
        EXPECT_TRUE(in192[c] == in64[c]);
    }
}
