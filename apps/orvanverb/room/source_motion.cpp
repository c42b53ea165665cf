#include "orvanverb/room/source_motion.h"

#include "orvanverb/common/limits.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/layout/speaker_layout.h"

namespace program {

SourceMotion::SourceMotion(unsigned int numSources, std::vector<Options::SourcePlace> const& places,
                           std::optional<std::string> const& scenePath, int samplerate)
    : room(numSources, minSpeakers, "8") {
    if (scenePath) {
        scene = Scene(*scenePath);
        // A complaint of any line comes before the work.
        RoomObject rehearsal(numSources, minSpeakers, "8");
        rehearsal.PlaceSources();
        scene.Begin(rehearsal);
        scene.Rehearse(rehearsal);
    }
    room.PlaceSources();
    PlaceSources(room, places);
    scene.Begin(room);
    room.SetSamplerate(samplerate);
}

std::vector<std::string> SourceMotion::Advance(std::uint64_t beforeFrame) {
    return scene.Play(room, beforeFrame);
}

void PlaceSources(RoomObject& room, std::vector<Options::SourcePlace> const& places) {
    for (Options::SourcePlace const& place : places) {
        if (place.number > room.NumSources())
            throw UsageError(
                "--source " + std::to_string(place.number) + ": there " +
                (room.NumSources() == 1 ? "is 1 source" : "are " + std::to_string(room.NumSources()) + " sources"));
        room.PlaceSource(place.number - 1, ToCartesian(place.position));
    }
}

}  // namespace program
