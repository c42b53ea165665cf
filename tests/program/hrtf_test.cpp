#include <gtest/gtest.h>
#include <mysofa.h>

#include <algorithm>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <filesystem>

#include "filters/biquad_cascade.h"
#include "hrtf/hrtf.h"
#include "orvanverb/hrtf/sdif_set_writer.h"
#include "program/run_program.h"
#include "program/sound_files.h"
#include "room/file_checksum.h"
#include "support/frequency_response.h"
#include "support/signals.h"

namespace {

constexpr char const* kemar = "/usr/share/libmysofa/MIT_KEMAR_normal_pinna.sofa";

std::vector<float> ImpulseResponse(std::vector<float> coefficients) {
    Lume::BiquadCascade cascade(static_cast<unsigned int>(coefficients.size() / 4));
    cascade.SetCoefficients(coefficients.data());
    std::vector<float> response = MakeImpulse(4096);
    cascade.Process(response.data(), response.data(), response.size());
    return response;
}

std::vector<float> EarOf(Lume::HrtfPoint const& point, unsigned int ear) {
    const auto length = static_cast<std::ptrdiff_t>(point.numCoefficients);
    const auto begin = point.coefficients.begin() + (ear == 0 ? 0 : length);
    return {begin, begin + length};
}

/// Impulse responses of a simple head at 48 kHz: a source on the right is earlier, louder and brighter at the right
/// ear. Level and delay of an ear follow from one number, 0 for the far one to 1 for the near one.
struct SimpleHead {
    static constexpr int rate = 48000;
    static double Nearness(Lume::CartesianVector const& p, unsigned int ear) {
        return 0.5 + 0.5 * static_cast<double>(ear == 1 ? p.x : -p.x);
    }
    static int DelaySamples(double nearness) { return 40 - static_cast<int>(std::lround(24.0 * nearness)); }
    /// First-order low-pass behind a gain, as an impulse response.
    static std::vector<float> Response(double nearness) {
        const double pole = 0.8 - 0.7 * nearness, gain = 0.3 + 0.7 * nearness;
        std::vector<float> response(256, 0.0f);
        for (std::size_t n = static_cast<std::size_t>(DelaySamples(nearness)); n < response.size(); ++n)
            response[n] = static_cast<float>(gain * (1.0 - pole) *
                                             std::pow(pole, static_cast<double>(n) - DelaySamples(nearness)));
        return response;
    }
    static double GainDb(double nearness, double hertz) { return GainDbAt(Response(nearness), hertz / rate); }

