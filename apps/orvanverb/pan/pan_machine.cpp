#include "orvanverb/pan/pan_machine.h"

#include <utility>

#include "dsp/constants.h"
#include "hrtf/hrtf_header_infos.h"
#include "orvanverb/hrtf/engine_loading.h"
#include "orvanverb/layout/channel_words.h"
#include "pan/binaural/binaural_panning.h"

namespace program {

namespace {

constexpr double usualTailSeconds = 0.1;  // what filters and delays still give when the input has ended

/// What to tell of ears that were made for another rate; empty if there is nothing.
std::string EarsRemark(PanOptions const& options, PanSetup const& setup, int samplerate) {
    auto const* const ears = setup.As(&Lume::PanClass::asBinaural);
    Lume::HrtfHeaderInfos const* const header = ears != nullptr ? ears->GetHrtfHeaderInfos() : nullptr;
    if (header == nullptr) return "";
    return RateRemark(options.hrtf.value_or("the nearest of the built-in ears"), *header, samplerate);
}

}  // namespace

Machine MakePanMachine(PanOptions const& options, PanSetup& setup, SourceMotion& motion, int samplerate,
                       std::function<void(std::string const&)> warn) {
    setup.Start(samplerate, options.vectorSize);
    if (const std::string remark = EarsRemark(options, setup, samplerate); !remark.empty()) warn(remark);

    Machine machine;
    machine.vectorSize = options.vectorSize;
    machine.numInputs = motion.Positions().size();
    machine.layout = &setup.layout;
    machine.channels = setup.channels;
    machine.tail = options.tailGiven ? options.tail : Tail(setup.HasTail() ? usualTailSeconds : 0.0);
    if (options.scene)
        machine.prepare = [&setup, &motion, warn = std::move(warn)](std::uint64_t beforeFrame) {
            for (std::string const& line : motion.Advance(beforeFrame)) warn(line);
            setup.Turn(motion.Orientation());
            setup.Place(motion.Positions());
        };
    machine.process = [&setup, vectorSize = options.vectorSize](float** outputs, float** sources) {
        setup.panner->Process(outputs, sources, vectorSize, orvandsp::allActiveInputs);
    };
    machine.clear = [&setup] { setup.panner->Clear(); };
    machine.pendingRemark = [&motion] { return motion.PendingRemark(); };
    if (setup.method.outputs == Lume::PanKind::Outputs::harmonics) machine.remark = AxesRemark(options.ambix);
    return machine;
}

}  // namespace program
