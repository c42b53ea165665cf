#include "orvan_c.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "geometry/azimuth_distance_elevation.h"
#include "room/room.h"
#include "room/room_queue.h"

using Lume::CartesianVector;
using Lume::Room;
using Lume::RoomState;

namespace {

/// Words about a failure, kept without the heap: real-time calls leave some, too.
class ErrorText {
public:
    void Set(std::string_view newText) noexcept {
        const std::size_t length = std::min(newText.size(), text.size() - 1);
        std::copy_n(newText.data(), length, text.data());
        text[length] = '\0';
    }
    char const* Get() const noexcept { return text.data(); }

private:
    std::array<char, 512> text{};
};

thread_local ErrorText threadError;  // of calls that have no room of their own, or none yet

constexpr char const* noState = "there is no state";
constexpr std::string_view noControl = "there is no such control", noSource = "there is no such source",
                           noSpeaker = "there is no such loudspeaker", noNumber = "the value is not a number",
                           queueFull = "too many messages wait for the next block";

orvan_status Fail(ErrorText& error, orvan_status status, std::string_view why) noexcept {
    error.Set(why);
    return status;
}

/// Runs something that may throw.
template <class Function>
orvan_status Guarded(ErrorText& error, Function function) noexcept {
    try {
        function();
        return ORVAN_OK;
    } catch (std::invalid_argument const& exception) {
        return Fail(error, ORVAN_BAD_ARGUMENT, exception.what());
    } catch (std::runtime_error const& exception) {
        return Fail(error, ORVAN_BAD_FILE, exception.what());
    } catch (std::exception const& exception) {
        return Fail(error, ORVAN_FAILED, exception.what());
    } catch (...) {
        return Fail(error, ORVAN_FAILED, "unknown");
    }
}

bool IsNumber(CartesianVector const& p) noexcept {
    return !std::isnan(p.x) && !std::isnan(p.y) && !std::isnan(p.z);
}

/// Angles are wrapped turn by turn: what isn't finite, or is far out, is no angle.
CartesianVector At(float azimuth, float elevation, float distance) noexcept {
    constexpr float maxAngle = 1e6f;
    if (!(std::abs(azimuth) <= maxAngle && std::abs(elevation) <= maxAngle) || std::isnan(distance))
        return {std::nanf(""), 0.0f, 0.0f};
    return Lume::FromAzimuthDistanceElevation(azimuth, distance, elevation);
}

/// The controls as C knows them: the table's own strings.
std::vector<orvan_control> const& Controls() {
    static_assert(static_cast<int>(Lume::Scale::onOff) == ORVAN_ON_OFF &&
                  static_cast<int>(Lume::ControlGroup::cluster) == ORVAN_CLUSTER);
    static const std::vector<orvan_control> controls = [] {
        std::vector<orvan_control> rows;
        for (Lume::RoomControl const& row : Lume::roomControls)
            rows.push_back({row.name, row.label, row.usualName, row.unit, row.what, row.least, row.greatest,
                            row.standard, static_cast<orvan_scale>(row.scale), static_cast<orvan_group>(row.group)});
        return rows;
    }();
    return controls;
}

}  // namespace

struct orvan_room {
    explicit orvan_room(std::unique_ptr<Room> newRoom) : room(std::move(newRoom)) {}

    std::unique_ptr<Room> room;
    Lume::RoomQueue queue;
    ErrorText error;
};

namespace {

using Position = CartesianVector;

orvan_status Place(orvan_room* room, bool found, std::string_view missing, Position const& position,
                   bool (Room::*place)(unsigned int, Position const&), unsigned int index) noexcept {
    if (!found) return Fail(room->error, ORVAN_BAD_ARGUMENT, missing);
    if (!IsNumber(position)) return Fail(room->error, ORVAN_BAD_ARGUMENT, noNumber);
    return Guarded(room->error, [&] { (*room->room.*place)(index, position); });
}

orvan_status PlaceSource(orvan_room* room, unsigned int source, Position const& position) noexcept {
    return Place(room, source < room->room->NumSources(), noSource, position, &Room::PlaceSource, source);
}

orvan_status PlaceSpeaker(orvan_room* room, unsigned int speaker, Position const& position) noexcept {
    return Place(room, speaker < room->room->NumSpeakers(), noSpeaker, position, &Room::PlaceSpeaker, speaker);
}

void Tell(Position const& position, float* values) noexcept {
    values[0] = position.x;
    values[1] = position.y;
    values[2] = position.z;
}

orvan_status Posted(bool sent) noexcept {
    return sent ? ORVAN_OK : Fail(threadError, ORVAN_QUEUE_FULL, queueFull);
}

orvan_status PostPosition(orvan_room* room, bool (Lume::RoomQueue::*place)(unsigned int, Position const&) noexcept,
                          unsigned int index, Position const& position) noexcept {
    if (!IsNumber(position)) return Fail(threadError, ORVAN_BAD_ARGUMENT, noNumber);
    return Posted((room->queue.*place)(index, position));
}

/// Makes a room of what a function gives.
template <class Function>
orvan_room* Create(Function make) noexcept {
    orvan_room* room = nullptr;
    Guarded(threadError, [&] { room = std::make_unique<orvan_room>(make()).release(); });
    return room;
}

/// @throws std::invalid_argument if there is no such format
Lume::RoomFormat const* Format(char const* name) {
    if (name == nullptr) return nullptr;
    Lume::RoomFormat const* const format = Lume::FindRoomFormat(name);
    if (format == nullptr) throw std::invalid_argument("there is no format '" + std::string(name) + "'");
    return format;
}

}  // namespace

