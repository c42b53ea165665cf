#include "orvanverb/pan/pan_command.h"

#include <cstdio>

#include "dsp/constants.h"
#include "hrtf/hrtf_header_infos.h"
#include "orvanverb/common/messages.h"
#include "orvanverb/hrtf/engine_loading.h"
#include "orvanverb/job/job.h"
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
    if (const std::string remark = RateRemark(name, *header, samplerate); !remark.empty()) Warn(remark);
}

void Render(PanOptions const& options) {
    Job job(options);
    SourceMotion motion(job.NumChannels(), options, job.Samplerate());
    PanSetup setup(options, motion.Positions(), motion.Orientation(), job.Samplerate());
    for (std::string const& warning : setup.warnings) Warn("warning: " + warning);
    setup.Start(job.Samplerate(), options.vectorSize);
    RemarkRate(setup, options, job.Samplerate());

    Machine machine;
    machine.vectorSize = options.vectorSize;
    machine.numInputs = job.NumChannels();
    machine.layout = &setup.layout;
    machine.channels = setup.channels;
    machine.tail = options.tailGiven ? options.tail : Tail(setup.HasTail() ? usualTailSeconds : 0.0);
    if (options.scene)
        machine.prepare = [&](std::uint64_t beforeFrame) {
            for (std::string const& line : motion.Advance(beforeFrame)) Warn(line);
            setup.Turn(motion.Orientation());
            setup.Place(motion.Positions());
        };
    machine.process = [&](float** outputs, float** sources) {
        setup.panner->Process(outputs, sources, options.vectorSize, orvandsp::allActiveInputs);
    };
    machine.clear = [&] { setup.panner->Clear(); };
    machine.pendingRemark = [&] { return motion.PendingRemark(); };
    if (setup.method.outputs == Lume::PanKind::Outputs::harmonics) machine.remark = AxesRemark(options.ambix);
    job.Run(machine);
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
    for (std::string const& warning : setup.warnings) Warn("warning: " + warning);
    std::fputs((options.gains ? GainTable(setup, place) : TripletTable(setup)).c_str(), stdout);
}

}  // namespace program
