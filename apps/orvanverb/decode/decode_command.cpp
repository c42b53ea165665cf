#include "orvanverb/decode/decode_command.h"

#include <cstdio>

#include "orvanverb/common/messages.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/decode/decode_machine.h"
#include "orvanverb/decode/decode_setup.h"
#include "orvanverb/job/job.h"

namespace program {

void RunDecode(DecodeOptions const& options) {
    if (options.list) {
        if (options.json) throw UsageError("--json: is for a rendering, not for tables");
        std::fputs(DecoderList().c_str(), stdout);
        return;
    }
    Job job(options);
    DecodeSetup setup(options, job.NumChannels(), job.Samplerate());
    for (std::string const& warning : setup.warnings) Warn("warning: " + warning);
    if (options.matrix) std::fputs(setup.MatrixText().c_str(), stdout);
    if (options.output.empty()) return;
    job.Run(MakeDecodeMachine(options, setup, job.Samplerate(), Warn));
}

}  // namespace program
