#pragma once

#include <string>

#include "hrtf/spherical_harmonic_data.h"

namespace Lume {

/// Loads sets of filters in spherical harmonics. There is no file format for them yet, and so every set is empty.
class SphericalHarmonicManager : public SphericalHarmonicData {
public:
    explicit SphericalHarmonicManager(std::string const& fileName);

    /// Names that contain ".shb" are set aside for these sets; nothing is read.
    void LoadFromFile(std::string const& fileName);
    void LoadFromSphericalHarmonicFile(std::string const& fileName);
};

}  // namespace Lume
