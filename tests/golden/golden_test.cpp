#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "decoders/ambisonic/hoa_decoder.h"
#include "decoders/transaural/transaural_decoder.h"
#include "engine/room_controls.h"
#include "filters/faded_biquad_cascade.h"
#include "filters/multi_delay.h"
#include "filters/multi_faded_hl_shelf.h"
#include "filters/multi_faded_low_pass.h"
#include "hrtf/hrtf.h"
#include "pan/binaural/binaural_panning.h"
#include "pan/binaural/binaural_panning_spherical_harmonics.h"
#include "pan/panning_support.h"
#include "pan/set_file.h"
#include "reverb/reverb.h"
#include "reverb/shuffle.h"
#include "support/channels.h"
#include "support/signals.h"
#include "support/temporary_file.h"

// The bits of everything that sounds, one hash a case: what is meant to change no bit shows here that it doesn't, and
// what is meant to change some shows which. The bits are those of every compiler, optimisation level and width of the
// processor; set-up takes powers, tangents and angles from the C library, so that another library than glibc 2.36 or
// another machine than x86-64 may have a table of its own.

namespace {

using Lume::CartesianVector;
using Lume::OrvanVerb;

struct Golden {
    char const* name;
    std::uint64_t hash;
};

constexpr Golden goldens[] = {
#include "golden/golden_hashes.inc"
};

/// FNV-1a over the bits of samples. What isn't a number counts as one value: its sign and payload differ by compiler.
class Hash {
public:
    void Add(float const* samples, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint32_t bits = std::isnan(samples[i]) ? 0x7fc00000u : std::bit_cast<std::uint32_t>(samples[i]);
            value = (value ^ bits) * 0x100000001b3u;
        }
    }
    std::uint64_t value = 0xcbf29ce484222325u;
};

/// A point of the unit circle by operations that are exact or rounded in one way only, and a height.
CartesianVector At(int step, float height = 0.0f, float distance = 1.0f) {
    const float t = static_cast<float>(step % 64 - 32) / 16.0f;  // tangent of half the angle
    const float scale = distance / (1.0f + t * t);
    return {2.0f * t * scale, (1.0f - t * t) * scale, height};
}

std::vector<CartesianVector> Ring(unsigned int count, float height = 0.0f) {
    std::vector<CartesianVector> ring;
    for (unsigned int i = 0; i < count; ++i)
        ring.push_back(At(static_cast<int>(64 * i / count), height * float(i % 3)));
    return ring;
}

/// Feeds noise to a processor, block by block, and hashes what it gives.
/// @param blocks  lengths of the blocks, in turn
/// @param control  called with the number of the block, before it
template <typename Control>
std::uint64_t Play(orvandsp::SignalProcessing& processor, unsigned int numInputs, unsigned int numOutputs,
                   std::vector<unsigned int> const& blocks, int numBlocks, Control control) {
    const unsigned int longest = *std::ranges::max_element(blocks);
    Channels in(numInputs, longest, 0.0f), out(numOutputs, longest, 0.0f);
    std::uint32_t noise = 1;
    Hash hash;
    double energy = 0.0;
    for (int b = 0; b < numBlocks; ++b) {
        const unsigned int length = blocks[static_cast<std::size_t>(b) % blocks.size()];
        control(b);
        for (float* const channel : in.pointers)
            for (unsigned int i = 0; i < length; ++i) {
                noise = noise * 1664525u + 1013904223u;
                channel[i] = static_cast<float>(static_cast<std::int32_t>(noise) >> 8) / 33554432.0f;  // -12 dB
            }
        std::vector<float*> ins = in.pointers, outs = out.pointers;
        processor.Process(outs.data(), ins.data(), length, orvandsp::allActiveInputs);
        energy = 0.0;
        for (float const* const channel : out.pointers) {
            hash.Add(channel, length);
            energy += EnergyOf({channel, length});
        }
    }
    EXPECT_GT(energy, 1e-9) << "a hash of silence";
    return hash.value;
}

