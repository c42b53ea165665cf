#pragma once

namespace Lume {

/// How a dial or a slider should run over a control's range.
enum class Scale : unsigned char {
    linear,
    logarithmic,  ///< equal ways are equal ratios: frequencies, decay times
    onOff         ///< 0 or 1
};

/// The part of the room that a control belongs to.
enum class ControlGroup : unsigned char { late, direct, room, early, cluster };

/// How a change of a control sounds, as it was measured (docs/engine.md, "Clicks").
enum class Change : unsigned char {
    ramps,   ///< mostly by ramp or crossfade: small changes stay some 60 dB below the sound
    glides,  ///< delays move to their new times, which is heard as a change of pitch
    jumps    ///< at once: what sounds is torn
};

/// What becomes of a value outside the range. Options and files refuse it and say the range; a message to a running
/// room takes the nearest, and tells it once for each control (room/control_range.h).
enum class OutOfRange : unsigned char {
    nearest,  ///< so it is never outside
    kept  ///< but words of the object let it there as it came: a state that holds such a value is good, and comes back
};

/// A scalar of the room: what it is called, what it may be, and how an engine takes and tells it.
///
/// @tparam Engine  the class that has the setters: a parameter, so that the table can stand below it
template <class Engine>
struct Control {
    char const* name;       ///< what options, state files and plug-ins call it
    char const* attribute;  ///< the object's attribute that holds it; null if none does
    unsigned int element;   ///< its place in that attribute
    char const* label;      ///< a few words for people
    char const* usualName;  ///< what the field usually calls it
    char const* unit;       ///< "dB", "Hz", "ms", "s", "degrees"; empty for factors and places in a range
    char const* what;       ///< what it does, in one phrase
    float least;
    float greatest;
    float standard;  ///< what a new room has
    Scale scale;
    ControlGroup group;
    Change change;
    OutOfRange outOfRange;
    void (*set)(Engine& engine, float value);  ///< one setter of the engine; an on/off control is on unless 0
    float (*get)(Engine const& engine);        ///< the value that set would have to get to make the engine as it is
};

/// @name Members of an engine as plain functions, for the rows of a table
/// @{
template <class Engine, void (Engine::*setter)(float)>
void Set(Engine& engine, float value) {
    (engine.*setter)(value);
}

template <class Engine, void (Engine::*setter)(bool)>
void Switch(Engine& engine, float value) {
    (engine.*setter)(value != 0.0f);
}

template <class Engine, auto getter>
float Get(Engine const& engine) {
    return static_cast<float>((engine.*getter)());
}

/// A member of the record that the getter gives.
template <class Engine, auto getter, auto member>
float GetMember(Engine const& engine) {
    return (engine.*getter)().*member;
}
/// @}

}  // namespace Lume
