#include "orvanverb/pan/pan_command.h"

#include <cstdio>

#include "orvanverb/common/messages.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/job/job.h"
#include "orvanverb/pan/gain_table.h"
#include "orvanverb/pan/pan_machine.h"
#include "orvanverb/pan/pan_setup.h"
#include "orvanverb/room/source_motion.h"

namespace program {

namespace {

constexpr int usualRate = 48000;  // [Hz], where there is no input

void Render(PanOptions const& options) {
    Job job(options);
    SourceMotion motion(job.NumChannels(), options, job.Samplerate());
    PanSetup setup(options, motion.Positions(), motion.Orientation(), job.Samplerate());
    for (std::string const& warning : setup.warnings) Warn("warning: " + warning);
    job.Run(MakePanMachine(options, setup, motion, job.Samplerate(), Warn));
}

}  // namespace

void RunPan(PanOptions const& options) {
    if (options.list) {
        if (options.json) throw UsageError("--json: is for a rendering, not for tables");
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
