/// What the program does without a room, for Python: its own code with arrays in place of files, so that words, texts
/// and samples are the program's.

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "dsp/denormals.h"
#include "dsp/floating_point_mode.h"
#include "orvanverb/audio/tail.h"
#include "orvanverb/audio/vector_channels.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/decode/decode_setup.h"
#include "orvanverb/hrtf/hrtf_commands.h"
#include "orvanverb/options/common_options.h"
#include "orvanverb/options/option_values.h"
#include "orvanverb/pan/pan_methods.h"
#include "orvanverb/pan/pan_setup.h"
#include "orvanverb/room/source_motion.h"
#include "room/sample_guard.h"
#include "samples.h"

namespace py = pybind11;

namespace orvanpython {

namespace {

using Text = std::optional<std::string>;
using Words = std::vector<std::string>;
using Remarks = std::vector<std::string>;

constexpr double usualTailSeconds = 0.1;  // what filters and delays still give when the input has ended

/// Something that sounds, vector by vector.
struct Sounding {
    unsigned int vectorSize;
    std::size_t numOutputs;
    std::vector<std::size_t> const& order;  // output of each channel that comes out, beyond all outputs: silence
    program::Tail tail;
    std::function<void(std::uint64_t beforeFrame)> prepare;
    std::function<void(float** outputs, float** inputs)> process;
    std::function<void()> clear;
};

/// Runs a recording and its tail through it. Samples that are not finite, or beyond all bounds, count as 0.
std::vector<std::vector<float>> Run(Samples const& x, int rate, Sounding sounding) {
    const auto numFrames = static_cast<std::size_t>(x.shape(1));
    const std::vector<float const*> recording = Channels(x);
    program::VectorChannels inputs(recording.size(), sounding.vectorSize);
    program::VectorChannels outputs(sounding.numOutputs, sounding.vectorSize);
    std::vector<std::vector<float>> played(sounding.order.size());
    Lume::OutputGuard guard;
    guard.Configure(static_cast<float>(rate));
    const std::uint64_t maxTail = sounding.tail.MaxFrames(rate);
    float loudest = 0.0f;
    std::uint64_t ofTail = 0;
    for (std::size_t at = 0;; at += sounding.vectorSize) {
        const std::size_t fresh = at < numFrames ? std::min<std::size_t>(sounding.vectorSize, numFrames - at) : 0;
        for (std::size_t c = 0; c < recording.size(); ++c) {
            float* const input = inputs.Pointers()[c];
            std::fill(std::copy_n(recording[c] + std::min(at, numFrames), fresh, input), input + sounding.vectorSize,
                      0.0f);
            for (std::size_t n = 0; n < fresh; ++n)
                if (!(std::abs(input[n]) <= Lume::SampleGuard::maxSample)) input[n] = 0.0f;
        }
        if (sounding.prepare) sounding.prepare(at + sounding.vectorSize);
        sounding.process(outputs.Pointers(), inputs.Pointers());
        if (guard.Check(outputs.Pointers(), sounding.numOutputs, sounding.vectorSize)) sounding.clear();
        const auto newOfTail = std::min<std::uint64_t>(sounding.vectorSize - fresh, maxTail - ofTail);
        const std::size_t length = fresh + static_cast<std::size_t>(newOfTail);
        float peak = 0.0f;
        for (std::size_t c = 0; c < played.size(); ++c) {
            const std::size_t output = sounding.order[c];
            played[c].resize(at + length);
            if (output >= sounding.numOutputs) continue;
            std::copy_n(outputs.Pointers()[output], length, played[c].data() + at);
            for (std::size_t n = 0; n < length; ++n) peak = std::max(peak, std::abs(played[c][at + n]));
        }
        loudest = std::max(loudest, peak);
        ofTail += newOfTail;
        if (fresh == sounding.vectorSize) continue;
        if (ofTail == maxTail || sounding.tail.HasDiedAway(peak, loudest, newOfTail, rate)) return played;
    }
}

Samples ToArray(std::vector<std::vector<float>> const& channels) {
    Samples array({channels.size(), channels.empty() ? 0 : channels[0].size()});
    const std::vector<float*> to = MutableChannels(array);
    for (std::size_t c = 0; c < channels.size(); ++c) std::copy(channels[c].begin(), channels[c].end(), to[c]);
    return array;
}

/// The options of several commands, in words as at a prompt: what is wrong with them is told alike.
struct Common {
    int rate;
    std::vector<Words> sources;  // AZIMUTH ELEVATION DISTANCE
    Words orientation;
    Text order, convention, sorting, speakers, hrtf, scene, tail;
    bool ambix;

