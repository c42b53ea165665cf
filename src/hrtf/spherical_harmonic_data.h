#pragma once

#include <complex>

#include "geometry/spherical_harmonics_normalization.h"
#include "hrtf/hrtf_header_infos.h"
#include "math/matrix_complex.h"

namespace Lume {

/// The description of a set of filters in spherical harmonics.
struct SphericalHarmonicBasisXmlInfo {
    char owner[64] = {};
    char subject[64] = {};
    char copyright[64] = {};
    HrtfType hrtfType = hrtfBinaural;
    HrtfFilterType filterType = hrtfSHCoeff;
    SphericalHarmonicsNormalization normalization = SchmidtSeminormalized3D;
    unsigned int maxOrder = 0;
    unsigned int numFrequencyBins = 0;
    unsigned int numChannels = 0;
    unsigned int samplingRate = 0;  // [Hz]
    unsigned int numPoints = 0;
};

/// A set of filters of the two ears by direction, as spherical harmonics: a matrix for each ear, of a row for each
/// harmonic up to the highest order and a column for each frequency bin. The spectrum of a direction is the sum of the
/// rows, each times its harmonic there.
class SphericalHarmonicData {
public:
    virtual ~SphericalHarmonicData() = default;

    SphericalHarmonicsNormalization GetNormalization() const noexcept { return info.normalization; }
    unsigned int GetMaxOrder() const noexcept { return info.maxOrder; }
    unsigned int GetNumFrequencyBins() const noexcept { return info.numFrequencyBins; }
    unsigned int GetNumChannels() const noexcept { return info.numChannels; }
    unsigned int GetSamplingRate() const noexcept { return info.samplingRate; }
    unsigned int GetNumPoints() const noexcept { return info.numPoints; }
    SphericalHarmonicBasisXmlInfo const& GetSphericalHarmonicInfo() const noexcept { return info; }
    orvandsp::MatrixComplex const& GetSphericalBasisLeft() const noexcept { return left; }
    orvandsp::MatrixComplex const& GetSphericalBasisRight() const noexcept { return right; }

    /// One value: of a harmonic, a frequency bin and an ear (1 left, 2 right). 0 for what the set doesn't hold.
    /// @param order   of the harmonic, up to the highest
    /// @param degree  from -order to order
    std::complex<float> GetData(int order, int degree, unsigned int bin, unsigned int ear) const;

protected:
    orvandsp::MatrixComplex left;
    orvandsp::MatrixComplex right;
    SphericalHarmonicBasisXmlInfo info;
};

}  // namespace Lume
