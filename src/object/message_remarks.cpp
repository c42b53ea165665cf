#include "object/message_remarks.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "object/orvanverb_table.h"

namespace orvanverb {

namespace {

/// Messages that take no atoms.
constexpr std::string_view plain[] = {"clear", "postdspstatus", "version"};

std::string Text(std::span<t_atom const> atoms) {
    std::string text;
    for (t_atom const& atom : atoms) {
        if (!text.empty()) text += ' ';
        text += atom_gettype(&atom) == A_SYM ? atom_getsym(&atom)->s_name : Lume::NumberText(atom_getfloat(&atom));
    }
    return text;
}

std::string Surplus(std::string const& selector, std::string const& wanted, std::span<t_atom const> rest) {
    return selector + ": only " + wanted + " counts, not " + Text(rest);
}

/// Of a message that takes one number. @param onOff  0 or 1
std::string OneNumber(std::string const& selector, std::string const& expected, bool onOff,
                      std::span<t_atom const> atoms) {
    if (atoms.empty()) return selector + ": a value is missing, " + expected;
    if (atoms.size() > 1) return Surplus(selector, "the first value", atoms.subspan(1));
    const float value = atom_gettype(&atoms[0]) == A_SYM ? 0.0f : atom_getfloat(&atoms[0]);
    if (onOff && value != 0.0f && value != 1.0f)
        return selector + ": " + Text(atoms) + " is not 0 or 1, and counts as 1";
    return {};
}

/// How many numbers an attribute of positions takes; nothing for others.
std::optional<std::size_t> NumCoordinates(orvanverb_t const& x, Attribute const& attribute) {
    if (attribute.setting == Setting::sources) return x.sourcespositions_count;
    if (attribute.setting == Setting::speakers) return x.speakerspositions_count;
    return std::nullopt;
}

std::string RemarkOnNumber(orvanverb_t const& x, std::string const& selector, std::span<t_atom const> atoms) {
    if (std::find(std::begin(plain), std::end(plain), selector) != std::end(plain))
        return atoms.empty() ? "" : Surplus(selector, "the word itself", atoms);
    if (selector == "mute" || selector == "bypass") return OneNumber(selector, "0 or 1", true, atoms);
    if (selector == "reverb" && atoms.size() > 2)
        return Surplus(selector + " " + Text(atoms.first(1)), "the first value", atoms.subspan(2));
    Attribute const* const attribute = FindAttribute(selector);
    if (attribute == nullptr || attribute->setting == Setting::size) return {};
    if (atoms.empty() && attribute->setting == Setting::shelf)
        return selector + ": values are missing, a level and three gains in dB and two frequencies in Hz";
    if (const auto number = NumCoordinates(x, *attribute); number && atoms.size() > *number)
        return Surplus(selector, "what stands for " + std::to_string(*number / 3) + " positions",
                       atoms.subspan(*number));
    Lume::RoomControl const* const control = ControlsOf(*attribute);
    if (control == nullptr || attribute->setting == Setting::shelf) return {};
    const bool onOff = control->scale == Lume::Scale::onOff;
    return OneNumber(selector, onOff ? "0 or 1" : "a number " + Lume::RangeText(*control), false, atoms);
}

}  // namespace

std::vector<std::string> MessageRemarks::Of(orvanverb_t const& x, std::string const& selector,
                                            std::span<t_atom const> atoms) {
    std::vector<std::string> texts;
    const std::string text = RemarkOnNumber(x, selector, atoms);
    if (!text.empty() && said.insert(selector + (atoms.empty() ? "-" : "+")).second) texts.push_back(text);
    for (std::string& range : OfRange(selector, atoms)) texts.push_back(std::move(range));
    return texts;
}

std::vector<std::string> MessageRemarks::OfRange(std::string const& attribute, std::span<t_atom const> atoms) {
    // "reverb tr0 20" is "tr0 20".
    if (attribute == "reverb" && atoms.size() >= 2 && atom_gettype(&atoms[0]) == A_SYM) {
        const std::string word = atom_getsym(&atoms[0])->s_name;
        return OfRange(word == "start" ? "reverb_start" : word, atoms.subspan(1));
    }
    // "early start 500" is a time, which may be beyond its range.
    if (atoms.size() == 2 && atom_gettype(&atoms[0]) == A_SYM) return {};
    std::vector<std::string> texts;
    for (Lume::RoomControl const& control : Lume::roomControls) {
        if (control.attribute == nullptr || attribute != control.attribute || control.element >= atoms.size()) continue;
        if (atom_gettype(&atoms[control.element]) == A_SYM) continue;
        std::string text = ranges.Of(control, atom_getfloat(&atoms[control.element]));
        if (!text.empty()) texts.push_back(std::move(text));
    }
    return texts;
}

}  // namespace orvanverb
