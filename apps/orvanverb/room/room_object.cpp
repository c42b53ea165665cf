#include "orvanverb/room/room_object.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "engine/room_controls.h"
#include "geometry/vector_algebra.h"
#include "object/orvanverb_class.h"
#include "object/room_exchange.h"
#include "orvanverb/common/text.h"
#include "orvanverb/layout/listener_position.h"
#include "patcher/atom.h"

namespace program {

namespace {

/// For an object that is made at once.
std::string BoxText(unsigned int numSources, unsigned int numSpeakers, std::string const& numInternals,
                    Lume::RoomFormat const* format) {
    orvanverb_main();
    orvanverb_format(format);
    return "orvanverb~ @numsources " + std::to_string(numSources) + " @numspeakers " + std::to_string(numSpeakers) +
           " @numinternals " + numInternals;
}

bool IsAttribute(std::string const& name) {
    return max::class_attr_get(orvanverb_class, max::gensym(name.c_str())) != nullptr;
}

/// What a message may begin with, for those who mistype it.
std::vector<std::string> KnownSelectors() {
    std::vector<std::string> names{"clear", "hrtf", "orientation"};
    for (max::t_messlist const& message : orvanverb_class->c_messages)
        if (message.m_type != std::vector<short>{max::A_CANT}) names.emplace_back(message.m_sym->s_name);
    for (auto const& attribute : orvanverb_class->c_attributes) names.emplace_back(attribute->name->s_name);
    for (Lume::RoomControl const& control : Lume::roomControls) names.emplace_back(control.name);
    return names;
}

void Append(std::vector<max::t_atom>& atoms, Lume::CartesianVector const& position) {
    for (const float value : {position.x, position.y, position.z})
        max::atom_setfloat(&atoms.emplace_back(), static_cast<double>(value));
}

std::vector<max::t_atom> PositionAtoms(std::span<Lume::CartesianVector const> positions) {
    std::vector<max::t_atom> atoms;
    for (Lume::CartesianVector const& position : positions) Append(atoms, position);
    return atoms;
}

/// A value in an atom of the type that another one has.
void SetNumber(max::t_atom& atom, float value) {
    if (atom.a_type == max::A_LONG)
        max::atom_setlong(&atom, std::lround(value));
    else
        max::atom_setfloat(&atom, static_cast<double>(value));
}

}  // namespace

RoomObject::RoomObject(unsigned int numSources, unsigned int numSpeakers, std::string const& numInternals,
                       Lume::RoomFormat const* format, EarsCache& newEars)
    : ears(newEars),
      box(BoxText(numSources, numSpeakers, numInternals, format),
          {[this](max::ConsoleLevel level, std::string const& text) { Hear(level, text); }, nullptr, nullptr}) {
    orvanverb_format(nullptr);
    ThrowComplaint();
    Room().Engine().SilenceAirOnRestart(true);
}

void RoomObject::Hear(max::ConsoleLevel level, std::string const& text) {
    if (level == max::ConsoleLevel::error || level == max::ConsoleLevel::bug) {
        if (complaint.empty()) complaint = text;
    } else {
        remarks.push_back(std::string(max::ConsoleLevelName(level)) + ": " + text);
    }
}

void RoomObject::ThrowComplaint() {
    if (!complaint.empty()) throw std::invalid_argument(std::exchange(complaint, {}));
}

void RoomObject::Send(char const* selector, std::vector<max::t_atom> atoms) {
    box.Send(max::gensym(selector), std::move(atoms));
    ThrowComplaint();
}

void RoomObject::Tell(std::string_view message, std::filesystem::path const& folder) {
    const std::vector<std::string> words = SplitWords(message);
    if (words.empty()) return;
    std::string const& selector = words.front();
    if (selector == "hrtf") {
        // All the rest is the file's name, which may hold blanks.
        message.remove_prefix(message.find(selector) + selector.size());
        message.remove_prefix(std::min(message.find_first_not_of(" \t"), message.size()));
        if (message.empty()) throw std::invalid_argument("hrtf: a file is expected behind it");
        LoadHrtf(folder / message);
    } else if (const std::optional<Lume::Orientation> orientation = ParseOrientationMessage(message)) {
        Room().SetOrientation(*orientation);
    } else if (selector == "generatexml") {
        throw std::invalid_argument("generatexml: writes a file; orvanverb reference does it");
    } else if (selector == "clear") {
        const std::vector<max::t_atom> atoms = max::ParseAtoms(message);
        RemarkMessage(selector, std::span(atoms).subspan(1));
        Room().Clear();
    } else if (!IsAttribute(selector) && Lume::FindControl(selector)) {
        Set(selector, {words.begin() + 1, words.end()});
    } else {
        const std::vector<max::t_atom> atoms = max::ParseAtoms(message);
        RemarkMessage(selector, std::span(atoms).subspan(1));
        const Positions sources = orvanverb_source_positions(&Record()), speakers = Room().SpeakerPositions();
        if (!box.Send(message)) complaint += DidYouMean(selector, KnownSelectors());
        ThrowComplaint();
        if (orvanverb_limit_positions(&Record(), sources) && !std::exchange(positionsRemarked, true))
            remarks.push_back("warn: positions are limited to " + NumberText(Lume::Room::maxCoordinate) + " m");
        speakersMoved = speakersMoved || speakers != Room().SpeakerPositions();
    }
}

void RoomObject::RemarkMessage(std::string const& selector, std::span<max::t_atom const> atoms) {
    for (std::string const& text : messageRemarks.Of(Record(), selector, atoms)) remarks.push_back("warn: " + text);
}

void RoomObject::RemarkSettings() {
    for (std::string const& line : settingRemarks.Of(Room(), std::exchange(speakersMoved, false)))
        remarks.push_back("warning: " + line);
}

void RoomObject::Set(std::string const& name, std::vector<std::string> const& values) {
    const std::optional<std::size_t> control = Lume::FindControl(name);
    if (IsAttribute(name) || !control) return Tell(name + " " + JoinWords(values));
    const std::optional<float> value = values.size() == 1 ? ParseNumber(values[0]) : std::nullopt;
    if (!value) throw std::invalid_argument(name + ": a number is expected");
    Lume::RoomControl const& row = Lume::roomControls[*control];
    if (row.attribute == nullptr) {
        Room().Set(*control, *value);
        return;
    }
    // A part of an attribute: the object takes it as a whole.
    std::vector<max::t_atom> atoms = *box.GetAttribute(row.attribute);
    SetNumber(atoms[row.element], *value);
    RemarkMessage(row.attribute, atoms);
    Send(row.attribute, std::move(atoms));
}

void RoomObject::PlaceSource(unsigned int index, Lume::CartesianVector const& position) {
    std::vector<max::t_atom> atoms(2);
    max::atom_setlong(&atoms[0], static_cast<long>(index) + 1);
    max::atom_setsym(&atoms[1], max::gensym("xyz"));
    Append(atoms, position);
    Send("source", std::move(atoms));
}

void RoomObject::PlaceSpeakers(std::span<Lume::CartesianVector const> positions) {
    Send("speakerspositions", PositionAtoms(positions));
}

void RoomObject::LoadHrtf(std::filesystem::path const& path) {
    try {
        Room().LoadEars(ears.Playable(path));
    } catch (std::runtime_error const& error) {
        throw std::invalid_argument(error.what());
    }
}

void RoomObject::Restore(Lume::RoomState const& state) {
    try {
        orvanverb_restore_state(&Record(), state);
    } catch (std::runtime_error const& error) {
        throw std::invalid_argument(error.what());
    }
    for (std::string const& line : state.unknown)
        remarks.push_back("warn: the state has a line that this version doesn't know and keeps: " + line);
}

void RoomObject::Start(int samplerate, unsigned int vectorSize) {
    Room().Configure(static_cast<float>(samplerate), vectorSize, vectorSize);
    Room().Settle();
}

}  // namespace program