    void Fill(program::Options& options) const {
        program::CommonWords words;
        for (std::size_t i = 0; i < sources.size(); ++i) {
            words.sources.push_back(std::to_string(i + 1));
            words.sources.insert(words.sources.end(), sources[i].begin(), sources[i].end());
        }
        words.orientation = orientation;
        words.order = order.value_or("");
        words.tail = tail.value_or("");
        words.rate = std::to_string(rate);
        program::TakeCommonMeaning(words, options);
        options.speakers = speakers;
        options.hrtf = hrtf;
        options.scene = scene;
        options.ambix = ambix;
    }
};

template <typename Options>
void FillHarmonics(Common const& common, Options& options) {
    if (common.convention) options.convention = program::ParseConvention(*common.convention);
    if (common.sorting) options.sorting = program::ParseSorting(*common.sorting);
}

void Append(Remarks& remarks, std::vector<std::string> const& lines) {
    remarks.insert(remarks.end(), lines.begin(), lines.end());
}

/// @return the sound, and what there is to warn of
std::pair<Samples, Remarks> Pan(Samples const& x, Common const& common, std::string const& method,
                                std::string const& model, std::optional<unsigned int> outputs, Text const& near) {
    const orvandsp::FloatingPointMode unchanged;
    orvandsp::FlushDenormals();
    program::PanOptions options;
    common.Fill(options);
    FillHarmonics(common, options);
    options.method = method;
    options.model = model;
    options.outputs = outputs;
    options.nearfield = near;
    program::SourceMotion motion(static_cast<unsigned int>(x.shape(0)), options, common.rate);
    program::PanSetup setup(options, motion.Positions(), motion.Orientation(), common.rate);
    Remarks remarks = setup.warnings;
    std::vector<std::vector<float>> played;
    {
        const py::gil_scoped_release released;
        setup.Start(common.rate, options.vectorSize);
        Sounding sounding{options.vectorSize,
                          setup.NumOutputs(),
                          setup.layout.fileOrder,
                          options.tailGiven ? options.tail : program::Tail(setup.HasTail() ? usualTailSeconds : 0.0),
                          {},
                          [&](float** to, float** from) {
                              setup.panner->Process(to, from, options.vectorSize, orvandsp::allActiveInputs);
                          },
                          [&] { setup.panner->Clear(); }};
        if (options.scene)
            sounding.prepare = [&](std::uint64_t beforeFrame) {
                Append(remarks, motion.Advance(beforeFrame));
                setup.Turn(motion.Orientation());
                setup.Place(motion.Positions());
            };
        played = Run(x, common.rate, sounding);
    }
    return {ToArray(played), remarks};
}

std::pair<Samples, Remarks> Decode(Samples const& x, Common const& common, std::string const& type, Text const& subType,
                                   std::optional<unsigned int> outputs, Text const& hoaMethod,
                                   std::string const& weights, std::optional<float> crossoverHz, bool fuma,
                                   Text const& filters) {
    const orvandsp::FloatingPointMode unchanged;
    orvandsp::FlushDenormals();
    program::DecodeOptions options;
    common.Fill(options);
    FillHarmonics(common, options);
    options.type = type;
    options.subType = subType.value_or(options.subType);
    options.outputs = outputs;
    options.hoaMethod = hoaMethod.value_or("");
    options.weights = weights;
    options.crossoverHz = crossoverHz;
    options.fuma = fuma;
    options.filters = filters;
    program::DecodeSetup setup(options, static_cast<unsigned int>(x.shape(0)), common.rate);
    Remarks remarks = setup.warnings;
    if (const std::string remark = setup.RateRemark(common.rate); !remark.empty()) remarks.push_back(remark);
    std::vector<std::vector<float>> played;
    {
        const py::gil_scoped_release released;
        const unsigned int vectorSize = std::max(options.vectorSize, setup.blockLength.value_or(0));
        setup.Start(common.rate, vectorSize);
        const Sounding sounding{vectorSize,
                                setup.NumOutputs(),
                                setup.layout.fileOrder,
                                options.tailGiven ? options.tail : program::Tail(usualTailSeconds),
                                [&](std::uint64_t beforeFrame) { Append(remarks, setup.Advance(beforeFrame)); },
                                [&](float** to, float** from) { setup.Process(to, from); },
                                [&] { setup.decoder->Clear(); }};
        played = Run(x, common.rate, sounding);
    }
    return {ToArray(played), remarks};
}

void ConvertHrtf(std::string const& input, std::string const& output, std::optional<int> rate, bool fir,
                 std::optional<std::size_t> length, std::optional<bool> equalise) {
    program::HrtfOptions options;
    options.input = input;
    options.output = output;
    options.rate = rate;
    options.fir = fir;
    options.length = length;
    options.equalise = equalise;
    const py::gil_scoped_release released;
    program::ConvertHrtf(options);
}

}  // namespace

std::vector<float const*> Channels(Samples const& samples) {
    std::vector<float const*> channels;
    for (py::ssize_t i = 0; i < samples.shape(0); ++i) channels.push_back(samples.data(i, 0));
    return channels;
}

std::vector<float*> MutableChannels(Samples& samples) {
    std::vector<float*> channels;
    for (py::ssize_t i = 0; i < samples.shape(0); ++i) channels.push_back(samples.mutable_data(i, 0));
    return channels;
}

std::string ShapeText(Samples const& samples) {
    std::string shape;
    for (py::ssize_t i = 0; i < samples.ndim(); ++i)
        shape.append(i > 0 ? ", " : "").append(std::to_string(samples.shape(i)));
    return "(" + shape + ")";
}

void AddProgram(py::module_& m) {
    py::register_exception<program::ProgramError>(m, "ProgramError", PyExc_ValueError);
    py::class_<Common>(m, "Common")
        .def(py::init<int, std::vector<Words>, Words, Text, Text, Text, Text, Text, Text, Text, bool>(), py::kw_only(),
             py::arg("rate"), py::arg("sources"), py::arg("orientation"), py::arg("order"), py::arg("convention"),
             py::arg("sorting"), py::arg("speakers"), py::arg("hrtf"), py::arg("scene"), py::arg("tail"),
             py::arg("ambix"));
    m.def("pan", Pan, py::arg("x"), py::arg("common"), py::kw_only(), py::arg("method"), py::arg("model"),
          py::arg("outputs"), py::arg("near"));
    m.def("decode", Decode, py::arg("x"), py::arg("common"), py::kw_only(), py::arg("type"), py::arg("sub_type"),
          py::arg("outputs"), py::arg("hoa_method"), py::arg("weights"), py::arg("crossover_hz"), py::arg("fuma"),
          py::arg("filters"));
    m.def("convert_hrtf", ConvertHrtf);
    m.def("pan_methods", program::PanMethodList);
    m.def("decoders", program::DecoderList);
}

}  // namespace orvanpython
