#pragma once

#include "object/host_api.h"
#include "parameters/hl_shelf_parameters.h"
#include "parameters/reverb_dsp_parameters.h"

/// Parameter sets from lists of atoms, for any object. Control thread only.

/// The six members of a shelf, in the order of every list.
inline constexpr float Lume::HLShelfParameters::*shelfMembers[] = {
    &Lume::HLShelfParameters::gain,     &Lume::HLShelfParameters::gainLow, &Lume::HLShelfParameters::gainMed,
    &Lume::HLShelfParameters::gainHigh, &Lume::HLShelfParameters::freqLow, &Lume::HLShelfParameters::freqHigh};

/// Brings the six values of a shelf into their ranges; what isn't a number becomes the lowest value.
void ClipHLShelfParameters(Lume::HLShelfParameters& parameters);

/// Reads a shelf, or a part of it, tried in this order; values are clipped, other members stay.
///
///     hlshelf|params G0 Gl Gm Gh fl fh      G0 Gl Gm Gh fl fh      gains G0 Gl Gm Gh      freqs fl fh
///     G0|Gl|Gm|Gh gain [dB]      g0|gl|gm|gh power ratio, above 0      fl|fh frequency [Hz]
///
/// @return false if the list has none of these forms; nothing has changed then
bool atoms2hlshelf(float& G0, float& Gl, float& Gm, float& Gh, float& fl, float& fh, long count, t_atom const* atoms);
bool atoms2hlshelf(Lume::HLShelfParameters& parameters, long count, t_atom const* atoms);

/// Reads a part of the late field's parameters, tried in this order; nothing is clipped, other members stay.
///
///     times tr0 trl trm trh      freqs fl fh      gain gain
///
/// The first form whose types fit decides: another word in its place is an error, also if a later form would fit.
bool atoms2reverb(Lume::ReverbDspParameters& parameters, long count, t_atom const* atoms);

/// Posts the six values of a shelf under a prefix.
void post_hlshelf_parameters(t_object* x, Lume::HLShelfParameters const& parameters, char const* prefix);
