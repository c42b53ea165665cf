// Times the shapes that people use: what tools/compare_speed runs, on two versions of the library in turn. It names
// nothing but what every version has.
//
//     shapes                  prints the names
//     shapes NAME SECONDS [controls]
//
// runs a shape for some seconds of sound and prints nanoseconds a sample, the least and the median over stretches of
// 20 ms, the slowest block over the median one, what it holds [MiB], and how long it took to make [ms]. Beside the
// names, N-M-C and N-M-C-block-B are shapes of N sources, M loudspeakers, C room channels and blocks of B samples. With
// "controls" one control of a kind after the other changes at every step, too.
//
// The system takes the processor away for longer than any block lasts. The time of the slowest block is therefore the
// longest of those that blocks of one kind take in a third of all cases: a block of each place behind a step, and with
// "controls" of each kind of step. Setters count to the first one.
#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include "dsp/audio_buffer.h"
#include "engine/orvan_verb.h"
#include "pan/pan.h"
#include "reverb/reverb.h"

namespace {

constexpr float rate = 48000.0f;
constexpr unsigned int samplesPerStep = 960;  // 20 ms
constexpr unsigned int kindsOfSteps = 12;

struct Shape {
    char const* name;
    unsigned int sources, speakers, internals;
    unsigned int block = 64;
    unsigned int announced = 64;  // largest block
    enum Kind { engine, lateField, panning } kind = engine;
};

constexpr Shape shapes[] = {
    {"1-6-8", 1, 6, 8},
    {"6-6-8", 6, 6, 8},
    {"6-6-8-block-512", 6, 6, 8, 512, 512},
    {"6-6-8-announced-8192", 6, 6, 8, 64, 8192},
    {"64-8-8", 64, 8, 8},
    {"64-64-16", 64, 64, 16},
    {"headphones-1", 1, 2, 8},
    {"headphones-6", 6, 2, 8},
    {"headphones-8", 8, 2, 8},
    {"headphones-64", 64, 2, 8},
    {"late-field-8", 8, 8, 8, 64, 64, Shape::lateField},
    {"panning-64-8", 64, 8, 0, 64, 64, Shape::panning},
};

/// What runs, how its sources are placed, and how a control changes at a step.
struct Subject {
    std::unique_ptr<orvandsp::SignalProcessing> processor;
    std::function<void(unsigned int, Lume::CartesianVector const&)> place;
    std::function<void(unsigned int)> change = [](unsigned int) {};
};

/// A control of each kind: gains, shelves, delays, decay, what jumps and what is computed anew.
void ChangeControl(Lume::OrvanVerb& engine, unsigned int step) {
    const float x = 0.1f * static_cast<float>(step / kindsOfSteps % 10);
    switch (step % kindsOfSteps) {
        case 0:
            return engine.SetDirectGain(-x);
        case 1:
            return engine.SetDirectGainLow(-6.0f * x);
        case 2:
            return engine.SetRoomGainHigh(-6.0f * x);
        case 3:
            return engine.SetEarlyStart(22.0f + 5.0f * x);
        case 4:
            return engine.SetEarlyShape(0.3f + 0.4f * x);
        case 5:
            return engine.SetEarlyWidth(30.0f + 20.0f * x);
        case 6:
            return engine.SetClusterEnd(105.0f + 20.0f * x);
        case 7:
            return engine.SetDecayTime(2.0f + x);
        case 8:
            return engine.SetRelativeDecayHigh(0.5f + 0.1f * x);
        case 9:
            return engine.SetReverbStart(95.0f + 5.0f * x);
        case 10:
            return engine.SetReverbModalDensity(0.86f + 0.1f * x);
        default:
            return engine.SetAirAbsorptionRolloffFrequency(10000.0f - 1000.0f * x);
    }
}

Subject Make(Shape const& shape) {
    if (shape.kind == Shape::lateField) {
        auto field = std::make_unique<Lume::Reverb>(shape.internals, rate);
        field->Configure(rate, shape.announced, true);
        return {std::move(field), [](unsigned int, Lume::CartesianVector const&) {}};
    }
    if (shape.kind == Shape::panning) {
        auto* const panner = Lume::Pan::factory(shape.sources, shape.speakers, Lume::Pan::vbap2d, Lume::Pan::direct);
        panner->Configure(rate, shape.announced, true);
        std::vector<Lume::CartesianVector> ring;
        for (unsigned int i = 0; i < shape.speakers; ++i) {
            const float angle = 6.2831853f * static_cast<float>(i) / static_cast<float>(shape.speakers);
            ring.push_back({std::sin(angle), std::cos(angle), 0.0f});
        }
        panner->SetLoudspeakerPositions(ring.data());
        return {std::unique_ptr<orvandsp::SignalProcessing>(panner),
                [panner](unsigned int i, Lume::CartesianVector const& p) { panner->SetSourcePosition(i, p, false); }};
    }
    auto engine = std::make_unique<Lume::OrvanVerb>(shape.internals);
    engine->Configure(rate, shape.announced, shape.sources, shape.speakers);
    engine->SetDirectParameters({});
    engine->SetEarlyParameters({});
    engine->SetClusterParameters({});
    engine->SetReverbParameters({});
    auto* const e = engine.get();
    return {std::move(engine), [e](unsigned int i, Lume::CartesianVector const& p) { e->SetSourcePosition(i, p); },
            [e](unsigned int step) { ChangeControl(*e, step); }};
}

/// The shape of that name; one without sources for a name that means none.
Shape Find(char const* name) {
    for (Shape const& shape : shapes)
        if (shape.name == std::string(name)) return shape;
    Shape shape = {name, 0, 0, 0};
    if (std::sscanf(name, "%u-%u-%u-block-%u", &shape.sources, &shape.speakers, &shape.internals, &shape.block) < 3)
        shape.sources = 0;
    shape.announced = shape.block;
    return shape;
}

double HeldMiB() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / 1048576.0;
}

