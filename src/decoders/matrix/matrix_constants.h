#pragma once

namespace Lume {

/// Gains of the matrix formats.
constexpr float sqrt2div3 = 0.8164966f;   // the root of 2 / 3
constexpr float sqrt1div2 = 0.70710677f;  // the root of 1 / 2

}  // namespace Lume
