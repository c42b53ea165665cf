/// The engine as a WebAssembly module: one room to an instance, with functions that JavaScript calls. `orvanverb.js`
/// has one instance in the page, which never sounds and tells how things are, and one in each audio worklet.
///
/// Texts are UTF-8 that end in 0: those that come in stand in the memory of text(), those that go out live until the
/// next call. What can fail gives false, and error() says why.

#include <algorithm>
#include <cmath>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "engine/room_controls.h"
#include "engine/room_format.h"
#include "geometry/azimuth_distance_elevation.h"
#include "room/room.h"

#define EXPORT(name) __attribute__((export_name(#name)))

using Lume::CartesianVector;
using Lume::Room;
using Lume::RoomState;

namespace {

/// What a message to a room is for; orvanverb.js has the same list.
enum class Target : unsigned int { control, source, speaker, orientation, mute, bypass, clear };

std::unique_ptr<Room> room;
RoomState parsed;
std::string lastError, told;
std::vector<char> textIn;
std::vector<float> inputSamples, outputSamples;
std::vector<float const*> inputs;
std::vector<float*> outputs;
std::vector<float> peaks;  // of sources and outputs

template <typename Work>
bool Try(Work&& work) {
    try {
        work();
        return true;
    } catch (std::exception const& error) {
        lastError = error.what();
        return false;
    }
}

float Coordinate(CartesianVector const& position, unsigned int axis) {
    return axis == 0 ? position.x : axis == 1 ? position.y : position.z;
}

template <typename Pointer>
void MakeRows(std::vector<Pointer>& rows, std::vector<float>& samples, unsigned int number, std::size_t length) {
    samples.assign(number * length, 0.0f);
    rows.resize(number);
    for (unsigned int i = 0; i < number; ++i) rows[i] = &samples[i * length];
}

float Peak(float const* samples, std::size_t numSamples, float peak) {
    for (std::size_t i = 0; i < numSamples; ++i) peak = std::max(peak, std::fabs(samples[i]));
    return peak;
}

}  // namespace

