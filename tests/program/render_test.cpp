#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <limits>
#include <thread>

#include "measure/room_measurement.h"
#include "program/run_program.h"
#include "program/sound_files.h"

namespace {

/// The number behind a name in JSON.
double JsonNumberIn(std::string const& json, std::string const& name) {
    const std::string before = "\"" + name + "\": ";
    const std::size_t at = json.find(before);
    EXPECT_NE(at, std::string::npos) << name << " in " << json;
    return at == std::string::npos ? 0.0 : std::stod(json.substr(at + before.size()));
}

// The built-in rooms answer after 22 ms: up to there a rendered impulse holds the direct sound alone.
constexpr std::size_t directFrames = 1000;  // at 48 kHz

class Rendering : public testing::Test {
protected:
    /// The impulse response of a room with one source.
    Sound ImpulseResponse(std::string const& speakers, std::string const& azimuth, std::string const& distance = "1",
                          std::vector<std::string> const& more = {}) {
        const std::vector<std::string> words{
            "ir",     "-o", directory / "ir.wav", "--speakers", speakers, "--source", "1", azimuth, "0", distance,
            "--tail", "0.5"};
        RunWell(Joined(words, more));
        return ReadSound(directory / "ir.wav");
    }

    TemporaryDirectory directory;
};

constexpr double directPower = 1.0 / 8.0;  // one source among eight internal channels: sqrt(1/8) in amplitude

// Red if a channel is swapped, a ring is mirrored, a neighbour leaks, the distance is lost, or if the first millisecond
// is still fading in.
TEST_F(Rendering, SourceAtALoudspeakerComesOutOfItAlone) {
    WriteText(directory / "uneven", "-50\n-10\n35\n100 0 1.5\n170\n-120\n");
    const std::pair<std::string, std::vector<char const*>> rings[] = {
        {"4", {"-45", "45", "135", "-135"}},
        {"5", {"-30", "30", "0", "-110", "110"}},  // files of this layout and of seven go by pairs
        {"6", {"-45", "45", "90", "135", "-135", "-90"}},
        {"7", {"-30", "30", "0", "-150", "150", "-90", "90"}},
        {"8", {"-45", "0", "45", "90", "135", "180", "-135", "-90"}},
        {directory / "uneven", {"-50", "-10", "35", "100", "170", "-120"}},
    };
    for (const auto& [layout, azimuths] : rings)
        for (std::size_t c = 0; c < azimuths.size(); ++c) {
            const Sound sound = ImpulseResponse(layout, azimuths[c], "2");
            std::vector<double> energies = Energies(sound, 0, directFrames);
            ASSERT_EQ(energies.size(), azimuths.size());
            EXPECT_NEAR(energies[c], directPower / 16.0, 1e-6) << layout << " " << azimuths[c];
            EXPECT_NEAR(static_cast<double>(sound.samples[c][0]), std::sqrt(directPower) / 4.0, 1e-4);
            energies[c] = 0.0;
            EXPECT_LT(*std::max_element(energies.begin(), energies.end()), 1e-10) << layout << " " << azimuths[c];
        }
}

// To the left of the listener is the first channel. Red if the ears are swapped, if --hrtf isn't read, or read into a
// room that isn't for headphones: a gain of a quarter in all rows tells.
TEST_F(Rendering, HeadphonesHearTheSideAndTakeAnotherSet) {
    const std::vector<double> own = Energies(ImpulseResponse("2", "-45"), 0, directFrames);
    EXPECT_GT(own[0], 4.0 * own[1]);
    std::string rows;
    for (int row = 1; row <= 710; ++row) {
        rows += std::to_string(row) + ", 1 0.25";
        for (int value = 0; value < 24; ++value) rows += " 0";
        rows += ";\n";
    }
    const std::string set = directory / "flat-ears-48000.coll";
    WriteText(set, rows);
    const std::vector<std::string> dry = {"--set", "room=-60 0 0 0 250 4000", "--hrtf", set};
    const std::vector<double> ears = Energies(ImpulseResponse("2", "-90", "1", dry), 0, directFrames);
    EXPECT_NEAR(ears[0], ears[1], 1e-6);
    EXPECT_NEAR(ears[0], 0.5 * 0.25 * 0.25 * directPower, 1e-3 * directPower);

    ExpectComplaint(RunProgram({"ir", "-o", directory / "ring.wav", "--speakers", "4", "--hrtf", set}), 2, "--hrtf");
}

// Red if --set or a preset doesn't reach the room, or the preset wins over --set.
TEST_F(Rendering, DecaysAsAsked) {
    WriteText(directory / "room", "tr0 3\ntrh 1\nearly 0 -30 -30 -30 177 5657\n");
    for (const double seconds : {0.6, 1.5}) {
        const Sound sound = ImpulseResponse(
            "6", "0", "1",
            {"--preset", directory / "room", "--tail", "auto", "--set", "tr0=" + std::to_string(seconds)});
        std::vector<std::span<float const>> late;  // behind 0.3 s it is alone
        for (std::vector<float> const& channel : sound.samples) late.push_back(std::span(channel).subspan(14400));
        const auto measured = orvanmeasure::Measure(late, 48000.0, orvanmeasure::BandWidth::octave);
        EXPECT_NEAR(measured.Mid(&orvanmeasure::BandFigures::t30).value / seconds, 1.0, 0.05);
    }
}

TEST_F(Rendering, TakesManyFilesOfDifferentKindsAndRates) {
    Sound stereo = MakeTone(500.0, 0.25, 44100);
    stereo.samples.push_back(stereo.samples[0]);
    WriteSound(directory / "a.aiff", stereo, SF_FORMAT_AIFF | SF_FORMAT_PCM_24);
    WriteSound(directory / "b.flac", MakeTone(700.0, 0.5, 48000), SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
    WriteSound(directory / "c.ogg", MakeTone(900.0, 0.125, 32000), SF_FORMAT_OGG | SF_FORMAT_VORBIS);
    const RunResult run =
        RunWell({"render", directory / "a.aiff", directory / "b.flac", directory / "c.ogg", "-o", directory / "out.wav",
                 "--tail", "0.25", "--source", "4", "-90", "0", "3", "--speakers", "7"});
    const Sound out = ReadSound(directory / "out.wav");
    EXPECT_EQ(out.samplerate, 44100);  // that of the first
    EXPECT_EQ(out.samples.size(), 7u);
    EXPECT_NEAR(static_cast<double>(out.NumFrames()), 0.75 * 44100.0, 1.0);
    EXPECT_EQ(ReadChannelMask(directory / "out.wav"), 0x637u);
    for (char const* const word : {"out.wav: 7 channels", "0.750 s", "peak", "times faster than real time"})
        ExpectContains(run.err, word);
    EXPECT_EQ(run.err.find('\r'), std::string::npos) << "a progress line in a pipe";

    const std::pair<char const*, unsigned int> masks[] = {{"2", 3u}, {"5", 0x607u}, {"6", 0u}, {"8", 0u}};
    for (const auto& [speakers, mask] : masks) {
        ImpulseResponse(speakers, "0");
        EXPECT_EQ(ReadChannelMask(directory / "ir.wav"), mask) << speakers;
    }
}

// Red if something random, or the time of day, gets into the file; 16 internal channels spread their gains by chance.
TEST_F(Rendering, GivesTheSameBytesTwice) {
    ImpulseResponse("8", "20", "2", {"--set", "numinternals=16"});
    const std::string first = ReadText(directory / "ir.wav");
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));  // into another second of the clock
    ImpulseResponse("8", "20", "2", {"--set", "numinternals=16"});
    EXPECT_TRUE(first == ReadText(directory / "ir.wav"));
}

