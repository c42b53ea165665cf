#pragma once

#include <pybind11/numpy.h>

#include <string>
#include <vector>

/// How arrays come from Python and go there: (channels, frames), one channel after the other.
namespace orvanpython {

using Samples = pybind11::array_t<float, pybind11::array::c_style | pybind11::array::forcecast>;

/// One pointer a channel.
std::vector<float const*> Channels(Samples const& samples);
std::vector<float*> MutableChannels(Samples& samples);

/// As Python writes it, for complaints.
std::string ShapeText(Samples const& samples);

/// Adds pan, decode and convert_hrtf to the module.
void AddProgram(pybind11::module_& m);

}  // namespace orvanpython
