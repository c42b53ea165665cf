#include "orvanverb/decode/decode_machine.h"

#include <algorithm>
#include <utility>

namespace program {

Machine MakeDecodeMachine(DecodeOptions const& options, DecodeSetup& setup, int samplerate,
                          std::function<void(std::string const&)> warn) {
    if (const std::string remark = setup.RateRemark(samplerate); !remark.empty()) warn(remark);

    // What filters and delays still give when the input has ended.
    const double usualTailSeconds = setup.EndsWithTheInput() ? 0.0 : 0.1;
    Machine machine;
    machine.vectorSize = std::max(options.vectorSize, setup.blockLength.value_or(0));
    setup.Start(samplerate, static_cast<unsigned int>(machine.vectorSize));
    machine.numInputs = setup.NumInputs();
    machine.layout = &setup.layout;
    machine.channels = setup.channels;
    machine.tail = options.tailGiven ? options.tail : Tail(usualTailSeconds);
    machine.prepare = [&setup, warn = std::move(warn)](std::uint64_t beforeFrame) {
        for (std::string const& line : setup.Advance(beforeFrame)) warn(line);
    };
    machine.process = [&setup](float** outputs, float** inputs) { setup.Process(outputs, inputs); };
    machine.clear = [&setup] { setup.decoder->Clear(); };
    machine.pendingRemark = [&setup] { return setup.PendingRemark(); };
    machine.remark = setup.remark;
    return machine;
}

}  // namespace program
