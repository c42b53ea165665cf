#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <thread>

#include "orvanverb-live/audio/file_audio.h"
#include "orvanverb-live/audio/jack_audio.h"
#include "orvanverb-live/audio/stop_signal.h"
#include "orvanverb-live/autosave.h"
#include "orvanverb-live/live_options.h"
#include "orvanverb-live/osc/osc_server.h"
#include "orvanverb-live/page/page_server.h"
#include "orvanverb-live/room/desk.h"
#include "orvanverb/audio/input_bank.h"
#include "orvanverb/common/messages.h"
#include "orvanverb/common/run_program.h"
#include "orvanverb/room/room_setup.h"

namespace live {

namespace {

void Run(LiveOptions const& options) {
    StopSignal stop;
    RequireAutosave(options.autosave);
    std::optional<program::InputBank> recording;
    if (options.fromFile) recording.emplace(options.room.inputs, options.room.rate, std::nullopt);
    program::RoomSetup setup(options.room, recording ? recording->NumChannels() : options.numInputs,
                             recording ? recording->Samplerate() : JackRate(options.name));
    if (!setup.form.remark.empty()) program::Say(setup.form.remark);
    SceneTrack scene;
    if (options.room.scene) scene = SceneTrack(*options.room.scene, *setup.MakeRoom());

    Desk desk(setup.MakeRoom(), setup.Ears(), setup.VectorSize(), std::move(scene));
    const OscServer osc(desk, options.osc);
    std::optional<PageServer> page;
    if (options.http) page.emplace(desk, setup.form, PagePorts{options.osc.bind, *options.http, options.token});

    if (options.fromFile) {
        FileAudio audio;
        audio.freeRunning = options.freeRunning;
        audio.repeats = !options.once && !options.freeRunning;
        audio.vectorSize = setup.VectorSize();
        if (audio.repeats) program::Say("playing " + options.room.inputs[0] + " again and again; Ctrl-C ends it");
        PlayFile(audio, *recording, options.room, setup.form, desk, stop);
    } else {
        PlayJack({options.name, options.connectIn, options.connectOut, options.record, options.recordInputs,
                  setup.form.layout},
                 desk, stop);
    }
    desk.Close();
    Autosave(options.autosave, desk);
    if (desk.IsLoading()) {
        // All is written; nobody waits for a fit that nobody will hear.
        program::Say("the ears that were being fitted are left");
        std::fflush(nullptr);
        std::_Exit(0);
    }
}

}  // namespace

}  // namespace live

int main(int argc, char** argv) {
    return program::RunProgram("orvanverb-live", [&] {
        if (const std::optional<live::LiveOptions> options = live::ParseLiveOptions(argc, argv)) live::Run(*options);
        return 0;
    });
}
