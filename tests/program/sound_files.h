#pragma once

#include <sndfile.h>

#include <filesystem>
#include <string>
#include <vector>

/// A sound in memory: samples[channel][frame].
struct Sound {
    std::vector<std::vector<float>> samples;
    int samplerate = 48000;  // [Hz]
    int format = 0;          // of libsndfile; set by ReadSound

    std::size_t NumFrames() const { return samples.empty() ? 0 : samples[0].size(); }
};

/// A directory of its own for one test, removed with all it holds.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(TemporaryDirectory const&) = delete;
    TemporaryDirectory& operator=(TemporaryDirectory const&) = delete;

    /// The path of a file in it.
    std::string operator/(std::string const& name) const { return (path / name).string(); }
    std::size_t NumFiles() const;

private:
    std::filesystem::path path;
};

/// @param times  how often the sound stands in the file
void WriteSound(std::string const& path, Sound const& sound, int format = SF_FORMAT_WAV | SF_FORMAT_FLOAT,
                int times = 1);
Sound ReadSound(std::string const& path);

void WriteText(std::string const& path, std::string const& text);
std::string ReadText(std::string const& path);

/// One channel of a sine of amplitude 0.5.
Sound MakeTone(double hertz, double seconds, int samplerate);

/// The channel mask of a WAV file's header.
unsigned int ReadChannelMask(std::string const& path);

/// Energy of each channel within a piece of a sound [frames].
std::vector<double> Energies(Sound const& sound, std::size_t begin, std::size_t end);