const auto rest = [](int) {};

struct Shape {
    unsigned int sources, speakers, internals;
    float rate = 48000.0f;
    std::vector<unsigned int> blocks = {64};
    int numBlocks = 200;  // the late field begins after 150 ms
};

class OpenEngine : public OrvanVerb {
public:
    using OrvanVerb::earlyGains;
    using OrvanVerb::OrvanVerb;
};

std::unique_ptr<OpenEngine> MakeEngine(Shape const& shape) {
    auto engine = std::make_unique<OpenEngine>(shape.internals);
    engine->Configure(shape.rate, *std::ranges::max_element(shape.blocks), shape.sources, shape.speakers);
    engine->SetDirectParameters({});
    engine->SetEarlyParameters({});
    engine->SetClusterParameters({});
    engine->SetReverbParameters({});
    // Those of many channels are drawn at random.
    for (std::size_t c = 0; c < engine->earlyGains.size(); ++c)
        engine->earlyGains[c] = static_cast<float>(c % 5) / 4.0f - 0.5f;
    return engine;
}

/// Every third block a source goes on by a step.
void Move(OrvanVerb& engine, Shape const& shape, int block) {
    if (block % 3 != 0) return;
    const int s = block / 3;
    const auto source = static_cast<unsigned int>(s) % shape.sources;
    engine.SetSourcePosition(source, At(5 * s, static_cast<float>(s % 7) / 8.0f, 1.0f + static_cast<float>(s % 11)));
}

/// Every control that takes a number, with two values that are not extreme.
struct Control {
    std::string name;
    float first, second;
};
const std::vector<Control> controls = [] {
    std::vector<Control> all;
    const auto add = [&](std::vector<Control> const& more) { all.insert(all.end(), more.begin(), more.end()); };
    const auto addShelf = [&](std::string const& layer, float first, float second) {
        add({{layer + "_gain", first, second},
             {layer + "_gain_low", -6.0f, 3.0f},
             {layer + "_gain_medium", -2.0f, 1.0f}});
        add({{layer + "_gain_high", -9.0f, 4.0f}, {layer + "_freq_low", 200, 400}, {layer + "_freq_high", 3000, 6000}});
    };
    addShelf("direct", -3.0f, 2.0f);
    addShelf("room", -2.0f, 1.0f);
    addShelf("early", -3.0f, 2.0f);
    add({{"early_start", 15, 25}, {"early_end", 35, 45}, {"early_distr", 0.4f, 0.6f}, {"early_shape", 0.3f, 0.7f}});
    add({{"early_width", 20, 60}});
    addShelf("cluster", -3.0f, 2.0f);
    add({{"cluster_start", 35, 50}, {"cluster_end", 90, 110}, {"cluster_distr", 0.4f, 0.6f}, {"gain", -3, 2}});
    add({{"tr0", 1.5f, 2.5f}, {"trl", 0.8f, 1.3f}, {"trm", 0.9f, 1.1f}, {"trh", 0.4f, 0.7f}, {"fl", 200, 300}});
    add({{"fh", 6000, 9000}, {"reverb_start", 90, 110}, {"modaldensity", 0.7f, 1.0f}, {"elevation", 10, 20}});
    add({{"airfreq", 8000, 11000}});
    return all;
}();

/// Two blocks a control: first values, then second ones, then switches.
void TurnControl(OrvanVerb& engine, int block) {
    const auto turn = static_cast<std::size_t>(block / 2);
    if (block % 2 != 0) return;
    Control const& control = controls[turn % controls.size()];
    const float value = turn < controls.size() ? control.first : control.second;
    if (const auto index = Lume::FindControl(control.name))
        Lume::roomControls[*index].set(engine, value);
    else
        engine.SetElevation(value);
    if (block % 50 == 40) engine.SetInfinite(block % 100 == 40);
    if (block % 60 == 20) engine.UseAirAbsorption(block % 120 == 80);
}

