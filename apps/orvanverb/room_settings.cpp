#include "orvanverb/room_settings.h"

#include <array>
#include <cmath>
#include <optional>
#include <stdexcept>

#include "orvanverb/line_file.h"
#include "orvanverb/text.h"

namespace program {

namespace {

using Limits = Lume::LumeDefaultParameters;

enum class Kind { number, whole };

struct Control {
    char const* name;
    float RoomSettings::*field;
    float lowest;
    float highest;
    Kind kind = Kind::number;
};

constexpr Control controls[] = {
    {"mute", &RoomSettings::mute, 0.0f, 1.0f, Kind::whole},
    {"bypass", &RoomSettings::bypass, 0.0f, 1.0f, Kind::whole},
    {"numinternals", &RoomSettings::numinternals, 2.0f, 16.0f, Kind::whole},
    {"gain", &RoomSettings::gain, Limits::MinHLShelfGaindB, Limits::MaxHLShelfGaindB},
    {"modaldensity", &RoomSettings::modaldensity, Limits::MinReverbModalDensity, Limits::MaxReverbModalDensity},
    {"tr0", &RoomSettings::tr0, Limits::MinDecayTime, Limits::MaxDecayTime},
    {"trl", &RoomSettings::trl, Limits::MinDecayTimeLow, Limits::MaxDecayTimeLow},
    {"trm", &RoomSettings::trm, Limits::MinDecayTimeMed, Limits::MaxDecayTimeMed},
    {"trh", &RoomSettings::trh, Limits::MinDecayTimeHigh, Limits::MaxDecayTimeHigh},
    {"fl", &RoomSettings::fl, Limits::MinHLShelfFrequency, Limits::MaxHLShelfFrequency},
    {"fh", &RoomSettings::fh, Limits::MinHLShelfFrequency, Limits::MaxHLShelfFrequency},
    {"air", &RoomSettings::air, 0.0f, 1.0f, Kind::whole},
    {"airfreq", &RoomSettings::airfreq, Limits::MinHLShelfFrequency, Limits::MaxHLShelfFrequency},
    {"infinite", &RoomSettings::infinite, 0.0f, 1.0f, Kind::whole},
    {"early_start", &RoomSettings::earlyStart, Limits::MinEarlyStart, Limits::MaxEarlyStart},
    {"early_end", &RoomSettings::earlyEnd, Limits::MinEarlyEnd, Limits::MaxEarlyEnd},
    {"early_distr", &RoomSettings::earlyDistr, Limits::MinDistribution, Limits::MaxDistribution},
    {"early_width", &RoomSettings::earlyWidth, Limits::MinEarlyWidth, Limits::MaxEarlyWidth},
    {"early_shape", &RoomSettings::earlyShape, Limits::MinEarlyShape, Limits::MaxEarlyShape},
    {"cluster_start", &RoomSettings::clusterStart, Limits::MinClusterStart, Limits::MaxClusterStart},
    {"cluster_end", &RoomSettings::clusterEnd, Limits::MinClusterEnd, Limits::MaxClusterEnd},
    {"cluster_distr", &RoomSettings::clusterDistr, Limits::MinDistribution, Limits::MaxDistribution},
    {"reverb_start", &RoomSettings::reverbStart, Limits::MinReverbStart, Limits::MaxReverbStart},
};

struct FilterControl {
    char const* name;
    Lume::HLShelfParameters RoomSettings::*filter;
};

constexpr FilterControl filterControls[] = {
    {"direct", &RoomSettings::direct},
    {"room", &RoomSettings::room},
    {"early", &RoomSettings::early},
    {"cluster", &RoomSettings::cluster},
};

std::string AllNames() {
    std::string names;
    for (Control const& control : controls) names += std::string(control.name) + " ";
    for (FilterControl const& control : filterControls) names += std::string(control.name) + " ";
    names.pop_back();
    return names;
}

float InRange(std::string const& name, std::string const& word, float lowest, float highest, Kind kind) {
    const std::optional<float> value = ParseNumber(word);
    // Written as "not inside", so that a word that is no number is refused too.
    if (!(value && *value >= lowest && *value <= highest) || (kind == Kind::whole && *value != std::floor(*value)))
        throw std::invalid_argument(name + ": '" + word + "' is no " + (kind == Kind::whole ? "whole " : "") +
                                    "number from " + NumberText(lowest) + " to " + NumberText(highest));
    return *value;
}

void RequireCount(std::string const& name, std::size_t wanted, std::size_t found) {
    if (found != wanted)
        throw std::invalid_argument(name + ": takes " + std::to_string(wanted) +
                                    (wanted == 1 ? " value, " : " values, ") + std::to_string(found) + " given");
}

Lume::HLShelfParameters ParseFilter(std::string const& name, std::span<std::string const> values) {
    const auto gain = [&](std::size_t i) {
        return InRange(name, values[i], Limits::MinHLShelfGaindB, Limits::MaxHLShelfGaindB, Kind::number);
    };
    const auto frequency = [&](std::size_t i) {
        return InRange(name, values[i], Limits::MinHLShelfFrequency, Limits::MaxHLShelfFrequency, Kind::number);
    };
    RequireCount(name, 6, values.size());
    Lume::HLShelfParameters filter;
    filter.gain =
        InRange(name, values[0], Limits::MinHLShelfGlobalGaindB, Limits::MaxHLShelfGlobalGaindB, Kind::number);
    filter.gainLow = gain(1);
    filter.gainMed = gain(2);
    filter.gainHigh = gain(3);
    filter.freqLow = frequency(4);
    filter.freqHigh = frequency(5);
    return filter;
}

}  // namespace

RoomSettings::RoomSettings() {
    // The crossovers of a flat filter can't be heard; these are what the object shows.
    for (FilterControl const& control : filterControls) {
        (this->*control.filter).freqLow = 177.0f;
        (this->*control.filter).freqHigh = 5657.0f;
    }
}

void RoomSettings::Set(std::string const& name, std::span<std::string const> values) {
    for (Control const& control : controls) {
        if (name != control.name) continue;
        RequireCount(name, 1, values.size());
        this->*control.field = InRange(name, values[0], control.lowest, control.highest, control.kind);
        return;
    }
    for (FilterControl const& control : filterControls) {
        if (name != control.name) continue;
        this->*control.filter = ParseFilter(name, values);
        return;
    }
    throw std::invalid_argument("'" + name + "' is no control; there are: " + AllNames());
}

void RoomSettings::Load(std::string const& path) {
    ReadLineFile(path, [this](std::span<std::string const> words) { Set(words[0], words.subspan(1)); });
}

}  // namespace program
