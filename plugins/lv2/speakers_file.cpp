#include "lv2/speakers_file.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "geometry/azimuth_distance_elevation.h"

namespace lv2 {

namespace {

/// Angles are wrapped turn by turn, and nobody stands further away [degrees, m].
constexpr float maxValue = 1e5f;

float Number(std::string const& word) {
    float value = 0.0f;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc() || end != word.data() + word.size() || !(std::abs(value) <= maxValue))
        throw std::runtime_error("'" + word + "' is no angle or distance");
    return value;
}

}  // namespace

SpeakersFile ReadSpeakers(std::filesystem::path const& path, std::size_t number) {
    SpeakersFile file{path.string(), {}};
    std::ifstream stream(path);
    if (!stream) throw std::runtime_error(path.string() + ": can't be read");
    std::size_t lineNumber = 0;
    for (std::string line; std::getline(stream, line);) {
        ++lineNumber;
        std::istringstream words(line.substr(0, line.find('#')));
        std::vector<float> values;
        try {
            for (std::string word; words >> word;) values.push_back(Number(word));
            if (values.size() > 3) throw std::runtime_error("azimuth, elevation and distance are all");
        } catch (std::runtime_error const& error) {
            throw std::runtime_error(path.string() + ":" + std::to_string(lineNumber) + ": " + error.what());
        }
        if (values.empty()) continue;
        const float elevation = values.size() > 1 ? values[1] : 0.0f, distance = values.size() > 2 ? values[2] : 1.0f;
        file.positions.push_back(Lume::FromAzimuthDistanceElevation(values[0], distance, elevation));
    }
    if (file.positions.size() != number)
        throw std::runtime_error(path.string() + ": has " + std::to_string(file.positions.size()) +
                                 " loudspeakers, the plug-in " + std::to_string(number));
    return file;
}

}  // namespace lv2