void Check(std::string const& name, std::uint64_t hash) {
    char line[96];
    std::snprintf(line, sizeof line, "    {\"%s\", 0x%016llxu},\n", name.c_str(),
                  static_cast<unsigned long long>(hash));
    const auto golden = std::ranges::find_if(goldens, [&](Golden const& g) { return name == g.name; });
    if (golden == std::end(goldens) || golden->hash != hash)
        ADD_FAILURE() << "the line in golden_hashes.inc is now\n" << line;
}

void CheckEngine(std::string const& name, Shape const& shape, bool moves, bool turns,
                 std::function<void(OrvanVerb&)> const& prepare = {}) {
    const auto engine = MakeEngine(shape);
    if (prepare) prepare(*engine);
    Check(name, Play(*engine, shape.sources, shape.speakers, shape.blocks, shape.numBlocks, [&](int block) {
              if (moves) Move(*engine, shape, block);
              if (turns) TurnControl(*engine, block);
          }));
}

TEST(Golden, Engine) {
    CheckEngine("engine (1, 6, 8)", {1, 6, 8}, true, false);
    CheckEngine("engine (6, 6, 8)", {6, 6, 8}, false, false);
    CheckEngine("engine (6, 6, 8) moving", {6, 6, 8}, true, false);
    CheckEngine("engine (6, 2, 8) moving", {6, 2, 8}, true, false);
    CheckEngine("engine (3, 5, 5) moving", {3, 5, 5}, true, false);
    CheckEngine("engine (7, 3, 2) moving", {7, 3, 2}, true, false);
    CheckEngine("engine (2, 12, 12) moving", {2, 12, 12}, true, false);
    CheckEngine("engine (64, 64, 16) moving", {64, 64, 16}, true, false);
    CheckEngine("engine (64, 2, 16) moving", {64, 2, 16}, true, false);
    CheckEngine("engine (6, 6, 8) all controls", {6, 6, 8}, true, true);
    CheckEngine("engine (6, 2, 8) all controls", {6, 2, 8}, true, true);
    CheckEngine("engine (7, 5, 6) odd blocks", {7, 5, 6, 48000.0f, {64, 1, 17, 63, 2, 130}, 150}, true, true);
    CheckEngine("engine (3, 2, 8) odd blocks", {3, 2, 8, 48000.0f, {64, 1, 17, 63, 2, 130}, 150}, true, true);
    CheckEngine("engine (6, 6, 8) blocks of 512", {6, 6, 8, 48000.0f, {512}, 30}, true, false);
    for (const int rate : {8000, 11025, 44100, 96000, 192000})
        CheckEngine("engine (6, 6, 8) at " + std::to_string(rate), {6, 6, 8, float(rate), {64}, 20 + rate / 300}, true,
                    true);
    CheckEngine("engine (2, 2, 4) at 96000", {2, 2, 4, 96000.0f, {64}, 350}, true, false);
}

TEST(Golden, HeadphoneSets) {
    std::vector<CartesianVector> directions;
    std::vector<double> itds;
    for (int step = 0; step < 64; step += 3) {
        directions.push_back(At(step, 0.25f * static_cast<float>(step % 4)));
        itds.push_back(0.01 * (step - 32));
    }
    const std::vector<float> noise = MakeNoise(1, directions.size() * 200, 0.1f);
    const auto value = [&](std::uint32_t point, std::uint32_t place) { return noise[point * 200 + place]; };
    const TemporaryFile fir(".hrtf", SetFile({"Binaural", "FIR", 70, 2, directions, {}}, value));
    const TemporaryFile biquads(".hrtf", SetFile({"Binaural", "BiquadCells", 41, 2, directions, itds}, value));
    for (auto const& [name, file] : {std::pair{"impulse responses", &fir}, {"ten biquads", &biquads}})
        CheckEngine("engine (6, 2, 8) " + std::string(name), {6, 2, 8, 44100.0f}, true, false,
                    [file = file](OrvanVerb& engine) { EXPECT_TRUE(engine.LoadHrtf(file->name.c_str())); });
}

