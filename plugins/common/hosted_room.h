#pragma once

#include <memory>
#include <vector>

#include "patcher/box.h"
#include "room/sample_guard.h"
#include "room/steady_vectors.h"

namespace plugin {

/// The object orvanverb~ as plug-ins run it in the process of a host: in its box, with the built-in places for what
/// wasn't placed, at a steady vector size, and without a trace on the thread's floating-point mode.
///
/// The host calls it from one thread at a time, messages between two blocks.
class HostedRoom {
public:
    /// Makes the object.
    /// @param words  of the object box behind the class name: @numsources 2 @numspeakers 8
    HostedRoom(std::vector<max::t_atom> words, max::BoxListener listener);

    /// False if the object refused to be made; its lines said why, and nothing else may be called.
    bool IsMade() const noexcept { return box->Object() != nullptr; }
    std::size_t NumInputs() const { return static_cast<std::size_t>(box->NumSignalInlets()); }
    std::size_t NumOutputs() const { return static_cast<std::size_t>(box->NumSignalOutlets()); }

    bool Send(char const* selector, std::vector<max::t_atom> atoms);
    std::vector<max::t_atom> State();
    void Restore(std::vector<max::t_atom> state);

    /// Prepares for audio and silences the room.
    /// @param sampleRate  [Hz]
    /// @param blockSize   of the host [samples]; any from 1 on
    void Start(float sampleRate, std::size_t blockSize);
    float SampleRate() const noexcept { return sampleRate; }
    std::size_t BlockSize() const noexcept { return vectors.BlockSize(); }
    /// How many input samples became 0 because they could have stayed in the room for good.
    std::uint64_t NumReplaced() const noexcept { return guard.NumReplaced(); }

    /// Processes one block of the host. Real-time safe.
    /// @param inputs, outputs  one pointer per channel; may be the same arrays, in any order
    void Process(float const* const* inputs, float* const* outputs);

private:
    float sampleRate = 0.0f;  // [Hz]; 0 before the first Start
    Lume::SteadyVectors vectors;
    Lume::SampleGuard guard;
    std::unique_ptr<max::Box> box;
};

}  // namespace plugin
