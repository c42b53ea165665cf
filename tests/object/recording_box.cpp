#include "object/recording_box.h"

#include <utility>

#include "object/console_lines.h"

namespace {

std::string Text(std::vector<t_atom> const& atoms) {
    std::string text;
    orvanmax::atomarray2string(static_cast<long>(atoms.size()), atoms.data(), text);
    return text;
}

}  // namespace

RecordingBox::RecordingBox(std::string const& text)
    : box(text, {[this](max::ConsoleLevel level, std::string const& line) {
                     lines += std::string(max::ConsoleLevelName(level)) + ": " + line + "|";
                 },
                 [this](t_symbol*) { ++notifications; },
                 [this](long, t_symbol* selector, std::vector<t_atom> const& atoms) {
                     output += std::string(selector->s_name) + " " + Text(atoms) + "|";
                 }}) {}

std::string RecordingBox::Send(std::string const& message) {
    lines.clear();
    box.Send(message);
    return Lines();
}

std::string RecordingBox::Lines() {
    return std::exchange(lines, {});
}

std::string RecordingBox::Output() {
    return std::exchange(output, {});
}

int RecordingBox::Notifications() {
    return std::exchange(notifications, 0);
}

std::string RecordingBox::Get(char const* name) {
    const auto value = box.GetAttribute(name);
    return value ? Text(*value) : "none";
}

std::string RecordingBox::State() {
    return Text(box.GetState());
}
