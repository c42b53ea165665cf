#include "hrtf/spherical_harmonic_manager.h"

#include "hrtf/coll_file.h"

namespace Lume {

SphericalHarmonicManager::SphericalHarmonicManager(std::string const& fileName) {
    LoadFromFile(fileName);
}

void SphericalHarmonicManager::LoadFromFile(std::string const& fileName) {
    if (CheckFileExtension(fileName, ".shb")) LoadFromSphericalHarmonicFile(fileName);
}

void SphericalHarmonicManager::LoadFromSphericalHarmonicFile(std::string const& /*fileName*/) {}

}  // namespace Lume
