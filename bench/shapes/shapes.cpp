// Times the shapes that people use: what tools/compare_speed runs, on two versions of the library in turn. It names
// nothing but what every version has.
//
//     shapes                  prints the names
//     shapes NAME SECONDS     runs a shape for some seconds of sound and prints nanoseconds a sample: the least and the
//                             median over stretches of 20 ms, and the slowest block over the median one
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "dsp/audio_buffer.h"
#include "engine/orvan_verb.h"
#include "pan/pan.h"
#include "reverb/reverb.h"

namespace {

constexpr float rate = 48000.0f;
constexpr unsigned int samplesPerStep = 960;  // 20 ms

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

/// What runs, and how its sources are placed.
struct Subject {
    std::unique_ptr<orvandsp::SignalProcessing> processor;
    std::function<void(unsigned int, Lume::CartesianVector const&)> place;
};

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
    return {std::move(engine), [e](unsigned int i, Lume::CartesianVector const& p) { e->SetSourcePosition(i, p); }};
}

using Clock = std::chrono::steady_clock;

double Seconds(Clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

}  // namespace

/// All sources take a step, and some blocks follow. A name of its own, for profilers to begin at.
extern "C" void RunStep(Subject& subject, Shape const& shape, unsigned int step, float** out, float** in,
                        std::vector<double>* blockSeconds);
extern "C" void RunStep(Subject& subject, Shape const& shape, unsigned int step, float** out, float** in,
                        std::vector<double>* blockSeconds) {
    Clock::time_point before = Clock::now();
    for (unsigned int i = 0; i < shape.sources; ++i) {
        const float angle = 0.02f * static_cast<float>(step) + 6.2831853f * static_cast<float>(i) / 7.0f;
        const float distance = 1.0f + static_cast<float>(i % 5);
        subject.place(i, {distance * std::sin(angle), distance * std::cos(angle), 0.0f});
    }
    for (unsigned int done = 0; done < samplesPerStep; done += shape.block) {
        subject.processor->Process(out, in, shape.block, orvandsp::allActiveInputs);
        if (blockSeconds == nullptr) continue;
        const Clock::time_point now = Clock::now();
        blockSeconds->push_back(Seconds(now - before));
        before = now;
    }
}

int main(int argc, char** argv) {
    if (argc != 3) {
        for (Shape const& shape : shapes) std::printf("%s\n", shape.name);
        return argc == 1 ? 0 : 2;
    }
    Shape const* const shape = std::find_if(std::begin(shapes), std::end(shapes),
                                            [&](Shape const& s) { return s.name == std::string(argv[1]); });
    if (shape == std::end(shapes)) return 2;
    const auto numSteps = static_cast<unsigned int>(std::atof(argv[2]) * 50.0);
    Subject subject = Make(*shape);
    const unsigned int numInputs = shape->kind == Shape::lateField ? shape->internals : shape->sources;
    orvandsp::AudioBuffer in(numInputs, shape->block), out(shape->speakers, shape->block);
    in.FillWithNoise();
    std::vector<double> blocks, stretches;
    for (unsigned int step = 0; step < 25 + numSteps; ++step) {
        const bool counts = step >= 25;  // half a second of warming up
        const std::size_t first = blocks.size();
        RunStep(subject, *shape, step, out.GetChannels(), in.GetChannels(), counts ? &blocks : nullptr);
        double sum = 0.0;
        for (std::size_t b = first; b < blocks.size(); ++b) sum += blocks[b];
        const auto samples = static_cast<double>((blocks.size() - first) * shape->block);
        if (counts) stretches.push_back(1e9 * sum / samples);
    }
    std::sort(stretches.begin(), stretches.end());
    std::sort(blocks.begin(), blocks.end());
    std::printf("%.3f %.3f %.2f\n", stretches.front(), stretches[stretches.size() / 2],
                blocks.back() / blocks[blocks.size() / 2]);
}