using Clock = std::chrono::steady_clock;

double Seconds(Clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

}  // namespace

/// All sources take a step, a control changes if one is to, and some blocks follow. A name of its own, for profilers to
/// begin at.
extern "C" void RunStep(Subject& subject, Shape const& shape, unsigned int step, bool changes, float** out, float** in,
                        std::vector<double>& blockSeconds);
extern "C" void RunStep(Subject& subject, Shape const& shape, unsigned int step, bool changes, float** out, float** in,
                        std::vector<double>& blockSeconds) {
    Clock::time_point before = Clock::now();
    if (changes) subject.change(step);
    for (unsigned int i = 0; i < shape.sources; ++i) {
        const float angle = 0.02f * static_cast<float>(step) + 6.2831853f * static_cast<float>(i) / 7.0f;
        const float distance = 1.0f + static_cast<float>(i % 5);
        subject.place(i, {distance * std::sin(angle), distance * std::cos(angle), 0.0f});
    }
    for (unsigned int done = 0; done < samplesPerStep; done += shape.block) {
        subject.processor->Process(out, in, shape.block, orvandsp::allActiveInputs);
        const Clock::time_point now = Clock::now();
        blockSeconds.push_back(Seconds(now - before));
        before = now;
    }
}

int main(int argc, char** argv) {
    if (argc < 3) {
        for (Shape const& shape : shapes) std::printf("%s\n", shape.name);
        return argc == 1 ? 0 : 2;
    }
    const Shape shape = Find(argv[1]);
    if (shape.sources == 0) return 2;
    const bool changes = argc > 3;
    const auto numSteps = static_cast<unsigned int>(std::atof(argv[2]) * 50.0);
    const double heldBefore = HeldMiB();
    const Clock::time_point begin = Clock::now();
    Subject subject = Make(shape);
    const double makingSeconds = Seconds(Clock::now() - begin);
    const double held = HeldMiB() - heldBefore;
    const unsigned int numInputs = shape.kind == Shape::lateField ? shape.internals : shape.sources;
    orvandsp::AudioBuffer in(numInputs, shape.block), out(shape.speakers, shape.block);
    in.FillWithNoise();
    const std::size_t blocksPerStep = (samplesPerStep + shape.block - 1) / shape.block;
    std::vector<double> step, blocks, stretches;
    std::vector<std::vector<double>> kinds(blocksPerStep * (changes ? kindsOfSteps : 1));
    constexpr unsigned int warmingUp = 25;  // half a second
    for (unsigned int i = 0; i < warmingUp + numSteps; ++i) {
        step.clear();
        RunStep(subject, shape, i, changes, out.GetChannels(), in.GetChannels(), step);
        if (i < warmingUp) continue;
        for (std::size_t b = 0; b < blocksPerStep; ++b)
            kinds[(i * blocksPerStep + b) % kinds.size()].push_back(step[b]);
        blocks.insert(blocks.end(), step.begin(), step.end());
        stretches.push_back(1e9 * std::accumulate(step.begin(), step.end(), 0.0) /
                            static_cast<double>(blocksPerStep * shape.block));
    }
    double slowest = 0.0;
    for (std::vector<double>& kind : kinds) {
        std::sort(kind.begin(), kind.end());
        if (!kind.empty()) slowest = std::max(slowest, kind[kind.size() / 3]);
    }
    std::sort(stretches.begin(), stretches.end());
    std::sort(blocks.begin(), blocks.end());
    std::printf("%.3f %.3f %.2f %.2f %.2f\n", stretches.front(), stretches[stretches.size() / 2],
                slowest / blocks[blocks.size() / 2], held, 1e3 * makingSeconds);
}
