#include "orvanverb-live/osc/adm_tree.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>

#include "geometry/vector_algebra.h"
#include "orvanverb-live/room/position.h"

namespace live {

namespace {

constexpr float smallestDmax = 0.01f, greatestDmax = 10000.0f;  // [m]

constexpr std::array objectWords{"xyz",  "xy", "x",    "y",    "z",    "aed",  "azim", "elev",
                                 "dist", "w",  "gain", "mute", "name", "dref", "dmax"};
constexpr std::array listenerWords{"xyz", "ypr"};

/// Numbers from a message, each within its range.
template <std::size_t count>
std::array<float, count> Numbers(OscMessage const& message, std::array<float, count> const& least,
                                 std::array<float, count> const& greatest) {
    std::array<float, count> numbers;
    for (std::size_t i = 0; i < count; ++i) {
        const std::optional<float> number = message.Number(i);
        if (!number || message.arguments.size() != count)
            throw std::invalid_argument(std::to_string(count) + (count == 1 ? " number is" : " numbers are") +
                                        " expected");
        numbers[i] = std::clamp(*number, least[i], greatest[i]);
    }
    return numbers;
}

float NumberIn(OscMessage const& message, float least, float greatest) {
    return Numbers<1>(message, {least}, {greatest})[0];
}

}  // namespace

AdmTree::AdmTree(Desk& newDesk, float dmaxM)
    : desk(newDesk), objects(newDesk.NumSources(), Object{dmaxM}), listenerScale(dmaxM) {}

void AdmTree::Take(OscMessage const& message, Answer const& answer) {
    const std::vector<std::string> parts = AddressParts(message.address);
    bool found = false;
    const auto address = [](std::string const& rest) { return "/adm/" + rest; };
    if (parts.size() == 4 && parts[0] == "adm" && Matches(parts[1], "obj")) {
        for (unsigned int i = 0; i < objects.size(); ++i) {
            const std::string number = std::to_string(i + 1);
            if (!Matches(parts[2], number)) continue;
            for (char const* word : objectWords) {
                if (!Matches(parts[3], word)) continue;
                found = true;
                if (message.arguments.empty())
                    answer({address("obj/" + number + "/" + word), ObjectValues(i, word)});
                else
                    TakeObject(i, word, message);
            }
        }
    } else if (parts.size() == 3 && parts[0] == "adm" && Matches(parts[1], "lis")) {
        for (char const* word : listenerWords) {
            if (!Matches(parts[2], word)) continue;
            found = true;
            if (message.arguments.empty())
                answer({address(std::string("lis/") + word), ListenerValues(word)});
            else
                TakeListener(word, message);
        }
    } else if (message.address == "/adm/env/change" && !message.arguments.empty()) {
        found = true;
        desk.LoadPreset(message.Text(0));
    }
    if (!found) throw std::invalid_argument("there is no such address");
}

/// Where an object is in the world, in which the listener may move [m].
Lume::CartesianVector AdmTree::Place(unsigned int object) const {
    return desk.State().sources[object] + listener;
}

void AdmTree::TakeObject(unsigned int object, std::string const& word, OscMessage const& message) {
    Object& own = objects[object];
    if (word == "gain") return desk.SetGain(object, Decibels(NumberIn(message, 0.0f, 1.0f)));
    if (word == "mute") return desk.SetSourceMute(object, NumberIn(message, 0.0f, 1.0f) != 0.0f);
    if (word == "name") return desk.SetName(object, message.Text(0));
    if (word == "w")
        own.width = NumberIn(message, 0.0f, 180.0f);
    else if (word == "dref")
        own.dref = NumberIn(message, 0.0f, 1.0f);
    else if (word == "dmax")
        own.dmax = NumberIn(message, smallestDmax, greatestDmax);
    if (word == "w" || word == "dref" || word == "dmax") return;

    Lume::CartesianVector place = Place(object);
    Direction direction = DirectionOf(place);
    if (word == "aed") {
        const auto [azimuth, elevation, part] = Numbers<3>(message, {-180.0f, -90.0f, 0.0f}, {180.0f, 90.0f, 1.0f});
        direction = {-azimuth, elevation, part * own.dmax};
    } else if (word == "azim") {
        direction.azimuth = -NumberIn(message, -180.0f, 180.0f);
    } else if (word == "elev") {
        direction.elevation = NumberIn(message, -90.0f, 90.0f);
    } else if (word == "dist") {
        direction.distance = NumberIn(message, 0.0f, 1.0f) * own.dmax;
    } else {
        // x, y and z, or some of them.
        constexpr std::string_view axes = "xyz";
        if (message.arguments.size() != word.size())
            throw std::invalid_argument(std::to_string(word.size()) + " coordinates are expected");
        float* const coordinates[] = {&place.x, &place.y, &place.z};
        for (std::size_t i = 0; i < word.size(); ++i) {
            const std::optional<float> part = message.Number(i);
            if (!part) throw std::invalid_argument("a coordinate is a number");
            *coordinates[axes.find(word[i])] = std::clamp(*part, -1.0f, 1.0f) * own.dmax;
        }
        return desk.PlaceSource(object, place - listener);
    }
    desk.PlaceSource(object, PositionAt(direction) - listener);
}

void AdmTree::TakeListener(std::string const& word, OscMessage const& message) {
    if (word == "ypr") {
        const auto [yaw, pitch, roll] = Numbers<3>(message, {-180.0f, -90.0f, -180.0f}, {180.0f, 90.0f, 180.0f});
        desk.SetOrientation({-yaw, pitch, roll});
        return;
    }
    const auto [x, y, z] = Numbers<3>(message, {-1.0f, -1.0f, -1.0f}, {1.0f, 1.0f, 1.0f});
    const Lume::CartesianVector moved = Lume::CartesianVector{x, y, z} * listenerScale;
    for (unsigned int i = 0; i < objects.size(); ++i) desk.PlaceSource(i, Place(i) - moved);
    listener = moved;
}

std::vector<OscMessage::Argument> AdmTree::ObjectValues(unsigned int object, std::string const& word) const {
    Object const& own = objects[object];
    const Lume::SourceStrip strip = desk.StripOf(object);
    if (word == "gain") return {Lume::LinearGain(strip.gainDb)};
    if (word == "mute") return {strip.muted ? 1 : 0};
    if (word == "name") return {strip.name};
    if (word == "w") return {own.width};
    if (word == "dref") return {own.dref};
    if (word == "dmax") return {own.dmax};
    const Lume::CartesianVector place = Place(object);
    const Direction direction = DirectionOf(place);
    if (word == "aed") return {-direction.azimuth, direction.elevation, direction.distance / own.dmax};
    if (word == "azim") return {-direction.azimuth};
    if (word == "elev") return {direction.elevation};
    if (word == "dist") return {direction.distance / own.dmax};
    std::vector<OscMessage::Argument> values;
    for (const char axis : word)
        values.emplace_back((axis == 'x' ? place.x : axis == 'y' ? place.y : place.z) / own.dmax);
    return values;
}

std::vector<OscMessage::Argument> AdmTree::ListenerValues(std::string const& word) const {
    if (word == "xyz") return {listener.x / listenerScale, listener.y / listenerScale, listener.z / listenerScale};
    const Lume::Orientation head = desk.State().orientation;
    return {-head.yaw, head.pitch, head.roll};
}

}  // namespace live
