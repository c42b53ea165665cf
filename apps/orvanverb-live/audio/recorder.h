#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "orvanverb/audio/audio_output.h"
#include "orvanverb/layout/speaker_layout.h"

namespace live {

/// Writes what an audio thread plays, or gets, to a file, by a ring and a thread of its own.
class Recorder {
public:
    /// @throws program::ProgramError if the file can't be written
    Recorder(std::string const& path, int samplerate, program::SpeakerLayout const& layout);
    ~Recorder();

    /// Audio thread; real-time safe. What finds no place in the ring is lost, and counted.
    void Add(float const* const* channels, std::size_t numSamples) noexcept;

    /// Waits until the ring has a place for so many samples. For a thread that doesn't play in time.
    void WaitForPlace(std::size_t numSamples) const;

    /// Writes the rest and gives the file its name. Nothing may be added meanwhile.
    /// @throws program::WorkError if the disk is full or the like
    void Finish();

private:
    void Run();
    void WriteWaiting();

    std::string path;
    std::size_t numChannels, capacity;  // frames
    std::vector<std::size_t> fileOrder;
    std::vector<float> ring;  // channel after channel, and silence
    std::atomic<std::uint64_t> written = 0, read = 0, lost = 0;
    program::AudioOutput output;
    std::string failure;
    std::atomic<bool> ends = false;
    std::thread thread;
};

}  // namespace live
