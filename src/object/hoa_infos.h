#pragma once

#include "decoders/ambisonic/hoa_decoder.h"
#include "object/host_api.h"
#include "pan/ambisonic/hoa_panning.h"

/// Posts what an ambisonic panner says about itself, a line for each member, under a prefix. Control thread only.
void post_hoa_infos(t_object* x, Lume::HOAPanning::HOAPannerInfos const& infos, char const* prefix);

/// The same for a decoder; its subtype is "2D" or "3D".
void post_hoa_infos(t_object* x, Lume::HOADecoder::HOADecoderInfos const& infos, char const* prefix);