extern "C" {

char const* orvan_version(void) {
    return ORVAN_VERSION_STRING;
}

char const* orvan_error(orvan_room const* room) {
    return room != nullptr ? room->error.Get() : threadError.Get();
}

size_t orvan_num_controls(void) {
    return Lume::roomControls.size();
}

orvan_control const* orvan_control_info(size_t id) {
    return id < Controls().size() ? &Controls()[id] : nullptr;
}

long orvan_find_control(char const* name) {
    const auto found = name != nullptr ? Lume::FindControl(name) : std::nullopt;
    return found ? static_cast<long>(*found) : -1;
}

orvan_room* orvan_create(unsigned int sources, unsigned int speakers, unsigned int internals, char const* format) {
    return Create([&] {
        return std::make_unique<Room>(sources, speakers, internals != 0 ? internals : Room::usualInternals,
                                      Format(format));
    });
}

char const* orvan_format_name(size_t index) {
    return index < Lume::roomFormats.size() ? Lume::roomFormats[index].name : nullptr;
}

char const* orvan_format_label(size_t index) {
    return index < Lume::roomFormats.size() ? Lume::roomFormats[index].label : nullptr;
}

orvan_room* orvan_create_from_state(char const* text) {
    return Create([&] {
        if (text == nullptr) throw std::invalid_argument(noState);
        const RoomState state = RoomState::Parse(text);
        auto room = std::make_unique<Room>(state.numSources, state.numSpeakers,
                                           state.numInternals != 0 ? state.numInternals : Room::usualInternals,
                                           Format(state.format.empty() ? nullptr : state.format.c_str()));
        room->RestoreState(state);
        return room;
    });
}

void orvan_free(orvan_room* room) {
    delete room;
}

unsigned int orvan_num_sources(orvan_room const* room) {
    return room->room->NumSources();
}

unsigned int orvan_num_speakers(orvan_room const* room) {
    return room->room->NumSpeakers();
}

unsigned int orvan_num_internals(orvan_room const* room) {
    return room->room->NumInternals();
}

char const* orvan_format(orvan_room const* room) {
    Lume::RoomFormat const* const format = room->room->Format();
    return format != nullptr ? format->name : nullptr;
}

orvan_status orvan_configure(orvan_room* room, double samplerate, size_t block_size, size_t vector_size,
                             orvan_blocks blocks) {
    return Guarded(room->error, [&] {
        room->room->Configure(
            static_cast<float>(samplerate), block_size, vector_size,
            blocks == ORVAN_STEADY ? Lume::SteadyVectors::Blocks::Steady : Lume::SteadyVectors::Blocks::Varying);
    });
}

double orvan_samplerate(orvan_room const* room) {
    return static_cast<double>(room->room->Samplerate());
}

size_t orvan_vector_size(orvan_room const* room) {
    return room->room->VectorSize();
}

size_t orvan_latency(orvan_room const* room) {
    return room->room->Latency();
}

double orvan_tail_seconds(orvan_room const* room, double decibels) {
    return static_cast<double>(room->room->Engine().GetTailLength(static_cast<float>(decibels)));
}

void orvan_settle(orvan_room* room) {
    Guarded(room->error, [&] { room->room->Settle(); });
}

void orvan_process(orvan_room* room, float* const* outputs, float* const* inputs, size_t num_samples) {
    room->queue.Deliver(*room->room);
    room->room->Process(outputs, inputs, num_samples);
}

unsigned long long orvan_bad_inputs(orvan_room const* room) {
    return room->room->NumBadInputs();
}

void orvan_clear(orvan_room* room) {
    room->room->Clear();
}

void orvan_mute(orvan_room* room, int on) {
    room->room->SetMuted(on != 0);
}

void orvan_bypass(orvan_room* room, int on) {
    room->room->SetBypassed(on != 0);
}

orvan_status orvan_set(orvan_room* room, size_t id, float value) {
    if (id >= Lume::roomControls.size()) return Fail(room->error, ORVAN_BAD_ARGUMENT, noControl);
    return room->room->Set(id, value) ? ORVAN_OK : Fail(room->error, ORVAN_BAD_ARGUMENT, noNumber);
}

orvan_status orvan_set_by_name(orvan_room* room, char const* name, float value) {
    const long id = orvan_find_control(name);
    if (id < 0) return Fail(room->error, ORVAN_BAD_ARGUMENT, noControl);
    return orvan_set(room, static_cast<size_t>(id), value);
}

float orvan_get(orvan_room const* room, size_t id) {
    return id < Lume::roomControls.size() ? room->room->Get(id) : 0.0f;
}

orvan_status orvan_place_source(orvan_room* room, unsigned int source, float x, float y, float z) {
    return PlaceSource(room, source, {x, y, z});
}

orvan_status orvan_place_speaker(orvan_room* room, unsigned int speaker, float x, float y, float z) {
    return PlaceSpeaker(room, speaker, {x, y, z});
}

orvan_status orvan_place_source_at(orvan_room* room, unsigned int source, float azimuth, float elevation,
                                   float distance) {
    return PlaceSource(room, source, At(azimuth, elevation, distance));
}

orvan_status orvan_place_speaker_at(orvan_room* room, unsigned int speaker, float azimuth, float elevation,
                                    float distance) {
    return PlaceSpeaker(room, speaker, At(azimuth, elevation, distance));
}

orvan_status orvan_turn(orvan_room* room, float yaw, float pitch, float roll) {
    return room->room->SetOrientation({yaw, pitch, roll}) ? ORVAN_OK : Fail(room->error, ORVAN_BAD_ARGUMENT, noNumber);
}

orvan_status orvan_source_position(orvan_room* room, unsigned int source, float position[3]) {
    if (source >= room->room->NumSources()) return Fail(room->error, ORVAN_BAD_ARGUMENT, noSource);
    Tell(room->room->SourcePosition(source), position);
    return ORVAN_OK;
}

orvan_status orvan_speaker_position(orvan_room* room, unsigned int speaker, float position[3]) {
    if (speaker >= room->room->NumSpeakers()) return Fail(room->error, ORVAN_BAD_ARGUMENT, noSpeaker);
    Tell(room->room->SpeakerPositions()[speaker], position);
    return ORVAN_OK;
}

char* orvan_save_state(orvan_room* room) {
    char* text = nullptr;
    Guarded(room->error, [&] {
        const std::string state = room->room->SaveState().Text();
        text = static_cast<char*>(std::malloc(state.size() + 1));
        if (text == nullptr) throw std::bad_alloc();
        std::memcpy(text, state.c_str(), state.size() + 1);
    });
    return text;
}

void orvan_free_text(char* text) {
    std::free(text);
}

orvan_status orvan_restore_state(orvan_room* room, char const* text) {
    if (text == nullptr) return Fail(room->error, ORVAN_BAD_ARGUMENT, noState);
    return Guarded(room->error, [&] { room->room->RestoreState(RoomState::Parse(text)); });
}

orvan_status orvan_load_ears(orvan_room* room, char const* file) {
    return Guarded(room->error, [&] {
        if (!room->room->HasEars()) throw std::invalid_argument("only a room on headphones has ears");
        if (file != nullptr)
            room->room->LoadEars(file);
        else
            room->room->RestoreEars({});
    });
}

orvan_status orvan_post_set(orvan_room* room, size_t id, float value) {
    if (id >= Lume::roomControls.size()) return Fail(threadError, ORVAN_BAD_ARGUMENT, noControl);
    if (std::isnan(value)) return Fail(threadError, ORVAN_BAD_ARGUMENT, noNumber);
    return Posted(room->queue.Set(id, value));
}

orvan_status orvan_post_source(orvan_room* room, unsigned int source, float x, float y, float z) {
    return PostPosition(room, &Lume::RoomQueue::PlaceSource, source, {x, y, z});
}

orvan_status orvan_post_speaker(orvan_room* room, unsigned int speaker, float x, float y, float z) {
    return PostPosition(room, &Lume::RoomQueue::PlaceSpeaker, speaker, {x, y, z});
}

orvan_status orvan_post_turn(orvan_room* room, float yaw, float pitch, float roll) {
    if (!std::isfinite(yaw) || !std::isfinite(pitch) || !std::isfinite(roll))
        return Fail(threadError, ORVAN_BAD_ARGUMENT, noNumber);
    return Posted(room->queue.SetOrientation({yaw, pitch, roll}));
}

orvan_status orvan_post_clear(orvan_room* room) {
    return Posted(room->queue.Clear());
}

orvan_status orvan_post_mute(orvan_room* room, int on) {
    return Posted(room->queue.SetMuted(on != 0));
}

orvan_status orvan_post_bypass(orvan_room* room, int on) {
    return Posted(room->queue.SetBypassed(on != 0));
}

orvan_status orvan_post_ears(orvan_room* room, char const* file) {
    if (file == nullptr) return Fail(threadError, ORVAN_BAD_ARGUMENT, "there is no file");
    return Guarded(threadError, [&] { room->queue.SendEars(room->room->PrepareEars(file)); });
}

}  // extern "C"
