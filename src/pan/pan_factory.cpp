#include "pan/pan_factory.h"

#include <algorithm>
#include <cmath>
#include <concepts>
#include <limits>
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

template <unsigned int least, unsigned int most = std::numeric_limits<unsigned int>::max()>
bool IsFrom(unsigned int numOutputs) {
    return numOutputs >= least && numOutputs <= most;
}

bool IsPanr(unsigned int numOutputs) {
    return IsFrom<4, 8>(numOutputs) || numOutputs == 12;
}

bool IsWholeAndNotNegative(float value) {
    return value == std::trunc(std::max(value, 0.0f));
}

bool IsHoa2d(unsigned int numOutputs) {
    return IsWholeAndNotNegative((static_cast<float>(numOutputs) - 1.0f) * 0.5f);
}

bool IsHoa3d(unsigned int numOutputs) {
    return IsWholeAndNotNegative(std::sqrt(static_cast<float>(numOutputs)) - 1.0f);
}

bool IsNever(unsigned int /*numOutputs*/) {
    return false;
}

template <typename T, typename Base>
constexpr auto As() -> Base* (*)(Pan&) {
    if constexpr (std::derived_from<T, Base>)
        return [](Pan& panner) -> Base* { return &static_cast<T&>(panner); };
    else
        return nullptr;
}

template <typename T>
constexpr PanClass classOf{T::Create,
                           As<T, AmplitudePanning>(),
                           As<T, VbapPanning>(),
                           As<T, HOAPanning>(),
                           As<T, BinauralPanning>(),
                           As<T, BinauralPanningDirect>(),
                           As<T, BinauralPanningNearfield>()};

using Outputs = PanKind::Outputs;
using Choice = PanKind::Choice;

// clang-format off
constexpr PanKind kinds[] = {
    {Pan::binaural, {"binaural"}, classOf<BinauralPanningDirect>, IsFrom<2, 2>,
     Outputs::two, Choice::none, true, true, 2, "headphones, with measured filters or a model of the head (--model)"},
    {Pan::xy, {"xy"}, classOf<StereoXYPanning>, IsFrom<2, 2>,
     Outputs::two, Choice::none, false, false, 2, "a coincident pair of microphones"},
    {Pan::ms, {"ms"}, classOf<StereoMSPanning>, IsFrom<2, 2>,
     Outputs::two, Choice::none, false, false, 2, "a mid and a side microphone"},
    {Pan::ab, {"ab"}, classOf<StereoABPanning>, IsFrom<2, 2>,
     Outputs::two, Choice::none, false, true, 2, "a spaced pair of microphones: levels and delays"},
    {Pan::surround, {"surround"}, classOf<SurroundPanning>, IsFrom<3, 4>,
     Outputs::loudspeakers, Choice::azimuths, false, false, 4,
     "left, right and surround, or left, centre, right and surround"},
    {Pan::panr, {"panr"}, classOf<RecursivePanning>, IsPanr,
     Outputs::loudspeakers, Choice::azimuths, false, false, 8, "a fixed set of rings, shared out pair by pair"},
    {Pan::angular, {"angular"}, classOf<AngularPanning>, IsFrom<1>,
     Outputs::loudspeakers, Choice::azimuths, false, false, 6, "a ring, a sine law between neighbours"},
    {Pan::vbap2d, {"vbap2d"}, classOf<Vbap2DPanning>, IsFrom<2>,
     Outputs::loudspeakers, Choice::pairs, false, false, 6, "a ring, pairs of loudspeakers"},
    {Pan::vbap, {"vbap", "vbap3d"}, classOf<VbapPanning>, IsFrom<3>,
     Outputs::loudspeakers, Choice::triplets, true, false, 8, "loudspeakers all around, triplets of them"},
    {Pan::dbap, {"dbap", "dbap2d"}, classOf<DbapPanning2D>, IsFrom<3>,
     Outputs::loudspeakers, Choice::distances, false, false, 6, "loudspeakers anywhere in the plane, by distance"},
    {Pan::dbap3d, {"dbap3d"}, classOf<DbapPanning3D>, IsFrom<3>,
     Outputs::loudspeakers, Choice::distances, true, false, 8, "loudspeakers anywhere in space, by distance"},
    {Pan::bformat, {"bformat"}, classOf<AmbisonicPanning>, IsFrom<3, 4>,
     Outputs::harmonics, Choice::none, true, false, 4, "first-order ambisonics, W X Y or W X Y Z"},
    {Pan::hoa2d, {"hoa2d", "hoa2D"}, classOf<HOA2DPanning>, IsHoa2d,
     Outputs::harmonics, Choice::none, false, false, 7, "ambisonics in the plane, 2 x order + 1 channels"},
    {Pan::hoa3d, {"hoa3d", "hoa3D", "hoa", "ambisonic"}, classOf<HOA3DPanning>, IsHoa3d,
     Outputs::harmonics, Choice::none, true, false, 16, "ambisonics in space, (order + 1)^2 channels"},
    {Pan::vdbap, {"vdbap"}, classOf<VDbapPanning>, IsFrom<3>,
     Outputs::loudspeakers, Choice::triplets, true, false, 8, "dbap3d near the centre, vbap far from it"},
    // Listed as a method, and yet its name is not valid as one.
    {Pan::null, {"null"}, classOf<NullPanning>, IsNever,
     Outputs::loudspeakers, Choice::none, false, false, 0, "none"},
};

