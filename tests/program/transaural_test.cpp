#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <ostream>
#include <span>

#include "decoders/measured_ways.h"
#include "orvanverb/common/text.h"
#include "orvanverb/hrtf/sdif_set_writer.h"
#include "orvanverb/hrtf/set_reading.h"
#include "program/run_program.h"
#include "program/sound_files.h"
#include "support/frequency_response.h"
#include "support/sdif_writer.h"
#include "support/signals.h"

namespace {

constexpr char const* measured = "/usr/share/libmysofa/MIT_KEMAR_normal_pinna.sofa";

/// What a set reaches at the ears of the measured head, over 200 Hz to 8 kHz with each Hz weighted alike, for the worse
/// of the two sides.
struct Figures {
    double reductionDb = 1000.0;  // of crosstalk against bare loudspeakers, mean
    double colourDb = 0.0;        // standard deviation of the near ear's level
    double levelDb = 0.0;         // mean level of the near ear, the one further from 0
};

/// Frames of other types may stand in a set; one without frames of its own needs one.
std::string FrameOfAStranger() {
    SdifWriter writer;
    const std::size_t begin = writer.bytes.size();
    writer.Frame("XXXX", 1, {});
    return writer.bytes.substr(begin);
}

class Transaural : public testing::Test {
protected:
    RunResult Make(std::vector<std::string> const& words) const {
        return RunProgram(Joined({"hrtf", "transaural"}, words));
    }
    RunResult Decode(std::string const& network, std::string const& set, std::string const& speakers = "2") const {
        return RunProgram({"decode", directory / "in.wav", "-o", directory / "out.wav", "--type", "transaural",
                           "--sub-type", network, "--filters", set, "--speakers", speakers, "--tail", "0"});
    }

    /// Plays an impulse to the left and one to the right ear with a set, over loudspeakers at these angles, and listens
    /// with the measured responses, frequency by frequency, so that the rates may be different.
    Figures Measure(std::string const& network, std::string const& set, int left, int right, int rate = 44100) const {
        constexpr std::size_t length = 8192;
        constexpr float height = 0.01f;  // no loop comes near its limits
        Sound impulses;
        impulses.samplerate = rate;
        impulses.samples.assign(2, std::vector<float>(2 * length, 0.0f));
        impulses.samples[0][0] = impulses.samples[1][length] = height;
        WriteSound(directory / "in.wav", impulses);
        WriteText(directory / "pair", std::to_string(-left) + "\n" + std::to_string(right) + "\n");
        const RunResult run = Decode(network, set, directory / "pair");
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err.find("warning"), std::string::npos) << run.err;
        const Sound feeds = ReadSound(directory / "out.wav");
        const Ways ways(left, right);

        Figures figures;
        for (const std::size_t input : {0u, 1u}) {
            std::vector<double> levels;
            double reduction = 0.0, level = 0.0, deviation = 0.0;
            for (double hertz = 200.0; hertz <= 8000.0; hertz += 25.0) {
                const auto feed = [&](std::size_t speaker) {
                    return ResponseAt(std::span(feeds.samples[speaker]).subspan(input * length, length), hertz / rate) /
                           static_cast<double>(height);
                };
                const auto heard = ways.Hear(feed(0), feed(1), input, hertz);
                reduction += heard.reductionDb;
                levels.push_back(20.0 * std::log10(heard.ears[input]));
                level += levels.back();
            }
            const auto count = static_cast<double>(levels.size());
            level /= count;
            for (const double value : levels) deviation += std::pow(value - level, 2.0) / count;
            figures.reductionDb = std::min(figures.reductionDb, reduction / count);
            figures.colourDb = std::max(figures.colourDb, std::sqrt(deviation));
            if (std::abs(level) > std::abs(figures.levelDb)) figures.levelDb = level;
        }
        std::printf("%s, %d and %d degrees: crosstalk reduced by %.1f dB; colour %.2f dB, level %.2f dB\n",
                    network.c_str(), left, right, figures.reductionDb, figures.colourDb, figures.levelDb);
        return figures;
    }

    TemporaryDirectory directory;
};

struct Network {
    char const* name;
    int right;                  // of a pair whose left loudspeaker stands at the same angle, or at 25 degrees
    double reductionDb;         // from the measurements of the head that listens
    double builtInReductionDb;  // from what the program knows of it
};

void PrintTo(Network const& network, std::ostream* stream) {
    *stream << network.name;
}

