// What a room reads and writes: the ears' files, and its whole state.

#include <cmath>
#include <span>
#include <stdexcept>
#include <system_error>

#include "dsp/floating_point_mode.h"
#include "dsp/orvan_dsp_exception.h"
#include "geometry/speakers.h"
#include "hrtf/hrtf.h"
#include "hrtf/hrtf_info.h"
#include "room/file_checksum.h"
#include "room/room.h"

namespace Lume {

using orvandsp::FloatingPointMode;

namespace {

[[noreturn]] void Refuse(std::filesystem::path const& file, std::string const& why) {
    throw std::runtime_error(file.string() + ": " + why);
}

void RequireFile(std::filesystem::path const& file) {
    std::error_code error;
    if (!std::filesystem::exists(file, error)) Refuse(file, std::generic_category().message(ENOENT));
    if (!std::filesystem::is_regular_file(file, error)) Refuse(file, "is no file");
}

/// Says which field of a set's description makes it unfit.
void RequireEars(std::filesystem::path const& file, HrtfHeaderInfos const& infos) {
    if (infos.hrtfType != hrtfBinaural)
        Refuse(file, "DataType: Binaural is expected, not " + GetHrtfTypeName(infos.hrtfType));
    if (infos.filterType != hrtfBiquadCells && infos.filterType != hrtfFIR)
        Refuse(file, "FiltersType: BiquadCells or FIR is expected, not " + GetHrtfFilterTypeName(infos.filterType));
    if (infos.numChannels != 2)
        Refuse(file, "NumChannels: 2 ears are expected, not " + std::to_string(infos.numChannels));
    if (infos.numCoefficients == 0) Refuse(file, "FiltersLength: there are no coefficients");
    if (infos.numPoints == 0) Refuse(file, "NumPoints: there are no directions");
}

std::unique_ptr<Hrtf> ReadSet(std::filesystem::path const& file) {
    RequireFile(file);
    try {
        auto set = std::make_unique<Hrtf>("");
        if (file.extension() == ".hrtf")
            set->LoadFromHRTF(file.string());
        else if (file.extension() == ".coll")
            set->LoadFromColl(file.string(), HrtfInfoBinauralBiquadFullSphere());
        else
            Refuse(file, "a name that ends in .hrtf or .coll is expected");
        RequireEars(file, set->GetHrtfHeaderInfos());
        return set;
    } catch (orvandsp::OrvanDspException const& error) {
        // The loaders' messages end in the name, which stands in front here.
        std::string why = error.what();
        why.erase(std::min(why.find(file.string()), why.size()));
        why.erase(why.find_last_not_of(" ?") + 1);
        Refuse(file, why);
    }
}

EarsFile Describe(std::filesystem::path const& file) {
    RequireFile(file);
    return {std::filesystem::absolute(file), FileChecksum(file)};
}

/// 0 and no positions are nothing told.
void RequireSize(std::string const& name, unsigned int told, std::span<CartesianVector const> positions,
                 unsigned int size) {
    if (told != 0 && told != size)
        throw std::invalid_argument(name + " " + std::to_string(told) + ": this room has " + std::to_string(size));
    if (!positions.empty() && positions.size() != size)
        throw std::invalid_argument(std::to_string(positions.size()) + " positions: this room has " + name + " " +
                                    std::to_string(size));
    for (CartesianVector const& p : positions)
        if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z))
            throw std::invalid_argument("a position is not finite");
}

void RequireHeadphones(Room const& room, std::filesystem::path const& file) {
    if (!room.HasEars())
        Refuse(file,
               "ears are for headphones, and this room plays " + std::to_string(room.NumSpeakers()) + " loudspeakers");
}

}  // namespace

Ears Room::PrepareEars(std::filesystem::path const& file) const {
    const FloatingPointMode unchanged;
    RequireHeadphones(*this, file);
    EarsFile description = Describe(file);
    return {engine->MakeEars(ReadSet(file)), std::move(description)};
}

bool Room::TakeEars(Ears& ears) noexcept {
    if (!ears.filters || ears.filters->GetSamplerate() != engine->GetSamplerate() ||
        ears.filters->GetBuffersize() != engine->GetBuffersize())
        return false;
    std::swap(nextEars, ears.filters);
    std::swap(earsFile, ears.file);
    earsWait = true;
    return true;
}

void Room::LoadEars(std::filesystem::path const& file) {
    const FloatingPointMode unchanged;
    RequireHeadphones(*this, file);
    EarsFile description = Describe(file);
    UseSet(ReadSet(file), std::move(description));
}

