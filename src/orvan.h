#pragma once

/// The whole public engine API in one include.

// dsp
#include "dsp/audio_buffer.h"
#include "dsp/bit_reversal.h"
#include "dsp/constants.h"
#include "dsp/denormals.h"
#include "dsp/fast_hadamard_transform.h"
#include "dsp/filter.h"
#include "dsp/hilbert_transform.h"
#include "dsp/orvan_dsp_exception.h"
#include "dsp/ramp.h"
#include "dsp/signal_processing.h"
#include "dsp/vector_operations.h"
#include "dsp/vector_statistics.h"

// math
#include "math/gauss_jordan_elimination.h"
#include "math/lu.h"
#include "math/matrix.h"
#include "math/matrix_complex.h"
#include "math/pseudo_inverse.h"
#include "math/real_matrix.h"
#include "math/svd.h"

// parameters
#include "parameters/hl_shelf_parameters.h"
#include "parameters/lume_default_parameters.h"
#include "parameters/reverb_dsp_parameters.h"
#include "parameters/room_ir_parameters.h"

// geometry
#include "geometry/azimuth.h"
#include "geometry/azimuth_distance_elevation.h"
#include "geometry/cartesian_vector.h"
#include "geometry/convex_hull_2d.h"
#include "geometry/plane_geometry.h"
#include "geometry/point_search.h"
#include "geometry/space_geometry.h"
#include "geometry/speakers.h"
#include "geometry/spherical_vector.h"

// filters
#include "filters/air_absorption.h"
#include "filters/delay.h"
#include "filters/faded_filters.h"
#include "filters/faded_hl_shelf.h"
#include "filters/hl_shelf.h"
#include "filters/multi_delay.h"
#include "filters/multi_faded_hl_shelf.h"
#include "filters/multi_hl_shelf.h"
#include "filters/tap_out.h"
#include "filters/unitary_hl_shelf.h"

// hrtf
#include "hrtf/builtin_sets.h"
#include "hrtf/coll_file.h"
#include "hrtf/hrtf.h"
#include "hrtf/hrtf_data.h"
#include "hrtf/hrtf_header_infos.h"
#include "hrtf/hrtf_info.h"
#include "hrtf/hrtf_point.h"
#include "hrtf/max_msp_coll_file_parser.h"
#include "hrtf/nearfield_compensation_filters.h"
#include "hrtf/sdif_access.h"
#include "hrtf/sdif_reader.h"
#include "hrtf/sdif_set.h"

// reverb
#include "reverb/cluster.h"
#include "reverb/delgen.h"
#include "reverb/early.h"
#include "reverb/early_gains.h"
#include "reverb/fdens.h"
#include "reverb/recommended_delays_distribution.h"
#include "reverb/reverb.h"
#include "reverb/shuffle.h"

// pan
#include "pan/amplitude_panning.h"
#include "pan/angular_panning.h"
#include "pan/binaural_panning.h"
#include "pan/binaural_panning_itd.h"
#include "pan/dbap_panning.h"
#include "pan/dbap_panning_2d.h"
#include "pan/dbap_panning_3d.h"
#include "pan/gain_cycle.h"
#include "pan/null_panning.h"
#include "pan/pan.h"
#include "pan/panr.h"
#include "pan/recursive_panning.h"
#include "pan/reverb_panning.h"
#include "pan/signal_matrix.h"
#include "pan/stereo_ab_panning.h"
#include "pan/stereo_law.h"
#include "pan/stereo_ms_panning.h"
#include "pan/stereo_xy_panning.h"
#include "pan/surround_panning.h"
#include "pan/vbap2d_panning.h"
#include "pan/vbap_panning.h"
#include "pan/vdbap_panning.h"

// engine
#include "engine/orvan_verb.h"

// decoders
