#include "pd/pd_room.h"

#include <algorithm>
#include <optional>

#include "orvanverb/common/text.h"
#include "patcher/atom.h"
#include "pd/pd_atoms.h"
#include "pd/pd_presets.h"
#include "room/control_range.h"

namespace pd {

namespace {

constexpr char const* className = "orvanverb~";

/// Pd computes in ticks of this size, whatever the blocks of a subpatch are [samples].
constexpr double tickSize = 64.0;

/// How often to look for ears that are being loaded [ms].
constexpr double earsInterval = 10.0;

/// A second after the first sample that was replaced, so that the line can say how many there were [ms].
constexpr double reportDelay = 1000.0;

/// Of the names of controls and attributes.
std::string DidYouMean(std::string const& word) {
    std::vector<std::string> names{"sourcespositions", "speakerspositions", "mute", "bypass"};
    for (Lume::RoomControl const& control : Lume::roomControls) {
        names.emplace_back(control.name);
        if (control.attribute != nullptr) names.emplace_back(control.attribute);
    }
    return program::DidYouMean(word, names);
}

t_symbol* SavedStateReceiver() {
    return gensym("#A");
}

}  // namespace

PdRoom::PdRoom(t_object* newOwner, BoxWords words)
    : owner(newOwner),
      autosave(words.autosave),
      multichannel(words.multichannel),
      room(FromPd(words.words),
           {[this](max::ConsoleLevel level, std::string const& text) { Line(level, text); }, nullptr, nullptr}),
      canvas(canvas_getcurrent()) {
    for (std::string const& remark : words.remarks) Line(max::ConsoleLevel::warn, remark);
    if (!IsMade()) return;
    for (std::size_t i = 1; i < (multichannel ? 1 : room.NumInputs()); ++i) signalinlet_new(owner, 0.0f);
    for (std::size_t i = 0; i < (multichannel ? 1 : room.NumOutputs()); ++i) outlet_new(owner, &s_signal);
    stateOutlet = outlet_new(owner, &s_anything);
    inputs.resize(room.NumInputs());
    outputs.resize(room.NumOutputs());
    earsClock = clock_new(this, reinterpret_cast<t_method>(+[](PdRoom* x) { x->PollEars(); }));
    // A message may be one of several that belong together.
    settingsClock = clock_new(this, reinterpret_cast<t_method>(+[](PdRoom* x) { x->room.RemarkSettings(); }));
    reportClock = clock_new(this, reinterpret_cast<t_method>(+[](PdRoom* x) { x->ReportReplaced(); }));
    if (autosave) {
        // In patch files, lines that begin with #A go to the object before them: whoever was made last and wants them
        // takes the name over.
        SavedStateReceiver()->s_thing = nullptr;
        pd_bind(&owner->ob_pd, SavedStateReceiver());
    }
}

PdRoom::~PdRoom() {
    for (t_clock* const clock : {earsClock, settingsClock, reportClock})
        if (clock != nullptr) clock_free(clock);
    if (autosave && IsMade() && pd_findbyclass(SavedStateReceiver(), owner->ob_pd) == &owner->ob_pd)
        pd_unbind(&owner->ob_pd, SavedStateReceiver());
}

void PdRoom::Line(max::ConsoleLevel level, std::string const& text) {
    // The object goes through the words of its box twice.
    if (stateOutlet == nullptr && !said.insert(text).second) return;
    std::string line = text;
    if (!line.starts_with(className)) line.insert(0, std::string(className) + ": ");
    switch (level) {
        case max::ConsoleLevel::post:
            post("%s", line.c_str());
            break;
        case max::ConsoleLevel::warn:
            logpost(owner, PD_NORMAL, "warning: %s", line.c_str());
            break;
        case max::ConsoleLevel::error:
        case max::ConsoleLevel::bug:
            pd_error(owner, "%s", line.c_str());
            break;
    }
}

void PdRoom::SayOnce(std::string const& key, std::string const& text) {
    if (said.insert(key).second) Line(max::ConsoleLevel::warn, text);
}

void PdRoom::Message(t_symbol const* selectorSymbol, std::span<t_atom const> atoms) {
    const std::string selector = selectorSymbol->s_name;
    if ((selector == "getstate" || selector == "print") && !atoms.empty())
        SayOnce(selector, selector + ": only the word itself counts, not " + WordsText(atoms));
    clock_delay(settingsClock, 0.0);
    if (selector == "getstate") {
        std::vector<t_atom> state = ToPd(room.State());
        outlet_list(stateOutlet, &s_list, static_cast<int>(state.size()), state.data());
    } else if (selector == "setstate") {
        SetState(atoms);
    } else if (selector == "hrtf") {
        LoadEars(atoms);
    } else if (selector == "orientation") {
        Turn(atoms);
    } else if (selector == "help") {
        Help(atoms);
    } else if (selector == "print") {
        room.Send("postattributes", {});
    } else if (selector == "get") {
        Get(atoms);
    } else if (selector == "preset") {
        TakePreset(atoms);
    } else {
        room.Send(selector.c_str(), FromPd(atoms));
    }
}

void PdRoom::Turn(std::span<t_atom const> atoms) {
    float angles[3] = {};
    for (std::size_t i = 0; i < std::min(atoms.size(), std::size(angles)); ++i) angles[i] = atom_getfloat(&atoms[i]);
    const bool areNumbers =
        std::all_of(atoms.begin(), atoms.end(), [](t_atom const& atom) { return atom.a_type == A_FLOAT; });
    if (atoms.empty() || atoms.size() > std::size(angles) || !areNumbers ||
        !room.SetOrientation(angles[0], angles[1], angles[2]))
        Line(max::ConsoleLevel::error, "orientation: expected YAW [PITCH [ROLL]] in degrees");
}

void PdRoom::Help(std::span<t_atom const> atoms) {
    const std::string name = WordsText(atoms);
    if (name.empty()) {
        for (std::string const& line : HelpLines()) post("%s", line.c_str());
        return;
    }
    bool found = false;
    for (Lume::RoomControl const& control : Lume::roomControls) {
        if (name != control.name && (control.attribute == nullptr || name != control.attribute)) continue;
        found = true;
        post("%s: %s; %s, usually %s", control.name, control.what, Lume::RangeText(control).c_str(),
             Lume::NumberText(control.standard).c_str());
    }
    if (!found)
        Line(max::ConsoleLevel::error,
             "help: there is no control " + name + DidYouMean(name) + "; print shows all of them");
}

void PdRoom::Get(std::span<t_atom const> atoms) {
    const std::string name = WordsText(atoms);
    const std::optional<std::vector<max::t_atom>> value = room.Value(name);
    if (name.empty() || !value) {
        Line(max::ConsoleLevel::error, name.empty()
                                           ? "get: a name is expected behind it"
                                           : "get: there is no " + name + DidYouMean(name) + "; print shows all names");
        return;
    }
    std::vector<t_atom> values = ToPd(*value);
    outlet_anything(stateOutlet, gensym(name.c_str()), static_cast<int>(values.size()), values.data());
}

void PdRoom::TakePreset(std::span<t_atom const> atoms) {
    const std::string word = WordsText(atoms);
    if (word.empty()) return ListPresets();
    const RoomFile file = ReadRoomFile(FindRoomFile(word, Folder()));
    Lume::RoomState state = room.NamedState();
    if (file.numInternals != state.numInternals)
        SayOnce("internals", word + " was made for @numinternals " + std::to_string(file.numInternals) + ", here are " +
                                 std::to_string(state.numInternals));
    state.controls = file.controls;
    room.Restore(std::move(state));
}

void PdRoom::ListPresets() {
    std::string names;
    for (std::filesystem::path const& file : AllRoomFiles(Folder()))
        names.append(names.empty() ? "" : " ").append(file.stem().string());
    Line(max::ConsoleLevel::post, "preset: " + (names.empty() ? "there are none" : names));
}

std::string PdRoom::Folder() const {
    return canvas_getdir(canvas)->s_name;
}

/// A state with names, or the flat list.
void PdRoom::SetState(std::span<t_atom const> atoms) {
    if (atoms.empty()) return Line(max::ConsoleLevel::error, "setstate: a state is expected behind it, from getstate");
    const std::string text = StateText(atoms);
    if (Lume::RoomState::IsState(text))
        TakeState(Lume::RoomState::Parse(text, Folder()));
    else
        room.Restore(StateFromPd(atoms));
}

void PdRoom::TakeState(Lume::RoomState const& state) {
    clock_delay(earsClock, 0.0);
    room.ExpectRate(sys_getsr());
    room.Restore(state);
}

void PdRoom::LoadEars(std::span<t_atom const> atoms) {
    if (atoms.empty()) {
        Line(max::ConsoleLevel::error, "hrtf: a file is expected behind it");
        return;
    }
    room.ExpectRate(sys_getsr());
    room.LoadEars(std::filesystem::path(Folder()) / WordsText(atoms));
    clock_delay(earsClock, 0.0);
}

void PdRoom::PollEars() {
    try {
        if (!room.TakeEars()) clock_delay(earsClock, earsInterval);
    } catch (std::exception const& error) {
        Line(max::ConsoleLevel::error, error.what());
    }
}

bool PdRoom::MissedABlock() const {
    const double blockTime =
        std::max(tickSize / static_cast<double>(sys_getsr()),
                 static_cast<double>(room.BlockSize()) / static_cast<double>(room.SampleRate()));  // [s]
    return clock_gettimesince(lastBlockTime) > 1.5 * 1000.0 * blockTime;
}

void PdRoom::Dsp(t_signal** signals) {
    const auto blockSize = static_cast<std::size_t>(signals[0]->s_n);
    if (signals[0]->s_sr != room.SampleRate() || blockSize != room.BlockSize() || MissedABlock()) {
        room.Start(signals[0]->s_sr, blockSize);
        clock_delay(earsClock, 0.0);
        lastBlockTime = clock_getlogicaltime();
    }
    Connect(signals, blockSize);
    dsp_add(
        [](t_int* words) {
            reinterpret_cast<PdRoom*>(words[1])->Perform();  // NOLINT(performance-no-int-to-ptr): words are pointers
            return words + 2;
        },
        1, reinterpret_cast<t_int>(this));
}

void PdRoom::Connect(t_signal** signals, std::size_t blockSize) {
    const std::size_t perCord = multichannel ? inputs.size() : 1;
    silence.assign(blockSize, 0.0f);
    std::size_t most = 0;
    for (std::size_t i = 0; i < inputs.size(); i += perCord) {
        t_signal const& signal = **signals++;
        const auto channels = static_cast<std::size_t>(NumChannels(signal));
        most = std::max(most, channels);
        for (std::size_t c = 0; c < perCord; ++c)
            inputs[i + c] = c < channels ? signal.s_vec + c * blockSize : silence.data();
    }
    if (most > perCord)
        SayOnce("channels", "a cord holds " + std::to_string(most) + " channels, of which " + std::to_string(perCord) +
                                (multichannel ? " have a source" : " counts; with @multichannel 1 each is a source"));
    SetChannels const setChannels = FindSetChannels();
    const std::size_t perOutlet = multichannel ? outputs.size() : 1;
    for (std::size_t i = 0; i < outputs.size(); i += perOutlet, ++signals) {
        if (setChannels != nullptr) setChannels(signals, static_cast<int>(perOutlet));
        for (std::size_t c = 0; c < perOutlet; ++c) outputs[i + c] = (*signals)->s_vec + c * blockSize;
    }
}

void PdRoom::Perform() {
    lastBlockTime = clock_getlogicaltime();
    room.Process(inputs.data(), outputs.data());
    if (room.NumReplaced() + room.NumSilenced() > 0 && !reported) {
        reported = true;
        clock_delay(reportClock, reportDelay);
    }
}

void PdRoom::ReportReplaced() {
    const auto tell = [this](std::uint64_t number, char const* what) {
        if (number > 0) Line(max::ConsoleLevel::error, std::to_string(number) + what);
    };
    tell(room.NumReplaced(), " input samples weren't finite; 0 went into the room instead. This is said once");
    tell(room.NumSilenced(), " output samples were beyond 120 dB; the room was emptied. This is said once");
}

void PdRoom::Save(t_binbuf* file) {
    binbuf_addv(file, "ssii", gensym("#X"), gensym("obj"), static_cast<int>(owner->te_xpix),
                static_cast<int>(owner->te_ypix));
    binbuf_addbinbuf(file, owner->te_binbuf);
    binbuf_addsemi(file);
    if (autosave) {
        const std::vector<t_atom> state = StateToFile(room.NamedState().Text(Folder()));
        binbuf_addv(file, "ss", SavedStateReceiver(), gensym("setstate"));
        binbuf_add(file, static_cast<int>(state.size()), state.data());
        binbuf_addsemi(file);
    }
    obj_saveformat(owner, file);
}

}  // namespace pd
