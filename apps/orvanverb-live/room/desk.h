#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "orvanverb-live/room/player.h"
#include "orvanverb-live/room/room_change.h"
#include "orvanverb-live/room/scene_track.h"
#include "orvanverb-live/room/worker.h"
#include "orvanverb/hrtf/ears_cache.h"
#include "orvanverb/room/room_object.h"

namespace live {

/// What the sound runs on.
struct AudioStatus {
    std::string text;  ///< "JACK, playing"
    int rate = 0;      ///< [Hz]; 0: nothing plays
    std::size_t block = 0, latency = 0;
    float load = 0.0f;         ///< part of the time
    long xruns = -1;           ///< none are counted below 0
    std::uint64_t numBad = 0;  ///< samples that were kept out of the room, or had come out of it
};

/// What has changed since somebody looked last, and how everything is now.
struct News {
    Lume::RoomState state;
    std::vector<unsigned int> controls, sources;  ///< which have changed
    bool muting = false, bypassing = false, turning = false, ears = false;
    std::vector<std::string> remarks;
    AudioStatus status;
    std::vector<float> sourceLevels, outputLevels;  ///< linear; they rise at once and fall slowly
};

/// The one place where a running room is changed, by whoever: messages come here on any thread, one after the other,
/// act on a room that doesn't play, are told to the one that does, and are seen by everybody who follows.
///
/// Nothing is lost if messages come faster than blocks: of several for one thing the last one counts.
class Desk {
public:
    /// @param object      the room as it begins; it never plays
    /// @param ears        where the object's files of ears are found
    /// @param vectorSize  samples of one run of the engine
    Desk(std::unique_ptr<program::RoomObject> object, program::EarsCache& ears, std::size_t vectorSize,
         SceneTrack scene);
    ~Desk();

    /// @name Changes
    /// @throws std::invalid_argument, std::runtime_error with words for people; nothing has changed
    /// @{

    /// A message as the object takes it: "source 1 azim -30", "tr0 2.5", "hrtf FILE", "clear". Ears that have to be
    /// fitted are there when that is done.
    void Tell(std::string_view message);
    /// Values are brought into their range, which is said once.
    void Set(std::size_t control, float value);
    void PlaceSource(unsigned int source, Lume::CartesianVector const& position);
    void SetGain(unsigned int source, float gainDb);
    void SetSourceMute(unsigned int source, bool muted);
    void SetName(unsigned int source, std::string const& name);
    void SetMute(bool muted) { Tell(muted ? "mute 1" : "mute 0"); }
    void SetBypass(bool bypassed) { Tell(bypassed ? "bypass 1" : "bypass 0"); }
    /// Turns the listener's head.
    void SetOrientation(Lume::Orientation const& orientation);
    /// A new room's controls, and over them those of a preset. Places stay.
    /// @param name  of one of the presets; files are for options
    void LoadPreset(std::string const& name);
    /// If its ears have to be fitted, it comes when that is done.
    void LoadState(std::string const& text);
    /// @param name  one of EarsNames
    void UseEars(std::string const& name);
    /// @}

    /// @name How things are
    /// @{
    Lume::RoomState State() const;
    /// The same with the files that people named, where State has what was fitted from them.
    Lume::RoomState StateToKeep() const;
    Lume::SourceStrip StripOf(unsigned int source) const;
    unsigned int NumSources() const noexcept { return numSources; }
    unsigned int NumOutputs() const noexcept { return numOutputs; }
    std::vector<std::string> EarsNames() const;
    std::string EarsName() const;
    /// Whether ears are being fitted.
    bool IsLoading() const { return worker.IsBusy(); }
    /// @param seen  0 for everything; later what the last call left there
    News NewsSince(std::uint64_t& seen) const;
    /// Waits for the next tick, some 25 a second. @return false when the desk closes
    bool WaitForTick(std::uint64_t& tick) const;
    /// Wakes everybody who waits, for good.
    void Close();
    /// A line that everybody who follows gets, and standard error.
    void Remark(std::string const& line);
    /// @}

    /// @name The room that plays
    /// For whoever runs the audio. The desk holds the player until Detach.
    /// @{
    Player& Attach(int samplerate, std::size_t blockSize);
    void Detach();
    void SetStatus(std::string text, long xruns);
    /// @}

private:
    using Lock = std::unique_lock<std::mutex>;
    /// Ears that can be had.
    struct KnownEars {
        Lume::EarsFile told;           // what people named
        std::filesystem::path played;  // that, or what was fitted from it
    };

    void RequireSource(unsigned int source) const;
    void RestoreKnown(Lume::RoomState const& state);
    void Reconcile();
    void Take(RoomChange const& change);
    void Flush();
    void SendEars(Lume::EarsFile const& file);
    void RestoreState(Lume::RoomState const& state);
    void LoadMeasurements(std::string const& file);
    void LoadBeside(std::string const& what, std::function<void()> load);
    void Know(Lume::EarsFile const& told, std::filesystem::path const& played);
    Lume::EarsFile ToldOf(Lume::EarsFile const& ears) const;
    void TakeRemarks();
    void AddRemark(std::string const& line);
    void FollowScene();
    void Mark(RoomChange const& change);
    std::vector<std::uint64_t>& Changes(RoomChange::Kind kind);
    void Tick();

    mutable std::mutex mutex;
    mutable std::condition_variable ticked;
    const std::unique_ptr<program::RoomObject> object;
    const unsigned int numSources, numOutputs;
    const std::size_t vectorSize;
    const SceneTrack scene;
    std::size_t sceneSeen = 0;   // events that the object knows of
    double secondsPlayed = 0.0;  // by rooms before the present one
    Lume::RoomState known;       // of the object
    std::vector<KnownEars> knownEars;

    std::unique_ptr<Player> player;
    std::vector<RoomChange> pending;  // what the queue had no place for
    AudioStatus status;
    std::vector<float> sourceLevels, outputLevels;

    // When things changed last, counted in changes: of each kind one, or one for each control or source.
    std::uint64_t now = 1;
    std::array<std::vector<std::uint64_t>, RoomChange::numKinds> changed;
    struct RemarkLine {
        std::uint64_t changed;
        std::string text;
    };
    std::vector<RemarkLine> remarks;  // the last few

    std::uint64_t ticks = 0;
    bool closed = false;
    program::EarsCache& cache;  // on the worker's thread, but for files that are no measurements
    std::thread ticker;
    Worker worker;
};

}  // namespace live
