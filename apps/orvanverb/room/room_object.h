#pragma once

#include <filesystem>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "geometry/cartesian_vector.h"
#include "object/message_remarks.h"
#include "object/orvanverb.h"
#include "object/room_exchange.h"
#include "orvanverb/hrtf/ears_cache.h"
#include "patcher/box.h"
#include "room/room.h"
#include "room/setting_remarks.h"

namespace program {

/// The room that a rendering runs through: an object orvanverb~ in its box, driven by messages, as in a patch, and the
/// room on which the object stands, which plays.
///
/// It always runs at one vector size: the engine's late field takes its loop lengths from the size of the calls.
class RoomObject {
public:
    /// Makes an object. It has no positions yet: see PlaceSources and PlaceSpeakers.
    /// @param numInternals  as typed, for the object to judge
    /// @param format        of the outputs; null: headphones or a ring by their number
    /// @throws std::invalid_argument with the object's own words if it refuses
    /// @param newEars      where files of ears are found; must outlive the object
    RoomObject(unsigned int numSources, unsigned int numSpeakers, std::string const& numInternals,
               Lume::RoomFormat const* format, EarsCache& newEars);

    /// Sends a message, as a user types it: one of the object's, the name of a control that the object has no attribute
    /// for, or one of those that are ours: "hrtf FILE" loads ears, "clear" empties the room, "orientation YAW PITCH
    /// ROLL" turns the listener.
    /// @param folder  that FILE is relative to
    /// @throws std::invalid_argument with the object's first line of complaint. What it only warns of or posts, and
    /// that
    ///         a value was brought into its range, is in TakeRemarks
    void Tell(std::string_view message, std::filesystem::path const& folder = {});
    /// The lines that were no complaints, since the last call: "warn: text".
    std::vector<std::string> TakeRemarks() { return std::exchange(remarks, {}); }

    /// Sets a control that was checked, or an attribute. @throws std::invalid_argument as Tell
    void Set(std::string const& name, std::vector<std::string> const& values);

    /// Puts every source at its place in the built-in layout for their number.
    void PlaceSources() { orvanverb_place_defaults(&Record(), true, false); }
    void PlaceSource(unsigned int index, Lume::CartesianVector const& position);
    void PlaceSpeakers(std::span<Lume::CartesianVector const> positions);

    /// Lets what was remarked once be remarked again: who checks a scene wants it of each line.
    void ForgetRemarks() {
        messageRemarks = {};
        positionsRemarked = false;
    }
    /// Adds to the remarks, for once, what can't be as it is set: loudspeakers that messages have moved, and controls
    /// that are meant to lie above others.
    void RemarkSettings();

    /// Loads ears for the headphones: a set of filters, or measurements.
    /// @throws std::invalid_argument that names the file, the field and the reason; the present ones stay
    void LoadHrtf(std::filesystem::path const& path);
    /// What to tell of them at the rate of Start; empty if there is nothing.
    std::string HrtfRateRemark() const { return Room().EarsRemark(); }

    Lume::RoomState State() { return orvanverb_save_state(&Record()); }
    /// Brings a new object, and the room on which it stands, to a state.
    /// @throws std::invalid_argument as Tell
    void Restore(Lume::RoomState const& state);

    /// Starts audio, and lets the settings come to rest, so that the first sample of a recording meets the room as it
    /// was asked for.
    /// @param samplerate  [Hz]
    /// @param vectorSize  samples of each call of Process, a power of two from 16 on
    void Start(int samplerate, unsigned int vectorSize);

    /// Processes one vector. Real-time safe.
    void Process(float* const* outputs, float const* const* inputs) {
        Room().Process(outputs, inputs, Room().VectorSize());
    }

    /// The room on which the object stands.
    Lume::Room& Room() const { return orvanverb_room(&Record()); }

private:
    using Positions = std::vector<Lume::CartesianVector>;

    orvanverb_t& Record() const { return *orvanverb_record(box.Object()); }
    void Hear(max::ConsoleLevel level, std::string const& text);
    void ThrowComplaint();
    void Send(char const* selector, std::vector<max::t_atom> atoms);
    void RemarkMessage(std::string const& selector, std::span<max::t_atom const> atoms);

    EarsCache& ears;
    std::string complaint;  // the first line that is an error, not thrown yet
    std::vector<std::string> remarks;
    orvanverb::MessageRemarks messageRemarks;
    Lume::SettingRemarks settingRemarks;
    bool positionsRemarked = false;
    bool speakersMoved = true;  // since RemarkSettings
    max::Box box;
};

}  // namespace program
