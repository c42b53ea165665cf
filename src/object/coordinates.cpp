#include "object/coordinates.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "geometry/azimuth.h"
#include "geometry/spherical_vector.h"
#include "geometry/vector_algebra.h"
#include "object/atom_format.h"
#include "object/lume_common_symbols.h"
#include "object/orvanmax_common_symbols.h"

using Lume::CartesianVector;
using Lume::DegreesToRadians;
using Lume::halfPi;
using Lume::pi;
using Lume::RadiansToDegrees;
using Lume::SphericalVector;
using Lume::SwapAzimuthConvention;
using Lume::twoPi;
using Lume::Wrap;

namespace {

constexpr float minDistance = 1e-5f;    // [m]
constexpr float wfsUnit = 0.1f;         // [m]
constexpr float largestAngle = 1.0e6f;  // [degrees], bounds the time that wrapping takes

/// From radians to degrees and back, in single precision.
constexpr float radiansRoundTrip = 0.99999994f;

/// What each atom of a format is, in order: a an angle, l a length.
constexpr char const* shapes[] = {
    "lll", "ll",  "l",  "l",  "l",       // xyz, xy, x++, y++, z++
    "ala", "aal", "aa", "al", "a",       // ade, aed, ae, ad, az
    "a",   "a",   "a",  "a",  "l", "l",  // azim, azim++, elev, elev++, dist, dist++
    "ala", "al",  "l",  "l",  "l",       // lume3, wfs, x, y, z
};

bool IsCoordinate(t_atom const& atom, char kind) {
    if (!orvanmax::CheckAtomsFormat("n", &atom, 1)) return false;
    const float value = atom_getfloat(&atom);
    return std::isfinite(value) && (kind != 'a' || std::fabs(value) <= largestAngle);
}

/// Reads the numbers of a format; false if they aren't all there.
bool ReadNumbers(CoordinatesFormat format, long count, t_atom const* atoms, float (&numbers)[3]) {
    const auto index = static_cast<unsigned int>(format);
    if (index >= std::size(shapes)) return false;
    char const* const shape = shapes[index];
    for (long i = 0; shape[i] != '\0'; ++i) {
        if (i >= count || !IsCoordinate(atoms[i], shape[i])) return false;
        numbers[i] = atom_getfloat(&atoms[i]);
    }
    return true;
}

/// Mathematical azimuth [rad] of the user's [degrees], and of that of lume3 and wfs.
float AzimuthIn(float degrees) {
    return SwapAzimuthConvention(degrees) * DegreesToRadians;
}

float CounterAzimuthIn(float degrees) {
    return (Wrap(degrees + 270.0f, 360.0f) - 180.0f) * DegreesToRadians;
}

/// Brings an elevation [rad] into the half turn between the poles; beyond one the azimuth turns to the other side. The
/// fold is about the pole, and not pi - e (kept: quirks.md 13).
float FoldElevation(float radians, float& azimuth) {
    const float e = Wrap(radians + pi, twoPi) - pi;
    if (e > halfPi) {
        azimuth += pi;
        return halfPi - e;
    }
    if (e < -halfPi) {
        azimuth += pi;
        return -halfPi - e;
    }
    return e;
}

/// The same fold for elevations that are set alone [degrees]: the azimuth stays.
float FoldElevationDegrees(float degrees) {
    const float f = Wrap(degrees + 180.0f, 360.0f) - 180.0f;
    if (f > 90.0f) return 90.0f - f;
    if (f < -90.0f) return -90.0f - f;
    return f;
}

/// Places by azimuth and elevation [rad] and distance [m]; a negative distance is the opposite direction.
void Place(CartesianVector& position, float azimuth, float distance, float elevation) {
    if (distance < 0.0f) {
        distance = -distance;
        elevation = -elevation;
        azimuth += pi;
    }
    azimuth = Wrap(azimuth + pi, twoPi) - pi;
    position = SphericalVector{azimuth, distance, elevation};
}

void PlaceFolded(CartesianVector& position, float azimuth, float distance, float elevationDegrees) {
    const float elevation = FoldElevation(DegreesToRadians * elevationDegrees, azimuth);
    Place(position, azimuth, distance, elevation);
}

/// Elevation of a position [rad].
float ElevationOf(CartesianVector const& position) {
    const float r = position.radius();
    return r > 0.0f ? std::asin(position.z / r) : 0.0f;
}

SphericalVector ToSpherical(CartesianVector const& position) {
    SphericalVector spherical{0.0f, 1.0f, 0.0f};
    spherical = position;
    return spherical;
}

/// The formats that keep a part of the position by its direction and distance.
void ChangeOne(CartesianVector& position, CoordinatesFormat format, float value) {
    SphericalVector spherical = ToSpherical(position);
    switch (format) {
        case coordinates_azim:
            spherical.azimuth = AzimuthIn(value);
            break;
        case coordinates_dazim:
            spherical.azimuth = std::atan2(position.y, position.x) - value * DegreesToRadians;
            break;
        case coordinates_elev:
            spherical.elevation = FoldElevationDegrees(value) * DegreesToRadians;
            break;
        case coordinates_delev:
            // A positive step lowers, unlike those of the other formats (kept: quirks.md 34).
            spherical.elevation = ElevationOf(position) - FoldElevationDegrees(value) * DegreesToRadians;
            break;
        case coordinates_dist:
            spherical.distance = std::max(std::fabs(value), minDistance);
            break;
        default:
            spherical.distance = std::max(value + position.radius(), minDistance);
            break;
    }
    position = spherical;
}

/// Applies the numbers of a format to a position.
void Move(CartesianVector& position, CoordinatesFormat format, float const (&n)[3]) {
    switch (format) {
        case coordinates_xyz:
            position = CartesianVector{n[0], n[1], n[2]};
            break;
        case coordinates_xy:
            position = CartesianVector{n[0], n[1], 0.0f};
            break;
        case coordinates_dx:
            position.x += n[0];
            break;
        case coordinates_dy:
            position.y += n[0];
            break;
        case coordinates_dz:
            position.z += n[0];
            break;
        case coordinates_x:
            position.x = n[0];
            break;
        case coordinates_y:
            position.y = n[0];
            break;
        case coordinates_z:
            position.z = n[0];
            break;
        case coordinates_ade:
            PlaceFolded(position, AzimuthIn(n[0]), n[1], n[2]);
            break;
        case coordinates_aed:
            PlaceFolded(position, AzimuthIn(n[0]), n[2], n[1]);
            break;
        case coordinates_ae:
            PlaceFolded(position, AzimuthIn(n[0]), 1.0f, n[1]);
            break;
        case coordinates_ad:
            Place(position, AzimuthIn(n[0]), n[1], 0.0f);
            break;
        case coordinates_az:
            Place(position, AzimuthIn(n[0]), 1.0f, 0.0f);
            break;
        case coordinates_lume3:
            PlaceFolded(position, CounterAzimuthIn(n[0]), n[1], n[2]);
            break;
        case coordinates_wfs:
            Place(position, CounterAzimuthIn(n[0]), n[1] * wfsUnit, 0.0f);
            break;
        case coordinates_azim:
        case coordinates_dazim:
        case coordinates_elev:
        case coordinates_delev:
        case coordinates_dist:
        case coordinates_ddist:
            ChangeOne(position, format, n[0]);
            break;
    }
}

/// Lengths may be so large that their sums or squares leave the range of a float: such a position is none, since no
/// relative step would lead back from it.
bool Take(CartesianVector& position, CartesianVector const& moved) {
    if (!(std::isfinite(moved.x) && std::isfinite(moved.y) && std::isfinite(moved.z))) return false;
    position = moved;
    return true;
}

}  // namespace

