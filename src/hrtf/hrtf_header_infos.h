#pragma once

#include <string>

namespace Lume {

/// What a set holds. The numbers are fixed: other code and files use them.
enum HrtfType : int {
    hrtfBinaural = 0,
    hrtfNearfieldCompensationFilter = 1,
    hrtfBinauralToTransauralShufflerSymmetric = 2,
    hrtfBinauralToTransauralShufflerAsymmetric = 3,
    hrtfBinauralToTransauralRecursiveSymmetric = 4,
    hrtfBinauralToTransauralRecursiveAsymmetric = 5,
    hrtfBinauralToTransauralFeedForwardSymmetric = 6,
    hrtfBinauralToTransauralFeedForwardAsymmetric = 7,
    hrtfBinauralToTransauralLeastSquares = 8,
};

/// How the filters of a set are stored.
enum HrtfFilterType : int {
    hrtfBiquadCells = 0,  ///< cascaded second-order sections
    hrtfFIR = 1,          ///< impulse responses
    hrtfFFT = 2,
    hrtfMultiChannel = 3,
    hrtfARMA = 4,
    hrtfSHCoeff = 5,
};

/// Whether the delays were taken out of the filters. Files may hold other numbers.
enum FlagItdExtracted : int { itdNotExtracted = 0, itdExtracted = 1 };

/// Whether the directions were interpolated from others. Files may hold other numbers.
enum FlagDataIterpolated : int { dataNotInterpolated = 0, dataInterpolated = 1 };

/// The description of a set.
struct HrtfHeaderInfos {
    std::string owner;
    std::string subject;
    std::string copyright;
    HrtfType hrtfType = hrtfBinaural;
    HrtfFilterType filterType = hrtfBiquadCells;
    FlagItdExtracted flagItdExtracted = itdNotExtracted;
    FlagDataIterpolated flagInterpolated = dataNotInterpolated;
    std::string originalMeasurementSet;
    std::string interpolationSet;
    unsigned int numCoefficients = 0;  // of one ear's filter
    unsigned int numChannels = 0;      // ears, normally 2
    unsigned int samplingRate = 0;     // [Hz]
    unsigned int numPoints = 0;        // directions
    std::string date;
};

/// The name of a type as files have it; empty for a value out of range.
std::string GetHrtfTypeName(HrtfType type);
std::string GetHrtfFilterTypeName(HrtfFilterType type);

/// The type of that name.
/// @throws orvandsp::OrvanDspException for an unknown name
HrtfType GetHrtfType(std::string const& name);
HrtfFilterType GetHrtfFilterType(std::string const& name);

/// The flags in words.
std::string GetFlagItdExtracted(FlagItdExtracted flag);
std::string GetFlagDataInterpolated(FlagDataIterpolated flag);

}  // namespace Lume
