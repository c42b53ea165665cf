#pragma once

#include <cmath>

/// Mathematical constants and the table of active inputs that every block shares.
///
/// Each source file holds its own copy (internal linkage), so that a static object of one file can use them while
/// another file is still being initialised.
namespace orvandsp {

constexpr float sqrt2 = 1.4142135f;
constexpr float sqrt2div2 = 0.70710677f;
/// The decimal logarithm of 2, by its name (kept: quirks.md 9).
const float Log2 = std::log10(2.0f);
const float ln10 = std::log(10.0f);
constexpr float sqrt2_div_sqrt3 = 0.8164966f;
constexpr float one_div_sqrt3 = 0.57735026f;
constexpr double epsilon_double = 2.220446049250313e-16;
constexpr float epsilon_float = 1.1920929e-07f;

/// The largest number of channels of any block.
constexpr unsigned int MaxNumChannels = 64;

/// Active flags of a block all of whose inputs carry signal, for callers that have no such information.
constexpr short allActiveInputs[MaxNumChannels] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,
                                                   1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,
                                                   1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};

}  // namespace orvandsp