// Red if what was typed last doesn't win.
TEST_F(Rendering, ThePresetYieldsToSetAndSetToAttributes) {
    WriteText(directory / "room", "numinternals 2\n");
    const auto internals = [&](std::vector<std::string> const& words) {
        ImpulseResponse("2", "0", "0", Joined({"--save-state", directory / "state"}, words));
        const std::string state = ReadText(directory / "state");
        const std::size_t at = state.find("\nnuminternals ") + 1;
        return state.substr(at, state.find('\n', at) - at);
    };
    std::vector<std::string> words{"--preset", directory / "room"};
    EXPECT_EQ(internals(words), "numinternals 2");
    words.insert(words.end(), {"--set", "numinternals=4"});
    EXPECT_EQ(internals(words), "numinternals 4");
    words.insert(words.end(), {"@numinternals", "16"});
    EXPECT_EQ(internals(words), "numinternals 16");
}

TEST_F(Rendering, KeepsWhatIsNotFiniteOutOfTheRoomAndTellsOnce) {
    Sound sound = MakeTone(440.0, 0.2, 48000);
    for (const std::size_t i : {1000u, 2000u, 2001u}) sound.samples[0][i] = std::numeric_limits<float>::quiet_NaN();
    WriteSound(directory / "in.wav", sound);
    const RunResult run = RunWell({"render", directory / "in.wav", "-o", directory / "out.wav", "--rate", "32000"});
    ExpectContains(run.err, "in.wav: 3 samples");
    const Sound out = ReadSound(directory / "out.wav");
    EXPECT_EQ(out.samplerate, 32000);
    for (std::vector<float> const& channel : out.samples)
        for (const float sample : channel) ASSERT_TRUE(std::isfinite(sample));
}

