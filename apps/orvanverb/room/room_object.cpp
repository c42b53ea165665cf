#include "orvanverb/room/room_object.h"

#include <utility>

#include "object/attribute_reflection.h"
#include "object/orvanverb.h"
#include "object/orvanverb_class.h"
#include "orvanverb/audio/vector_channels.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/hrtf/engine_loading.h"

namespace program {

namespace {

// Glides after a change of sample rate last 50 ms, layer gains 100 ms; the panners begin a cycle of 30 ms only when the
// one before it has ended.
constexpr double settleSeconds = 0.25;

std::string BoxText(unsigned int numSources, unsigned int numSpeakers, std::string const& numInternals) {
    orvanverb_main();
    return "orvanverb~ @numsources " + std::to_string(numSources) + " @numspeakers " + std::to_string(numSpeakers) +
           " @numinternals " + numInternals;
}

Lume::OrvanVerb& Engine(max::Box const& box) {
    return *reinterpret_cast<orvanverb_t*>(box.Object())->engine;
}

void Append(std::vector<max::t_atom>& atoms, Lume::CartesianVector const& position) {
    for (const float value : {position.x, position.y, position.z})
        max::atom_setfloat(&atoms.emplace_back(), static_cast<double>(value));
}

}  // namespace

RoomObject::RoomObject(unsigned int numSources, unsigned int numSpeakers, std::string const& numInternals)
    : box(BoxText(numSources, numSpeakers, numInternals),
          {[this](max::ConsoleLevel level, std::string const& text) { Hear(level, text); }, nullptr, nullptr}) {
    ThrowComplaint();
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

void RoomObject::Tell(std::string_view message) {
    box.Send(message);
    ThrowComplaint();
}

void RoomObject::Tell(char const* selector, std::vector<max::t_atom> atoms) {
    box.Send(max::gensym(selector), std::move(atoms));
    ThrowComplaint();
}

std::vector<std::string> RoomObject::TakeRemarks() {
    return std::exchange(remarks, {});
}

void RoomObject::PlaceSources() {
    orvanverb_place_defaults(reinterpret_cast<orvanverb_t*>(box.Object()), true, false);
}

void RoomObject::PlaceSource(unsigned int index, Lume::CartesianVector const& position) {
    std::vector<max::t_atom> atoms(2);
    max::atom_setlong(&atoms[0], static_cast<long>(index) + 1);
    max::atom_setsym(&atoms[1], max::gensym("xyz"));
    Append(atoms, position);
    Tell("source", std::move(atoms));
}

void RoomObject::PlaceSpeakers(std::span<Lume::CartesianVector const> positions) {
    std::vector<max::t_atom> atoms;
    for (Lume::CartesianVector const& position : positions) Append(atoms, position);
    Tell("speakerspositions", std::move(atoms));
}

std::vector<Lume::CartesianVector> RoomObject::Positions(char const* attribute) {
    const std::vector<max::t_atom> atoms = *box.GetAttribute(attribute);
    std::vector<Lume::CartesianVector> positions;
    for (std::size_t i = 0; i + 2 < atoms.size(); i += 3)
        positions.push_back(
            {max::atom_getfloat(&atoms[i]), max::atom_getfloat(&atoms[i + 1]), max::atom_getfloat(&atoms[i + 2])});
    return positions;
}

std::vector<RoomObject::Value> RoomObject::Values() {
    std::vector<Value> values;
    for (std::string const& name : orvanmax::GetListOfUserAttributes(box.Object()))
        values.push_back({name, *box.GetAttribute(name.c_str())});
    return values;
}

std::vector<max::t_atom> RoomObject::State() {
    return box.GetState();
}

void RoomObject::Restore(std::vector<max::t_atom> const& state) {
    box.SetState(state);
    remarks.clear();  // that all attributes were restored is no news here
    ThrowComplaint();
}

void RoomObject::Start(int newSamplerate, unsigned int vectorSize) {
    samplerate = newSamplerate;
    box.StartAudio(static_cast<float>(samplerate), static_cast<long>(vectorSize));
    VectorChannels silence(NumSources(), vectorSize);
    VectorChannels discarded(NumSpeakers(), vectorSize);
    for (double seconds = 0.0; seconds < settleSeconds; seconds += static_cast<double>(vectorSize) / samplerate)
        Process(discarded.Pointers(), silence.Pointers());
}

void RoomObject::LoadHrtf(std::string const& path) {
    RequireSetFile(path, ".hrtf or .coll");
    bool taken = false;
    LoadQuietly(path, [&](std::string const& name) { taken = Engine(box).LoadHrtf(name.c_str()); });
    if (!taken) throw WorkError(path + ": is no set of biquads or impulse responses for two ears");
}

std::string RoomObject::HrtfRateRemark(std::string const& path) const {
    Lume::HrtfHeaderInfos const* const header = Engine(box).GetHrtfHeaderInfos();
    return header != nullptr ? RateRemark(path, *header, samplerate) : std::string();
}

}  // namespace program
