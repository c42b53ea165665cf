#include "program/sound_files.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <span>
#include <sstream>

#include "support/signals.h"

TemporaryDirectory::TemporaryDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "orvanverb-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary directory " + pattern);
    path = pattern;
}

TemporaryDirectory::~TemporaryDirectory() {
    std::filesystem::remove_all(path);
}

std::size_t TemporaryDirectory::NumFiles() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path), {}));
}

void WriteSound(std::string const& path, Sound const& sound, int format, int times) {
    SF_INFO info{};
    info.samplerate = sound.samplerate;
    info.channels = static_cast<int>(sound.samples.size());
    info.format = format;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    ASSERT_NE(file, nullptr) << path << ": " << sf_strerror(nullptr);
    std::vector<float> interleaved;
    for (std::size_t i = 0; i < sound.NumFrames(); ++i)
        for (std::vector<float> const& channel : sound.samples) interleaved.push_back(channel[i]);
    for (int i = 0; i < times; ++i)
        sf_write_float(file, interleaved.data(), static_cast<sf_count_t>(interleaved.size()));
    sf_close(file);
}

Sound ReadSound(std::string const& path) {
    SF_INFO info{};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    EXPECT_NE(file, nullptr) << path << ": " << sf_strerror(nullptr);
    if (file == nullptr) return {};
    Sound sound;
    sound.samplerate = info.samplerate;
    sound.format = info.format;
    sound.samples.resize(static_cast<std::size_t>(info.channels));
    std::vector<float> interleaved(sound.samples.size() * static_cast<std::size_t>(info.frames));
    const sf_count_t frames = sf_readf_float(file, interleaved.data(), info.frames);
    for (std::size_t i = 0; i < sound.samples.size() * static_cast<std::size_t>(frames); ++i)
        sound.samples[i % sound.samples.size()].push_back(interleaved[i]);
    sf_close(file);
    return sound;
}

void WriteText(std::string const& path, std::string const& text) {
    std::ofstream(path, std::ios::binary) << text;
}

std::string ReadText(std::string const& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

Sound MakeTone(double hertz, double seconds, int samplerate) {
    return {{MakeSine(hertz, samplerate, static_cast<std::size_t>(std::lround(seconds * samplerate)), 0.5)},
            samplerate};
}

unsigned int ReadChannelMask(std::string const& path) {
    std::string text(256, '\0');
    std::ifstream(path, std::ios::binary).read(text.data(), static_cast<std::streamsize>(text.size()));
    const std::size_t chunk = text.find("fmt ");
    unsigned int mask = 0;
    if (chunk != std::string::npos) std::memcpy(&mask, text.data() + chunk + 28, sizeof mask);
    return mask;
}

std::vector<double> Energies(Sound const& sound, std::size_t begin, std::size_t end) {
    std::vector<double> energies;
    for (std::vector<float> const& channel : sound.samples)
        energies.push_back(EnergyOf(std::span(channel).first(std::min(end, channel.size())).subspan(begin)));
    return energies;
}
