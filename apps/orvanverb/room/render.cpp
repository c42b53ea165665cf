#include "orvanverb/room/render.h"

#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>

#include "orvanverb/audio/impulse.h"
#include "orvanverb/audio/input_bank.h"
#include "orvanverb/audio/streaming.h"
#include "orvanverb/common/messages.h"
#include "orvanverb/common/text.h"
#include "orvanverb/layout/channel_words.h"
#include "orvanverb/measure/room_report.h"
#include "orvanverb/room/room_object.h"
#include "orvanverb/room/room_setup.h"

namespace program {

namespace {

constexpr int defaultImpulseRate = 48000;  // [Hz]

void Render(Options const& options, SignalSource& source, int samplerate, std::chrono::steady_clock::time_point begin) {
    RoomSetup setup(options, source.NumChannels(), samplerate);
    SpeakerLayout const& layout = setup.form.layout;
    if (!setup.form.remark.empty()) Say(setup.form.remark);
    const std::unique_ptr<RoomObject> room = setup.MakeRoom();
    room->Start(samplerate, setup.VectorSize());
    if (const std::string remark = room->HrtfRateRemark(); !remark.empty()) Say(remark);

    std::optional<RoomReport> report;  // of the room with which the rendering begins
    if (options.report || options.reportJson)
        report = ReportRoom(room->Room().Engine(), room->Room().SourcePosition(0), static_cast<float>(samplerate));

    Streaming streaming;
    streaming.samplerate = samplerate;
    streaming.vectorSize = setup.VectorSize();
    streaming.numInputs = room->Room().NumSources();
    streaming.numOutputs = room->Room().NumSpeakers();
    streaming.fileOrder = layout.fileOrder;
    streaming.gain = options.gain;
    streaming.tail = options.tail;
    streaming.prepare = [&](std::uint64_t beforeFrame) {
        for (std::string const& line : setup.Play(*room, beforeFrame)) Say(line);
    };
    streaming.process = [&](float** outputs, float** inputs) { room->Process(outputs, inputs); };

    const AudioFormat format = ChooseFormat(options.format, options.output);
    const unsigned int numChannels = layout.NumFileChannels();
    AudioOutput output(options.output, format, samplerate, numChannels, layout.channelMask);
    PeakMeter meter(numChannels);
    const StreamEnd end = Stream(source, streaming, output, meter);
    output.Commit();
    setup.SaveState();

    ReportOutput(options.output, format, output, meter, setup.form.ChannelWords(), samplerate,
                 std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    if (setup.form.format != nullptr && setup.form.format->outputs == Lume::RoomFormat::Outputs::harmonics)
        Say(AxesRemark(setup.form.format->ambixAxes));
    if (!end.diedAway)
        Say("--tail auto: ended at its bound of " + FixedText(Tail::maxAutoSeconds, 0) +
            " s, the room still sounds at " + DecibelText(meter.LastBlock()) + " dBFS");
    if (const std::string remark = setup.PendingRemark(); !remark.empty()) Say(remark);
    for (std::string const& remark : source.Remarks()) Say(remark);
    if (options.report) std::fputs(report->Text().c_str(), stderr);
    if (options.reportJson) std::fputs(report->Json().c_str(), stdout);
    RequireSound(options.output, room->Room().NumBadOutputs());
}

}  // namespace

void RunRender(Options const& options) {
    const auto begin = std::chrono::steady_clock::now();
    InputBank inputs(options.inputs, options.rate, options.inTurnSeconds);
    Render(options, inputs, inputs.Samplerate(), begin);
}

void RunImpulseResponse(Options const& options) {
    Impulse impulse;
    Render(options, impulse, options.rate.value_or(defaultImpulseRate), std::chrono::steady_clock::now());
}

}  // namespace program