// Red if anything is kept for the length of the input: two minutes of it are 23 MB, what comes out is 138 MB.
TEST_F(Rendering, MemoryDoesNotGrowWithTheInput) {
    long memoryKb[2] = {};
    for (int i = 0; i < 2; ++i) {
        WriteSound(directory / "in.wav", MakeTone(440.0, 2.0, 48000), SF_FORMAT_WAV | SF_FORMAT_FLOAT, i == 0 ? 1 : 60);
        const RunResult run =
            RunWell({"render", directory / "in.wav", "-o", directory / "out.wav", "--tail", "0", "--normalize", "-1"});
        memoryKb[i] = run.peakMemoryKb;
    }
    EXPECT_LT(memoryKb[1] - memoryKb[0], 4000);
}

// Red if a day is too long, or if lengths end where 32 bits do. A hole in the file stands for the recording.
TEST_F(Rendering, SLOW_ADayPassesFourGibibytes) {
    if (std::filesystem::space(directory / "").available < (7ull << 30)) GTEST_SKIP() << "needs 7 GiB of disk";
    constexpr std::size_t frames = 24ull * 3600 * 8000;
    Sound sound;
    sound.samplerate = 8000;
    sound.samples = {{0.5f}};
    const std::string in = directory / "day.wav", out = directory / "out.wav";
    WriteSound(in, sound, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    std::string header = ReadText(in);
    const std::size_t data = header.find("data") + 4;
    for (std::size_t i = 0; i < 4; ++i) header[data + i] = static_cast<char>(2 * frames >> 8 * i & 0xff);
    WriteText(in, header.substr(0, data + 4));
    std::filesystem::resize_file(in, data + 4 + 2 * frames);
    const RunResult run = RunWell({"pan", in, "-o", out, "--method", "ms"});
    EXPECT_LT(run.peakMemoryKb, 32000);
    SF_INFO info{};
    sf_close(sf_open(out.c_str(), SFM_READ, &info));
    EXPECT_EQ(info.format & SF_FORMAT_TYPEMASK, SF_FORMAT_RF64);
    EXPECT_EQ(info.frames, static_cast<sf_count_t>(frames));
}

// Red if the gain isn't the output's, if it isn't seen by what clips, or if what is told against clipping doesn't help.
TEST_F(Rendering, AGainKeepsAnOutputFromClipping) {
    const Sound usual = ImpulseResponse("4", "-45"), softer = ImpulseResponse("4", "-45", "1", {"--gain", "-6.0206"});
    for (std::size_t i = 0; i < usual.NumFrames(); ++i)
        ASSERT_NEAR(softer.samples[0][i], 0.5f * usual.samples[0][i], 1e-6f);
    const std::vector<std::string> loud{"ir", "-o", directory / "loud.wav", "--format", "pcm16", "--gain"};
    const RunResult clipped = RunProgram(Joined(loud, {"20"}));
    const std::size_t advice = clipped.err.find("lower by ");
    ASSERT_NE(advice, std::string::npos) << clipped.err;
    const RunResult mended =
        RunProgram(Joined(loud, {std::to_string(20.0 - std::stod(clipped.err.substr(advice + 9)))}));
    EXPECT_EQ(mended.err.find("clipped"), std::string::npos) << mended.err;
    ExpectContains(mended.err, "peak -0.");
}

// Red if a level acts on the other layer, on the state, or not on what is told; the ratio is checked by energies.
TEST_F(Rendering, LevelsOfDirectSoundAndRoomAreTheRenderingsOwn) {
    const auto energy = [this](std::vector<std::string> const& levels) {
        double sum = 0.0;
        const Sound sound =
            ImpulseResponse("5.1", "-45", "2", Joined({"--tail", "2", "--save-state", directory / "state"}, levels));
        for (const double channel : Energies(sound, 0, sound.NumFrames())) sum += channel;
        return sum;
    };
    const double direct = energy({"--room", "-inf"});
    const std::string state = ReadText(directory / "state");
    EXPECT_NEAR(direct, directPower / 16.0, 1e-6);
    const double room = energy({"--direct", "-inf", "--room", "-3"});
    EXPECT_EQ(state, ReadText(directory / "state"));
    const RunResult run = RunProgram({"ir", "-o", directory / "ir.wav", "--speakers", "5.1", "--source", "1", "-45",
                                      "0", "2", "--room", "-3", "--json"});
    EXPECT_NEAR(JsonNumberIn(run.out, "direct_to_room_db"), 10.0 * std::log10(direct / room), 0.02);
    ExpectContains(run.err, "; direct to room ");
}

// Red if the peak is another one, in files or pipes, if a full disk isn't told or leaves anything, or if what waits for
// its level waits in memory.
TEST_F(Rendering, NormalizesToAPeak) {
    const std::vector<std::string> words{"ir", "--tail", "0.5", "--normalize", "-6.0206", "-o"};
    const RunResult run = RunProgram(Joined(words, {directory / "out.wav", "--format", "pcm24", "--json"}));
    const Sound usual = ImpulseResponse("2", "0", "1"), sound = ReadSound(directory / "out.wav");
    const auto peak = [](Sound const& of) {
        float loudest = 0.0f;
        for (auto const& channel : of.samples)
            for (const float sample : channel) loudest = std::max(loudest, std::abs(sample));
        return loudest;
    };
    EXPECT_NEAR(peak(sound), 0.5f, 1e-6f);
    EXPECT_NEAR(JsonNumberIn(run.out, "gain_db"), 20.0 * std::log10(0.5 / static_cast<double>(peak(usual))), 0.006);
    EXPECT_EQ(JsonNumberIn(run.out, "clipped_samples"), 0.0);
    EXPECT_EQ(RunProgram(Joined(words, {"-"}), {}, {}).out.substr(0, 4), ".snd");
    const std::size_t numFiles = directory.NumFiles();
    ExpectComplaint(RunProgram(Joined(words, {directory / "new.wav"}), "ulimit -f 16;"), 1, "new.wav");
    EXPECT_EQ(directory.NumFiles(), numFiles);
    ExpectComplaint(RunProgram(Joined(words, {directory / "new.wav", "--gain", "3"})), 2, "--gain");
}

// Red if a dry run leaves a file, misses what the real one would refuse, or tells another length; if a quiet run talks,
// or keeps its warnings to itself.
TEST_F(Rendering, DryRunsWriteNothingAndQuietOnesOnlyWarn) {
    WriteSound(directory / "in.wav", MakeTone(440.0, 0.25, 48000));
    const std::vector<std::string> words{"render", directory / "in.wav", "--tail", "0.5", "-o"};
    const RunResult dry =
        RunWell(Joined(words, {directory / "out.wav", "--save-state", directory / "state", "--dry-run", "--json"}));
    EXPECT_EQ(directory.NumFiles(), 1u);
    EXPECT_EQ(JsonNumberIn(dry.out, "seconds"), 0.25);
    ExpectContains(dry.err, "out.wav: 2 channels, 32-bit float WAV, 48000 Hz, 0.750 s, 0.29 MB");
    ExpectComplaint(RunProgram(Joined(words, {directory / "no/out.wav", "--dry-run"})), 1, "no/out.wav");
    ExpectComplaint(RunProgram(Joined(words, {directory / "out.flac", "--dry-run", "--speakers", "9"})), 2,
                    "holds at most 8 channels");
    const RunResult quiet = RunProgram(Joined(words, {directory / "out.wav", "--quiet"}));
    EXPECT_EQ(quiet.err, "");
    const RunResult warned = RunProgram(
        Joined(words, {directory / "out.wav", "-q", "--gain", "30", "--format", "pcm16", "--set", "numinternals=3"}));
    ExpectContains(warned.err, "3 internal channels");
    ExpectContains(warned.err, " dB at 0.");
    EXPECT_EQ(std::count(warned.err.begin(), warned.err.end(), '\n'), 2) << warned.err;
    // The limit by decay, number of channels and density that docs/engine.md has measured.
    for (auto const& [setting, isKept] : {std::pair{"tr0=0.5", true}, {"tr0=0.4", false}, {"modaldensity=4", false}}) {
        const RunResult room = RunProgram(Joined(words, {directory / "out.wav", "-qn", "--set", setting}));
        EXPECT_EQ(room.err.find("8 internal channels may miss") == std::string::npos, isKept) << room.err;
    }
}

// Two places in a file were headphones without a word.
TEST_F(Rendering, APairInAFileIsNoHeadphones) {
    WriteText(directory / "pair", "-30\n30\n");
    ExpectComplaint(RunProgram({"ir", "-o", directory / "ir.wav", "--speakers", directory / "pair"}), 2,
                    "a pair by --method stereo");
    RunWell({"ir", "-o", directory / "ir.wav", "--speakers", directory / "pair", "--method", "stereo"});
}

}  // namespace
