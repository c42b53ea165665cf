#include "pan/binaural/binaural_panning.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "geometry/azimuth.h"
#include "geometry/vector_algebra.h"
#include "hrtf/hrtf.h"

namespace Lume {

namespace {

std::map<std::string, BinauralPanning::ITDType> itdTypeMap;

constexpr char const* itdTypeNames[] = {"basic",   "woodworth", "measurement", "larchetjot",
                                        "savioja", "miller",    "none",        ""};

/// Milliseconds that sound takes for half a metre: 1000 / (2 * 340 m/s).
constexpr float halfMsPerMetre = 1.4705882f;

/// What the models know about a direction.
struct Direction {
    explicit Direction(CartesianVector const& position)
        : azimuth(SwapAzimuthConvention(std::atan2(position.y, position.x) * RadiansToDegrees) * DegreesToRadians),
          distance(Length(position)),
          elevation(distance > 0.0f ? std::asin(position.z / distance) : 0.0f) {}
    float azimuth;    // the listener's [rad]
    float distance;   // [m]
    float elevation;  // [rad]
};

/// Difference of the arcs to the left and the right ear in the horizontal plane, in head radii, after Woodworth,
/// "Experimental Psychology", 1938.
float ArcDifference(float azimuth) {
    float left, right;
    if (azimuth < -halfPi) {
        left = std::sin(azimuth) + 1.0f;
        right = azimuth + 4.141593f;
    } else if (azimuth <= halfPi) {
        left = 1.0f + azimuth;
        right = 1.0f - std::sin(azimuth);
    } else {
        left = std::sin(azimuth) + 1.0f;
        right = azimuth - 2.1415927f;
    }
    return left - right;
}

// Each model gives half the ITD [ms], positive when the left ear hears later. A source inside the head counts as lying
// on its surface.

float BasicHalfItd(Direction const& direction, float headRadius) {
    const float rho = std::max(headRadius, direction.distance);
    const float t = 2.0f * std::sin(-direction.azimuth) * headRadius * rho;
    // Rounding may leave a tiny negative square where the source touches an ear.
    const float left = std::sqrt(std::max(headRadius * headRadius + rho * rho - t, 0.0f));
    const float right = std::sqrt(std::max(t + (headRadius * headRadius + rho * rho), 0.0f));
    return (left - right) * halfMsPerMetre;
}

/// After Larcher and Jot, "Techniques d'interpolation de filtres audio-numeriques", 1997.
float LarcherJotHalfItd(Direction const& direction, float headRadius) {
    const float u = std::sin(direction.azimuth) * std::cos(direction.elevation);
    return (std::asin(u) + u) * halfMsPerMetre * headRadius;
}

/// After Savioja et al., "Creating interactive virtual acoustic environments", J. Audio Eng. Soc. 47(9), 1999.
float SaviojaHalfItd(Direction const& direction, float headRadius) {
    return std::cos(direction.elevation) * halfMsPerMetre * headRadius * ArcDifference(direction.azimuth);
}

/// After Miller, "Modeling HRTF for sound localization in normal listeners", 2001: straight to an ear that the source
/// sees, and otherwise along the tangent and then around the sphere.
float MillerHalfItd(Direction const& direction, float headRadius) {
    const float rho = std::max(headRadius, direction.distance);
    const float p = std::asin(std::sin(direction.azimuth) * std::cos(direction.elevation));
    const float tangent = std::sqrt(rho * rho - headRadius * headRadius);
    const float beta = std::acos(headRadius / rho);
    const float arcLeft = headRadius * (p + halfPi - beta);
    const float arcRight = headRadius * (halfPi + (-p - beta));
    const float s = 2.0f * std::sin(p) * headRadius * rho;
    // Where rounding leaves a tiny negative square, the comparison with what isn't a number picks the arc: the source
    // touches the ear, and both are next to nothing.
    const float straightLeft = std::sqrt(s + (headRadius * headRadius + rho * rho));
    const float straightRight = std::sqrt(headRadius * headRadius + rho * rho - s);
    const float pathLeft = tangent > straightLeft ? straightLeft : arcLeft + tangent;
    const float pathRight = tangent > straightRight ? straightRight : arcRight + tangent;
    return (pathLeft - pathRight) * halfMsPerMetre;
}

}  // namespace

BinauralPanning::BinauralPanning(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    numOutputs = numberOfOutputs;
    BinauralPanning::SetNumInputs(numberOfInputs);
}

void BinauralPanning::SetNumInputs(unsigned int newNumInputs) {
    numInputs = newNumInputs;
    sourcePositions.resize(numInputs, LumeDefaultParameters::DefaultSourcePosition);
    relativePositions.resize(numInputs);
}

void BinauralPanning::SetFIRFiltersImplementationMethod(char const* name) {
    SetFIRFiltersImplementationMethod(orvandsp::Filter::GetFIRImplementation(name));
}

void BinauralPanning::SetSourcePosition(unsigned int index, CartesianVector const& position, bool flag) {
    sourcePositions[index] = position;
    CartesianVector relative = {position.x - listenerPosition.x, position.y - listenerPosition.y,
                                position.z - listenerPosition.z};
    if (listenerYaw != 0.0f) {
        const float c = std::cos(listenerYaw);
        const float s = std::sin(listenerYaw);
        const float x = c * relative.x - relative.y * s;
        relative.y = c * relative.y + s * relative.x;
        relative.x = x;
    }
    relativePositions[index] = relative;
    setSourceRelativePosition(index, relative, flag);
}

void BinauralPanning::SetSourcePositions(CartesianVector const* positions) {
    for (unsigned int i = 0; i < numInputs; ++i) SetSourcePosition(i, positions[i], false);
}

void BinauralPanning::SetLoudspeakerPositions(CartesianVector const* /*positions*/) {}

void BinauralPanning::SetListenerPosition(CartesianVector const& position) {
    listenerPosition = position;
    forceUpdate(false);
}

void BinauralPanning::SetListenerYaw(float degrees) {
    listenerYaw = DegreesToRadians * degrees;
    forceUpdate(false);
}

void BinauralPanning::SetITDType(ITDType type) {
    if (type == itdType) return;
    itdType = type;
    forceUpdate(false);
}

char const* BinauralPanning::GetITDTypeName(ITDType type) {
    const auto index = static_cast<unsigned int>(type);
    return index < std::size(itdTypeNames) ? itdTypeNames[index] : "measurement";
}

BinauralPanning::ITDType BinauralPanning::GetITDType(char const* name) {
    initITDTypeMap();
    const auto found = itdTypeMap.find(name);
    return found == itdTypeMap.end() ? DefaultItdType : found->second;
}

void BinauralPanning::initITDTypeMap() {
    itdTypeMap["basic"] = basic;
    itdTypeMap["BasicModel"] = basic;
    itdTypeMap["SphericalHeadBasicModel"] = basic;
    itdTypeMap["woodworth"] = woodworth;
    itdTypeMap["WoodworthModel"] = woodworth;
    itdTypeMap["SphericalHeadWoodworthModel"] = woodworth;
    itdTypeMap["measurement"] = measurement;
    itdTypeMap["ITDFromMeasurement"] = measurement;
    itdTypeMap["larcherjot"] = larcherjot;
    itdTypeMap["LarcherJotModel"] = larcherjot;
    itdTypeMap["Woodworth3d"] = larcherjot;
    itdTypeMap["woodworth3d"] = larcherjot;
    itdTypeMap["woodworth3D"] = larcherjot;
    itdTypeMap["savioja"] = savioja;
    itdTypeMap["SaviojaModel"] = savioja;
    itdTypeMap["miller"] = miller;
    itdTypeMap["MillerModel"] = miller;
    itdTypeMap["NoITD"] = none;
}

void BinauralPanning::ComputeMonauralDelays(ITDType type, CartesianVector const& position, HrtfPoint const& point,
                                            float headRadius, float& left, float& right) {
    if (type == none) {
        left = 1.0f;
        right = 1.0f;
        return;
    }
    const Direction direction(position);
    float halfItd = 0.0f;
    switch (type) {
        case basic:
            halfItd = BasicHalfItd(direction, headRadius);
            break;
        case woodworth:
            halfItd = headRadius * halfMsPerMetre * ArcDifference(direction.azimuth);
            break;
        case larcherjot:
            halfItd = LarcherJotHalfItd(direction, headRadius);
            break;
        case savioja:
            halfItd = SaviojaHalfItd(direction, headRadius);
            break;
        case miller:
            halfItd = MillerHalfItd(direction, headRadius);
            break;
        case measurement:
        default:
            halfItd = 0.5f * point.itd;
            break;
    }
    const float common = std::max(std::abs(halfItd), 1.0f);
    left = common + halfItd;
    right = common - halfItd;
}

void BinauralPanning::getMonauralDelays(CartesianVector const& position, HrtfPoint const& point, float& left,
                                        float& right) const {
    ComputeMonauralDelays(itdType, position, point, headRadius, left, right);
}

void BinauralPanning::getMonauralDelays(CartesianVector const& position, Hrtf* hrtf, float& left, float& right) const {
    switch (itdType) {
        case basic:
        case woodworth:
        case larcherjot:
        case savioja:
        case miller:
        case none:
            getMonauralDelays(position, HrtfPoint(), left, right);
            return;
        case measurement:
            break;
    }
    if (hrtf == nullptr) {
        left = 0.0f;
        right = 0.0f;
        return;
    }
    getMonauralDelays(position, hrtf->GetNearestHrtfPoint(position), left, right);
}

void BinauralPanning::StoreMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    sums.resize(2ul * blockSize);
}

void BinauralPanning::Silence(float** outputs, unsigned long numSamples) {
    std::fill_n(outputs[0], numSamples, 0.0f);
    std::fill_n(outputs[1], numSamples, 0.0f);
}

void BinauralPanning::ProcessOntoSilence(float** outputs, float** inputs, unsigned long numSamples,
                                         short const* activeInputs) {
    if (sums.size() < 2 * numSamples) sums.resize(2 * numSamples);
    std::fill_n(sums.begin(), 2 * numSamples, 0.0f);
    float* ears[] = {sums.data(), sums.data() + numSamples};
    ProcessAdding(ears, inputs, numSamples, activeInputs);
    std::copy_n(ears[0], numSamples, outputs[0]);
    std::copy_n(ears[1], numSamples, outputs[1]);
}

}  // namespace Lume
