#pragma once

/// The reverberator alone: Lume::OrvanVerb, its settings, and buffers to feed it. orvan.h has everything else too.
#include "dsp/audio_buffer.h"
#include "dsp/constants.h"
#include "engine/orvan_verb.h"