void Room::UseSet(std::unique_ptr<Hrtf> set, EarsFile file) {
    if (runs) {
        Ears ears{engine->MakeEars(std::move(set)), std::move(file)};
        TakeEars(ears);
    } else {
        engine->SetHrtf(std::move(set));
        earsFile = std::move(file);
    }
}

void Room::RestoreEars(EarsFile const& wanted) {
    const FloatingPointMode unchanged;
    if (wanted.path == earsFile.path && wanted.checksum == earsFile.checksum) return;
    if (wanted.path.empty()) return UseSet(std::make_unique<Hrtf>(Hrtf::Builtin(Samplerate())), {});
    RequireHeadphones(*this, wanted.path);
    std::unique_ptr<Hrtf> set = ReadSet(wanted.path);
    if (FileChecksum(wanted.path) != wanted.checksum) Refuse(wanted.path, "has changed since the state was saved");
    UseSet(std::move(set), wanted);
}

void Room::MatchBuiltinEars() {
    if (!HasEars() || earsWait || !earsFile.path.empty()) return;
    auto builtin = std::make_unique<Hrtf>(Hrtf::Builtin(Samplerate()));
    if (builtin->GetSamplingRate() != EarsInfos()->samplingRate) engine->SetHrtf(std::move(builtin));
}

std::string Room::EarsRemark() const {
    if (!HasEars()) return {};
    const auto rate = static_cast<unsigned int>(std::lround(Samplerate()));
    const unsigned int madeFor = EarsInfos()->samplingRate;
    if (madeFor == rate) return {};
    return (earsFile.path.empty() ? "the nearest of the built-in ears" : earsFile.path.string()) + ": made for " +
           std::to_string(madeFor) + " Hz, the room runs at " + std::to_string(rate) +
           "; orvanverb hrtf convert makes a set for it";
}

RoomState Room::SaveState() const {
    RoomState state;
    state.numSources = NumSources();
    state.numSpeakers = NumSpeakers();
    state.numInternals = NumInternals();
    state.vectorSize = VectorSize();
    state.ears = earsFile;
    if (Format() != nullptr) state.format = Format()->name;
    state.orientation = GetOrientation();
    state.mute = muted;
    state.bypass = bypassed;
    for (unsigned int i = 0; i < NumSources(); ++i) state.sources.push_back(SourcePosition(i));
    if (Format() == nullptr || Format()->outputs != RoomFormat::Outputs::harmonics) state.speakers = SpeakerPositions();
    for (std::size_t i = 0; i < roomControls.size(); ++i) state.controls[i] = Get(i);
    state.strips = strips;
    state.unknown = unknownState;
    return state;
}

void Room::RestoreState(RoomState const& state) {
    const FloatingPointMode unchanged;
    RequireSize("numsources", state.numSources, state.sources, NumSources());
    RequireSize("numspeakers", state.numSpeakers, state.speakers, NumSpeakers());
    RequireSize("numinternals", state.numInternals, {}, NumInternals());
    if (const std::string here = Format() != nullptr ? Format()->name : ""; state.format != here)
        throw std::invalid_argument("format " + (state.format.empty() ? "is missing" : state.format) +
                                    ": this room has " + (here.empty() ? "none" : here));
    if (state.controls.size() != roomControls.size())
        throw std::invalid_argument("a value for each control is expected");
    for (std::size_t i = 0; i < roomControls.size(); ++i)
        if (!std::isfinite(state.controls[i]))
            throw std::invalid_argument(std::string(roomControls[i].name) + ": is not finite");
    for (const float angle : {state.orientation.yaw, state.orientation.pitch, state.orientation.roll})
        if (!std::isfinite(angle)) throw std::invalid_argument("orientation: is not finite");

    RestoreEars(state.ears);
    muted = state.mute;
    bypassed = state.bypass;
    // Past Set, which would limit what an object's words have let through.
    for (std::size_t i = 0; i < roomControls.size(); ++i) roomControls[i].set(*engine, state.controls[i]);
    SetOrientation(state.orientation);
    if (state.speakers.empty())
        PlaceBuiltInSpeakers();
    else
        PlaceSpeakers(state.speakers);
    std::vector<CartesianVector> sources = state.sources;
    if (sources.empty()) Speakers::GetDefaultForChannels(sources, NumSources());
    for (unsigned int i = 0; i < NumSources(); ++i) PlaceSource(i, sources[i]);
    for (unsigned int i = 0; i < NumSources(); ++i) {
        const SourceStrip strip = i < state.strips.size() ? state.strips[i] : SourceStrip{};
        SetSourceGain(i, strip.gainDb);
        SetSourceMuted(i, strip.muted);
        SetSourceName(i, strip.name);
    }
    unknownState = state.unknown;
}

}  // namespace Lume
