#pragma once

#include <optional>
#include <string>

#include "hrtf/hrtf.h"
#include "hrtf/sdif_set.h"
#include "orvanverb/design/measured_set.h"

/// How the commands read the sets that they are given. The word "kemar" means the built-in set,
/// where no rate is given that for 44100 Hz. All throw WorkError
/// that names the file.
namespace program {

/// A set of any kind, as it stands. @param rate  [Hz] the built-in one is that for this rate, or the nearest; 0: 44100
Lume::SdifSet ReadAnySet(std::string const& path, int rate = 0);

/// The longest blocks in which a recursive network runs [samples]. A vector of any rendering is a multiple of it.
constexpr unsigned int maxBlockLength = 64;

/// Whether a recursive network can run in such blocks: they have to fill a vector without a rest.
bool IsBlockLength(unsigned int samples);

/// The length of the blocks for which an SDIF file was made, if it holds one.
/// @throws also for one in which no network runs
std::optional<unsigned int> BlockLengthOf(std::string const& path);

/// Measurements of a head, to make filters for loudspeakers from: a SOFA file, or what a set of filters for headphones
/// says. The built-in one is that for loudspeakers, which says more.
MeasuredSet ReadHead(std::string const& path);

/// A set of filters for headphones, to be converted. @param rate  as for ReadAnySet
Lume::Hrtf ReadHrtf(std::string const& path, int rate);

}  // namespace program
