#include "orvanverb/room/render.h"

#include <cmath>
#include <cstdio>
#include <optional>

#include "orvanverb/common/json.h"
#include "orvanverb/common/messages.h"
#include "orvanverb/common/text.h"
#include "orvanverb/job/job.h"
#include "orvanverb/layout/channel_words.h"
#include "orvanverb/measure/room_report.h"
#include "orvanverb/room/direct_to_room.h"
#include "orvanverb/room/room_setup.h"

namespace program {

namespace {

std::string RatioText(std::optional<double> const& decibels) {
    if (!decibels) return {};
    if (std::isinf(*decibels)) return *decibels > 0.0 ? "direct sound alone" : "no direct sound";
    return "direct to room " + FixedText(*decibels, 1) + " dB (energies of the impulse response of source 1)";
}

void AddRatio(Job& job, RoomSetup& setup) {
    const std::unique_ptr<RoomObject> room = setup.MakeRoom();
    room->Start(job.Samplerate(), setup.VectorSize());
    const std::optional<double> ratio = DirectToRoomDb(room->Room(), 0);
    if (const std::string text = RatioText(ratio); !text.empty()) job.AddLevel(text);
    job.AddFigure("direct_to_room_db", ratio ? JsonNumber(*ratio, 2) : "null");
}

}  // namespace

void RunRender(Options const& options) {
    Job job(options);
    RoomSetup setup(options, job.NumChannels(), job.Samplerate());
    RoomForm const& form = setup.form;
    if (!form.remark.empty()) Say(form.remark);
    const std::unique_ptr<RoomObject> room = setup.MakeRoom();
    room->Start(job.Samplerate(), setup.VectorSize());
    if (const std::string remark = room->HrtfRateRemark(); !remark.empty()) Warn(remark);

    std::optional<RoomReport> report;  // of the room with which the rendering begins
    if ((options.report || options.reportJson) && !job.IsDry())
        report = ReportRoom(room->Room().Engine(), room->Room().SourcePosition(0), room->Room().Samplerate());
    if (!job.IsDry() && (!options.quiet || options.json)) AddRatio(job, setup);
    if (report && options.reportJson && options.json) job.AddFigure("report", report->Json());

    Machine machine;
    machine.vectorSize = setup.VectorSize();
    machine.numInputs = room->Room().NumSources();
    machine.layout = &form.layout;
    machine.channels = form.ChannelWords();
    machine.tail = options.tail;
    machine.prepare = [&](std::uint64_t beforeFrame) {
        for (std::string const& line : setup.Play(*room, beforeFrame)) Warn(line);
    };
    machine.process = [&](float** outputs, float** inputs) { room->Process(outputs, inputs); };
    machine.pendingRemark = [&] { return setup.PendingRemark(); };
    if (form.format != nullptr && form.format->outputs == Lume::RoomFormat::Outputs::harmonics)
        machine.remark = AxesRemark(form.format->ambixAxes);
    job.Run(machine);

    if (!job.IsDry()) setup.SaveState();
    if (report && options.report) std::fputs(report->Text().c_str(), stderr);
    if (report && options.reportJson && !options.json) std::fputs(report->Json().c_str(), stdout);
    RequireSound(options.output, room->Room().NumBadOutputs());
}

}  // namespace program
