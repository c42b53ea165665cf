#include "orvanverb/proposal/room_command.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cstdio>
#include <memory>
#include <vector>

#include "engine/room_controls.h"
#include "orvanverb/common/json.h"
#include "orvanverb/common/messages.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/options/common_options.h"
#include "orvanverb/options/option_values.h"
#include "orvanverb/proposal/proposal.h"

namespace program {

namespace {

struct Words {
    std::string preset, size, volume, decay, low, high, distance, form = "preset";
    bool json = false, quiet = false;
};

constexpr char const* footer =
    "The proposal is rendered and measured before it is printed. Decay times are T30; low is 125 Hz, high 4 kHz. Of "
    "another\n"
    "size a room's walls stay as they are: twice as large it decays twice as long, less what the air takes.\n"
    "  orvanverb room --volume 12000 --rt60 2 --rt60-low 2.3 --rt60-high 1.4 > hall.room\n"
    "  orvanverb room --preset church --size 2 > minster.room\n"
    "  orvanverb render voice.wav -o wet.wav --preset minster.room";

void TakeMeaning(Words const& words, RoomOptions& room) {
    constexpr float shortest = 0.15f, longest = 9.0f;
    if (!words.distance.empty())
        room.distance = NumberWithin("--distance", words.distance, "number", 0.3f, 100.0f, " m");
    room.quiet = words.quiet;
    if (words.json)
        room.form = RoomOptions::Form::Json;
    else if (words.form == "preset")
        room.form = RoomOptions::Form::Preset;
    else if (words.form == "words")
        room.form = RoomOptions::Form::Words;
    else if (words.form == "state")
        room.form = RoomOptions::Form::State;
    else
        throw UsageError("--as: '" + words.form + "' is none of preset, words and state");
    if (!words.preset.empty()) {
        for (std::string const* const other : {&words.volume, &words.decay, &words.low, &words.high})
            if (!other->empty()) throw UsageError("--preset: has its own volume and decay, only --size changes them");
        room.preset = words.preset;
        if (!words.size.empty()) room.size = NumberWithin("--size", words.size, "number", 0.1f, 10.0f, "");
        return;
    }
    if (!words.size.empty()) throw UsageError("--size: which room's? It goes with --preset");
    if (words.volume.empty() || words.decay.empty())
        throw UsageError("room: takes --volume and --rt60, or --preset and --size");
    room.volume = NumberWithin("--volume", words.volume, "number", 10.0f, 15000.0f, " m3");
    room.decaySeconds = NumberWithin("--rt60", words.decay, "number", shortest, longest, " s");
    if (!words.low.empty()) room.lowSeconds = NumberWithin("--rt60-low", words.low, "number", shortest, longest, " s");
    if (!words.high.empty())
        room.highSeconds = NumberWithin("--rt60-high", words.high, "number", shortest, longest, " s");
}

/// The object's attributes with their values, each as one text, in the table's order.
std::vector<std::pair<std::string, std::string>> Attributes(Lume::Room const& room) {
    std::vector<std::pair<std::string, std::string>> attributes;
    for (std::size_t i = 0; i < Lume::roomControls.size(); ++i) {
        Lume::RoomControl const& control = Lume::roomControls[i];
        if (control.attribute == nullptr) continue;
        const std::string value = NumberText(room.Get(i));
        if (control.element == 0)
            attributes.emplace_back(control.attribute, value);
        else
            attributes.back().second.append(" ").append(value);
    }
    attributes.emplace_back("numinternals", std::to_string(room.NumInternals()));
    return attributes;
}

std::string PresetText(Proposal const& proposal) {
    std::string text = "# " + proposal.title + ". Made by orvanverb room.\n";
    const orvanmeasure::Figure mid = proposal.report.measured.Mid(&orvanmeasure::BandFigures::t30);
    if (mid.IsThere()) text += "# measured: T30 " + FixedText(mid.value, 2) + " s\n";
    for (auto const& [name, value] : Attributes(*proposal.room)) text.append(name + " " + value + "\n");
    return text;
}

std::string WordsText(Lume::Room const& room) {
    std::string text;
    for (auto const& [name, value] : Attributes(room))
        text.append(text.empty() ? "@" : " @").append(name + " " + value);
    return text + "\n";
}

std::string Json(Proposal const& proposal) {
    JsonObject controls, all;
    for (std::size_t i = 0; i < Lume::roomControls.size(); ++i)
        controls.Add(Lume::roomControls[i].name, NumberText(proposal.room->Get(i)));
    controls.Add("numinternals", std::to_string(proposal.room->NumInternals()));
    all.Add("title", JsonString(proposal.title));
    all.Add("controls", controls.Text());
    all.Add("report", proposal.report.Json());
    all.Add("warnings", JsonStrings(proposal.remarks));
    return all.Text() + "\n";
}

std::string Text(Proposal const& proposal, RoomOptions::Form form) {
    switch (form) {
        case RoomOptions::Form::Preset:
            return PresetText(proposal);
        case RoomOptions::Form::Words:
            return WordsText(*proposal.room);
        case RoomOptions::Form::State:
            return proposal.room->SaveState().Text();
        case RoomOptions::Form::Json:
            return Json(proposal);
    }
    return "";
}

void RunRoom(RoomOptions const& wanted) {
    const Proposal proposal = wanted.preset ? ResizeRoom(wanted) : ProposeRoom(wanted);
    for (std::string const& remark : proposal.remarks) Say("warning: " + remark);
    std::fputs(Text(proposal, wanted.form).c_str(), stdout);
    if (!wanted.quiet) std::fputs(proposal.report.Text().c_str(), stderr);
}

}  // namespace

void AddRoomCommand(CLI::App& app, Call& call) {
    const auto words = std::make_shared<Words>();
    CLI::App* command =
        app.add_subcommand("room", "Propose a room from its volume and decay times, or another one's size");
    AddValue(*command, "--volume", words->volume, "M3", "Its volume, 10 to 15000");
    AddValue(*command, "--rt60", words->decay, "SECONDS", "How long it takes to fall by 60 dB at 500 and 1000 Hz");
    AddValue(*command, "--rt60-low", words->low, "SECONDS", "The same at 125 Hz [as --rt60]");
    AddValue(*command, "--rt60-high", words->high, "SECONDS", "The same at 4 kHz [as --rt60]");
    AddValue(*command, "--preset", words->preset, "NAME|FILE", "Instead of these: another room, at another size");
    AddValue(*command, "--size", words->size, "FACTOR",
             "How many times as long, wide and high that one is to be, 0.1 to 10 [1]");
    AddValue(*command, "--distance", words->distance, "M", "How far the source is, for the room's level [3]");
    AddValue(*command, "--as", words->form, "FORM", "preset, words (@NAME VALUE...) or state [preset]");
    command->add_flag("--json", words->json, "Print controls and report as JSON, for programs");
    command->add_flag("-q,--quiet", words->quiet, "Tell of nothing but warnings and errors");
    command->footer(footer);
    command->callback([&call, words] {
        RoomOptions wanted;
        TakeMeaning(*words, wanted);
        call.Will([wanted] { RunRoom(wanted); });
    });
}

}  // namespace program