TEST(Golden, BuiltInEars) {
    for (const int rate : {44100, 48000, 88200, 96000, 176400, 192000}) {
        const Lume::Hrtf set = Lume::Hrtf::Builtin(float(rate));
        Hash hash;
        for (unsigned int i = 0; i < set.GetNumPoints(); ++i) {
            Lume::HrtfPoint const& point = set.GetHrtfPoint(i);
            hash.Add(&point.itd, 1);
            hash.Add(point.coefficients.data(), point.coefficients.size());
        }
        Check("ears for " + std::to_string(rate), hash.value);
    }
}

/// A set of the second order for panning by spherical harmonics.
class SphericalHarmonicPanner : public Lume::BinauralPanningSphericalHarmonics {
public:
    SphericalHarmonicPanner() : BinauralPanningSphericalHarmonics(3, 2) {
        struct Set : Lume::SphericalHarmonicManager {
            Set() : SphericalHarmonicManager("") {
                constexpr unsigned int numHarmonics = 9, numBins = 32;
                info.maxOrder = 2;
                info.numFrequencyBins = numBins;
                const std::vector<float> noise = MakeNoise(3, std::size_t{4} * numHarmonics * numBins);
                auto next = noise.begin();
                for (auto* const ear : {&left, &right}) {
                    *ear = orvandsp::MatrixComplex(numHarmonics, numBins, 0.0f);
                    for (unsigned int h = 0; h < numHarmonics; ++h)
                        for (unsigned int k = 0; k < numBins; ++k, next += 2) (*ear)[h][k] = {next[0], next[1]};
                }
            }
        };
        EXPECT_TRUE(Take(std::make_unique<Set>()));
    }
};

void CheckPanner(std::string const& name, Lume::Pan& panner) {
    const unsigned int numInputs = panner.GetNumInputs(), numOutputs = panner.GetNumOutputs();
    panner.Configure(48000.0f, 130, true);
    std::vector<CartesianVector> speakers = Ring(numOutputs, 0.5f);
    panner.SetLoudspeakerPositions(speakers.data());
    Check("panner " + name, Play(panner, numInputs, numOutputs, {64, 64, 1, 17, 130}, 120, [&](int block) {
              if (block % 4 == 0)
                  panner.SetSourcePosition(static_cast<unsigned int>(block / 4) % numInputs,
                                           At(block, static_cast<float>(block % 5) / 4.0f, 1.5f), block % 3 == 0);
          }));
}

TEST(Golden, Panners) {
    for (auto const& kind : panners) {
        const std::unique_ptr<Lume::Pan> panner(Lume::Pan::factory(3, kind.numOutputs, kind.type.c_str(), kind.role));
        CheckPanner(kind.type + " " + kind.role, *panner);
    }
    SphericalHarmonicPanner harmonics;
    CheckPanner("binaural sphericalharmonics", harmonics);
}

