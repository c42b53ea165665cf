#include "geometry/speakers.h"

#include <iterator>

#include "geometry/azimuth.h"
#include "geometry/spherical_vector.h"
#include "geometry/vector_algebra.h"

// Static objects of other files may be built from these tables, so that they come before anything without a priority.
#if defined(__GNUC__)
#define ORVAN_INITIALISED_FIRST __attribute__((init_priority(101)))
#else
#define ORVAN_INITIALISED_FIRST
#endif

namespace Lume {

namespace {

/// The point of the unit circle at a mathematical azimuth [rad].
CartesianVector OnCircle(float azimuth) {
    CartesianVector position;
    position = SphericalVector{azimuth, 1.0f, 0.0f};
    return position;
}

/// The point of the unit circle at a listener's azimuth [degrees].
CartesianVector At(float degrees) {
    return OnCircle(SwapAzimuthConvention(degrees) * DegreesToRadians);
}

CartesianVector RegularlySpaced(unsigned int i, unsigned int n) {
    const float degrees = static_cast<float>(i) * 360.0f / static_cast<float>(n);
    const float azimuth = SwapAzimuthConvention(degrees) * DegreesToRadians;
    return OnCircle(Wrap(azimuth + pi, twoPi) - pi);
}

}  // namespace

ORVAN_INITIALISED_FIRST CartesianVector const Speakers::mono[1] = {At(0)};
ORVAN_INITIALISED_FIRST CartesianVector const Speakers::stereo[2] = {At(-30), At(30)};
ORVAN_INITIALISED_FIRST CartesianVector const Speakers::lrs[3] = {At(-30), At(30), At(180)};
ORVAN_INITIALISED_FIRST CartesianVector const Speakers::lcrs[4] = {At(-30), At(0), At(30), At(180)};
ORVAN_INITIALISED_FIRST CartesianVector const Speakers::quadri[4] = {At(-45), At(45), At(135), At(-135)};
ORVAN_INITIALISED_FIRST CartesianVector const Speakers::fiveDotOne[5] = {At(-30), At(0), At(30), At(110), At(-110)};
ORVAN_INITIALISED_FIRST CartesianVector const Speakers::hexa[6] = {At(-45), At(45), At(90), At(135), At(-135), At(-90)};
ORVAN_INITIALISED_FIRST CartesianVector const Speakers::sevenDotOne[7] = {At(-30), At(0),    At(30), At(90),
                                                                          At(150), At(-150), At(-90)};
ORVAN_INITIALISED_FIRST CartesianVector const Speakers::octo[8] = {At(-45), At(0),   At(45),   At(90),
                                                                   At(135), At(180), At(-135), At(-90)};
constinit CartesianVector const Speakers::cube[8] = {{-1, 1, 1},  {1, 1, 1},  {1, -1, 1},  {-1, -1, 1},
                                                     {-1, 1, -1}, {1, 1, -1}, {1, -1, -1}, {-1, -1, -1}};

CartesianVector const* Speakers::getDefaultForChannels(unsigned int n) {
    static CartesianVector const* const tables[] = {nullptr,    mono, stereo,      lrs, quadri,
                                                    fiveDotOne, hexa, sevenDotOne, octo};
    return n < std::size(tables) ? tables[n] : nullptr;
}

void Speakers::GetDefaultForChannels(std::vector<CartesianVector>& positions, unsigned int n) {
    if (CartesianVector const* const table = getDefaultForChannels(n))
        positions.assign(table, table + n);
    else
        GetRegularlySpaced(positions, n);
}

void Speakers::GetRegularlySpaced(float* positions, unsigned int n) {
    for (unsigned int i = 0; i < n; ++i) {
        const CartesianVector position = RegularlySpaced(i, n);
        *positions++ = position.x;
        *positions++ = position.y;
        *positions++ = position.z;
    }
}

void Speakers::GetRegularlySpaced(std::vector<CartesianVector>& positions, unsigned int n) {
    positions.resize(n);
    for (unsigned int i = 0; i < n; ++i) positions[i] = RegularlySpaced(i, n);
}

}  // namespace Lume
