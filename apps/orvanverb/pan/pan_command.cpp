#include "orvanverb/pan/pan_command.h"
#include "orvanverb/common/messages.h"
#include "orvanverb/hrtf/engine_loading.h"

#include <chrono>
#include <cstdio>

#include "dsp/constants.h"
#include "hrtf/hrtf_header_infos.h"
#include "orvanverb/audio/input_bank.h"
#include "orvanverb/audio/streaming.h"
#include "orvanverb/common/text.h"
#include "orvanverb/layout/channel_words.h"
#include "orvanverb/pan/gain_table.h"
#include "orvanverb/pan/pan_setup.h"
#include "orvanverb/room/source_motion.h"
#include "pan/binaural/binaural_panning.h"

namespace program {

namespace {

// What filters and delays still give when the input has ended.
constexpr double usualTailSeconds = 0.1;
constexpr int usualRate = 48000;  // [Hz], where there is no input

void RemarkRate(PanSetup const& setup, PanOptions const& options, int samplerate) {
    auto const* const ears = dynamic_cast<Lume::BinauralPanning const*>(setup.panner.get());
    Lume::HrtfHeaderInfos const* const header = ears != nullptr ? ears->GetHrtfHeaderInfos() : nullptr;
    if (header == nullptr) return;
    const std::string name = options.hrtf.value_or("the nearest of the built-in ears");
    if (const std::string remark = RateRemark(name, *header, samplerate); !remark.empty()) Say(remark);
}

void Render(PanOptions const& options) {
    const auto begin = std::chrono::steady_clock::now();
    InputBank inputs(options.inputs, options.rate, options.inTurnSeconds);
    SourceMotion motion(inputs.NumChannels(), options, inputs.Samplerate());
    PanSetup setup(options, motion.Positions(), motion.Orientation(), inputs.Samplerate());
    for (std::string const& warning : setup.warnings) Say("warning: " + warning);
    setup.Start(inputs.Samplerate(), options.vectorSize);
    RemarkRate(setup, options, inputs.Samplerate());

    Streaming streaming;
    streaming.samplerate = inputs.Samplerate();
    streaming.vectorSize = options.vectorSize;
    streaming.numInputs = inputs.NumChannels();
    streaming.numOutputs = setup.NumOutputs();
    streaming.fileOrder = setup.layout.fileOrder;
    streaming.gain = options.gain;
    streaming.tail = options.tailGiven ? options.tail : Tail(setup.HasTail() ? usualTailSeconds : 0.0);
    if (options.scene)
        streaming.prepare = [&](std::uint64_t beforeFrame) {
            for (std::string const& line : motion.Advance(beforeFrame)) Say(line);
            setup.Turn(motion.Orientation());
            setup.Place(motion.Positions());
        };
    streaming.process = [&](float** outputs, float** sources) {
        setup.panner->Process(outputs, sources, options.vectorSize, orvandsp::allActiveInputs);
    };

    streaming.clear = [&] { setup.panner->Clear(); };

    const AudioFormat format = ChooseFormat(options.format, options.output);
    AudioOutput output(options.output, format, streaming.samplerate, setup.layout.NumFileChannels(),
                       setup.layout.channelMask);
    PeakMeter meter(setup.layout.NumFileChannels());
    const StreamEnd end = Stream(inputs, streaming, output, meter);
    output.Commit();
    ReportOutput(options.output, format, output, meter, setup.channels, streaming.samplerate,
                 std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    if (setup.method.outputs == Lume::PanKind::Outputs::harmonics) Say(AxesRemark(options.ambix));
    if (const std::string remark = motion.PendingRemark(); !remark.empty()) Say(remark);
    for (std::string const& remark : inputs.Remarks()) Say(remark);
    RequireSound(options.output, end.numBad);
}

}  // namespace

void RunPan(PanOptions const& options) {
    if (options.list) {
        std::fputs(PanMethodList().c_str(), stdout);
        return;
    }
    if (!options.gains && !options.triplets) return Render(options);
    const ListenerPosition place = options.sources.empty() ? ListenerPosition{} : options.sources.back().position;
    PanSetup setup(options, {ToCartesian(place)}, options.orientation.value_or(Lume::Orientation{}),
                   options.rate.value_or(usualRate));
    for (std::string const& warning : setup.warnings) Say("warning: " + warning);
    std::fputs((options.gains ? GainTable(setup, place) : TripletTable(setup)).c_str(), stdout);
}

}  // namespace program
