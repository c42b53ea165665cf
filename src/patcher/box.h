#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "patcher/console.h"
#include "patcher/types.h"

namespace max {

/// What a box tells whoever made it. Each may be empty.
struct BoxListener {
    std::function<void(ConsoleLevel level, std::string const& text)> console;  ///< a line of the object
    std::function<void(t_symbol* what)> notification;                          ///< the object has changed
    std::function<void(long outlet, t_symbol* selector, std::vector<t_atom> const& atoms)> output;
};

/// An object in its box: what front ends and tests use of the host.
///
///     max::Box box("orvanverb~ @numsources 2 @numspeakers 5");
///     box.Send("source 1 ade -45 2 0");
///     box.StartAudio(48000.0f, 64);
///     box.Process(inputs, outputs);
///
/// All of it belongs to one thread at a time; Process may run on another one, as long as nothing else runs beside it.
class Box {
public:
    /// Makes an object from the text of an object box: class name, arguments, attributes (@name values). If the class
    /// refuses, or there is none of that name, the console says why and Object() is null.
    explicit Box(std::string_view text, BoxListener boxListener = {});
    /// The same from the words of the text.
    explicit Box(std::vector<t_atom> words, BoxListener boxListener = {});
    /// Stops audio and frees the object.
    ~Box();

    Box(Box const&) = delete;
    Box& operator=(Box const&) = delete;

    t_object* Object() const noexcept { return object; }
    /// The patcher's side of the object: what it notifies.
    t_object* BoxObject() noexcept { return &boxObject; }
    long NumSignalInlets() const;
    long NumSignalOutlets() const;

    /// Sends a message as a user types it. A name that is neither a message nor an attribute that the user may set
    /// gives an error line and false.
    bool Send(std::string_view text);
    bool Send(t_symbol* selector, std::vector<t_atom> atoms);

    /// Reads an attribute; nothing if there is none of that name, or if it can't be read.
    std::optional<std::vector<t_atom>> GetAttribute(char const* name);

    /// The text that the object has for an inlet (direction 1) or an outlet (2), counted from 0; empty if it has none.
    std::string Assist(long direction, unsigned long index);

    /// The object's whole state as a list, and back. Restoring answers with the object's result, 0 if it is content.
    std::vector<t_atom> GetState();
    t_max_err SetState(std::vector<t_atom> atoms);

    /// Stores a preset, as a preset object does when it is told to: the message, and then the list of what it needs.
    std::vector<t_atom> StorePreset();
    /// Sends a stored preset back. A record that isn't one of this object is refused with a line.
    bool RecallPreset(std::vector<t_atom> const& record);

    /// Compiles the signal chain for a rate [Hz] and a vector size [samples]. Again while it runs: compiles it anew.
    void StartAudio(float sampleRate, long newVectorSize);
    void StopAudio();
    bool AudioRuns() const noexcept { return !chain.empty(); }
    long VectorSize() const noexcept { return vectorSize; }

    /// Runs the chain for one vector. Real-time safe. Inputs and outputs may be the same arrays.
    /// @param inputs, outputs  one pointer per signal inlet and outlet, a vector each
    void Process(float const* const* inputs, float* const* outputs);

    /// Switches the object off, as the patcher does for a muted subpatch, and on again.
    void Enable(bool enable);

    // What the API calls.
    bool Console(ConsoleLevel level, std::string const& text) const;
    void Notified(t_symbol* what) const;
    void Sent(long outlet, t_symbol* selector, std::vector<t_atom> const& atoms) const;
    void Allocated(t_object* x) { allocated = x; }
    void AddToChain(t_int word) { chain.push_back(word); }

private:
    class Work;

    void Create(std::vector<t_atom> atoms);
    method HostMessage(char const* name) const;

    BoxListener listener;
    t_object boxObject;
    t_object* object = nullptr;
    t_object* allocated = nullptr;  // the record under construction
    long vectorSize = 0;            // [samples]
    std::vector<t_int> chain;       // functions and their words, ended by 0
    std::vector<float> samples;     // of all signals
    std::vector<t_signal> signals;  // inlets first, then outlets
};

}  // namespace max
