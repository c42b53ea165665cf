#include "object/room_exchange.h"

#include <algorithm>
#include <sstream>
#include <vector>

#include "geometry/keep_azimuth.h"
#include "geometry/vector_algebra.h"
#include "object/orvanverb_table.h"
#include "room/control_range.h"

namespace {

constexpr char const* delaysName = "delays ";

using Lume::CartesianVector;

std::vector<CartesianVector> Positions(float const* xyz, unsigned int number) {
    std::vector<CartesianVector> positions;
    for (; number > 0; --number, xyz += 3) positions.push_back({xyz[0], xyz[1], xyz[2]});
    return positions;
}

/// Whether a position is where no position may be.
bool IsTooFar(CartesianVector const& p) {
    return !(p == Lume::Room::Limited(p));
}

void StorePositions(float* positions, std::span<CartesianVector const> from) {
    for (CartesianVector const& p : from)
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
        const CartesianVector position = room.SourcePosition(i);
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

std::vector<CartesianVector> orvanverb_source_positions(orvanverb_t const* x) {
    return Positions(x->sourcespositions, x->numsources);
}

bool orvanverb_limit_positions(orvanverb_t* x, std::span<CartesianVector const> before) {
    bool limited = false;
    std::vector<CartesianVector> const sources = orvanverb_source_positions(x);
    for (unsigned int i = 0; i < sources.size(); ++i) {
        const CartesianVector wanted = Lume::KeepAzimuth(Lume::Room::Limited(sources[i]), before[i]);
        if (wanted == sources[i]) continue;
        StorePositions(&x->sourcespositions[3 * i], {&wanted, 1});
        x->engine->SetSourcePosition(i, wanted);
        limited = limited || IsTooFar(sources[i]);
    }
    std::vector<CartesianVector> speakers = Positions(x->speakerspositions, x->numspeakers);
    if (std::any_of(speakers.begin(), speakers.end(), IsTooFar)) {
        std::transform(speakers.begin(), speakers.end(), speakers.begin(), Lume::Room::Limited);
        StorePositions(x->speakerspositions, speakers);
        orvanverb_update_speakerspositions(x);
        limited = true;
    }
    return limited;
}
