#include "orvanverb/proposal/proposal.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "engine/room_controls.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/measure/asked_decay.h"
#include "orvanverb/presets/preset.h"
#include "reverb/recommended_delays_distribution.h"

namespace program {

namespace {

constexpr float sampleRate = 48000.0f;            // [Hz]
constexpr double vectorSeconds = 64.0 / 48000.0;  // what each way through a line takes beyond its delay
constexpr double lineSeconds = 0.1;               // mean delay of the late field's lines that suits large rooms

void Set(Lume::Room& room, char const* name, float value) {
    room.Set(*Lume::FindControl(name), value);
}

/// Times of reflections and the lines of the late field. @return mean delay of a line [s]
double SetTimes(Lume::Room& room, float volume) {
    float earlyStart, earlyEnd, earlyDistribution, clusterStart, clusterEnd, clusterDistribution, reverbStart;
    const unsigned int internals = room.NumInternals();
    // Beyond this the recommended late field begins so late that the decay would have a step.
    constexpr float largest = 5000.0f;  // [m^3]
    volume = std::min(volume, largest);
    float density = static_cast<float>(lineSeconds) * static_cast<float>(internals);
    Lume::RecommendedDelaysDistribution(internals, volume, density, earlyStart, earlyEnd, earlyDistribution,
                                        clusterStart, clusterEnd, clusterDistribution, reverbStart, density);
    const std::pair<char const*, float> times[] = {
        {"early_start", earlyStart},     {"early_end", earlyEnd},     {"early_distr", earlyDistribution},
        {"cluster_start", clusterStart}, {"cluster_end", clusterEnd}, {"cluster_distr", clusterDistribution},
        {"reverb_start", reverbStart},   {"modaldensity", density}};
    for (auto const& [name, value] : times) Set(room, name, value);
    return static_cast<double>(room.Engine().GetReverbModalDensity()) / internals;
}

/// Solves the decay factors: each is multiplied with what its octave lacks, until nothing is lacking.
void SetDecays(Lume::Room& room, RoomOptions const& wanted, double lineDelay) {
    const double shorter = lineDelay / (lineDelay + vectorSeconds);
    const auto mid = static_cast<double>(wanted.decaySeconds);
    const double goals[] = {shorter * static_cast<double>(wanted.lowSeconds.value_or(wanted.decaySeconds)),
                            shorter * mid,
                            shorter * static_cast<double>(wanted.highSeconds.value_or(wanted.decaySeconds))};
    double low = goals[0], middle = goals[1], high = goals[2];
    std::vector<orvanmeasure::Band> bands;
    for (orvanmeasure::Band const& band :
         orvanmeasure::Bands(orvanmeasure::BandWidth::octave, static_cast<double>(sampleRate)))
        if (band.name == "125" || band.name == "500" || band.name == "1000" || band.name == "4000")
            bands.push_back(band);
    Set(room, "fl", 250.0f);
    Set(room, "fh", 2500.0f);
    constexpr int rounds = 12;
    for (int round = 0; round < rounds; ++round) {
        // The highs can't outlast the whole: what is longest becomes the whole.
        const double whole = std::clamp(std::max(middle, high), 0.1, 10.0);
        Set(room, "tr0", static_cast<float>(whole));
        Set(room, "trl", static_cast<float>(low / whole));
        Set(room, "trm", static_cast<float>(middle / whole));
        Set(room, "trh", static_cast<float>(high / whole));
        const std::vector<orvanmeasure::Figure> now = AskedDecay(room.Engine(), static_cast<double>(sampleRate), bands);
        low *= goals[0] / now[0].value;
        middle *= goals[1] / (0.5 * (now[1].value + now[2].value));
        high *= goals[2] / now[3].value;
        const auto within = [&](double& value) { value = std::clamp(value, 0.02, 60.0); };
        within(low);
        within(middle);
        within(high);
    }
}

/// How far a room is from what it should be: its decay must follow the controls, and then begin as it goes on.
double Fault(RoomReport const& report) {
    constexpr double tolerance = 0.04;
    const double deviation = report.WorstDeviation();
    if (deviation > tolerance) return 10.0 + deviation;
    const orvanmeasure::Figure early = report.measured.Mid(&orvanmeasure::BandFigures::edt);
    const orvanmeasure::Figure late = report.measured.Mid(&orvanmeasure::BandFigures::t30);
    return early.IsThere() && late.IsThere() ? std::abs(std::log(early.value / late.value)) : 9.0;
}

}  // namespace

Proposal ProposeRoom(RoomOptions const& wanted) {
    // Short decays need many short lines to be smooth.
    const unsigned int internals = wanted.decaySeconds < 0.6f ? 16 : 8;
    Proposal best;
    double leastFault = HUGE_VAL;
    const Lume::CartesianVector position{0.0f, wanted.distance, 0.0f};
    for (const float lateDb : {-6.0f, -3.0f, 0.0f, 3.0f, 6.0f}) {
        auto room = std::make_unique<Lume::Room>(1, 8, internals);
        SetDecays(*room, wanted, SetTimes(*room, wanted.volume));
        Set(*room, "early_gain", -1.5f);
        Set(*room, "gain", lateDb);
        room->PlaceSource(0, position);
        RoomReport report = ReportRoom(room->Engine(), position, sampleRate);
        if (const double fault = Fault(report); fault < leastFault) {
            leastFault = fault;
            best = {std::move(room), std::move(report), {}, {}};
        }
    }
    const double absorption = 0.161 * static_cast<double>(wanted.volume / wanted.decaySeconds);  // [m^2]
    const double distance = std::max(0.3, static_cast<double>(wanted.distance));
    const double goalDb = 10.0 * std::log10(absorption / (16.0 * std::numbers::pi * distance * distance));
    const double roomDb = best.report.measured.direct->directToRestDb - goalDb;
    Set(*best.room, "room_gain", static_cast<float>(std::clamp(roomDb, -60.0, 10.0)));
    if (roomDb > 10.0) Set(*best.room, "direct_gain", static_cast<float>(std::max(-60.0, 10.0 - roomDb)));
    best.report = ReportRoom(best.room->Engine(), position, sampleRate);
    best.title =
        "A room of " + NumberText(wanted.volume) + " m3 that decays in " + NumberText(wanted.decaySeconds) + " s";
    return best;
}

Proposal ResizeRoom(RoomOptions const& wanted) {
    const Preset preset = ReadPreset(FindPreset(*wanted.preset));
    Proposal proposal;
    proposal.room = MakeRoom(preset);
    Lume::Room& room = *proposal.room;
    const auto change = [&](char const* name, auto how) {
        const std::size_t index = *Lume::FindControl(name);
        Lume::RoomControl const& control = Lume::roomControls[index];
        const float value = how(room.Get(index)), possible = std::clamp(value, control.least, control.greatest);
        room.Set(index, possible);
        if (possible != value)
            proposal.remarks.push_back(std::string(name) + ": " + NumberText(value) + " " + control.unit +
                                       " is not possible, " + NumberText(possible) + " is taken");
    };
    for (char const* const name :
         {"early_start", "early_end", "cluster_start", "cluster_end", "reverb_start", "modaldensity", "tr0"})
        change(name, [&](float value) { return wanted.size * value; });
    change("room_gain", [&](float decibels) { return decibels - 20.0f * std::log10(wanted.size); });
    const Lume::CartesianVector position{0.0f, wanted.distance, 0.0f};
    room.PlaceSource(0, position);
    proposal.report = ReportRoom(room.Engine(), position, sampleRate);
    proposal.title = preset.name + ", " + NumberText(wanted.size) + " times as large";
    return proposal;
}

}  // namespace program
