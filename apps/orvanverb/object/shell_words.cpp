#include "orvanverb/object/shell_words.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "engine/room_controls.h"
#include "object/orvanverb_table.h"
#include "orvanverb/common/text.h"
#include "orvanverb/object/listing_text.h"
#include "room/control_range.h"

namespace program {

namespace {

/// What a word takes, as far as there is a choice of names.
enum class Takes : unsigned char { nothing, attribute, anything, side, placeOfOne, places, reverb };

struct Word {
    std::string_view name, usage, what;
    Takes takes = Takes::nothing;
};

// clang-format off
constexpr Word words[] = {
    {"source",         "source 1 ade -45 2 0",    "places source 1: azimuth, distance, elevation; also xyz, azim, dist, azim++ ...", Takes::placeOfOne},
    {"speakers",       "speakers az -45 45 135 -135", "places all loudspeakers", Takes::places},
    {"speaker",        "speaker 1 ade -45 2 0",   "moves one loudspeaker", Takes::placeOfOne},
    {"loudspeakers",   "loudspeakers ...",        "the same as speakers", Takes::places},
    {"loudspeaker",    "loudspeaker ...",         "the same as speaker", Takes::placeOfOne},
    {"reverb",         "reverb tr0 2.5",          "sets a control of the late field, as tr0 2.5 does", Takes::reverb},
    {"reset",          "reset [NAME]",            "puts all controls back, or one", Takes::attribute},
    {"clear",          "clear",                   "empties the room of what sounds"},
    {"postattributes", "postattributes [NAME]",   "shows all values, or one", Takes::attribute},
    {"postdspstatus",  "postdspstatus",           "says whether audio runs, is muted or bypassed"},
    {"version",        "version",                 "says which version this is"},
    {":get",           ":get NAME",               "the value of an attribute", Takes::attribute},
    {":state",         ":state",                  "the whole state, as a list"},
    {":restore",       ":restore VALUES",         "hands a list to the object as its state"},
    {":preset",        ":preset",                 "stores a preset"},
    {":recall",        ":recall",                 "recalls it"},
    {":assist",        ":assist in|out INDEX",    "what an inlet or outlet is for, counted from 0", Takes::side},
    {":dsp",           ":dsp RATE BLOCK",         "starts audio"},
    {":notifications", ":notifications",          "how many changes the object announced since the last such line"},
    {":quit",          ":quit",                   "ends the shell, as Ctrl-D and Ctrl-C do"},
    {"help",           "help [NAME]",             "says this, or explains a message or an attribute", Takes::anything},
};
// clang-format on
constexpr std::string_view sides[] = {"in", "out"};
constexpr std::string_view places[] = {"xyz",  "xy",   "x",      "y",      "z",      "x++",   "y++",
                                       "z++",  "ade",  "aed",    "ae",     "ad",     "az",    "azim",
                                       "elev", "dist", "azim++", "elev++", "dist++", "lume3", "wfs"};

Word const* FindWord(std::string_view name) {
    auto const* const found =
        std::find_if(std::begin(words), std::end(words), [name](Word const& word) { return word.name == name; });
    return found != std::end(words) ? found : nullptr;
}

void AddWords(std::vector<std::string>& names) {
    for (Word const& word : words) names.emplace_back(word.name);
}

/// @param all  otherwise only those of the late field
void AddAttributes(std::vector<std::string>& names, bool all) {
    for (orvanverb::Attribute const& attribute : orvanverb::attributes)
        if (all || attribute.setting == orvanverb::Setting::late) names.emplace_back(attribute.name);
    if (all) names.insert(names.end(), {"mute", "bypass"});
}

std::vector<std::string> Choices(std::span<std::string const> before) {
    std::vector<std::string> names;
    if (before.empty()) {
        AddWords(names);
        AddAttributes(names, true);
        return names;
    }
    Word const* const word = FindWord(before[0]);
    if (word == nullptr) return names;
    const std::size_t place = before.size();
    if (word->takes == Takes::anything) AddWords(names);
    if (word->takes == Takes::attribute || word->takes == Takes::anything) AddAttributes(names, true);
    if (word->takes == Takes::reverb) {
        AddAttributes(names, false);
        names.emplace_back("start");
    }
    if (word->takes == Takes::side) names.assign(std::begin(sides), std::end(sides));
    if (word->takes == Takes::places || word->takes == Takes::placeOfOne)
        names.assign(std::begin(places), std::end(places));
    // The number of the one comes first.
    if (place != (word->takes == Takes::placeOfOne ? 2u : 1u)) names.clear();
    return names;
}

std::string WordsHelp() {
    TextRows messages, own;
    for (Word const& word : words) {
        TextRows& rows = word.name[0] == ':' || word.name == "help" ? own : messages;
        rows.push_back({std::string("  ").append(word.usage), std::string(word.what)});
    }
    std::vector<std::string> names;
    AddAttributes(names, true);
    std::string listed;
    std::size_t column = 0;
    for (std::string const& name : names) {
        const bool breaks = column == 0 || column + name.size() > 78;
        listed.append(column == 0 ? "  " : breaks ? "\n  " : " ").append(name);
        column = (breaks ? 2 : column + 1) + name.size();
    }
    return "Messages to the object:\n" + AlignedText(messages) +
           "Attributes, set by their name and values (tr0 2.5); help tr0 explains one:\n" + listed +
           "\nFor the shell:\n" + AlignedText(own) + "Tab completes, the arrows find earlier lines.\n";
}

std::string AttributeHelp(orvanverb::Attribute const& attribute) {
    Lume::RoomControl const* const first = orvanverb::ControlsOf(attribute);
    if (first == nullptr) return std::string(attribute.name) + ": " + attribute.label + "\n";
    TextRows rows;
    for (Lume::RoomControl const& control : Lume::roomControls) {
        if (control.attribute == nullptr || std::string_view(control.attribute) != attribute.name) continue;
        rows.push_back({std::string("  ").append(control.label), Lume::RangeText(control),
                        std::string("[").append(NumberText(control.standard)).append("]"), control.what});
    }
    return std::string(attribute.name) + (rows.size() > 1 ? ", " + std::to_string(rows.size()) + " values:\n" : ":\n") +
           AlignedText(rows);
}

}  // namespace

std::vector<std::string> WordsThatFit(std::string_view before, std::string_view word) {
    std::vector<std::string> names = Choices(SplitWords(before));
    std::erase_if(names, [word](std::string const& name) { return !name.starts_with(word); });
    std::sort(names.begin(), names.end());
    return names;
}

std::string ShellHelp(std::string_view name) {
    if (name.empty()) return WordsHelp();
    if (Word const* const word = FindWord(name))
        return std::string(word->usage).append("   ").append(word->what) + "\n";
    if (orvanverb::Attribute const* const attribute = orvanverb::FindAttribute(name)) return AttributeHelp(*attribute);
    if (name == "mute") return "mute 1   silence; mute 0 ends it\n";
    if (name == "bypass") return "bypass 1   each input as it is, on the output of its number; bypass 0 ends it\n";
    std::vector<std::string> names = Choices({});
    return "no message or attribute " + std::string(name) + DidYouMean(name, names) + "\n";
}

}  // namespace program
