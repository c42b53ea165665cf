#include "pan/pan.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "pan/ambisonic/ambisonic_panning.h"
#include "pan/ambisonic/hoa2d_panning.h"
#include "pan/ambisonic/hoa3d_panning.h"
#include "pan/amplitude/angular_panning.h"
#include "pan/amplitude/dbap_panning_2d.h"
#include "pan/amplitude/dbap_panning_3d.h"
#include "pan/amplitude/vbap2d_panning.h"
#include "pan/amplitude/vbap_panning.h"
#include "pan/amplitude/vdbap_panning.h"
#include "pan/binaural/binaural_panning_direct.h"
#include "pan/binaural/binaural_panning_iacc.h"
#include "pan/binaural/binaural_panning_itd.h"
#include "pan/binaural/binaural_panning_nearfield.h"
#include "pan/binaural/binaural_panning_snowman_model.h"
#include "pan/binaural/binaural_panning_spherical_harmonics.h"
#include "pan/binaural/binaural_panning_spherical_head_model.h"
#include "pan/diffuse/reverb_panning.h"
#include "pan/null_panning.h"
#include "pan/stereo/stereo_ab_panning.h"
#include "pan/stereo/stereo_ms_panning.h"
#include "pan/stereo/stereo_xy_panning.h"
#include "pan/surround/recursive_panning.h"
#include "pan/surround/surround_panning.h"

