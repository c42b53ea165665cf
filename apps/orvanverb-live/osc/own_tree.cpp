#include "orvanverb-live/osc/own_tree.h"

#include <algorithm>
#include <stdexcept>

#include "engine/room_controls.h"
#include "orvanverb-live/room/position.h"

namespace live {

namespace {

constexpr char const* root = "/orvanverb/";

std::string Words(OscMessage const& message) {
    std::string words;
    for (std::size_t i = 0; i < message.arguments.size(); ++i) words.append(" ").append(message.Text(i));
    return words;
}

float RequireNumber(OscMessage const& message) {
    const std::optional<float> number = message.Number(0);
    if (!number) throw std::invalid_argument("a number is expected");
    return *number;
}

OscMessage ControlMessage(std::size_t control, float value) {
    return {root + std::string(Lume::roomControls[control].name), {value}};
}

std::string SourceAddress(unsigned int source, std::string const& word) {
    return std::string(root) + "source/" + std::to_string(source + 1) + "/" + word;
}

OscMessage LevelMessage(char const* name, std::vector<float> const& levels) {
    OscMessage message{std::string(root) + "levels/" + name, {}};
    for (const float level : levels) message.arguments.emplace_back(Decibels(level));
    return message;
}

OscMessage OrientationMessage(Lume::Orientation const& head) {
    return {std::string(root) + "orientation", {head.yaw, head.pitch, head.roll}};
}

std::int32_t Flag(bool on) {
    return on ? 1 : 0;
}

}  // namespace

void OwnTree::Take(OscMessage const& message, Answer const& answer) {
    const std::vector<std::string> parts = AddressParts(message.address);
    if (parts.size() < 2 || parts[0] != "orvanverb") throw std::invalid_argument("addresses begin with /orvanverb/");
    if (parts.size() == 2 && parts[1] == "get") {
        if (message.arguments.empty()) throw std::invalid_argument("names are expected, or controls, or sources");
        for (std::size_t i = 0; i < message.arguments.size(); ++i) Get(message.Text(i), answer);
    } else if (parts.size() == 2) {
        TakeName(parts[1], message, answer);
    } else {
        TakePlace(parts, message, answer);
    }
}

void OwnTree::TakePlace(std::vector<std::string> const& parts, OscMessage const& message, Answer const& answer) {
    if (parts.size() != 4 || (parts[1] != "source" && parts[1] != "speaker"))
        throw std::invalid_argument("there is no such address");
    const bool isSource = parts[1] == "source";
    const auto count = static_cast<unsigned int>(isSource ? desk.NumSources() : desk.State().speakers.size());
    bool found = false;
    for (unsigned int i = 0; i < count; ++i) {
        if (!Matches(parts[2], std::to_string(i + 1))) continue;
        found = true;
        if (isSource)
            TakeSource(i, parts[3], message, answer);
        else
            desk.Tell("speaker " + std::to_string(i + 1) + " " + parts[3] + Words(message));
    }
    if (!found) throw std::invalid_argument("there is no " + parts[1] + " " + parts[2]);
}

void OwnTree::TakeSource(unsigned int source, std::string const& word, OscMessage const& message,
                         Answer const& answer) {
    if (message.arguments.empty())
        AnswerSource(source, word, answer);
    else if (word == "gain")
        desk.SetGain(source, RequireNumber(message));
    else if (word == "mute")
        desk.SetSourceMute(source, RequireNumber(message) != 0.0f);
    else if (word == "name")
        desk.SetName(source, message.Text(0));
    else if (const auto xyz = word == "xyz" ? message.Number(2) : std::nullopt;
             xyz && message.Number(0) && message.Number(1))
        desk.PlaceSource(source, {*message.Number(0), *message.Number(1), *xyz});  // as the object, but quicker
    else
        desk.Tell("source " + std::to_string(source + 1) + " " + word + Words(message));
}

void OwnTree::AnswerSource(unsigned int source, std::string const& word, Answer const& answer) {
    const Lume::CartesianVector position = desk.State().sources[source];
    const Direction d = DirectionOf(position);
    const Lume::SourceStrip strip = desk.StripOf(source);
    OscMessage message{SourceAddress(source, word), {}};
    if (word == "xyz")
        message.arguments = {position.x, position.y, position.z};
    else if (word == "ade")
        message.arguments = {d.azimuth, d.distance, d.elevation};
    else if (word == "aed")
        message.arguments = {d.azimuth, d.elevation, d.distance};
    else if (word == "azim")
        message.arguments = {d.azimuth};
    else if (word == "elev")
        message.arguments = {d.elevation};
    else if (word == "dist")
        message.arguments = {d.distance};
    else if (word == "gain")
        message.arguments = {strip.gainDb};
    else if (word == "mute")
        message.arguments = {Flag(strip.muted)};
    else if (word == "name")
        message.arguments = {strip.name};
    else
        throw std::invalid_argument("a source has no " + word);
    answer(message);
}

void OwnTree::TakeName(std::string const& name, OscMessage const& message, Answer const& answer) {
    if (IsPattern(name)) {
        bool found = false;
        for (Lume::RoomControl const& control : Lume::roomControls) {
            if (!Matches(name, control.name)) continue;
            found = true;
            TakeName(control.name, message, answer);
        }
        if (!found) throw std::invalid_argument("no control fits");
        return;
    }
    const std::optional<std::size_t> control = Lume::FindControl(name);
    const bool isSwitch = name == "mute" || name == "bypass";
    if (message.arguments.empty() && (control || isSwitch || name == "ears" || name == "orientation"))
        Get(name, answer);
    else if (control && message.arguments.size() == 1)
        desk.Set(*control, RequireNumber(message));
    else if (name == "orientation" && message.Number(0))
        desk.SetOrientation({*message.Number(0), message.Number(1).value_or(0.0f), message.Number(2).value_or(0.0f)});
    else if (name == "preset" && !message.arguments.empty())
        desk.LoadPreset(message.Text(0));
    else if (name == "ears" && !message.arguments.empty())
        desk.UseEars(message.Text(0));
    else
        desk.Tell(name + Words(message));
}

void OwnTree::Get(std::string const& name, Answer const& answer) {
    const Lume::RoomState state = desk.State();
    if (name == "controls") {
        for (std::size_t i = 0; i < state.controls.size(); ++i) answer(ControlMessage(i, state.controls[i]));
    } else if (name == "sources") {
        for (unsigned int i = 0; i < desk.NumSources(); ++i) AnswerSource(i, "ade", answer);
    } else if (name == "mute" || name == "bypass") {
        answer({root + name, {Flag(name == "mute" ? state.mute : state.bypass)}});
    } else if (name == "orientation") {
        answer(OrientationMessage(state.orientation));
    } else if (name == "ears") {
        answer({root + name, {desk.EarsName()}});
    } else if (const std::optional<std::size_t> control = Lume::FindControl(name)) {
        answer(ControlMessage(*control, state.controls[*control]));
    } else {
        const std::vector<std::string> parts = AddressParts("/" + name);
        if (parts.size() != 3 || parts[0] != "source") throw std::invalid_argument("there is no " + name);
        TakePlace({"orvanverb", parts[0], parts[1], parts[2]}, {}, answer);
    }
}

std::vector<OscMessage> OwnTree::Messages(News const& news) {
    std::vector<OscMessage> messages;
    for (const unsigned int i : news.controls) messages.push_back(ControlMessage(i, news.state.controls[i]));
    for (const unsigned int i : news.sources) {
        const Direction d = DirectionOf(news.state.sources[i]);
        messages.push_back({SourceAddress(i, "ade"), {d.azimuth, d.distance, d.elevation}});
        messages.push_back({SourceAddress(i, "gain"), {news.state.strips[i].gainDb}});
        messages.push_back({SourceAddress(i, "mute"), {Flag(news.state.strips[i].muted)}});
    }
    if (news.turning) messages.push_back(OrientationMessage(news.state.orientation));
    if (news.muting) messages.push_back({std::string(root) + "mute", {Flag(news.state.mute)}});
    if (news.bypassing) messages.push_back({std::string(root) + "bypass", {Flag(news.state.bypass)}});
    messages.push_back(LevelMessage("sources", news.sourceLevels));
    messages.push_back(LevelMessage("outputs", news.outputLevels));
    return messages;
}

}  // namespace live
