#pragma once

#include "geometry/cartesian_vector.h"
#include "object/host_api.h"

/// Readers of the lists behind messages that carry positions: an index for some, an optional keyword, coordinates.
/// Without a keyword the format is ade, with a warning. What is wrong becomes a console line of the object, and the
/// result is false. Positions are handed in as they are now and changed in place; relative formats start from them.
/// Control thread only.

/// One source: an index from 1 (1 if the list doesn't begin with a long), then a position. lume3 may be shortened: two
/// numbers keep the elevation, one keeps the distance too.
/// @param index     out, from 0
/// @param position  of that source
bool get_source_coordinates_from_atoms(t_object* x, unsigned int numSources, long count, t_atom const* atoms,
                                       unsigned int& index, Lume::CartesianVector& position);

/// One loudspeaker.
/// @param index  out, from 0; left alone if the list doesn't begin with a long
bool get_speaker_coordinates_from_atoms(t_object* x, unsigned int numSpeakers, long count, t_atom const* atoms,
                                        Lume::CartesianVector& position, unsigned int& index);

/// All loudspeakers. After a failure some of the positions may have changed.
bool get_speakers_coordinates_from_atoms(t_object* x, unsigned int numSpeakers, long count, t_atom const* atoms,
                                         Lume::CartesianVector* positions);

/// The listener.
bool get_listener_coordinates_from_atoms(t_object* x, long count, t_atom const* atoms, Lume::CartesianVector& position);

/// As many points as the list holds, up to a capacity.
/// @param numRead  out
bool get_points_coordinates_from_atoms(t_object* x, unsigned int capacity, long count, t_atom const* atoms,
                                       Lume::CartesianVector* positions, unsigned int& numRead);
