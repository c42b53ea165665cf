#include "lv2/room_plugin.h"

#include <lv2/atom/util.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/options/options.h>
#include <lv2/patch/patch.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <limits>
#include <stdexcept>

#include "geometry/azimuth_distance_elevation.h"

namespace lv2 {

namespace {

/// What the program renders at, so that both sound the same to the last bit [samples].
constexpr std::size_t usualVectorSize = 64;
constexpr std::size_t usualBlockLength = 8192;  // where a host announces none
constexpr std::size_t maxOutputs = 16;
constexpr std::size_t maxPath = 4096;
constexpr float silenceDb = -90.0f;  // what a meter shows of nothing

template <class Feature>
Feature* Find(LV2_Feature const* const* features, char const* uri) {
    for (; features != nullptr && *features != nullptr; ++features)
        if (std::strcmp((*features)->URI, uri) == 0) return static_cast<Feature*>((*features)->data);
    return nullptr;
}

bool Has(LV2_Feature const* const* features, char const* uri) {
    for (; features != nullptr && *features != nullptr; ++features)
        if (std::strcmp((*features)->URI, uri) == 0) return true;
    return false;
}

/// Gives a path back to the host that made it.
void Release(LV2_Feature const* const* features, char* path) {
    if (auto* const release = Find<LV2_State_Free_Path>(features, LV2_STATE__freePath))
        release->free_path(release->handle, path);
    else
        std::free(path);
}

/// Whether a value is another one than was heard, beyond what writing it down and reading it again costs.
/// @param small  what is smaller counts as this
bool Differs(float value, float heard, float small = 1e-3f) {
    return !(std::abs(value - heard) <= 1e-5f * std::max(std::abs(value), small));
}

}  // namespace

Urids::Urids(LV2_URID_Map& map) {
    const auto id = [&](std::string const& uri) { return map.map(map.handle, uri.c_str()); };
    atomPath = id(LV2_ATOM__Path);
    atomString = id(LV2_ATOM__String);
    atomUrid = id(LV2_ATOM__URID);
    atomInt = id(LV2_ATOM__Int);
    patchGet = id(LV2_PATCH__Get);
    patchSet = id(LV2_PATCH__Set);
    patchProperty = id(LV2_PATCH__property);
    patchValue = id(LV2_PATCH__value);
    ears = id(std::string(uriBase) + "ears");
    speakers = id(std::string(uriBase) + "speakers");
    state = id(std::string(uriBase) + "state");
    minBlockLength = id(LV2_BUF_SIZE__minBlockLength);
    maxBlockLength = id(LV2_BUF_SIZE__maxBlockLength);
}

RoomPlugin::RoomPlugin(Variant const& newVariant, double newSampleRate, LV2_Feature const* const* features)
    : variant(newVariant), sampleRate(newSampleRate), ports(PortsOf(variant)), wet(true), dry(false) {
    auto* const map = Find<LV2_URID_Map>(features, LV2_URID__map);
    if (map != nullptr) {
        urids = std::make_unique<Urids>(*map);
        lv2_atom_forge_init(&forge, map);
    }
    lv2_log_logger_init(&logger, map, Find<LV2_Log_Log>(features, LV2_LOG__log));
    schedule = Find<LV2_Worker_Schedule>(features, LV2_WORKER__schedule);

    std::int32_t shortest = 0, longest = 0;
    auto const* option = Find<LV2_Options_Option const>(features, LV2_OPTIONS__options);
    if (option != nullptr && urids != nullptr) {
        for (; option->key != 0; ++option) {
            if (option->type != urids->atomInt || option->value == nullptr) continue;
            const auto value = *static_cast<std::int32_t const*>(option->value);
            if (option->key == urids->minBlockLength) shortest = value;
            if (option->key == urids->maxBlockLength) longest = value;
        }
    }
    blockLength = longest > 0 ? static_cast<std::size_t>(longest) : usualBlockLength;
    steadyBlocks = longest > 0 && (shortest == longest || Has(features, LV2_BUF_SIZE__fixedBlockLength));

    data.assign(ports.size(), nullptr);
    lastSeen.assign(ports.size(), std::numeric_limits<float>::quiet_NaN());
    room = std::make_unique<Lume::Room>(variant.numSources, static_cast<unsigned int>(variant.outputs.size()));
    for (unsigned int i = 0; i < variant.numSources; ++i)
        sources.push_back({StandardAzimuthDeg(variant, i), 0.0f, 1.0f, Fade(true)});
    roomInputs.resize(variant.numSources);
    roomOutputs.resize(variant.outputs.size());
    peaks.resize(variant.outputs.size());
}

void RoomPlugin::Connect(std::uint32_t port, void* newData) {
    if (port < data.size()) data[port] = newData;
}

void RoomPlugin::Activate() {
    const std::lock_guard lock(besideAudio);
    active = true;
    // What ports say before the first block is how the room begins, and not where it glides to.
    if (!configured) ReadPorts();
    Renew(room->SaveState());
    Configure();
}

void RoomPlugin::Deactivate() {
    active = false;
}

/// A new room in that state, in which there is no trace of what the former one played or was told.
void RoomPlugin::Renew(Lume::RoomState state) {
    auto restored = std::make_unique<Lume::Room>(room->NumSources(), room->NumSpeakers(), state.numInternals);
    try {
        restored->RestoreState(state);
    } catch (std::runtime_error const& error) {  // the file of the ears has gone
        lv2_log_error(&logger, "orvanverb: the built-in ears are used: %s\n", error.what());
        state.ears = {};
        restored->RestoreState(state);
    }
    room = std::move(restored);
    configured = false;
}

void RoomPlugin::Configure() {
    configured = true;
    // Whole vectors fit blocks of a steady size that is a multiple of sixteen; others wait until one is full.
    const bool fits = steadyBlocks && blockLength % Lume::SteadyVectors::minVectorSize == 0;
    const std::size_t vectorSize =
        fits ? std::min(usualVectorSize, std::size_t{1} << std::countr_zero(blockLength)) : usualVectorSize;
    room->Configure(static_cast<float>(sampleRate), blockLength, vectorSize,
                    fits ? Lume::SteadyVectors::Blocks::Steady : Lume::SteadyVectors::Blocks::Varying);
    room->Settle();  // so that the first sample meets the room as it is set
    inputs.assign(variant.numSources, std::vector<float>(blockLength));
    waiting.assign(variant.numSources, std::vector<float>(room->Latency() + blockLength));
    for (Fade* fade : {&wet, &dry}) {
        fade->SetSampleRate(sampleRate);
        fade->Jump();
    }
    for (Source& source : sources) {
        source.fade.SetSampleRate(sampleRate);
        source.fade.Jump();
    }
}

void RoomPlugin::Run(std::uint32_t numSamples) {
    ReadEvents();
    ReadPorts();
    std::fill(peaks.begin(), peaks.end(), 0.0f);
    for (std::size_t done = 0; done < numSamples;) {
        const std::size_t count = std::min(numSamples - done, blockLength);
        Process(done, count);
        done += count;
    }
    for (std::size_t i = 0; i < ports.size(); ++i) {
        if (data[i] == nullptr) continue;
        if (ports[i].kind == PortKind::latency) *static_cast<float*>(data[i]) = static_cast<float>(room->Latency());
        if (ports[i].kind == PortKind::level)
            *static_cast<float*>(data[i]) = std::max(20.0f * std::log10(peaks[ports[i].index]), silenceDb);
    }
    TellFiles();
}

/// Of the sources first come the inputs, then the outputs: numbers of ports as PortsOf has them.
void RoomPlugin::Process(std::size_t begin, std::size_t count) {
    for (std::size_t i = 0; i < variant.numSources; ++i) {
        float const* const input = Value(i) + begin;
        std::copy_n(input, count, inputs[i].begin());
        std::copy_n(input, count, waiting[i].begin() + static_cast<std::ptrdiff_t>(room->Latency()));
        sources[i].fade.Apply(inputs[i].data(), count);
        roomInputs[i] = inputs[i].data();
    }
    // One gain for all: each source goes its way from the same start.
    const Fade start = wet;
    for (auto& input : inputs) {
        wet = start;
        wet.Apply(input.data(), count);
    }
    for (std::size_t i = 0; i < variant.outputs.size(); ++i)
        roomOutputs[variant.outputs[i].engineChannel] = static_cast<float*>(data[variant.numSources + i]) + begin;
    room->Process(roomOutputs.data(), roomInputs.data(), count);
    AddDry(begin, count);
    for (std::size_t i = 0; i < variant.outputs.size(); ++i) {
        float const* const output = Value(variant.numSources + i) + begin;
        for (std::size_t k = 0; k < count; ++k) peaks[i] = std::max(peaks[i], std::abs(output[k]));
    }
}

/// A switched-off plug-in passes its inputs on, as late as the room would answer, while the tail rings out.
void RoomPlugin::AddDry(std::size_t begin, std::size_t count) {
    const Fade start = dry;
    for (std::size_t i = 0; i < variant.outputs.size() && !start.IsSilent(); ++i) {
        char const* const designation = variant.outputs[i].designation;
        std::size_t source = i;
        if (designation != nullptr) {
            if (std::strcmp(designation, "left") == 0)
                source = 0;
            else if (std::strcmp(designation, "right") == 0)
                source = std::min(1u, variant.numSources - 1);
            else
                continue;
        } else if (source >= variant.numSources) {
            continue;
        }
        dry = start;
        std::copy_n(waiting[source].begin(), count, inputs[source].begin());
        dry.Apply(inputs[source].data(), count);
        float* const output = static_cast<float*>(data[variant.numSources + i]) + begin;
        for (std::size_t k = 0; k < count; ++k) output[k] += inputs[source][k];
    }
    for (auto& samples : waiting)
        std::copy(samples.begin() + static_cast<std::ptrdiff_t>(count),
                  samples.begin() + static_cast<std::ptrdiff_t>(count + room->Latency()), samples.begin());
}

/// Hands on what has changed. A port is heard for the first time after the plug-in was made or its state restored: then
/// only what differs from the room counts, as hosts write values down with fewer digits.
void RoomPlugin::ReadPorts() {
    for (std::size_t i = 0; i < ports.size(); ++i) {
        if (data[i] == nullptr) continue;
        const auto [kind, index] = ports[i];
        if (kind < PortKind::enabled || kind == PortKind::latency || kind == PortKind::level) continue;
        const float value = *Value(i);
        if (!std::isfinite(value) || value == lastSeen[i]) continue;
        const bool isFirst = std::isnan(lastSeen[i]);
        lastSeen[i] = value;
        switch (kind) {
            case PortKind::enabled:
                wet.Aim(value > 0.0f);
                dry.Aim(!(value > 0.0f));
                if (isFirst) {
                    wet.Jump();
                    dry.Jump();
                }
                break;
            case PortKind::active:
                sources[index].fade.Aim(value > 0.0f);
                if (isFirst) sources[index].fade.Jump();
                break;
            case PortKind::azimuth:
                ReadSource(index, value, sources[index].elevationDeg, sources[index].distance);
                break;
            case PortKind::elevation:
                ReadSource(index, sources[index].azimuthDeg, value, sources[index].distance);
                break;
            case PortKind::distance:
                ReadSource(index, sources[index].azimuthDeg, sources[index].elevationDeg, value);
                break;
            case PortKind::control:
                if (!isFirst || Differs(value, room->Get(index))) room->Set(index, value);
                break;
            default:
                break;
        }
    }
}

void RoomPlugin::ReadSource(unsigned int number, float azimuthDeg, float elevationDeg, float distance) {
    Source& source = sources[number];
    const float azimuth = std::clamp(azimuthDeg, -180.0f, 180.0f);
    const float elevation = std::clamp(elevationDeg, -maxElevationDeg, maxElevationDeg);
    const float metres = std::clamp(distance, minDistance, maxDistance);
    constexpr float smallAngle = 1.0f;  // a source straight ahead, told by its coordinates, is off by 1e-6 degrees
    if (!Differs(azimuth, source.azimuthDeg, smallAngle) && !Differs(elevation, source.elevationDeg, smallAngle) &&
        !Differs(metres, source.distance))
        return;
    source.azimuthDeg = azimuth;
    source.elevationDeg = elevation;
    source.distance = metres;
    room->PlaceSource(number, Lume::FromAzimuthDistanceElevation(azimuth, metres, elevation));
}

void RoomPlugin::ReadEvents() {
    const std::size_t port = variant.numSources + variant.outputs.size();  // PortKind::events
    auto const* const sequence = static_cast<LV2_Atom_Sequence const*>(data[port]);
    if (sequence == nullptr || urids == nullptr) return;
    LV2_ATOM_SEQUENCE_FOREACH(sequence, event) {
        if (!lv2_atom_forge_is_object_type(&forge, event->body.type)) continue;
        auto const* const object = reinterpret_cast<LV2_Atom_Object const*>(&event->body);
        if (object->body.otype == urids->patchGet) tellFiles = true;
        if (object->body.otype != urids->patchSet || schedule == nullptr) continue;
        LV2_Atom const* property = nullptr;
        LV2_Atom const* value = nullptr;
        lv2_atom_object_get(object, urids->patchProperty, &property, urids->patchValue, &value, 0);
        if (property == nullptr || property->type != urids->atomUrid || value == nullptr ||
            value->type != urids->atomPath)
            continue;
        const LV2_URID key = reinterpret_cast<LV2_Atom_URID const*>(property)->body;
        if (key == urids->ears || key == urids->speakers) ScheduleFile(key, *value);
    }
}

/// Sends a path to the worker, behind the property that it is for. One that doesn't fit is none.
void RoomPlugin::ScheduleFile(LV2_URID key, LV2_Atom const& path) {
    std::array<char, sizeof(LV2_URID) + maxPath> request{};
    if (path.size > maxPath) return;
    std::memcpy(request.data(), &key, sizeof key);
    std::memcpy(request.data() + sizeof key, LV2_ATOM_BODY_CONST(&path), path.size);
    schedule->schedule_work(schedule->handle, static_cast<std::uint32_t>(sizeof key + path.size), request.data());
}

/// Tells the host which files ears and loudspeakers are from.
void RoomPlugin::TellFiles() {
    const std::size_t port = variant.numSources + variant.outputs.size() + 1;  // PortKind::notify
    auto* const sequence = static_cast<LV2_Atom_Sequence*>(data[port]);
    if (sequence == nullptr || urids == nullptr) return;
    const std::uint32_t capacity = sequence->atom.size;
    lv2_atom_forge_set_buffer(&forge, static_cast<std::uint8_t*>(data[port]), capacity);
    LV2_Atom_Forge_Frame frame{};
    lv2_atom_forge_sequence_head(&forge, &frame, 0);
    if (tellFiles) {
        tellFiles = false;
        if (variant.IsHeadphones())
            Tell(urids->ears, room->CurrentEars().path.c_str());
        else
            Tell(urids->speakers, speakersPath.c_str());
    }
    lv2_atom_forge_pop(&forge, &frame);
}

void RoomPlugin::Tell(LV2_URID property, char const* path) {
    LV2_Atom_Forge_Frame object{};
    lv2_atom_forge_frame_time(&forge, 0);
    lv2_atom_forge_object(&forge, &object, 0, urids->patchSet);
    lv2_atom_forge_key(&forge, urids->patchProperty);
    lv2_atom_forge_urid(&forge, property);
    lv2_atom_forge_key(&forge, urids->patchValue);
    lv2_atom_forge_path(&forge, path, static_cast<std::uint32_t>(std::strlen(path)));
    lv2_atom_forge_pop(&forge, &object);
}

bool RoomPlugin::PlaceSpeakers(std::span<Lume::CartesianVector const> positions) {
    std::array<Lume::CartesianVector, maxOutputs> ordered;
    for (std::size_t i = 0; i < variant.outputs.size(); ++i) ordered[variant.outputs[i].engineChannel] = positions[i];
    return room->PlaceSpeakers({ordered.data(), variant.outputs.size()});
}

/// A file comes as its property and path; what is to be deleted as a Loaded.
LV2_Worker_Status RoomPlugin::Work(LV2_Worker_Respond_Function respond, LV2_Worker_Respond_Handle handle,
                                   std::uint32_t size, void const* body) {
    LV2_URID key = 0;
    if (size < sizeof key) return LV2_WORKER_ERR_UNKNOWN;
    std::memcpy(&key, body, sizeof key);
    if (key == 0) {
        Loaded used{};
        if (size != sizeof used) return LV2_WORKER_ERR_UNKNOWN;
        std::memcpy(&used, body, sizeof used);
        delete used.ears;
        delete used.speakers;
        return LV2_WORKER_SUCCESS;
    }
    char const* const text = static_cast<char const*>(body) + sizeof key;
    const std::string path(text, strnlen(text, size - sizeof key));
    const std::lock_guard lock(besideAudio);
    std::unique_ptr<Lume::Ears> ears;
    std::unique_ptr<SpeakersFile> speakers;
    try {
        if (key == urids->ears)
            ears = std::make_unique<Lume::Ears>(room->PrepareEars(path));
        else if (variant.IsHeadphones())
            throw std::runtime_error(path + ": loudspeakers are not for headphones");
        else
            speakers = std::make_unique<SpeakersFile>(ReadSpeakers(path, variant.outputs.size()));
    } catch (std::exception const& error) {
        lv2_log_error(&logger, "orvanverb: %s\n", error.what());
    }
    const Loaded loaded{0, ears.get(), speakers.get()};
    if (respond(handle, sizeof loaded, &loaded) == LV2_WORKER_SUCCESS) {
        (void)ears.release();
        (void)speakers.release();
    }
    return LV2_WORKER_SUCCESS;
}

LV2_Worker_Status RoomPlugin::WorkResponse(std::uint32_t size, void const* body) {
    Loaded loaded{};
    if (size != sizeof loaded) return LV2_WORKER_ERR_UNKNOWN;
    std::memcpy(&loaded, body, sizeof loaded);
    if (loaded.ears != nullptr) room->TakeEars(*loaded.ears);
    if (loaded.speakers != nullptr && PlaceSpeakers(loaded.speakers->positions))
        std::swap(speakersPath, loaded.speakers->path);
    tellFiles = true;  // of one that wasn't taken too: the host already shows it
    schedule->schedule_work(schedule->handle, sizeof loaded, &loaded);
    return LV2_WORKER_SUCCESS;
}

LV2_State_Status RoomPlugin::Save(LV2_State_Store_Function store, LV2_State_Handle handle,
                                  LV2_Feature const* const* features) {
    if (urids == nullptr) return LV2_STATE_ERR_NO_FEATURE;
    constexpr std::uint32_t flags = LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE;
    Lume::RoomState state = room->SaveState();
    const std::string path = state.ears.path;
    state.ears = {};  // the path goes by the host, which may move the file
    const std::string text = state.Text();
    if (store(handle, urids->state, text.c_str(), text.size() + 1, urids->atomString, flags) != LV2_STATE_SUCCESS)
        return LV2_STATE_ERR_UNKNOWN;
    auto* const map = Find<LV2_State_Map_Path>(features, LV2_STATE__mapPath);
    const auto storeFile = [&](LV2_URID key, std::string const& file) {
        if (file.empty() || map == nullptr) return LV2_STATE_SUCCESS;
        char* const abstract = map->abstract_path(map->handle, file.c_str());
        const LV2_State_Status status = store(handle, key, abstract, std::strlen(abstract) + 1, urids->atomPath, flags);
        Release(features, abstract);
        return status;
    };
    const LV2_State_Status status = storeFile(urids->ears, path);
    return status == LV2_STATE_SUCCESS ? storeFile(urids->speakers, speakersPath) : status;
}

LV2_State_Status RoomPlugin::Restore(LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle,
                                     LV2_Feature const* const* features) {
    if (urids == nullptr) return LV2_STATE_ERR_NO_FEATURE;
    const std::lock_guard lock(besideAudio);
    const auto text = [&](LV2_URID key) {
        std::size_t size = 0;
        std::uint32_t type = 0, flags = 0;
        auto const* const value = static_cast<char const*>(retrieve(handle, key, &size, &type, &flags));
        return value != nullptr ? std::string(value, strnlen(value, size)) : std::string();
    };
    try {
        if (const std::string saved = text(urids->state); !saved.empty()) {
            Lume::RoomState state = Lume::RoomState::Parse(saved);
            if (state.numInternals == 0) state.numInternals = Lume::Room::usualInternals;
            Renew(state);
        }
    } catch (std::exception const& error) {
        lv2_log_error(&logger, "orvanverb: the state can't be restored: %s\n", error.what());
        return LV2_STATE_ERR_UNKNOWN;
    }
    const auto restoreFile = [&](LV2_URID key, char const* what, auto load) {
        const std::string path = text(key);
        if (path.empty()) return;
        auto* const map = Find<LV2_State_Map_Path>(features, LV2_STATE__mapPath);
        char* const absolute = map != nullptr ? map->absolute_path(map->handle, path.c_str()) : nullptr;
        try {
            load(std::string(absolute != nullptr ? absolute : path.c_str()));
        } catch (std::exception const& error) {
            lv2_log_error(&logger, "orvanverb: %s: %s\n", what, error.what());
        }
        Release(features, absolute);
    };
    restoreFile(urids->ears, "the built-in ears stay", [&](std::string const& path) { room->LoadEars(path); });
    speakersPath.clear();
    restoreFile(urids->speakers, "the loudspeakers stay where they are", [&](std::string const& path) {
        SpeakersFile file = ReadSpeakers(path, variant.outputs.size());
        PlaceSpeakers(file.positions);
        speakersPath = std::move(file.path);
    });
    if (active && !configured) Configure();
    tellFiles = true;
    for (unsigned int i = 0; i < variant.numSources; ++i) {
        const Lume::CartesianVector p = room->SourcePosition(i);
        const double degrees = 180.0 / 3.14159265358979323846;
        sources[i].distance = p.radius();
        sources[i].azimuthDeg =
            static_cast<float>(std::atan2(static_cast<double>(p.x), static_cast<double>(p.y)) * degrees);
        sources[i].elevationDeg = static_cast<float>(
            std::asin(
                std::clamp(static_cast<double>(p.z) / std::max(static_cast<double>(p.radius()), 1e-9), -1.0, 1.0)) *
            degrees);
    }
    std::fill(lastSeen.begin(), lastSeen.end(), std::numeric_limits<float>::quiet_NaN());
    return LV2_STATE_SUCCESS;
}

}  // namespace lv2
