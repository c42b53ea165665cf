#include "orvanverb/object/shell.h"

#include <iostream>

#include "object/orvanverb_class.h"
#include "orvanverb/common/limits.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/object/shell_words.h"
#include "orvanverb/object/typed_lines.h"
#include "patcher/atom.h"

namespace program {

namespace {

/// Registers the class before the first box.
std::string BoxText(std::string const& attributes) {
    orvanverb_main();
    return "orvanverb~ " + attributes;
}

bool IsNumber(max::t_atom const& atom) {
    return atom.a_type == max::A_LONG || atom.a_type == max::A_FLOAT;
}

}  // namespace

Shell::Shell(std::string const& attributes, std::ostream& newOut)
    : out(newOut),
      box(BoxText(attributes), {[this](max::ConsoleLevel level, std::string const& text) {
                                    Write(std::string(max::ConsoleLevelName(level)) + ": " + text);
                                },
                                [this](max::t_symbol*) { ++notifications; }, nullptr}) {}

bool Shell::Handle(std::string const& line) {
    const std::size_t begin = line.find_first_not_of(" \t\r");
    if (begin == std::string::npos || line[begin] == '#') return true;
    if (line[begin] != ':') {
        box.Send(line);
        return true;
    }
    const std::string command = line.substr(begin);
    if (command.substr(0, command.find_last_not_of(" \t\r") + 1) == ":quit") return false;
    Command(command);
    return true;
}

void Shell::Command(std::string const& line) {
    std::vector<max::t_atom> arguments = max::ParseAtoms(line);
    const std::string name = max::AtomText(arguments.front());
    arguments.erase(arguments.begin());
    if (name == ":get") {
        Get(arguments);
    } else if (name == ":state") {
        WriteValues("state", box.GetState());
    } else if (name == ":restore") {
        box.SetState(std::move(arguments));
    } else if (name == ":preset") {
        preset = box.StorePreset();
    } else if (name == ":recall") {
        box.RecallPreset(preset);
    } else if (name == ":assist") {
        Assist(arguments);
    } else if (name == ":dsp") {
        StartAudio(arguments);
    } else if (name == ":notifications") {
        Write(std::to_string(std::exchange(notifications, 0)));
    } else {
        Write("error: no command " + name);
    }
}

void Shell::Get(std::vector<max::t_atom> const& arguments) {
    if (arguments.size() != 1) return Write("error: :get needs the name of an attribute");
    const std::string name = max::AtomText(arguments.front());
    const auto value = box.GetAttribute(name.c_str());
    if (!value) return Write("error: no attribute " + name);
    WriteValues(name, *value);
}

void Shell::Assist(std::vector<max::t_atom> const& arguments) {
    const std::string side = arguments.empty() ? "" : max::AtomText(arguments.front());
    if (arguments.size() != 2 || (side != "in" && side != "out") || !IsNumber(arguments[1]) ||
        max::atom_getlong(&arguments[1]) < 0)
        return Write("error: :assist needs in or out, and a number from 0");
    Write(box.Assist(side == "in" ? 1 : 2, static_cast<unsigned long>(max::atom_getlong(&arguments[1]))));
}

void Shell::StartAudio(std::vector<max::t_atom> const& arguments) {
    if (arguments.size() != 2 || !IsNumber(arguments[0]) || !IsNumber(arguments[1]))
        return Write("error: :dsp needs a sample rate and a block size");
    const float rate = max::atom_getfloat(&arguments[0]);
    const long block = max::atom_getlong(&arguments[1]);
    if (!(rate >= minRate && rate <= maxRate) || block < 1 || block > static_cast<long>(maxVectorSize))
        return Write("error: :dsp needs a rate from " + std::to_string(minRate) + " to " + std::to_string(maxRate) +
                     " and a block from 1 to " + std::to_string(maxVectorSize));
    box.StartAudio(rate, block);
}

void Shell::Write(std::string const& line) {
    if (firstError.empty() && (line.starts_with("error: ") || line.starts_with("bug: "))) firstError = line;
    out << line << std::endl;  // at once: a script may wait for it
}

void Shell::WriteValues(std::string const& head, std::vector<max::t_atom> const& atoms) {
    std::string line = head;
    for (max::t_atom const& atom : atoms) line.append(" ").append(max::AtomText(atom));
    Write(line);
}

int RunShell(std::string const& attributes, bool strict) {
    Shell shell(attributes, std::cout);
    if (!shell.HasObject()) return 1;
    const bool typed = IsTyped();
    if (typed) std::cout << "help tells what there is to type; Ctrl-D ends" << std::endl;
    TypedLines lines;
    std::string line;
    const auto failed = [&] { return strict && !shell.FirstError().empty(); };
    int number = 0;
    while (!failed() && lines.Next(line)) {
        ++number;
        // Scripts go on to hear of the object that it doesn't know this word.
        const std::vector<std::string> words = SplitWords(line);
        if (typed && !words.empty() && words.size() < 3 && words[0] == "help")
            std::cout << ShellHelp(words.size() == 2 ? words[1] : "") << std::flush;
        else if (!shell.Handle(line))
            break;
    }
    if (!failed()) return 0;
    throw WorkError("line " + std::to_string(number) + ": " + shell.FirstError());
}

}  // namespace program