class TransauralNetwork : public Transaural, public testing::WithParamInterface<Network> {};

// Each network, from the command to the ears. Red if two filters change places, if one has the wrong sign or delay, if
// a loop doesn't run in the blocks of its set, or if the ears or the loudspeakers change sides.
TEST_P(TransauralNetwork, CancelsCrosstalkAtTheMeasuredEars) {
    Network const& network = GetParam();
    const bool symmetric = network.right == 30;
    const int left = symmetric ? 30 : 25;
    const std::string set = directory / "set.bin2trans";
    // Another pair must not be taken in place of the right one.
    const std::vector<std::string> words =
        program::SplitWords(std::string("--pair -60 60 --network ") + network.name + " --pair " +
                            std::to_string(-left) + " " + std::to_string(network.right));
    const auto make = [&](char const* head, std::vector<std::string> const& more) {
        const RunResult run = Make(Joined({head, set}, Joined(words, more)));
        EXPECT_EQ(run.status, 0) << run.err;
    };
    make(measured, {"--equalise", "none"});
    const Figures own = Measure(network.name, set, left, network.right);
    EXPECT_GE(own.reductionDb, network.reductionDb);
    EXPECT_LE(own.colourDb, 1.2);
    EXPECT_NEAR(own.levelDb, 0.0, 1.0);
    make("kemar", {});
    EXPECT_GE(Measure(network.name, set, left, network.right).reductionDb, network.builtInReductionDb);
}

INSTANTIATE_TEST_SUITE_P(
    All, TransauralNetwork,
    testing::Values(Network{"shufflersymmetric", 30, 21.5, 14.5}, Network{"shufflerasymmetric", 40, 30.0, 13.0},
                    Network{"feedforwardsymmetric", 30, 33.0, 14.5}, Network{"feedforwardasymmetric", 40, 30.0, 13.0},
                    Network{"leastsquares", 40, 20.5, 13.0}, Network{"recursivesymmetric", 30, 24.0, 14.5},
                    Network{"recursiveasymmetric", 40, 25.5, 12.0}),
    [](auto const& test) { return std::string(test.param.name); });

// A head measured every 10 degrees only, and loudspeakers between. Red if neighbours are mixed without regard to when
// each hears the source, or in the wrong shares.
TEST_F(Transaural, StandsBetweenMeasuredDirections) {
    Lume::SdifSet thin;
    thin.header.filterType = Lume::hrtfFIR;
    thin.header.numCoefficients = 512;
    thin.header.numChannels = 2;
    thin.header.samplingRate = 44100;
    for (int degrees = 10; degrees <= 60; degrees += 10) {
        const Ways ways(degrees, degrees);
        const auto add = [&](float side, std::vector<float> left, std::vector<float> const& right) {
            const float radians = static_cast<float>(degrees) * std::numbers::pi_v<float> / 180.0f;
            left.insert(left.end(), right.begin(), right.end());
            thin.points.push_back({{{side * std::sin(radians), std::cos(radians), 0.0f}}, 0.0f, left});
        };
        add(-1.0f, ways.ll, ways.lr);
        add(1.0f, ways.rl, ways.rr);
    }
    WriteText(directory / "thin.hrtf", program::SdifSetBytes(thin, "me"));
    const std::string set = directory / "set.bin2trans";
    ASSERT_EQ(Make({directory / "thin.hrtf", set, "--network", "feedforwardasymmetric", "--pair", "-25", "35"}).status,
              0);
    EXPECT_GE(Measure("feedforwardasymmetric", set, 25, 35).reductionDb, 20.0);
}

// At another rate than the measurements', and with a longer loop for loudspeakers that leave room for one. Red if a
// rate or a block's length is taken for granted.
TEST_F(Transaural, OtherRatesAndBlocks) {
    const std::string set = directory / "set.bin2trans";
    ASSERT_EQ(Make({measured, set, "--network", "leastsquares", "--pair", "-30", "30", "--rate", "96000", "--equalise",
                    "none"})
                  .status,
              0);
    EXPECT_GE(Measure("leastsquares", set, 30, 30, 96000).reductionDb, 20.0);
    for (char const* block : {"1", "16"}) {
        const RunResult run = Make({measured, set, "--network", "recursiveSymmetric", "--block", block, "--pair", "-60",
                                    "60", "--equalise", "none"});
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_GE(Measure("recursivesymmetric", set, 60, 60).reductionDb, 20.0) << block;
        EXPECT_NE(RunProgram({"hrtf", "info", set}).out.find(std::string("blocks            ") + block),
                  std::string::npos);
    }
}

