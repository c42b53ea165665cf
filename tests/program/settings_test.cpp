#include <gtest/gtest.h>

#include <cmath>

#include "orvanverb/audio/tail.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/layout/speaker_layout.h"
#include "orvanverb/room/control.h"
#include "program/sound_files.h"
#include "support/failure.h"

namespace {

using program::SpeakerLayout;

TEST(SpeakerLayout, ReadsPositionFilesAsListenersSeeThem) {
    const TemporaryDirectory directory;
    WriteText(directory / "ring", "\xEF\xBB\xBF# front\r\n-45\r\n+45 0 2 # right\n\n\t180 90 3\n");
    const SpeakerLayout layout = SpeakerLayout::Parse(directory / "ring");
    ASSERT_EQ(layout.positions.size(), 3u);
    EXPECT_NEAR(layout.positions[0].x, -std::sqrt(0.5f), 1e-6f);
    EXPECT_NEAR(layout.positions[0].y, std::sqrt(0.5f), 1e-6f);
    EXPECT_NEAR(layout.positions[1].x, std::sqrt(2.0f), 1e-6f);
    EXPECT_NEAR(layout.positions[2].z, 3.0f, 1e-6f);
    EXPECT_EQ(layout.channelMask, 0u);
}

// Red if a line gets through that a user did not mean, or the message names another line.
TEST(SpeakerLayout, NamesTheLineThatIsWrong) {
    const TemporaryDirectory directory;
    for (char const* line : {"left", "30 0 1 4", "30, 0, 1", "30 91", "30 0 0", "nan", "1e9"}) {
        const std::string path = directory / "speakers";
        WriteText(path, std::string("# ring\n-30\n") + line + "\n30\n");
        EXPECT_TRUE(ComplaintOf([&] { SpeakerLayout::Parse(path); }).starts_with(path + ":3: ")) << line;
    }
    std::string many;
    for (int i = 0; i < 65; ++i) many += std::to_string(i) + "\n";
    WriteText(directory / "many", many);
    EXPECT_TRUE(
        ComplaintOf([&] { SpeakerLayout::Parse(directory / "many"); }).starts_with((directory / "many") + ":65: "));
    WriteText(directory / "one", "0\n");
    EXPECT_THROW(SpeakerLayout::Parse(directory / "one"), program::WorkError);
    for (char const* count : {"0", "1", "65", "-2", "2.5"})
        EXPECT_THROW(SpeakerLayout::Parse(count), program::UsageError) << count;
}

TEST(Preset, IsReadAndNamesWhatIsWrongInIt) {
    const TemporaryDirectory directory;
    WriteText(directory / "room", "# a hall\ntr0 2.8\nair 1\nearly_width 60\nroom 0.5 1.5 2 3 200.5 5000\n");
    const auto settings = program::LoadPreset(directory / "room");
    ASSERT_EQ(settings.size(), 4u);
    EXPECT_EQ(settings[3].name, "room");
    EXPECT_EQ(settings[3].values[5], "5000");

    for (char const* line : {"tr0 20", "tr0", "tr0 1 2", "air 0.5", "room 0 0 0", "direct 11 0 0 0 200 2000", "no 1",
                             "numsources 2", "early_width 5", "early_shape 1.1"}) {
        WriteText(directory / "wrong", std::string("tr0 1\n") + line + "\n");
        const std::string message = ComplaintOf([&] { program::LoadPreset(directory / "wrong"); });
        EXPECT_TRUE(message.starts_with((directory / "wrong") + ":2: ")) << line << ": " << message;
    }
}

TEST(Tail, EndsOnlyAfterASecondOfQuiet) {
    program::Tail tail(std::nullopt);
    int blocks = 0;
    const auto run = [&](float peak, int count) {
        for (int i = 0; i < count; ++i, ++blocks)
            if (tail.HasDiedAway(peak, 0.5f, 100, 8000)) return true;
        return false;
    };
    EXPECT_FALSE(run(0.01f, 200));
    EXPECT_FALSE(run(0.0004f, 79));
    EXPECT_FALSE(run(0.0006f, 1));  // a late echo starts the second anew
    EXPECT_FALSE(run(0.0f, 79));
    EXPECT_TRUE(run(0.0f, 1));
    EXPECT_EQ(program::Tail::Parse("1.5").MaxFrames(48000), 72000u);
    for (char const* text : {"-1", "soon", "", "inf"}) EXPECT_THROW(program::Tail::Parse(text), program::UsageError);
}

}  // namespace
