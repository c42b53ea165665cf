#include "orvanverb/measure/room_response.h"

#include <algorithm>

#include "engine/room_controls.h"

namespace program {

std::unique_ptr<Lume::Room> CopyForMeasuring(Lume::OrvanVerb const& engine, Lume::CartesianVector const& position) {
    auto room = std::make_unique<Lume::Room>(1, 8, engine.GetNumInternals());
    for (std::size_t i = 0; i < Lume::roomControls.size(); ++i) room->Set(i, Lume::roomControls[i].get(engine));
    room->SetDirectLevel(engine.GetDirectLevel());
    room->SetRoomLevel(engine.GetRoomLevel());
    room->PlaceSource(0, position);
    return room;
}

std::vector<std::vector<float>> ImpulseResponse(Lume::Room& room, float sampleRate, double seconds) {
    constexpr std::size_t vectorSize = 64;
    room.Configure(sampleRate, vectorSize, vectorSize);
    room.Settle();
    const auto length = static_cast<std::size_t>(seconds * static_cast<double>(sampleRate)) / vectorSize * vectorSize;
    std::vector<std::vector<float>> response(room.NumSpeakers(), std::vector<float>(length));
    std::vector<std::vector<float>> silence(room.NumSources(), std::vector<float>(vectorSize));
    std::vector<float*> outputs(response.size());
    std::vector<float const*> inputs;
    inputs.reserve(silence.size());
    for (std::vector<float> const& input : silence) inputs.push_back(input.data());
    for (std::size_t n = 0; n < length; n += vectorSize) {
        silence[0][0] = n == 0 ? 1.0f : 0.0f;
        for (std::size_t i = 0; i < outputs.size(); ++i) outputs[i] = response[i].data() + n;
        room.Process(outputs.data(), inputs.data(), vectorSize);
    }
    return response;
}

}  // namespace program