extern "C" {

/// Memory for a text of so many bytes, its 0 included.
EXPORT(text) char* MakeText(std::size_t size) {
    textIn.resize(size);
    return textIn.data();
}

EXPORT(error) char const* GetError() {
    return lastError.c_str();
}

/// @name The room
/// @{

/// Makes a room from the state in text(). Counts that aren't 0 are for what it doesn't tell.
EXPORT(make) bool Make(unsigned int numSources, unsigned int numSpeakers, unsigned int numInternals) {
    return Try([&] {
        RoomState state = RoomState::Parse(textIn.data());
        const auto choose = [](unsigned int& has, unsigned int otherwise) {
            if (has == 0) has = otherwise;
        };
        choose(state.numSources, numSources);
        choose(state.numSpeakers, numSpeakers);
        choose(state.numInternals, numInternals);
        Lume::RoomFormat const* const format = Lume::FindRoomFormat(state.format);
        if (!state.format.empty() && format == nullptr)
            throw std::invalid_argument(state.format + ": is no format of a room");
        room = std::make_unique<Room>(state.numSources, state.numSpeakers, state.numInternals, format);
        room->RestoreState(state);
        MakeRows(inputs, inputSamples, room->NumSources(), 1);
        MakeRows(outputs, outputSamples, room->NumSpeakers(), 1);
        peaks.assign(room->NumSources() + room->NumSpeakers(), 0.0f);
    });
}

/// Brings the room to the state in text().
EXPORT(restore) bool Restore() {
    return Try([&] { room->RestoreState(RoomState::Parse(textIn.data())); });
}

/// The room's state as text. @param vectorSize  that it is played with [samples]
EXPORT(state) char const* State(std::size_t vectorSize) {
    RoomState state = room->SaveState();
    state.vectorSize = vectorSize;
    told = state.Text();
    return told.c_str();
}

/// Reads the state, or the controls of a room, in text() and does nothing with it.
EXPORT(parse) bool Parse() {
    return Try([&] { parsed = RoomState::Parse(textIn.data()); });
}
EXPORT(parsedVector) std::size_t ParsedVector() {
    return parsed.vectorSize;
}
EXPORT(parsedControl) float ParsedControl(std::size_t control) {
    return parsed.controls[control];
}

EXPORT(numSources) unsigned int NumSources() {
    return room->NumSources();
}
EXPORT(numSpeakers) unsigned int NumSpeakers() {
    return room->NumSpeakers();
}
EXPORT(numInternals) unsigned int NumInternals() {
    return room->NumInternals();
}
EXPORT(hasEars) bool HasEars() {
    return room->HasEars();
}

/// A message. @param target  a Target in the upper half, which one of its kind in the lower
EXPORT(apply) bool Apply(unsigned int target, float x, float y, float z) {
    const unsigned int which = target & 0xffff;
    switch (static_cast<Target>(target >> 16)) {
        case Target::control:
            return room->Set(which, x);
        case Target::source:
            return room->PlaceSource(which, {x, y, z});
        case Target::speaker:
            return room->PlaceSpeaker(which, {x, y, z});
        case Target::orientation:
            return room->SetOrientation({x, y, z});
        case Target::mute:
            room->SetMuted(x != 0.0f);
            return true;
        case Target::bypass:
            room->SetBypassed(x != 0.0f);
            return true;
        case Target::clear:
            room->Clear();
            return true;
    }
    return false;
}

EXPORT(get) float Get(unsigned int control) {
    return room->Get(control);
}
/// @param axis  0 to 2
EXPORT(source) float Source(unsigned int source, unsigned int axis) {
    return Coordinate(room->SourcePosition(source), axis);
}
EXPORT(speaker) float Speaker(unsigned int speaker, unsigned int axis) {
    return Coordinate(room->SpeakerPositions()[speaker], axis);
}
/// A coordinate of a place in degrees and metres.
EXPORT(coordinate) float CoordinateOf(float azimuth, float elevation, float distance, unsigned int axis) {
    return Coordinate(Lume::FromAzimuthDistanceElevation(azimuth, distance, elevation), axis);
}
EXPORT(orientation) float GetOrientation(unsigned int angle) {
    Lume::Orientation const& head = room->GetOrientation();
    return angle == 0 ? head.yaw : angle == 1 ? head.pitch : head.roll;
}
EXPORT(muted) bool Muted() {
    return room->SaveState().mute;
}
EXPORT(bypassed) bool Bypassed() {
    return room->SaveState().bypass;
}
/// @}

/// @name Sound
/// @{

/// Makes the room ready to play. @return the latency [samples]
EXPORT(begin) std::size_t Begin(float samplerate, std::size_t blockSize, std::size_t vectorSize) {
    MakeRows(inputs, inputSamples, room->NumSources(), blockSize);
    MakeRows(outputs, outputSamples, room->NumSpeakers(), blockSize);
    room->Configure(samplerate, blockSize, vectorSize);
    room->Settle();
    return room->Latency();
}

/// Where the samples of a block go in, and where they come out.
EXPORT(input) float const* Input(unsigned int source) {
    return inputs[source];
}
EXPORT(output) float* Output(unsigned int speaker) {
    return outputs[speaker];
}

EXPORT(process) void Process(std::size_t numSamples) {
    room->Process(outputs.data(), inputs.data(), numSamples);
    for (std::size_t i = 0; i < inputs.size(); ++i) peaks[i] = Peak(inputs[i], numSamples, peaks[i]);
    for (std::size_t i = 0; i < outputs.size(); ++i)
        peaks[inputs.size() + i] = Peak(outputs[i], numSamples, peaks[inputs.size() + i]);
}

/// The greatest samples of sources and outputs, since somebody set them to 0.
EXPORT(levels) float* Levels() {
    return peaks.data();
}

EXPORT(badSamples) double BadSamples() {
    return static_cast<double>(room->NumBadInputs() + room->NumBadOutputs());
}
/// @}

/// @name The table of controls
/// @{
EXPORT(numControls) std::size_t NumControls() {
    return Lume::roomControls.size();
}
EXPORT(controlText) char const* ControlText(std::size_t control, unsigned int field) {
    Lume::RoomControl const& row = Lume::roomControls[control];
    constexpr char const* groups[] = {"late", "direct", "room", "early", "cluster"};
    constexpr char const* scales[] = {"linear", "logarithmic", "on/off"};
    constexpr char const* changes[] = {"ramps", "glides", "jumps"};
    char const* const texts[] = {row.name,
                                 row.label,
                                 row.usualName,
                                 row.unit,
                                 row.what,
                                 groups[static_cast<std::size_t>(row.group)],
                                 scales[static_cast<std::size_t>(row.scale)],
                                 changes[static_cast<std::size_t>(row.change)]};
    return field < std::size(texts) ? texts[field] : nullptr;
}
EXPORT(controlValue) float ControlValue(std::size_t control, unsigned int field) {
    Lume::RoomControl const& row = Lume::roomControls[control];
    return field == 0 ? row.least : field == 1 ? row.greatest : row.standard;
}
/// @}

}  // extern "C"