CoordinatesKeyword const* FindCoordinatesKeyword(t_symbol const* symbol) {
    LumeCommonSymbols const& s = lume_common_symbols;
    static const CoordinatesKeyword keywords[] = {{orvanmax_common_symbols.s_xyz, coordinates_xyz, 3},
                                                  {s.s_xy, coordinates_xy, 2},
                                                  {s.s_x_plus, coordinates_dx, 1},
                                                  {s.s_y_plus, coordinates_dy, 1},
                                                  {s.s_z_plus, coordinates_dz, 1},
                                                  {s.s_x, coordinates_x, 1},
                                                  {s.s_y, coordinates_y, 1},
                                                  {s.s_z, coordinates_z, 1},
                                                  {s.s_ade, coordinates_ade, 3},
                                                  {s.s_aed, coordinates_aed, 3},
                                                  {s.s_ae, coordinates_ae, 2},
                                                  {s.s_ad, coordinates_ad, 2},
                                                  {s.s_az, coordinates_az, 1},
                                                  {s.s_azim, coordinates_azim, 1},
                                                  {s.s_azim_plus, coordinates_dazim, 1},
                                                  {s.s_elev, coordinates_elev, 1},
                                                  {s.s_elev_plus, coordinates_delev, 1},
                                                  {s.s_dist, coordinates_dist, 1},
                                                  {s.s_dist_plus, coordinates_ddist, 1},
                                                  {s.s_lume3, coordinates_lume3, 3},
                                                  {s.s_wfs, coordinates_wfs, 2}};
    auto const* const found = std::find_if(std::begin(keywords), std::end(keywords),
                                           [symbol](auto const& keyword) { return keyword.symbol == symbol; });
    return found != std::end(keywords) ? found : nullptr;
}