namespace Lume {

namespace {

std::map<std::string, Pan::Type> panTypeMap;
std::map<std::string, Pan::SubType> panSubTypeMap;

constexpr unsigned int numTypes = 16;

constexpr char const* typeNames[numTypes] = {"binaural", "xy",     "ms",    "ab",   "surround", "panr",
                                             "angular",  "vbap2d", "vbap",  "dbap", "dbap3d",   "bformat",
                                             "hoa2d",    "hoa3d",  "vdbap", "null"};

/// Makes a panner, or a NullPanning for numbers of channels that it can't serve.
using Maker = Pan* (*)(unsigned int numInputs, unsigned int numOutputs);

/// By method, for every role that has no maker of its own.
constexpr Maker methodMakers[numTypes] = {
    BinauralPanningDirect::Create,  // binaural
    StereoXYPanning::Create,        // xy
    StereoMSPanning::Create,        // ms
    StereoABPanning::Create,        // ab
    SurroundPanning::Create,        // surround
    RecursivePanning::Create,       // panr
    AngularPanning::Create,         // angular
    Vbap2DPanning::Create,          // vbap2d
    VbapPanning::Create,            // vbap
    DbapPanning2D::Create,          // dbap
    DbapPanning3D::Create,          // dbap3d
    AmbisonicPanning::Create,       // bformat
    HOA2DPanning::Create,           // hoa2d
    HOA3DPanning::Create,           // hoa3d
    VDbapPanning::Create,           // vdbap
    NullPanning::Create,            // null
};

/// The diffuse role of every method but the binaural one.
constexpr Maker diffuseMaker = ReverbPanning::Create;

/// The roles of the binaural method.
constexpr Maker binauralMakers[] = {
    methodMakers[Pan::binaural],                // direct
    BinauralPanningITD::Create,                 // early
    BinauralPanningIACC::Create,                // diffuse
    BinauralPanningNearfield::Create,           // nearfield
    BinauralPanningSphericalHarmonics::Create,  // sphericalharmonics
    BinauralPanningSphericalHeadModel::Create,  // sphericalheadmodel
    BinauralPanningSnowmanModel::Create,        // snowmanmodel
};

/// Values from outside the enumeration count as null.
unsigned int TypeIndex(Pan::Type type) {
    return std::min(static_cast<unsigned int>(type), static_cast<unsigned int>(Pan::null));
}

/// The diffuse role overrides the method, whatever that is; only the binaural method tells the other roles apart.
Maker FindMaker(Pan::Type type, Pan::SubType subType) {
    if (type == Pan::binaural) {
        const auto role = static_cast<unsigned int>(subType);
        return role < std::size(binauralMakers) ? binauralMakers[role] : binauralMakers[Pan::direct];
    }
    return subType == Pan::diffuse ? diffuseMaker : methodMakers[TypeIndex(type)];
}

bool IsWholeAndNotNegative(float value) {
    return value == std::trunc(std::max(value, 0.0f));
}

}  // namespace

Pan* Pan::factory(unsigned int numInputs, unsigned int numOutputs, Type type, SubType subType) {
    try {
        return FindMaker(type, subType)(numInputs, numOutputs);
    } catch (...) {
        return new NullPanning;
    }
}

Pan* Pan::factory(unsigned int numInputs, unsigned int numOutputs, char const* type, char const* subType) {
    initPanTypeMap();
    const auto found = panSubTypeMap.find(subType);
    return factory(numInputs, numOutputs, GetType(type), found == panSubTypeMap.end() ? direct : found->second);
}

char const* Pan::GetTypeName(Type type) {
    return typeNames[TypeIndex(type)];
}

Pan::Type Pan::GetType(char const* name) {
    initPanTypeMap();
    const auto found = panTypeMap.find(name);
    return found == panTypeMap.end() ? null : found->second;
}

bool Pan::IsValidPanType(char const* name) {
    initPanTypeMap();
    return panTypeMap.contains(name);
}

bool Pan::SupportsConfiguration(Type type, unsigned int numOutputs) {
    switch (type) {
        case binaural:
        case xy:
        case ms:
        case ab:
            return numOutputs == 2;
        case surround:
        case bformat:
            return numOutputs == 3 || numOutputs == 4;
        case panr:
            return (numOutputs >= 4 && numOutputs <= 8) || numOutputs == 12;
        case angular:
            return numOutputs != 0;
        case vbap2d:
            return numOutputs > 1;
        case vbap:
        case dbap:
        case dbap3d:
        case vdbap:
            return numOutputs > 2;
        case hoa2d:
            return IsWholeAndNotNegative((static_cast<float>(numOutputs) - 1.0f) * 0.5f);
        case hoa3d:
            return IsWholeAndNotNegative(std::sqrt(static_cast<float>(numOutputs)) - 1.0f);
        case null:
            break;
    }
    return false;
}

bool Pan::SupportsConfiguration(char const* name, unsigned int numOutputs) {
    return IsValidPanType(name) && SupportsConfiguration(GetType(name), numOutputs);
}

void Pan::GetListOfAvailablePanType(std::vector<std::string>& names) {
    names.assign(std::begin(typeNames), std::end(typeNames));
}

std::string Pan::GetListOfAvailablePanType(char const* separator) {
    std::string list = typeNames[0];
    for (unsigned int i = 1; i < numTypes; ++i) list.append(separator).append(typeNames[i]);
    return list;
}

void Pan::initPanTypeMap() {
    for (unsigned int i = 0; i < null; ++i) panTypeMap[typeNames[i]] = static_cast<Type>(i);
    panTypeMap["vbap3d"] = vbap;
    panTypeMap["dbap2d"] = dbap;
    panTypeMap["hoa2D"] = hoa2d;
    panTypeMap["hoa3D"] = hoa3d;
    panTypeMap["hoa"] = hoa3d;
    panTypeMap["ambisonic"] = hoa3d;

    panSubTypeMap["direct"] = direct;
    panSubTypeMap["early"] = early;
    panSubTypeMap["diffuse"] = diffuse;
    panSubTypeMap["nearfield"] = nearfield;
    panSubTypeMap["sphericalharmonics"] = sphericalharmonics;
    panSubTypeMap["sh"] = sphericalharmonics;
    panSubTypeMap["sphericalheadmodel"] = sphericalheadmodel;
    panSubTypeMap["snowmanmodel"] = snowmanmodel;
    panSubTypeMap["snowman"] = snowmanmodel;
}

void Pan::forceUpdate(bool flag) {
    for (unsigned int i = 0; i < numInputs; ++i) SetSourcePosition(i, sourcePositions[i], flag);
}

}  // namespace Lume