constexpr PanRole roles[] = {
    {Pan::direct, {"direct"}, classOf<BinauralPanningDirect>},
    {Pan::early, {"early"}, classOf<BinauralPanningITD>},
    {Pan::diffuse, {"diffuse"}, classOf<BinauralPanningIACC>},
    {Pan::nearfield, {"nearfield"}, classOf<BinauralPanningNearfield>},
    {Pan::sphericalharmonics, {"sphericalharmonics", "sh"}, classOf<BinauralPanningSphericalHarmonics>},
    {Pan::sphericalheadmodel, {"sphericalheadmodel"}, classOf<BinauralPanningSphericalHeadModel>},
    {Pan::snowmanmodel, {"snowmanmodel", "snowman"}, classOf<BinauralPanningSnowmanModel>},
};
// clang-format on

/// Values from outside the enumeration count as null.
PanKind const& KindOf(Pan::Type type) {
    return kinds[std::min(static_cast<unsigned int>(type), static_cast<unsigned int>(Pan::null))];
}

}  // namespace

std::span<PanKind const> PanKinds() {
    return kinds;
}

std::span<PanRole const> PanRoles() {
    return roles;
}

PanClass const& PanClassOf(Pan::Type type, Pan::SubType subType) {
    static constexpr PanClass diffuse = classOf<ReverbPanning>;
    if (type == Pan::binaural && static_cast<unsigned int>(subType) < std::size(roles)) return roles[subType].binaural;
    return type != Pan::binaural && subType == Pan::diffuse ? diffuse : KindOf(type).panner;
}

std::unique_ptr<Pan> MakePanner(Pan::Type type, Pan::SubType subType, unsigned int numInputs, unsigned int numOutputs) {
    std::unique_ptr<Pan> made(Pan::factory(numInputs, numOutputs, type, subType));
    if (dynamic_cast<NullPanning const*>(made.get()) != nullptr) made.reset();
    return made;
}

Pan* Pan::factory(unsigned int numInputs, unsigned int numOutputs, Type type, SubType subType) {
    try {
        return PanClassOf(type, subType).create(numInputs, numOutputs);
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
    return KindOf(type).names[0];
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
    return KindOf(type).supports(numOutputs);
}

bool Pan::SupportsConfiguration(char const* name, unsigned int numOutputs) {
    return IsValidPanType(name) && SupportsConfiguration(GetType(name), numOutputs);
}

void Pan::GetListOfAvailablePanType(std::vector<std::string>& names) {
    names.clear();
    for (PanKind const& kind : kinds) names.emplace_back(kind.names[0]);
}

std::string Pan::GetListOfAvailablePanType(char const* separator) {
    std::string list;
    for (PanKind const& kind : kinds) list.append(list.empty() ? "" : separator).append(kind.names[0]);
    return list;
}

void Pan::initPanTypeMap() {
    for (PanKind const& kind : kinds)
        for (char const* const* name = kind.names; *name != nullptr && kind.type != null; ++name)
            panTypeMap[*name] = kind.type;
    for (PanRole const& role : roles)
        for (char const* const* name = role.names; *name != nullptr; ++name) panSubTypeMap[*name] = role.subType;
}

}  // namespace Lume
