#include "orvanverb/decode/decode_command.h"

#include <algorithm>
#include <cstdio>

#include "orvanverb/common/messages.h"
#include "orvanverb/decode/decode_setup.h"
#include "orvanverb/job/job.h"

namespace program {

void RunDecode(DecodeOptions const& options) {
    if (options.list) {
        std::fputs(DecoderList().c_str(), stdout);
        return;
    }
    Job job(options);
    DecodeSetup setup(options, job.NumChannels(), job.Samplerate());
    for (std::string const& warning : setup.warnings) Warn("warning: " + warning);
    if (options.matrix) std::fputs(setup.MatrixText().c_str(), stdout);
    if (options.output.empty()) return;
    if (const std::string remark = setup.RateRemark(job.Samplerate()); !remark.empty()) Warn(remark);

    constexpr double usualTailSeconds = 0.1;  // what filters and delays still give when the input has ended
    Machine machine;
    machine.vectorSize = std::max(options.vectorSize, setup.blockLength.value_or(0));
    setup.Start(job.Samplerate(), static_cast<unsigned int>(machine.vectorSize));
    machine.numInputs = setup.NumInputs();
    machine.layout = &setup.layout;
    machine.channels = setup.channels;
    machine.tail = options.tailGiven ? options.tail : Tail(usualTailSeconds);
    machine.prepare = [&](std::uint64_t beforeFrame) {
        for (std::string const& line : setup.Advance(beforeFrame)) Warn(line);
    };
    machine.process = [&](float** outputs, float** inputs) { setup.Process(outputs, inputs); };
    machine.clear = [&] { setup.decoder->Clear(); };
    machine.pendingRemark = [&] { return setup.PendingRemark(); };
    machine.remark = setup.remark;
    job.Run(machine);
}

}  // namespace program