    static Lume::SdifSet Set() {
        Lume::SdifSet set;
        set.header.filterType = Lume::hrtfFIR;
        set.header.numCoefficients = 256;
        set.header.numChannels = 2;
        set.header.samplingRate = rate;
        for (int degrees = 0; degrees < 360; degrees += 45) {
            const double angle = degrees * 3.14159265358979 / 180.0;
            const Lume::CartesianVector p{static_cast<float>(std::sin(angle)), static_cast<float>(std::cos(angle)),
                                          0.0f};
            Lume::SdifSetPoint point{{p}, 0.0f, Response(Nearness(p, 0))};
            const std::vector<float> right = Response(Nearness(p, 1));
            point.coefficients.insert(point.coefficients.end(), right.begin(), right.end());
            set.points.push_back(point);
        }
        return set;
    }
};

// Red if the ears, the sign or the unit of the delay, or one of the two rates change places.
TEST(HrtfConvert, FitsLevelsAndDelaysAtAnotherRate) {
    const TemporaryDirectory directory;
    WriteText(directory / "head.hrtf", program::SdifSetBytes(SimpleHead::Set(), "me"));
    RunWell({"hrtf", "convert", directory / "head.hrtf", directory / "own.hrtf", "--rate", "44100"});
    const Lume::Hrtf own(directory / "own.hrtf");
    EXPECT_EQ(own.GetSamplingRate(), 44100u);
    ASSERT_EQ(own.GetNumPoints(), 8u);
    ASSERT_EQ(own.GetNumCoefficients(), 25u);
    for (unsigned int i = 0; i < 8; ++i) {
        Lume::HrtfPoint const& point = own.GetHrtfPoint(i);
        const double left = SimpleHead::Nearness(point.position, 0), right = SimpleHead::Nearness(point.position, 1);
        const double itdMs =
            (SimpleHead::DelaySamples(left) - SimpleHead::DelaySamples(right)) * 1000.0 / SimpleHead::rate;
        EXPECT_NEAR(point.itd, itdMs, 0.01) << i;
        for (const double hertz : {150.0, 1000.0, 4000.0, 12000.0}) {
            EXPECT_NEAR(GainDbAt(ImpulseResponse(EarOf(point, 0)), hertz / 44100.0), SimpleHead::GainDb(left, hertz),
                        0.2);
            EXPECT_NEAR(GainDbAt(ImpulseResponse(EarOf(point, 1)), hertz / 44100.0), SimpleHead::GainDb(right, hertz),
                        0.2);
        }
    }
    // At a higher rate, what was never measured falls off gently behind what was.
    ASSERT_EQ(
        RunProgram({"hrtf", "convert", directory / "head.hrtf", directory / "high.hrtf", "--rate", "96000"}).status, 0);
    const Lume::Hrtf high(directory / "high.hrtf");
    for (unsigned int i = 0; i < 8; ++i) {
        const std::vector<float> ear = ImpulseResponse(EarOf(high.GetHrtfPoint(i), 0));
        EXPECT_NEAR(GainDbAt(ear, 24.0 / 96.0) - GainDbAt(ear, 40.0 / 96.0), 3.0 * std::log2(40.0 / 24.0), 0.3) << i;
    }
    // As impulse responses again: delays are back, samples of another rate make no other level.
    RunWell({"hrtf", "convert", directory / "own.hrtf", directory / "fir.hrtf", "--fir", "--rate", "96000"});
    const Lume::Hrtf fir(directory / "fir.hrtf");
    Lume::HrtfPoint const& atRight = fir.GetHrtfPoint(2);
    EXPECT_GT(atRight.position.x, 0.99f);
    const std::vector<float> left = EarOf(atRight, 0), right = EarOf(atRight, 1);
    EXPECT_NEAR(GainDbAt(left, 1000.0 / 96000.0), SimpleHead::GainDb(0.0, 1000.0), 0.2);
    EXPECT_NEAR(GainDbAt(right, 1000.0 / 96000.0), SimpleHead::GainDb(1.0, 1000.0), 0.2);
    const double lagMs = -1000.0 / (360.0 * 500.0) * 180.0 / 3.14159265358979 *
                         std::arg(ResponseAt(left, 500.0 / 96000.0) / ResponseAt(right, 500.0 / 96000.0));
    EXPECT_NEAR(lagMs, 0.5 + 0.067, 0.03);  // 24 samples, and what the two low-passes differ by
}

// Measured responses of a file that everybody has: untouched they stay what they were, sample by sample and each in its
// direction; equalised, the mean over the sphere is flat.
TEST(HrtfConvert, TakesMeasurementsInTheirDirections) {
    const TemporaryDirectory directory;
    RunWell({"hrtf", "convert", kemar, directory / "plain.hrtf", "--fir", "--equalise", "none"});
    const Lume::Hrtf plain(directory / "plain.hrtf");
    ASSERT_EQ(plain.GetNumPoints(), 710u);
    int error = 0;
    MYSOFA_HRTF* const sofa = mysofa_load(kemar, &error);
    ASSERT_NE(sofa, nullptr);
    // What comes before the earliest response is left out, the same for all.
    const std::vector<float> first = EarOf(plain.GetHrtfPoint(0), 0);
    float const* const firstMeasured = sofa->DataIR.values;
    std::ptrdiff_t offset = 0;
    while (offset < 512 &&
           std::abs(first[40] - firstMeasured[40 + offset]) + std::abs(first[70] - firstMeasured[70 + offset]) > 1e-6f)
        ++offset;
    for (const unsigned int i : {0u, 261u, 278u, 314u, 500u, 709u}) {
        Lume::HrtfPoint const& point = plain.GetHrtfPoint(i);
        const float azimuth = sofa->SourcePosition.values[3 * i] * 0.017453292f;  // counter-clockwise from ahead
        const float elevation = sofa->SourcePosition.values[3 * i + 1] * 0.017453292f;
        EXPECT_NEAR(point.position.x, -std::sin(azimuth) * std::cos(elevation), 1e-5f);
        EXPECT_NEAR(point.position.y, std::cos(azimuth) * std::cos(elevation), 1e-5f);
        EXPECT_NEAR(point.position.z, std::sin(elevation), 1e-5f);
        for (unsigned int ear = 0; ear < 2; ++ear) {
            const std::vector<float> taps = EarOf(point, ear);
            float const* const measured = sofa->DataIR.values + (i * 2 + ear) * sofa->N;
            for (std::ptrdiff_t n = 0; n < 400; ++n)
                ASSERT_NEAR(taps[static_cast<std::size_t>(n)], measured[n + offset], 1e-6f) << i << " " << n;
        }
    }
    mysofa_free(sofa);

    RunWell({"hrtf", "convert", kemar, directory / "flat.hrtf", "--fir", "--rate", "48000"});
    const Lume::Hrtf flat(directory / "flat.hrtf");
    for (const double hertz : {300.0, 1000.0, 3000.0, 8000.0, 14000.0}) {
        double power = 0.0, weights = 0.0;
        for (unsigned int i = 0; i < 710; i += 3) {
            Lume::HrtfPoint const& point = flat.GetHrtfPoint(i);
            // Rings have fewer directions the higher they lie, but not down to none at the top.
            const double weight = i >= 697 ? 0.5 : 1.0;
            for (unsigned int ear = 0; ear < 2; ++ear)
                power += weight * std::norm(ResponseAt(EarOf(point, ear), hertz / 48000.0));
            weights += 2.0 * weight;
        }
        EXPECT_NEAR(10.0 * std::log10(power / weights), 0.0, 1.0) << hertz;
    }
}

TEST(HrtfConvert, SLOW_FitsAMeasuredHead) {
    const TemporaryDirectory directory;
    const RunResult run = RunWell({"hrtf", "convert", kemar, directory / "own.hrtf", "--rate", "48000"});
    const std::size_t at = run.err.find("mean ");
    ASSERT_NE(at, std::string::npos);
    EXPECT_LT(std::stod(run.err.substr(at + 5)), 0.4) << run.err;
}

TEST(HrtfInfo, ShowsDistances) {
    const TemporaryDirectory directory;
    Lume::SdifSet set = SimpleHead::Set();
    for (float* coordinate : {&set.points[0].positions[0].x, &set.points[0].positions[0].y}) *coordinate *= 2.5f;
    WriteText(directory / "set.hrtf", program::SdifSetBytes(set, "me"));
    const RunResult run = RunProgram({"hrtf", "info", directory / "set.hrtf"});
    ExpectContains(run.out, "distances         1.00 to 2.50 m\n");
}

TEST(HrtfInfo, ShowsTheHeaderAndFindsFaults) {
    const RunResult builtIn = RunWell({"hrtf", "info", "kemar"});
    for (char const* text : {"KEMAR", "710", "44100 Hz", "no fault"}) ExpectContains(builtIn.out, text);

    const TemporaryDirectory directory;
    Lume::SdifSet set;
    set.header.numCoefficients = 5;
    set.header.numChannels = 2;
    set.header.samplingRate = 44100;
    const std::vector<float> good{1.0f, 0.0f, 0.0f, -0.5f, 0.2f}, growing{1.0f, 0.0f, 0.0f, -2.1f, 1.2f};
    for (const bool fault : {false, true}) {
        Lume::SdifSetPoint point{{{1.0f, 0.0f, 0.0f}}, fault ? -0.5f : 0.5f, fault ? growing : good};
        point.coefficients.insert(point.coefficients.end(), good.begin(), good.end());
        set.points = {point, point};
        WriteText(directory / "set.hrtf", program::SdifSetBytes(set, "me"));
        const RunResult run = RunProgram({"hrtf", "info", directory / "set.hrtf"});
        EXPECT_EQ(run.status, fault ? 1 : 0) << run.out;
        EXPECT_EQ(run.out.find("FAULT: 2 filters are unstable") != std::string::npos, fault) << run.out;
        EXPECT_EQ(run.out.find("FAULT: 2 delays have the wrong sign") != std::string::npos, fault) << run.out;
        const RunResult json = RunProgram({"hrtf", "info", directory / "set.hrtf", "--json"});
        EXPECT_EQ(json.out.ends_with("\"faults\": []}\n"), !fault) << json.out;
    }
}

// Red if the engine's way to find extensions anywhere in a name gets to the users.
TEST(Hrtf, SetsLoadFromFoldersOfAnyName) {
    const TemporaryDirectory directory;
    const std::string folder = directory / "my.collection";
    std::filesystem::create_directory(folder);
    WriteText(folder + "/head.hrtf", program::SdifSetBytes(SimpleHead::Set(), "me"));
    WriteSound(directory / "in.wav", MakeTone(440.0, 0.1, 44100));
    const std::string in = directory / "in.wav", out = directory / "out.wav", set = folder + "/head.hrtf";
    const std::vector<std::string> calls[] = {
        {"render", in, "-o", out, "--hrtf", set},
        {"pan", in, "-o", out, "--method", "binaural", "--hrtf", set},
        {"pan", in, "-o", out, "--method", "binaural", "--model", "nearfield", "--hrtf", set},
        {"hrtf", "info", set},
        {"hrtf", "convert", set, folder + "/other.hrtf", "--fir", "--length", "128", "--json", "--quiet"},
    };
    for (std::vector<std::string> const& call : calls) {
        RunWell(call);
    }
}

/// Measurements that everybody has, and a cache with a set that stands for what was fitted from them: it sounds
/// otherwise, and fitting takes longer than a test may.
struct Cache {
    Cache() {
        std::filesystem::copy(kemar, sofa);
        std::filesystem::create_directories(directory / "cache/orvanverb");
        const std::string version = RunProgram({"--version"}).out;
        const std::string bytes = program::SdifSetBytes(SimpleHead::Set(), "me");
        char name[100];
        std::snprintf(name, sizeof name, "%016" PRIx64 "-48000-%s-%016" PRIx64 ".hrtf", Lume::FileChecksum(sofa),
                      version.substr(version.find(' ') + 1, version.size() - version.find(' ') - 2).c_str(),
                      Lume::Checksum(bytes));
        kept = directory / ("cache/orvanverb/" + std::string(name));
        WriteText(kept, bytes);
        WriteText(directory / "head.hrtf", bytes);
        WriteSound(directory / "in.wav", MakeTone(440.0, 0.1, 48000));
    }

