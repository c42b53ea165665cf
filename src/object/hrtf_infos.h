#pragma once

#include "hrtf/hrtf_header_infos.h"
#include "hrtf/spherical_harmonic_data.h"
#include "object/host_api.h"

/// Posts the description of a set of filters, a line for each member, under a prefix. A null header posts nothing.
void post_hrtf_xml_infos(t_object* x, Lume::HrtfHeaderInfos const* header, char const* prefix);

/// The same for a set in spherical harmonics.
void post_sh_xml_infos(t_object* x, Lume::SphericalHarmonicBasisXmlInfo const* header, char const* prefix);
