#include "orvanverb-live/page/page_messages.h"

#include <cmath>
#include <exception>
#include <functional>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "engine/room_controls.h"
#include "orvanverb-live/room/position.h"
#include "orvanverb/object/control_listing.h"
#include "orvanverb/presets/preset.h"

namespace live {

namespace {

using Json = nlohmann::ordered_json;

std::string Text(Json const& json) {
    // Names may come from anywhere; what is no UTF-8 is replaced.
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// As people write it: 2.1, and not 2.0999999046325684.
Json Number(float value) {
    return std::isfinite(value) ? Json(std::stod(std::to_string(value))) : Json(nullptr);
}

Json Place(Lume::CartesianVector const& position) {
    const Direction d = DirectionOf(position);
    return {{"azimuth", Number(d.azimuth)}, {"elevation", Number(d.elevation)}, {"distance", Number(d.distance)}};
}

Json Source(News const& news, unsigned int i) {
    Json source{{"index", i}};
    source.update(Place(news.state.sources[i]));
    source.update({{"gain", Number(news.state.strips[i].gainDb)},
                   {"mute", news.state.strips[i].muted},
                   {"name", news.state.strips[i].name}});
    return source;
}

Json Listener(Lume::Orientation const& head) {
    return {{"yaw", Number(head.yaw)}, {"pitch", Number(head.pitch)}, {"roll", Number(head.roll)}};
}

Json Levels(std::vector<float> const& levels) {
    Json list = Json::array();
    for (const float level : levels) list.push_back(std::round(10.0 * static_cast<double>(Decibels(level))) / 10.0);
    return list;
}

Json Status(AudioStatus const& status) {
    Json json{{"audio", status.text}};
    if (status.rate > 0)
        json.update({{"rate", status.rate},
                     {"block", status.block},
                     {"latency", status.latency},
                     {"load", std::round(1000.0 * static_cast<double>(status.load)) / 1000.0}});
    if (status.xruns >= 0) json["xruns"] = status.xruns;
    if (status.numBad > 0) json["bad"] = status.numBad;
    return json;
}

Json Presets() {
    Json list = Json::array();
    for (std::filesystem::path const& path : program::AllPresets()) {
        const program::Preset preset = program::ReadPreset(path);
        list.push_back({{"name", preset.name}, {"title", preset.title}});
    }
    return list;
}

Json Speakers(News const& news, std::vector<OutputName> const& outputs) {
    Json list = Json::array();
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        Json speaker{{"name", outputs[i].name}};
        if (outputs[i].hasPlace && i < news.state.speakers.size()) speaker.update(Place(news.state.speakers[i]));
        list.push_back(std::move(speaker));
    }
    return list;
}

void PlaceSource(Json const& wish, Desk& desk) {
    const auto source = wish.at("index").get<unsigned int>();
    if (source >= desk.NumSources()) throw std::invalid_argument("there is no such source");
    if (wish.contains("azimuth") || wish.contains("elevation") || wish.contains("distance")) {
        Direction d = DirectionOf(desk.State().sources[source]);
        d.azimuth = wish.value("azimuth", d.azimuth);
        d.elevation = wish.value("elevation", d.elevation);
        d.distance = wish.value("distance", d.distance);
        desk.PlaceSource(source, PositionAt(d));
    }
    if (wish.contains("gain")) desk.SetGain(source, wish["gain"].get<float>());
    if (wish.contains("mute")) desk.SetSourceMute(source, wish["mute"].get<bool>());
    if (wish.contains("name")) desk.SetName(source, wish["name"].get<std::string>());
}

void TurnListener(Json const& wish, Desk& desk) {
    Lume::Orientation head = desk.State().orientation;
    head.yaw = wish.value("yaw", head.yaw);
    head.pitch = wish.value("pitch", head.pitch);
    head.roll = wish.value("roll", head.roll);
    desk.SetOrientation(head);
}

void SetControls(Json const& wish, Desk& desk) {
    for (auto const& [name, value] : wish.items()) {
        const std::optional<std::size_t> control = Lume::FindControl(name);
        if (!control) throw std::invalid_argument("there is no control " + name);
        desk.Set(*control, value.is_boolean() ? static_cast<float>(value.get<bool>()) : value.get<float>());
    }
}

}  // namespace

std::string SnapshotMessage(Desk const& desk, News const& news, std::vector<OutputName> const& outputs) {
    Json snapshot;
    Json& controls = snapshot["controls"] = Json::object();
    for (std::size_t i = 0; i < news.state.controls.size(); ++i)
        controls[Lume::roomControls[i].name] = Number(news.state.controls[i]);
    Json& sources = snapshot["sources"] = Json::array();
    for (unsigned int i = 0; i < desk.NumSources(); ++i) sources.push_back(Source(news, i));
    snapshot["listener"] = Listener(news.state.orientation);
    snapshot["mute"] = news.state.mute;
    snapshot["bypass"] = news.state.bypass;
    snapshot["status"] = Status(news.status);
    snapshot["table"] = Json::parse(program::ControlJson());
    snapshot["speakers"] = Speakers(news, outputs);
    snapshot["headphones"] = !desk.EarsNames().empty();
    snapshot["presets"] = Presets();
    if (const std::vector<std::string> ears = desk.EarsNames(); !ears.empty()) {
        snapshot["ears"] = desk.EarsName();
        snapshot["earsNames"] = ears;
    }
    snapshot["saves"] = true;
    return Text({{"snapshot", std::move(snapshot)}});
}

std::string ChangeMessage(News const& news, Desk const& desk) {
    Json change = Json::object();
    for (const unsigned int i : news.controls)
        change["controls"][Lume::roomControls[i].name] = Number(news.state.controls[i]);
    for (const unsigned int i : news.sources) change["sources"].push_back(Source(news, i));
    if (news.turning) change["listener"] = Listener(news.state.orientation);
    if (news.muting) change["mute"] = news.state.mute;
    if (news.bypassing) change["bypass"] = news.state.bypass;
    if (news.ears) change["ears"] = desk.EarsName();
    std::string remarks;  // all that came since the last message, which the page shows together
    for (std::string const& line : news.remarks) remarks.append(remarks.empty() ? "" : "\n").append(line);
    if (!remarks.empty()) change["remark"] = remarks;
    return change.empty() ? std::string() : Text(change);
}

std::string LevelMessage(News const& news) {
    return Text({{"levels", {{"sources", Levels(news.sourceLevels)}, {"outputs", Levels(news.outputLevels)}}},
                 {"status", Status(news.status)}});
}

std::string ErrorMessage(std::string_view line) {
    return Text({{"error", line}});
}

std::vector<std::string> TakePageMessage(std::string_view text, Desk& desk) {
    const Json message = Json::parse(text, nullptr, false);
    if (!message.is_object()) return {ErrorMessage("a message is an object of JSON")};
    std::vector<std::string> answers;
    const auto take = [&](char const* key, std::function<void(Json const&)> const& act) {
        const auto wish = message.find(key);
        if (wish == message.end()) return;
        try {
            act(*wish);
        } catch (nlohmann::json::exception const&) {
            answers.push_back(ErrorMessage(std::string(key) + ": has another form"));
        } catch (std::exception const& error) {
            answers.push_back(ErrorMessage(error.what()));
        }
    };
    take("preset", [&](Json const& wish) { desk.LoadPreset(wish.get<std::string>()); });
    take("state", [&](Json const& wish) { desk.LoadState(wish.get<std::string>()); });
    take("controls", [&](Json const& wish) { SetControls(wish, desk); });
    take("sources", [&](Json const& wish) {
        for (Json const& source : wish) PlaceSource(source, desk);
    });
    take("listener", [&](Json const& wish) { TurnListener(wish, desk); });
    take("mute", [&](Json const& wish) { desk.SetMute(wish.get<bool>()); });
    take("bypass", [&](Json const& wish) { desk.SetBypass(wish.get<bool>()); });
    take("ears", [&](Json const& wish) { desk.UseEars(wish.get<std::string>()); });
    take("clear", [&](Json const&) { desk.Tell("clear"); });
    take("save", [&](Json const&) { answers.push_back(Text({{"state", desk.StateToKeep().Text()}})); });
    return answers;
}

}  // namespace live