    RunResult Run(std::string const& command, std::vector<std::string> const& more) const {
        return RunProgram(Joined({command, directory / "in.wav", "-o", directory / "out.wav"}, more),
                          "XDG_CACHE_HOME='" + (directory / "cache") + "' timeout -s INT 3");
    }
    /// What is heard, empty if the measurements are being fitted.
    std::string Render(std::string const& command, std::vector<std::string> const& more) const {
        const RunResult run = Run(command, more);
        EXPECT_NE(run.status == 0, run.err.find("fitting 1420 filters for 48000 Hz") != std::string::npos) << run.err;
        return run.status == 0 ? ReadText(directory / "out.wav") : "";
    }

    TemporaryDirectory directory;
    std::string sofa = directory / "my head.sofa", kept;
};

// Red if measurements are fitted again each time, or a kept set is taken for another file, a damaged one or against the
// user's will; or if a state names what lies in a cache.
TEST(Hrtf, MeasurementsAreEarsAndFittedOnce) {
    Cache cache;
    TemporaryDirectory const& directory = cache.directory;
    const std::string state = directory / "ears.state";
    const std::string fitted = cache.Render("render", {"--hrtf", directory / "head.hrtf"});
    EXPECT_TRUE(fitted == cache.Render("render", {"--hrtf", cache.sofa, "--save-state", state}));
    WriteText(directory / "ears.scene", "hrtf my head.sofa\n");
    EXPECT_TRUE(fitted == cache.Render("render", {"--scene", directory / "ears.scene"}));
    EXPECT_FALSE(cache.Render("pan", {"--method", "binaural", "--hrtf", cache.sofa}).empty());

    EXPECT_NE(ReadText(state).find(" my head.sofa\n"), std::string::npos) << ReadText(state);
    EXPECT_TRUE(fitted == cache.Render("render", {"--state", state}));
    EXPECT_EQ(cache.Render("render", {"--hrtf", cache.sofa, "--no-cache"}), "");
    std::string damaged = ReadText(cache.kept);
    damaged[5000] ^= 1;
    WriteText(cache.kept, damaged);
    EXPECT_EQ(cache.Render("render", {"--hrtf", cache.sofa}), "");
    WriteText(cache.sofa, ReadText(cache.sofa) + " ");
    ExpectComplaint(cache.Run("render", {"--state", state}), 1, cache.sofa + ": has changed since the state was saved");
}

TEST(Hrtf, WrongFilesAndWordsEndInOneLineThatNamesThem) {
    const TemporaryDirectory directory;
    WriteText(directory / "text.sofa", "no measurement\n");
    std::filesystem::copy(kemar, directory / "cut.sofa");
    std::filesystem::resize_file(directory / "cut.sofa", 100000);
    WriteText(directory / "text.hrtf", "no set\n");
    WriteText(directory / "whole.hrtf", program::SdifSetBytes(SimpleHead::Set(), "me"));
    std::filesystem::copy(directory / "whole.hrtf", directory / "cut.hrtf");
    std::filesystem::resize_file(directory / "cut.hrtf", 9000);
    WriteText(directory / "a-b-44100.coll", "1, 0.1 0.2;\n2, 0.1 0.2;\n");
    WriteText(directory / "out.hrtf", "an earlier one");
    const auto expect = [&](std::vector<std::string> const& arguments, int status, std::string const& culprit) {
        ExpectComplaint(RunProgram(arguments), status, culprit);
        EXPECT_EQ(ReadText(directory / "out.hrtf"), "an earlier one");
        EXPECT_EQ(directory.NumFiles(), 7u);
    };
    for (char const* name :
         {"none.sofa", "text.sofa", "cut.sofa", "none.hrtf", "text.hrtf", "cut.hrtf", "a-b-44100.coll"})
        expect({"hrtf", "convert", directory / name, directory / "out.hrtf"}, 1, directory / name);
    for (char const* name : {"none.near", "text.hrtf", "cut.hrtf", "a-b-44100.coll"})
        expect({"hrtf", "info", directory / name}, 1, directory / name);
    const std::string whole = directory / "whole.hrtf";
    expect({"hrtf", "convert", whole, directory / "no/out.hrtf"}, 1, directory / "no/out.hrtf");
    expect({"hrtf", "convert", whole, directory / "out.sdif"}, 2, directory / "out.sdif");
    expect({"hrtf", "convert", whole, directory / "out.hrtf", "--rate", "1"}, 2, "--rate");
    expect({"hrtf", "convert", whole, directory / "out.hrtf", "--length", "64"}, 2, "--length");
    expect({"hrtf", "convert", whole, directory / "out.hrtf", "--equalise", "loud"}, 2, "--equalise");
    expect({"hrtf"}, 2, "subcommand");
}

}  // namespace
