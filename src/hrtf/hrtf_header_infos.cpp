#include "hrtf/hrtf_header_infos.h"

#include <map>

#include "dsp/orvan_dsp_exception.h"

namespace Lume {

namespace {

std::map<std::string, HrtfType> const& HrtfTypes() {
    static const std::map<std::string, HrtfType> types{
        {"Binaural", hrtfBinaural},
        {"NearfieldCompensationFilter", hrtfNearfieldCompensationFilter},
        {"BinauralToTransauralShufflerSymmetric", hrtfBinauralToTransauralShufflerSymmetric},
        {"BinauralToTransauralShufflerAsymmetric", hrtfBinauralToTransauralShufflerAsymmetric},
        {"BinauralToTransauralRecursiveSymmetric", hrtfBinauralToTransauralRecursiveSymmetric},
        {"BinauralToTransauralRecursiveAsymmetric", hrtfBinauralToTransauralRecursiveAsymmetric},
        {"BinauralToTransauralFeedForwardSymmetric", hrtfBinauralToTransauralFeedForwardSymmetric},
        {"BinauralToTransauralFeedForwardAsymmetric", hrtfBinauralToTransauralFeedForwardAsymmetric},
        {"BinauralToTransauralLeastSquares", hrtfBinauralToTransauralLeastSquares},
    };
    return types;
}

std::map<std::string, HrtfFilterType> const& HrtfFilterTypes() {
    static const std::map<std::string, HrtfFilterType> types{
        {"BiquadCells", hrtfBiquadCells},
        {"Biquads", hrtfBiquadCells},
        {"Biquad", hrtfBiquadCells},
        {"BIQUAD", hrtfBiquadCells},
        {"FIR", hrtfFIR},
        {"FFT", hrtfFFT},
        {"MultiChannel", hrtfMultiChannel},
        {"ARMA", hrtfARMA},
        {"SH_COEFF", hrtfSHCoeff},
    };
    return types;
}

}  // namespace

std::string GetHrtfTypeName(HrtfType type) {
    for (auto const& [name, named] : HrtfTypes())
        if (named == type) return name;
    return {};
}

std::string GetHrtfFilterTypeName(HrtfFilterType type) {
    // Of the names of one type, only this one is given back.
    if (type == hrtfBiquadCells) return "BiquadCells";
    for (auto const& [name, named] : HrtfFilterTypes())
        if (named == type) return name;
    return {};
}

HrtfType GetHrtfType(std::string const& name) {
    const auto found = HrtfTypes().find(name);
    if (found == HrtfTypes().end()) throw orvandsp::OrvanDspException("unknown hrtf type " + name, __FILE__, __LINE__);
    return found->second;
}

HrtfFilterType GetHrtfFilterType(std::string const& name) {
    const auto found = HrtfFilterTypes().find(name);
    if (found == HrtfFilterTypes().end())
        throw orvandsp::OrvanDspException("unknown hrtf filter type " + name, __FILE__, __LINE__);
    return found->second;
}

std::string GetFlagItdExtracted(FlagItdExtracted flag) {
    if (flag == itdNotExtracted) return "itd not extracted";
    if (flag == itdExtracted) return "itd extracted";
    return "unknown itd flag";
}

std::string GetFlagDataInterpolated(FlagDataIterpolated flag) {
    if (flag == dataNotInterpolated) return "data have not been interpolated";
    if (flag == dataInterpolated) return "data have been interpolated";
    return "unknown data interpolated flag";
}

}  // namespace Lume
