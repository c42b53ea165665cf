#include "orvanverb-live/room/scene_track.h"

#include <optional>
#include <utility>

#include "orvanverb/common/messages.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/room/scene.h"

namespace live {

SceneTrack::SceneTrack(std::string const& path, program::RoomObject& object) {
    program::Scene scene(path);
    Lume::RoomState before = object.State();
    bool clears = false;
    const program::Scene::Listener tell = [&](std::string_view message, std::filesystem::path const& folder) {
        clears = clears || message == "clear";
        object.Tell(message, folder);
        return object.TakeRemarks();
    };
    constexpr std::size_t mostEvents = 200000;  // each keeps a whole state
    while (const std::optional<double> seconds = scene.NextSeconds()) {
        if (events.size() == mostEvents)
            throw program::WorkError(path + ": has more than 200000 messages, of which a movement makes 50 a second");
        clears = false;
        for (std::string const& line : scene.PlayNext(tell)) program::Say(line);
        Event event;
        event.seconds = *seconds;
        event.after = object.State();
        event.changes = Difference(before, event.after);
        event.ears = event.after.ears;
        if (clears) event.changes.push_back({RoomChange::Kind::clearing});
        before = event.after;
        events.push_back(std::move(event));
    }
}

ScenePlayer::ScenePlayer(SceneTrack const& track, std::size_t from, Lume::Room& room)
    : events(track.Events()), ears(track.Events().size()), next(from) {
    for (std::size_t i = from; i < events.size(); ++i)
        for (RoomChange const& change : events[i].changes)
            if (change.kind == RoomChange::Kind::ears) ears[i] = PrepareEars(room, events[i].ears);
}

void ScenePlayer::Advance(Lume::Room& room, double beforeSeconds) noexcept {
    std::size_t i = next.load(std::memory_order_relaxed);
    for (; i < events.size() && events[i].seconds < beforeSeconds; ++i) {
        for (RoomChange const& change : events[i].changes) Apply(room, change);
        if (ears[i].filters) room.TakeEars(ears[i]);
    }
    next.store(i, std::memory_order_release);
}

}  // namespace live