// Whatever a panner can be told while it plays, for sources at singular places, before it knows any loudspeaker and
// after.
TEST(Golden, PannersOnTour) {
    const CartesianVector places[] = {{0, 0, 0},        {0, 0, 1},        {0, -1, 0},   {0.0875f, 0, 0},
                                      {-0.0875f, 0, 0}, {-0.5f, 0.5f, 9}, {3e4f, 1, -1}};
    std::uint64_t all = 0;
    for (auto const& kind : panners) {
        const std::unique_ptr<Lume::Pan> panner(Lume::Pan::factory(3, kind.numOutputs, kind.type.c_str(), kind.role));
        auto* const ears = dynamic_cast<Lume::BinauralPanning*>(panner.get());
        panner->Configure(48000.0f, 64, true);
        all = 3 * all + Play(*panner, 3, kind.numOutputs, {64, 17}, 300, [&](int block) {
                  if (block % 3 == 0)
                      panner->SetSourcePosition(static_cast<unsigned int>(block / 3) % 2, places[block / 3 % 7],
                                                block % 2 == 0);
                  if (block % 20 == 10 && ears != nullptr)
                      ears->SetITDType(static_cast<Lume::BinauralPanning::ITDType>(block / 20 % 7));
                  if (block == 60) panner->SetInterpolationTime(7.0f);
                  if (block == 80 && ears != nullptr)
                      ears->SetListenerHeadRadius(0.1f), ears->SetFilterCrossFadeTime(10.0f);
                  if (block == 100) panner->SetSamplerate(96000.0f);
                  if (block == 120) panner->Clear();
                  if (block == 140 || block == 160) panner->SetNumInputs(block == 140 ? 2 : 3);
                  if (block == 150) panner->SetLoudspeakerPositions(Ring(kind.numOutputs, 0.5f).data());
                  if (block == 180) panner->forceUpdate(true);
              });
    }
    Check("panners on tour", all);
}

void CheckDecoder(std::string const& name, Lume::Decoder& decoder) {
    decoder.Configure(44100.0f, 130, true);
    const unsigned int numSpeakers = decoder.GetNumOutputs();
    const std::vector<CartesianVector> speakers =
        numSpeakers == 2 ? std::vector{At(28), At(36)} : Ring(numSpeakers, 0.25f);
    decoder.SetLoudspeakerPositions(speakers.data());
    Check(name, Play(decoder, decoder.GetNumInputs(), decoder.GetNumOutputs(), {64, 64, 1, 17, 130}, 60, rest));
}

// The names of the hashes say what is made; one of the two families with weights slides from one kind to the next.
TEST(Golden, Decoders) {
    std::unique_ptr<Lume::Decoder> decoder;
    Lume::HOADecoder* hoa = nullptr;
    for (Golden const& golden : goldens) {
        char type[16], weights[16];
        unsigned int numInputs, numOutputs;
        if (std::sscanf(golden.name, "decoder %15s %u to %u %15s", type, &numInputs, &numOutputs, weights) < 3)
            continue;
        if (hoa == nullptr || hoa->GetNumInputs() != numInputs)
            decoder.reset(Lume::Decoder::factory(numInputs, numOutputs, type, "null"));
        hoa = dynamic_cast<Lume::HOADecoder*>(decoder.get());
        if (hoa != nullptr) hoa->SetDecoderType(weights);
        CheckDecoder(golden.name, *decoder);
    }
}

TEST(Golden, TransauralDecoders) {
    struct Kind {
        char const* subType;
        char const* dataType;
        std::uint32_t numFilters, numPositions;
    };
    for (Kind const& kind : {Kind{"shufflersymmetric", "ShufflerSymmetric", 2, 1},
                             {"shufflerasymmetric", "ShufflerAsymmetric", 6, 2},
                             {"feedforwardsymmetric", "FeedForwardSymmetric", 6, 1},
                             {"feedforwardasymmetric", "FeedForwardAsymmetric", 6, 2},
                             {"leastsquares", "LeastSquares", 4, 2},
                             {"recursivesymmetric", "RecursiveSymmetric", 4, 1},
                             {"recursiveasymmetric", "RecursiveAsymmetric", 4, 2},
                             {"recursivesymmetricbiquads", "", 0, 1}}) {
        const std::unique_ptr<Lume::Decoder> decoder(Lume::Decoder::factory(2, 2, "transaural", kind.subType));
        auto& transaural = dynamic_cast<Lume::TransauralDecoder&>(*decoder);
        decoder->Configure(44100.0f, 130, true);
        const std::string dataType = std::string("BinauralToTransaural") + kind.dataType;
        SetDescription set{dataType.c_str(), "FIR", 40, kind.numFilters, {}, {}};
        set.positionsPerPoint = kind.numPositions;
        for (int point = 0; point < 3; ++point)
            for (unsigned int side = 0; side < kind.numPositions; ++side)
                set.positions.push_back(At(side == 0 ? 28 - point : 36 + point));
        const std::vector<float> noise = MakeNoise(5, std::size_t{3} * kind.numFilters * 40, 0.05f);
        const auto value = [&](std::uint32_t point, std::uint32_t place) {
            return noise[point * kind.numFilters * 40 + place];
        };
        const TemporaryFile file(".bin2trans", SetFile(set, value));
        EXPECT_TRUE(transaural.LoadFromFile(kind.numFilters > 0 ? file.name.c_str() : "kemar")) << kind.subType;
        CheckDecoder(std::string("decoder transaural ") + kind.subType, *decoder);
    }
}

