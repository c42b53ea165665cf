#pragma once

#include "geometry/cartesian_vector.h"
#include "object/host_api.h"

/// Positions as lists of atoms, in one of 21 formats.
///
/// Atoms hold metres and degrees. The user's azimuth runs clockwise seen from above, 0 ahead, 90 right; in lume3 and
/// wfs it runs the other way. Angles are wrapped by repeated addition, so that numbers that aren't finite, and angles
/// beyond a million degrees, don't count as numbers here.

/// Formats of a position. A format replaces the position unless a comment tells otherwise.
enum CoordinatesFormat : int {
    coordinates_xyz = 0,
    coordinates_xy = 1,      ///< z becomes 0
    coordinates_dx = 2,      ///< x++: adds to x
    coordinates_dy = 3,      ///< y++
    coordinates_dz = 4,      ///< z++
    coordinates_ade = 5,     ///< azimuth distance elevation
    coordinates_aed = 6,     ///< azimuth elevation distance
    coordinates_ae = 7,      ///< distance 1
    coordinates_ad = 8,      ///< elevation 0
    coordinates_az = 9,      ///< distance 1, elevation 0
    coordinates_azim = 10,   ///< azimuth alone, the rest stays
    coordinates_dazim = 11,  ///< azim++: turns clockwise
    coordinates_elev = 12,   ///< elevation alone
    coordinates_delev = 13,  ///< elev++: lowers
    coordinates_dist = 14,   ///< distance alone, at least 1e-5, so that the direction survives
    coordinates_ddist = 15,  ///< dist++: moves away, likewise
    coordinates_lume3 = 16,  ///< azimuth distance elevation, azimuth counter-clockwise
    coordinates_wfs = 17,    ///< azimuth distance, azimuth counter-clockwise, distance in tenths of a metre
    coordinates_x = 18,      ///< x alone
    coordinates_y = 19,
    coordinates_z = 20
};

/// What a keyword stands for.
struct CoordinatesKeyword {
    t_symbol* symbol;
    CoordinatesFormat format;
    long stride;  ///< atoms of one position
};

/// The keyword of that name, or null.
CoordinatesKeyword const* FindCoordinatesKeyword(t_symbol const* symbol);

/// Looks a keyword up. An unknown one gives a warning that speaks of ade, and the format aed (kept: quirks.md 14).
void get_coordinates_format_and_stride(t_symbol* symbol, t_object* x, CoordinatesFormat& format, long& stride,
                                       t_symbol*& keyword);

/// Changes a position by the first atoms of a list. The formats that keep a part start from the position handed in.
/// @return false, and the position as it was, if there are too few atoms, one isn't a number, the format isn't one, or
///         the new position isn't finite
bool atoms2coordinates(Lume::CartesianVector& position, CoordinatesFormat format, long count, t_atom const* atoms);

/// Writes a position as float atoms, in one of the formats that hold it by themselves: xyz, xy, ade, aed, ae, ad, az,
/// lume3, wfs. (The azimuth of wfs is not shifted by half a turn here, while the way in is: kept as patches know it.)
/// @param count  must be the format's stride
/// @return false for the other formats and counts
bool coordinates2atoms(Lume::CartesianVector const& position, CoordinatesFormat format, long count, t_atom* atoms);

/// Forms of lume3 that leave something out, for sources: with two numbers the elevation of the position stays, with one
/// the distance as well.
/// @return false, and the position as it was, if the list doesn't begin with a number or the new position isn't finite
bool ShortLume3ToCoordinates(Lume::CartesianVector& position, long count, t_atom const* atoms);
