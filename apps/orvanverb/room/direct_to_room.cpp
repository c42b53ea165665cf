#include "orvanverb/room/direct_to_room.h"

#include <cmath>
#include <limits>
#include <vector>

#include "orvanverb/audio/vector_channels.h"

namespace program {

namespace {

constexpr float off = -std::numeric_limits<float>::infinity();

/// Energy of the response to an impulse, until half a second adds less than a ten-thousandth: a room may begin late.
double ResponseEnergy(Lume::Room& room, unsigned int source) {
    constexpr double piece = 0.5, longest = 20.0;  // [s]
    constexpr double share = 1e-4;
    const std::size_t vectorSize = room.VectorSize();
    VectorChannels inputs(room.NumSources(), vectorSize), outputs(room.NumSpeakers(), vectorSize);
    room.Settle();
    inputs.Pointers()[source][0] = 1.0f;
    double energy = 0.0, ofPiece = 0.0, pieceSeconds = 0.0;
    for (double seconds = 0.0; seconds < longest;) {
        room.Process(outputs.Pointers(), inputs.Pointers(), vectorSize);
        inputs.Pointers()[source][0] = 0.0f;
        for (unsigned int c = 0; c < room.NumSpeakers(); ++c)
            for (std::size_t i = 0; i < vectorSize; ++i)
                ofPiece += std::pow(static_cast<double>(outputs.Pointers()[c][i]), 2);
        const double step = static_cast<double>(vectorSize) / static_cast<double>(room.Samplerate());
        seconds += step;
        pieceSeconds += step;
        if (pieceSeconds < piece) continue;
        energy += ofPiece;
        if (ofPiece <= share * energy) break;
        ofPiece = pieceSeconds = 0.0;
    }
    return energy;
}

}  // namespace

std::optional<double> DirectToRoomDb(Lume::Room& room, unsigned int source) {
    if (room.Get(Lume::ControlIndex("infinite")) > 0.5f) return std::nullopt;
    const float roomLevel = room.RoomLevel();
    room.SetRoomLevel(off);
    const double direct = ResponseEnergy(room, source);
    room.Clear();
    room.SetRoomLevel(roomLevel);
    room.SetDirectLevel(off);
    const double answer = ResponseEnergy(room, source);
    if (direct == 0.0 && answer == 0.0) return std::nullopt;
    return 10.0 * std::log10(direct / answer);
}

}  // namespace program
