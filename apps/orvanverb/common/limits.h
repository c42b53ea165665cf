#pragma once

namespace program {

// What the room offers and what the program accepts.
constexpr unsigned int maxSources = 64;
constexpr unsigned int minSpeakers = 2;
constexpr unsigned int maxSpeakers = 64;
constexpr char const* defaultSpeakers = "2";
constexpr int minRate = 8000;    // [Hz]
constexpr int maxRate = 384000;  // [Hz]

// Samples of one run of the engine. It only takes powers of two from 16 on without changing its own time structure.
constexpr unsigned int defaultVectorSize = 64;
constexpr unsigned int minVectorSize = 16;
constexpr unsigned int maxVectorSize = 8192;

}  // namespace program
