#pragma once

#include <cstddef>

namespace program {

// What the room offers and what the program accepts.
constexpr unsigned int maxSources = 64;
constexpr unsigned int minSpeakers = 2;
constexpr unsigned int maxSpeakers = 64;
constexpr char const* defaultSpeakers = "2";

// Lines of a preset: many times the number of all controls, each of which costs a design of filters.
constexpr std::size_t mostSettings = 1000;
constexpr char const* tooManySettings = "is no preset: it has more than 1000 lines";

constexpr int minRate = 8000;    // [Hz]
constexpr int maxRate = 384000;  // [Hz]

// Samples of one run of the engine. It only takes powers of two from 16 on without changing its own time structure.
constexpr unsigned int defaultVectorSize = 64;
constexpr unsigned int minVectorSize = 16;
constexpr unsigned int maxVectorSize = 8192;

}  // namespace program
