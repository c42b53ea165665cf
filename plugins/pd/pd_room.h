#pragma once

#include <cstdint>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "common/hosted_room.h"
#include "pd/pd_api.h"
#include "pd/pd_words.h"

namespace pd {

/// What stands behind one object box of Pd: a room, its inlets and outlets, and the way between them. Pd's only thread.
class PdRoom {
public:
    /// Makes the room, and then inlets and outlets of the box: a signal for each source and loudspeaker, and the outlet
    /// of states. The first inlet comes with the class.
    /// @param newOwner  the record of the box
    /// @param words     its text behind the class name
    PdRoom(t_object* newOwner, std::span<t_atom const> words) : PdRoom(newOwner, ReadBoxWords(words)) {}
    ~PdRoom();
    PdRoom(PdRoom const&) = delete;
    PdRoom& operator=(PdRoom const&) = delete;

    bool IsMade() const noexcept { return room.IsMade(); }

    /// Any message: one of Pd's own (HelpLines), or one of the object.
    void Message(t_symbol const* selector, std::span<t_atom const> atoms);

    /// Enters the signal chain that Pd is about to compile. It compiles it anew whenever a patch is edited: as long as
    /// neither rate nor block size change and no block was missed, the room sounds on.
    void Dsp(t_signal** signals);
    void Perform();

    /// Writes the box into a patch file, with the state if it was made with @autosave 1.
    void Save(t_binbuf* file);

private:
    PdRoom(t_object* newOwner, BoxWords box);
    void Line(max::ConsoleLevel level, std::string const& text);
    void SetState(std::span<t_atom const> atoms);
    void TakeState(Lume::RoomState const& state);
    void LoadEars(std::span<t_atom const> atoms);
    void PollEars();
    void Turn(std::span<t_atom const> atoms);
    void Help(std::span<t_atom const> atoms);
    /// Sends the value of an attribute out of the right outlet.
    void Get(std::span<t_atom const> atoms);
    /// Takes a room from a file, by its path or name; without atoms lists the rooms that there are.
    void TakePreset(std::span<t_atom const> atoms);
    void ListPresets();
    void SayOnce(std::string const& key, std::string const& text);
    /// Where the patch lies: what file names are relative to.
    std::string Folder() const;
    bool MissedABlock() const;
    void Connect(t_signal** signals, std::size_t blockSize);
    void ReportReplaced();

    t_object* owner;
    bool autosave, multichannel;
    std::set<std::string> said;  // remarks that are made once, and while the box is made everything
    t_outlet* stateOutlet = nullptr;
    plugin::HostedRoom room;
    std::vector<float const*> inputs;
    std::vector<float*> outputs;
    std::vector<float> silence;    // a block, for sources that no channel reaches
    double lastBlockTime = 0.0;    // of Pd's clock
    t_glist* canvas;               // the patch
    t_clock* earsClock = nullptr;  // looks for ears that were loaded
    t_clock* settingsClock = nullptr;
    t_clock* reportClock = nullptr;
    bool reported = false;  // that samples were bad
};

}  // namespace pd