void get_coordinates_format_and_stride(t_symbol* symbol, t_object* x, CoordinatesFormat& format, long& stride,
                                       t_symbol*& keyword) {
    CoordinatesKeyword const* found = FindCoordinatesKeyword(symbol);
    if (found == nullptr) {
        object_warn(x, "unknown coordinate type: %s. using default coordinate type (ade)", symbol->s_name);
        found = FindCoordinatesKeyword(lume_common_symbols.s_aed);  // kept: quirks.md 14
    }
    format = found->format;
    stride = found->stride;
    keyword = found->symbol;
}

bool atoms2coordinates(CartesianVector& position, CoordinatesFormat format, long count, t_atom const* atoms) {
    float numbers[3] = {0.0f, 0.0f, 0.0f};
    if (!ReadNumbers(format, count, atoms, numbers)) return false;
    CartesianVector moved = position;
    Move(moved, format, numbers);
    return Take(position, moved);
}

bool coordinates2atoms(CartesianVector const& position, CoordinatesFormat format, long count, t_atom* atoms) {
    const float mathematical = RadiansToDegrees * std::atan2(position.y, position.x);
    const float azimuth = SwapAzimuthConvention(mathematical);
    const float distance = position.radius();
    const float elevation = distance > 0.0f ? RadiansToDegrees * std::asin(position.z / distance) : 0.0f;
    const auto write = [count, atoms](std::initializer_list<float> values) {
        if (count != static_cast<long>(values.size())) return false;
        t_atom* atom = atoms;
        for (const float value : values) atom_setfloat(atom++, static_cast<double>(value));
        return true;
    };
    switch (format) {
        case coordinates_xyz:
            return write({position.x, position.y, position.z});
        case coordinates_xy:
            return write({position.x, position.y});
        case coordinates_ade:
            return write({azimuth, distance, elevation});
        case coordinates_aed:
            return write({azimuth, elevation, distance});
        case coordinates_ae:
            return write({azimuth, elevation});
        case coordinates_ad:
            return write({azimuth, distance});
        case coordinates_az:
            return write({azimuth});
        case coordinates_lume3:
            return write({-azimuth, distance, elevation});
        case coordinates_wfs:
            return write({Wrap(mathematical + 270.0f, 360.0f), distance * 10.0f});
        default:
            return false;
    }
}

bool ShortLume3ToCoordinates(CartesianVector& position, long count, t_atom const* atoms) {
    if (count < 1 || !IsCoordinate(atoms[0], 'a')) return false;
    CartesianVector moved = position;
    float azimuth = CounterAzimuthIn(atom_getfloat(&atoms[0]));
    if (count < 2 || !IsCoordinate(atoms[1], 'l')) {
        SphericalVector spherical = ToSpherical(position);
        spherical.azimuth = azimuth;
        moved = spherical;
        return Take(position, moved);
    }
    const float elevation = FoldElevation(radiansRoundTrip * ElevationOf(position), azimuth);
    Place(moved, azimuth, atom_getfloat(&atoms[1]), elevation);
    return Take(position, moved);
}
