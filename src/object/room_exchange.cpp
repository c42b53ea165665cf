#include "object/room_exchange.h"

#include <algorithm>
#include <sstream>
#include <utility>
#include <vector>

#include "object/orvanverb_table.h"

namespace {

constexpr char const* delaysName = "delays ";

void StorePositions(float* positions, std::span<Lume::CartesianVector const> from) {
    for (Lume::CartesianVector const& p : from)
        for (const float coordinate : {p.x, p.y, p.z}) *positions++ = coordinate;
}

/// The record's copy of a control.
void Store(orvanverb_t* x, Lume::RoomControl const& control, float value) {
    orvanverb::Attribute const& attribute = *orvanverb::FindAttribute(control.attribute);
    if (control.scale == Lume::Scale::onOff)
        *orvanverb::Field<std::int32_t>(x, attribute) = value != 0.0f ? 1 : 0;
    else
        orvanverb::Field<float>(x, attribute)[control.element] = value;
}

}  // namespace

Lume::RoomState orvanverb_save_state(orvanverb_t* x) {
    Lume::RoomState state = orvanverb_room(x).SaveState();
    // The engine doesn't know them: they are the user's own.
    std::erase_if(state.unknown, [](std::string const& line) { return line.starts_with(delaysName); });
    std::span<float const> const delays(x->delays, x->numinternals);
    if (std::any_of(delays.begin(), delays.end(), [](float delay) { return delay > 0.0f; })) {
        std::string line = delaysName;
        for (const float delay : delays) line.append(Lume::NumberText(delay)).append(" ");
        line.pop_back();
        state.unknown.push_back(line);
    }
    return state;
}

void orvanverb_restore_state(orvanverb_t* x, Lume::RoomState const& state) {
    Lume::Room& room = orvanverb_room(x);
    room.RestoreState(state);
    x->mute = state.mute ? 1 : 0;
    x->bypass = state.bypass ? 1 : 0;
    for (std::size_t i = 0; i < Lume::roomControls.size(); ++i)
        if (Lume::roomControls[i].attribute != nullptr) Store(x, Lume::roomControls[i], room.Get(i));
    for (unsigned int i = 0; i < room.NumSources(); ++i) {
        const Lume::CartesianVector position = room.SourcePosition(i);
        StorePositions(&x->sourcespositions[3 * i], {&position, 1});
    }
    StorePositions(x->speakerspositions, room.SpeakerPositions());
    std::fill_n(x->delays, x->numinternals, 0.0f);
    for (std::string const& line : state.unknown) {
        if (!line.starts_with(delaysName)) continue;
        std::istringstream values(line.substr(std::char_traits<char>::length(delaysName)));
        for (unsigned int i = 0; i < x->numinternals; ++i) values >> x->delays[i];
    }
    orvanverb_notify(x);
}

namespace orvanverb {

std::vector<std::string> RangeRemarksOf(Lume::RangeRemarks& remarks, std::string const& selector,
                                        std::span<t_atom const> atoms) {
    // "reverb tr0 20" is "tr0 20".
    if (selector == "reverb" && atoms.size() == 2 && atom_gettype(&atoms[0]) == A_SYM) {
        const std::string word = atom_getsym(&atoms[0])->s_name;
        return RangeRemarksOf(remarks, word == "start" ? "reverb_start" : word, atoms.subspan(1));
    }
    std::vector<std::string> texts;
    for (Lume::RoomControl const& control : Lume::roomControls) {
        if (control.attribute == nullptr || selector != control.attribute || control.element >= atoms.size()) continue;
        if (atom_gettype(&atoms[control.element]) == A_SYM) continue;
        std::string text = remarks.Of(control, atom_getfloat(&atoms[control.element]));
        if (!text.empty()) texts.push_back(std::move(text));
    }
    return texts;
}

}  // namespace orvanverb
