#include "orvanverb/commands.h"

#include <cstdio>

#include "orvanverb/common/text.h"
#include "orvanverb/decode/decode_command.h"
#include "orvanverb/hrtf/hrtf_commands.h"
#include "orvanverb/measure/measure_command.h"
#include "orvanverb/object/attribute_listing.h"
#include "orvanverb/object/control_listing.h"
#include "orvanverb/object/reference.h"
#include "orvanverb/object/shell.h"
#include "orvanverb/options/file_roles.h"
#include "orvanverb/pan/pan_command.h"
#include "orvanverb/presets/presets_command.h"
#include "orvanverb/room/render.h"

namespace program {

namespace {

int ObeyHrtf(HrtfOptions const& options) {
    using Action = HrtfOptions::Action;
    switch (options.action) {
        case Action::Info:
            return ShowHrtf(options);
        case Action::Convert:
            ConvertHrtf(options);
            break;
        case Action::Transaural:
            MakeTransaural(options);
            break;
    }
    return 0;
}

}  // namespace

int Obey(Options const& options) {
    RequireSeparateFiles(options);
    using Command = Options::Command;
    switch (options.command) {
        case Command::Render:
        case Command::ImpulseResponse:
            Run(options);
            break;
        case Command::Pan:
            RunPan(options);
            break;
        case Command::Decode:
            RunDecode(options);
            break;
        case Command::Hrtf:
            return ObeyHrtf(options.hrtf);
        case Command::Measure:
            RunMeasure(options);
            break;
        case Command::Presets:
            ListPresets(options.json);
            break;
        case Command::Shell:
            return RunShell(JoinWords(options.attributes));
        case Command::Attributes:
            std::fputs((options.json ? AttributeJson() : AttributeTable()).c_str(), stdout);
            break;
        case Command::Controls:
            std::fputs((options.json ? ControlJson() : ControlTable()).c_str(), stdout);
            break;
        case Command::Reference:
            WriteReference();
            break;
    }
    return 0;
}

}  // namespace program
