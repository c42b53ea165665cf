#pragma once

/// The whole public engine API in one include.

// dsp
#include "dsp/constants.h"
#include "dsp/denormals.h"
#include "dsp/filter.h"
#include "dsp/orvan_dsp_exception.h"
#include "dsp/ramp.h"
#include "dsp/signal_processing.h"

// math

// parameters

// geometry

// filters

// hrtf

// reverb

// pan

// engine

// decoders
