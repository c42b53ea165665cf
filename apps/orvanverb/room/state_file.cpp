#include "orvanverb/room/state_file.h"

#include <sstream>

#include "orvanverb/common/line_file.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/common/whole_file.h"
#include "patcher/atom.h"

namespace program {

namespace {

/// An atom as text that reads back as the same atom: a float always has a point or an exponent.
std::string ExactText(max::t_atom const& atom) {
    if (atom.a_type != max::A_FLOAT) return max::AtomText(atom);
    std::string text = NumberText(max::atom_getfloat(&atom));
    if (text.find_first_of(".e") == std::string::npos) text += '.';
    return text;
}

std::string Values(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " value" : " values");
}

}  // namespace

StateFile::StateFile(std::string const& newPath) : path(newPath) {
    for (Line& line : ReadLines(path)) {
        Entry entry{line.number, line.words.front(), {}};
        line.words.erase(line.words.begin());
        entry.atoms = max::ParseAtoms(JoinWords(line.words));
        entries.push_back(std::move(entry));
    }
}

unsigned int StateFile::Size(char const* name) const {
    for (Entry const& entry : entries)
        if (entry.name == name && entry.atoms.size() == 1 && entry.atoms[0].a_type == max::A_LONG &&
            max::atom_getlong(&entry.atoms[0]) > 0)
            return static_cast<unsigned int>(max::atom_getlong(&entry.atoms[0]));
    throw WorkError(path + ": no state, a line with " + name + " and a whole number is missing");
}

void StateFile::Restore(RoomObject& room) const {
    const std::vector<RoomObject::Value> present = room.Values();
    std::vector<max::t_atom> state;
    for (std::size_t i = 0; i < present.size(); ++i) {
        RoomObject::Value const& expected = present[i];
        if (i >= entries.size()) throw WorkError(path + ": ends before " + expected.name);
        Entry const& entry = entries[i];
        const std::string at = At(path, entry.line);
        if (entry.name != expected.name) throw WorkError(at + expected.name + " is expected, not " + entry.name);
        if (entry.atoms.size() != expected.atoms.size())
            throw WorkError(at + entry.name + ": " + Values(expected.atoms.size()) + " expected, " +
                            std::to_string(entry.atoms.size()) + " given");
        for (std::size_t k = 0; k < entry.atoms.size(); ++k)
            if (entry.atoms[k].a_type != expected.atoms[k].a_type)
                throw WorkError(at + entry.name + ": a " +
                                (expected.atoms[k].a_type == max::A_LONG ? "whole number" : "number with a point") +
                                " is expected, not " + max::AtomText(entry.atoms[k]));
        if (entry.name.starts_with("num") &&
            max::atom_getlong(&entry.atoms[0]) != max::atom_getlong(&expected.atoms[0]))
            throw WorkError(at + entry.name + " " + max::AtomText(entry.atoms[0]) + ": this rendering has " +
                            max::AtomText(expected.atoms[0]));
        state.insert(state.end(), entry.atoms.begin(), entry.atoms.end());
    }
    if (entries.size() > present.size())
        throw WorkError(At(path, entries[present.size()].line) + "nothing is expected behind " + present.back().name);
    try {
        room.Restore(state);
    } catch (std::invalid_argument const& error) {
        throw WorkError(path + ": " + error.what());
    }
}

void StateFile::Save(std::string const& path, RoomObject& room) {
    WholeFile file(path);
    std::ostringstream text;
    text << "# A state of orvanverb~. Render from it again with --state.\n";
    for (RoomObject::Value const& value : room.Values()) {
        text << value.name;
        for (max::t_atom const& atom : value.atoms) text << ' ' << ExactText(atom);
        text << '\n';
    }
    file.Write(text.str());
}

}  // namespace program
