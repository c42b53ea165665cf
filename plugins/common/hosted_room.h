#pragma once

#include <filesystem>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/ears_fitting.h"
#include "patcher/box.h"
#include "room/ears.h"
#include "room/room_state.h"

// Not the object's headers: they bring in the names of its host, which are those of other hosts, too.
struct orvanverb_t;
namespace Lume {
class Room;
}

namespace plugin {

/// The object orvanverb~ as plug-ins run it in the process of a host: in its box, with the built-in places for what
/// wasn't placed. What sounds is the room on which the object stands, at a steady vector size and without a trace on
/// the thread's floating-point mode.
///
/// The host calls it from one thread at a time, messages between two blocks.
class HostedRoom {
public:
    /// Makes the object.
    /// @param words  of the object box behind the class name: @numsources 2 @numspeakers 8
    HostedRoom(std::vector<max::t_atom> words, max::BoxListener newListener);
    ~HostedRoom();

    /// False if the object refused to be made; its lines said why, and nothing else may be called.
    bool IsMade() const noexcept { return record != nullptr; }
    std::size_t NumInputs() const;
    std::size_t NumOutputs() const;

    /// Sends a message. Values out of range, atoms too few or too many are told once.
    bool Send(char const* selector, std::vector<max::t_atom> atoms);
    /// Tells, once, what can't be as it is set: loudspeakers where they can't do their work, controls that are meant to
    /// lie above others. For the end of what a user says in one go.
    void RemarkSettings();
    /// The values of an attribute, or the one of a control; nothing if there is no such name.
    std::optional<std::vector<max::t_atom>> Value(std::string const& name);
    /// The object's flat list of all values, for storage objects.
    std::vector<max::t_atom> State();
    void Restore(std::vector<max::t_atom> state);
    /// The state with names, which holds the ears, too.
    Lume::RoomState NamedState();
    /// @throws std::exception for sizes that don't fit: nothing has changed then. Ears that can't be loaded are told,
    ///         and the present ones stay. Those that are measurements come later, as by LoadEars
    void Restore(Lume::RoomState state);

    /// Loads ears: a set of filters at once before the first Start, later beside the host's thread, and they fade in
    /// once TakeEars finds them. Measurements are fitted beside it in every case (EarsFitting).
    /// @throws std::runtime_error as TakeEars
    void LoadEars(std::filesystem::path const& file);
    /// Hands loaded ears to the room, if there are any, and tells how far they are. To be called again and again after
    /// LoadEars, Restore and Start. @return false as long as some are being loaded
    /// @throws std::runtime_error "FILE: FIELD: why" if they can't be used; the present ones stay
    bool TakeEars();
    /// The rate for which measurements are fitted before the first Start [Hz].
    void ExpectRate(float newSampleRate) { expectedRate = newSampleRate; }

    /// Prepares for audio and silences the room.
    /// @param sampleRate  [Hz]
    /// @param blockSize   of the host [samples]; any from 1 on
    void Start(float sampleRate, std::size_t blockSize);
    /// 0 before the first Start.
    float SampleRate() const noexcept { return sampleRate; }
    std::size_t BlockSize() const;
    /// How many input samples became 0 because they could have stayed in the room for good.
    std::uint64_t NumReplaced() const;
    /// How many output samples became silence because the room had run away.
    std::uint64_t NumSilenced() const;

    /// Processes one block of the host. Real-time safe.
    /// @param inputs, outputs  one pointer per channel; may be the same arrays, in any order
    void Process(float const* const* inputs, float* const* outputs);

    /// Turns the listener [degrees]. Between two blocks. @return false if an angle is not finite
    bool SetOrientation(float yaw, float pitch, float roll);

private:
    struct Remarks;

    Lume::Room& Room() const;
    void RemarkOnRanges(std::vector<max::t_atom> const& words);
    void Tell(max::ConsoleLevel level, std::string const& text) const;
    void Warn(std::string const& text) const { Tell(max::ConsoleLevel::warn, text); }
    void LoadSet(std::filesystem::path const& file);
    void Fit(Lume::EarsFile const& measurements);
    /// Whether the ears are measurements, or are about to be.
    bool UsesMeasurements() const;

    max::BoxListener listener;
    std::unique_ptr<max::Box> box;
    orvanverb_t* record = nullptr;  // the box's
    float sampleRate = 0.0f;        // [Hz]
    std::unique_ptr<Remarks> remarks;
    std::filesystem::path earsFile;  // being loaded
    std::future<Lume::Ears> loadingEars;
    float expectedRate = 44100.0f;  // [Hz]
    EarsFitting fitting;
};

}  // namespace plugin
