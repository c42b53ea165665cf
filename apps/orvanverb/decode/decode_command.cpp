#include "orvanverb/decode/decode_command.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "orvanverb/audio/input_bank.h"
#include "orvanverb/audio/streaming.h"
#include "orvanverb/common/messages.h"
#include "orvanverb/decode/decode_setup.h"

namespace program {

void RunDecode(DecodeOptions const& options) {
    if (options.list) {
        std::fputs(DecoderList().c_str(), stdout);
        return;
    }
    const auto begin = std::chrono::steady_clock::now();
    InputBank input(options.inputs, options.rate, std::nullopt);
    DecodeSetup setup(options, input.NumChannels(), input.Samplerate());
    for (std::string const& warning : setup.warnings) Say("warning: " + warning);
    if (options.matrix) std::fputs(setup.MatrixText().c_str(), stdout);
    if (options.output.empty()) return;
    if (const std::string remark = setup.RateRemark(input.Samplerate()); !remark.empty()) Say(remark);
    const unsigned int vectorSize = std::max(options.vectorSize, setup.blockLength.value_or(0));
    setup.Start(input.Samplerate(), vectorSize);

    // What filters and delays still give when the input has ended.
    constexpr double usualTailSeconds = 0.1;
    Streaming streaming;
    streaming.samplerate = input.Samplerate();
    streaming.vectorSize = vectorSize;
    streaming.numInputs = setup.NumInputs();
    streaming.numOutputs = setup.NumOutputs();
    streaming.fileOrder = setup.layout.fileOrder;
    streaming.gain = options.gain;
    streaming.tail = options.tailGiven ? options.tail : Tail(usualTailSeconds);
    streaming.prepare = [&](std::uint64_t beforeFrame) {
        for (std::string const& line : setup.Advance(beforeFrame)) Say(line);
    };
    streaming.process = [&](float** outputs, float** inputs) { setup.Process(outputs, inputs); };
    streaming.clear = [&] { setup.decoder->Clear(); };

    const AudioFormat format = ChooseFormat(options.format, options.output);
    AudioOutput output(options.output, format, streaming.samplerate, setup.layout.NumFileChannels(),
                       setup.layout.channelMask);
    PeakMeter meter(setup.layout.NumFileChannels());
    const StreamEnd end = Stream(input, streaming, output, meter);
    output.Commit();
    ReportOutput(options.output, format, output, meter, setup.channels, streaming.samplerate,
                 std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    if (!setup.remark.empty()) Say(setup.remark);
    for (std::string const& remark : input.Remarks()) Say(remark);
    RequireSound(options.output, end.numBad);
}

}  // namespace program
