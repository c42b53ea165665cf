#include "program/sound_files.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <numbers>
#include <sstream>

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

void WriteSound(std::string const& path, Sound const& sound, int format) {
    SF_INFO info{};
    info.samplerate = sound.samplerate;
    info.channels = static_cast<int>(sound.samples.size());
    info.format = format;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    ASSERT_NE(file, nullptr) << path << ": " << sf_strerror(nullptr);
    std::vector<float> frame(sound.samples.size());
    for (std::size_t i = 0; i < sound.NumFrames(); ++i) {
        for (std::size_t c = 0; c < frame.size(); ++c) frame[c] = sound.samples[c][i];
        sf_writef_float(file, frame.data(), 1);
    }
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
    std::vector<float> frame(sound.samples.size());
    while (sf_readf_float(file, frame.data(), 1) == 1)
        for (std::size_t c = 0; c < frame.size(); ++c) sound.samples[c].push_back(frame[c]);
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
    Sound sound{{std::vector<float>(static_cast<std::size_t>(std::lround(seconds * samplerate)))}, samplerate};
    for (std::size_t i = 0; i < sound.NumFrames(); ++i)
        sound.samples[0][i] =
            static_cast<float>(0.5 * std::sin(2.0 * std::numbers::pi * hertz * static_cast<double>(i) / samplerate));
    return sound;
}

unsigned int ReadChannelMask(std::string const& path) {
    const std::string text = ReadText(path);
    const std::size_t chunk = text.find("fmt ");
    unsigned int mask = 0;
    if (chunk != std::string::npos) std::memcpy(&mask, text.data() + chunk + 28, sizeof mask);
    return mask;
}