TEST_F(Transaural, WrongWordsAndFilesEndInOneLineThatNamesThem) {
    Sound sound;
    sound.samplerate = 44100;
    sound.samples.assign(2, std::vector<float>(64, 0.1f));
    WriteSound(directory / "in.wav", sound);
    const std::string out = directory / "out.bin2trans";
    ASSERT_EQ(Make({"kemar", out, "--network", "recursivesymmetric", "--pair", "-30", "30"}).status, 0);
    const std::string before = ReadText(out);
    const auto expect = [&](RunResult const& run, int status, std::string const& culprit) {
        ExpectComplaint(run, status, culprit);
        EXPECT_EQ(ReadText(out), before);
    };
    const std::vector<std::pair<std::vector<std::string>, std::string>> usage{
        {{"--network", "magic"}, "--network"},
        {{"--network", "recursivesymmetricbiquads"}, "convert"},
        {{"--network", "leastsquares", "--pair", "30", "-30"}, "--pair"},
        {{"--network", "shufflersymmetric", "--pair", "-25", "40"}, "asymmetric"},
        {{"--network", "leastsquares", "--block", "4"}, "--block"},
        {{"--network", "recursivesymmetric", "--block", "3"}, "--block"},
        {{"--network", "leastsquares", "--length", "1"}, "--length"},
        {{"--network", "leastsquares", "--max-gain", "nan"}, "--max-gain"},
        {{"--network", "leastsquares", "--step", "0"}, "--step"},
        {{}, "--network"},
    };
    for (auto const& [words, culprit] : usage) expect(Make(Joined({"kemar", out}, words)), 2, culprit);
    expect(Make({"kemar", directory / "out.hrtf", "--network", "leastsquares"}), 2, "out.hrtf");
    expect(Make({directory / "none.sofa", out, "--network", "leastsquares"}), 1, "none.sofa");
    expect(Make({"kemar", out, "--network", "leastsquares", "--pair", "-7", "30"}), 1, "-7 degrees");
    // A set for another network, and sets that the engine would read as the built-in one.
    expect(Decode("leastsquares", out), 1, "for the network recursivesymmetric, not for leastsquares");
    WriteText(directory / "ears.hrtf", "");
    expect(Decode("shufflersymmetric", directory / "ears.hrtf"), 1, ".bin2trans or .coll");
    // Blocks that don't fill a vector would be read and written behind its end.
    const std::string odd = directory / "odd.bin2trans";
    for (const unsigned int length : {0u, 3u, 7u, 128u, 100000000u}) {
        WriteText(odd, program::SdifSetBytes(program::ReadAnySet(out), "me", length));
        expect(Decode("recursivesymmetric", odd), 1, "blocks of '" + std::to_string(length) + "'");
    }
    // Sets that are well formed and can't be played.
    const Lume::SdifSet good = program::ReadAnySet(out);
    Lume::SdifSet silent = good, loud = good, empty = good;
    for (float& tap : silent.points[0].coefficients) tap = 0.0f;
    for (float& tap : loud.points[0].coefficients) tap *= 1e36f;
    empty.points.clear();
    empty.header.numCoefficients = 2;
    for (auto const& [set, fault] :
         {std::pair{&silent, "silent"}, {&loud, "filters of up to"}, {&empty, "no points"}}) {
        WriteText(odd, program::SdifSetBytes(*set, "me", 2) + FrameOfAStranger());
        expect(Decode("recursivesymmetric", odd), 1, fault);
        EXPECT_NE(RunProgram({"hrtf", "info", odd}).out.find(std::string("FAULT: ")), std::string::npos) << fault;
    }
    // Loudspeakers that a symmetric network can't serve.
    WriteText(directory / "pair", "-25\n40\n");
    EXPECT_NE(Decode("recursivesymmetric", out, directory / "pair").err.find("don't mirror each other"),
              std::string::npos);
    // Nearer than 3 degrees they count as those of the set.
    WriteText(directory / "pair", "-32.5\n32.5\n");
    EXPECT_EQ(Decode("recursivesymmetric", out, directory / "pair").err.find("warning"), std::string::npos);
    WriteText(directory / "pair", "-33.5\n33.5\n");
    EXPECT_NE(Decode("recursivesymmetric", out, directory / "pair").err.find("for loudspeakers at -30.0 degrees"),
              std::string::npos);
}

}  // namespace
