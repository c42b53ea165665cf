#include "engine/room_format.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "pan/amplitude_panning.h"
#include "pan/binaural/binaural_panning_iacc.h"
#include "pan/diffuse/decorrelated_mixing.h"
#include "pan/diffuse/reverb_panning.h"
#include "pan/diffuse/solid_angle_mixing.h"
#include "pan/stereo/stereo_pair_panning.h"

namespace Lume {

namespace {

template <Pan::Type method>
Pan* Make(unsigned int numInputs, unsigned int numOutputs, Pan::SubType role) {
    return Pan::factory(numInputs, numOutputs, method, role);
}

template <Pan::Type method>
bool Supports(unsigned int numOutputs) {
    return Pan::SupportsConfiguration(method, numOutputs);
}

Pan* MakeStereoPair(unsigned int numInputs, unsigned int numOutputs, Pan::SubType) {
    return StereoPairPanning::Create(numInputs, numOutputs);
}

bool IsPair(unsigned int numOutputs) {
    return numOutputs == 2;
}

/// A circle or a sphere of no order is no format.
template <Pan::Type method>
bool SupportsOrder(unsigned int numOutputs) {
    return numOutputs > 1 && Pan::SupportsConfiguration(method, numOutputs);
}

using enum RoomFormat::Outputs;

constexpr RoomFormat rows[] = {
    {"binaural", "headphones", ears, true, false, Make<Pan::binaural>, Supports<Pan::binaural>},
    {"stereo", "two loudspeakers, by level", loudspeakers, false, false, MakeStereoPair, IsPair},
    {"xy", "two loudspeakers, coincident microphones", microphones, false, false, Make<Pan::xy>, Supports<Pan::xy>},
    {"ms", "two loudspeakers, middle and side microphones", microphones, false, false, Make<Pan::ms>,
     Supports<Pan::ms>},
    {"ab", "two loudspeakers, spaced microphones", microphones, false, false, Make<Pan::ab>, Supports<Pan::ab>},
    {"angular", "a ring, by angles", loudspeakers, false, false, Make<Pan::angular>, Supports<Pan::angular>},
    {"vbap2d", "a ring, by pairs", loudspeakers, false, false, Make<Pan::vbap2d>, Supports<Pan::vbap2d>},
    {"vbap", "loudspeakers in space, by triplets", loudspeakers, true, false, Make<Pan::vbap>, Supports<Pan::vbap>},
    {"dome", "loudspeakers in space, by triplets, the room's field by solid angle", loudspeakers, true, false,
     Make<Pan::vbap>, Supports<Pan::vbap>, true},
    {"dbap", "loudspeakers anywhere in the plane, by distance", loudspeakers, false, false, Make<Pan::dbap>,
     Supports<Pan::dbap>},
    {"dbap3d", "loudspeakers anywhere, by distance", loudspeakers, true, false, Make<Pan::dbap3d>,
     Supports<Pan::dbap3d>},
    {"vdbap", "loudspeakers in space, by direction and distance", loudspeakers, true, false, Make<Pan::vdbap>,
     Supports<Pan::vdbap>},
    {"hoa2d", "ambisonics in the plane, SN2D, x to the right", harmonics, false, false, Make<Pan::hoa2d>,
     SupportsOrder<Pan::hoa2d>},
    {"hoa3d", "ambisonics, ACN, SN3D, x to the right", harmonics, true, false, Make<Pan::hoa3d>,
     SupportsOrder<Pan::hoa3d>},
    {"ambix", "ambisonics as other tools read it, ACN, SN3D, x ahead", harmonics, true, true, Make<Pan::hoa3d>,
     SupportsOrder<Pan::hoa3d>},
};

/// The mean of a channel's squared gain over directions that are spread evenly over circle or sphere, for each output
/// of an encoder.
std::vector<float> MeanPowers(AmplitudePanning& encoder, bool inSpace) {
    // On the sphere a spiral of golden angles: with so many points the means of all channels up to order 7 are right
    // within 0.001.
    constexpr unsigned int numDirections = 4096;
    constexpr double goldenAngle = 2.39996322972865332;
    constexpr double circle = 6.28318530717958648;
    std::vector<double> sums(encoder.GetNumOutputs());
    std::vector<float> gains(sums.size());
    for (unsigned int i = 0; i < numDirections; ++i) {
        const double z = inSpace ? 1.0 - (2.0 * i + 1.0) / numDirections : 0.0;
        const double azimuth = inSpace ? goldenAngle * i : circle * i / numDirections;
        const double radius = std::sqrt(1.0 - z * z);
        encoder.convert({static_cast<float>(radius * std::cos(azimuth)), static_cast<float>(radius * std::sin(azimuth)),
                         static_cast<float>(z)},
                        gains.data(), 0);
        for (std::size_t j = 0; j < sums.size(); ++j) sums[j] += std::pow(static_cast<double>(gains[j]), 2);
    }
    std::vector<float> powers(sums.size());
    std::transform(sums.begin(), sums.end(), powers.begin(),
                   [&](double sum) { return static_cast<float>(sum / numDirections); });
    return powers;
}

}  // namespace

std::span<RoomFormat const> const roomFormats{rows};

RoomFormat const* FindRoomFormat(std::string_view name) {
    for (RoomFormat const& format : roomFormats)
        if (name == format.name) return &format;
    return nullptr;
}

std::unique_ptr<Pan> RoomFormat::MakePan(unsigned int numInputs, unsigned int numOutputs, Pan::SubType role) const {
    if (!supports(numOutputs)) return nullptr;
    if (role != Pan::diffuse) return std::unique_ptr<Pan>(make(numInputs, numOutputs, role));
    // Waves of power 1 from everywhere, as many as there are channels. Ears share sum and difference themselves, domes
    // the solid angle.
    const bool sharesItself = outputs == ears || bySolidAngle;
    std::vector<float> powers(numOutputs, sharesItself ? 1.0f : 1.0f / static_cast<float>(numOutputs));
    if (outputs == harmonics) {
        const std::unique_ptr<Pan> encoder(make(1, numOutputs, Pan::direct));
        powers = MeanPowers(dynamic_cast<AmplitudePanning&>(*encoder), inSpace);
    }
    for (float& power : powers) power *= static_cast<float>(numInputs);
    orvandsp::Matrix<float> mixing = ComputeDecorrelatedMixing(numInputs, powers);
    // By itself the panner hears two channels, which needn't be as loud as the others, and plays all power at each ear.
    if (outputs == ears) return std::make_unique<BinauralPanningIACC>(numInputs, numOutputs, mixing);
    if (bySolidAngle) return std::make_unique<SolidAngleMixing>(std::move(mixing));
    auto diffuse = std::make_unique<ReverbPanning>(numInputs, numOutputs);
    diffuse->SetGains(mixing);
    return diffuse;
}

}  // namespace Lume
