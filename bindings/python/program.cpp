/// What the program does without a room, for Python: its own code with arrays in place of files, so that words, texts
/// and samples are the program's.

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "dsp/denormals.h"
#include "dsp/floating_point_mode.h"
#include "orvanverb/audio/peak_meter.h"
#include "orvanverb/audio/signal_source.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/decode/decode_machine.h"
#include "orvanverb/decode/decode_setup.h"
#include "orvanverb/hrtf/hrtf_commands.h"
#include "orvanverb/job/streaming.h"
#include "orvanverb/options/common_options.h"
#include "orvanverb/options/option_values.h"
#include "orvanverb/pan/pan_machine.h"
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

/// A recording from Python. Samples that are not finite, or beyond all bounds, count as 0.
class Recording : public program::SignalSource {
public:
    explicit Recording(Samples const& x) : channels(Channels(x)), left(static_cast<std::size_t>(x.shape(1))) {}

    unsigned int NumChannels() const override { return static_cast<unsigned int>(channels.size()); }
    double ExpectedFrames() const override { return static_cast<double>(left); }

    std::size_t Read(float* const* to, std::size_t frames) override {
        const std::size_t fresh = std::min(frames, left);
        for (std::size_t c = 0; c < channels.size(); ++c) {
            std::transform(channels[c], channels[c] + fresh, to[c],
                           [](float x) { return std::abs(x) <= Lume::SampleGuard::maxSample ? x : 0.0f; });
            std::fill(to[c] + fresh, to[c] + frames, 0.0f);
            channels[c] += fresh;
        }
        left -= fresh;
        return fresh;
    }

private:
    std::vector<float const*> channels;  // of what is not read yet
    std::size_t left;                    // [frames]
};

/// @return what the machine makes of a recording: (outputs, frames and tail)
Samples Run(Samples const& x, int rate, program::Machine const& machine) {
    Recording recording(x);
    std::vector<std::vector<float>> played(machine.layout->NumFileChannels());
    {
        const py::gil_scoped_release released;
        program::PeakMeter meter(played.size());
        program::Stream(recording, machine, rate, 1.0f, meter, [&](float const* const* channels, std::size_t frames) {
            for (std::size_t c = 0; c < played.size(); ++c)
                played[c].insert(played[c].end(), channels[c], channels[c] + frames);
        });
    }
    Samples array({played.size(), played[0].size()});
    const std::vector<float*> to = MutableChannels(array);
    for (std::size_t c = 0; c < played.size(); ++c) std::copy(played[c].begin(), played[c].end(), to[c]);
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

/// @return the sound, and what there is to warn of
std::pair<Samples, Remarks> Pan(Samples const& x, Common const& common, std::string const& method,
                                std::string const& model, std::optional<unsigned int> outputs, Text const& near) {
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
    const program::Machine machine = program::MakePanMachine(
        options, setup, motion, common.rate, [&](std::string const& remark) { remarks.push_back(remark); });
    const Samples played = Run(x, common.rate, machine);
    return {played, remarks};
}

std::pair<Samples, Remarks> Decode(Samples const& x, Common const& common, std::string const& type, Text const& subType,
                                   std::optional<unsigned int> outputs, Text const& hoaMethod,
                                   std::string const& weights, std::optional<float> crossoverHz, bool fuma,
                                   Text const& filters) {
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
    const program::Machine machine = program::MakeDecodeMachine(
        options, setup, common.rate, [&](std::string const& remark) { remarks.push_back(remark); });
    const Samples played = Run(x, common.rate, machine);
    return {played, remarks};
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
    const py::call_guard<orvandsp::FloatingPointMode> modeUnchanged;  // engines are made by each of these
    m.def("pan", Pan, modeUnchanged, py::arg("x"), py::arg("common"), py::kw_only(), py::arg("method"),
          py::arg("model"), py::arg("outputs"), py::arg("near"));
    m.def("decode", Decode, modeUnchanged, py::arg("x"), py::arg("common"), py::kw_only(), py::arg("type"),
          py::arg("sub_type"), py::arg("outputs"), py::arg("hoa_method"), py::arg("weights"), py::arg("crossover_hz"),
          py::arg("fuma"), py::arg("filters"));
    m.def("convert_hrtf", ConvertHrtf, modeUnchanged);
    m.def("pan_methods", program::PanMethodList, modeUnchanged);
    m.def("decoders", program::DecoderList, modeUnchanged);
}

}  // namespace orvanpython