TEST(Golden, LateFieldAlone) {
    for (const unsigned int lines : {2u, 3u, 4u, 5u, 6u, 7u, 8u, 12u, 13u, 16u, 20u, 32u}) {
        Lume::Reverb reverb(lines, 48000.0f);
        reverb.SetMaxBlockSize(512);
        const std::vector<unsigned int> blocks = lines % 2 == 0 ? std::vector{64u, 512u} : std::vector{64u, 31u, 1u};
        Check("late field of " + std::to_string(lines), Play(reverb, lines, lines, blocks, 100, [&](int block) {
                  if (block == 40) reverb.SetRelativeDecayHigh(0.7f);
                  if (block == 60) reverb.UseAirAbsorption(false);
                  if (block == 80) reverb.SetDelaysMinSum(40.0f, 700.0f, 0.4f);
              }));
    }
}

TEST(Golden, Filters) {
    for (const unsigned int channels : {1u, 3u, 4u, 7u, 8u, 13u, 17u}) {
        Lume::MultiFadedHLShelf shelves(channels);
        shelves.SetSamplerate(48000.0f);
        Check("fading shelves of " + std::to_string(channels),
              Play(shelves, channels, channels, {64, 64, 1, 17, 130}, 120, [&](int block) {
                  if (block % 30 != 5) return;
                  const float gain = static_cast<float>(block % 4) - 2.0f;
                  shelves.SetAll(gain, 3.0f * gain, gain, -2.0f * gain, 300.0f, 5000.0f);
              }));
        Lume::MultiFadedLowPass lowPasses(channels);
        Check("fading low-passes of " + std::to_string(channels),
              Play(lowPasses, channels, channels, {64, 17}, 60, [&](int block) {
                  if (block % 20 == 5) lowPasses.SetCutOffFrequency(500.0f * static_cast<float>(block));
              }));
        Lume::Shuffle shuffle(channels);
        Check("shuffle of " + std::to_string(channels), Play(shuffle, channels, channels, {64, 17}, 4, rest));
    }
    for (const unsigned int stages : {1u, 2u, 6u, 8u, 9u, 17u}) {
        Lume::FadedBiquadCascade cascade(stages);
        Check("fading cascade of " + std::to_string(stages), Play(cascade, 1, 1, {64, 17}, 60, [&](int block) {
                  if (block % 20 == 5)
                      cascade.SetCoefficients(MakeNoise(std::uint32_t(block), 4 * stages + 1, 0.3f).data(), false);
              }));
    }
    using enum Lume::Delay::InterpolationMode;
    for (const auto mode : {nearest, linear, lagrange3, allpass, nearestXfade, hermite3, watte3, bspline3, parabolic}) {
        Lume::MultiDelay delays(5, 30.0f);
        delays.Configure(48000.0f, 130, true);
        delays.SetInterpolationMode(mode);
        Check(std::string("delays ") + Lume::Delay::GetInterpolationModeName(mode),
              Play(delays, 5, 5, {64, 64, 1, 17, 130}, 120, [&](int block) {
                  const auto line = static_cast<unsigned int>(block) % 5;
                  if (block % 45 < 5) delays.SetDelay(line, 1.0f + 0.37f * static_cast<float>(block + block % 7));
              }));
    }
}

}  // namespace
