#include "orvanverb/decode/sound_field.h"

#include <cmath>
#include <stdexcept>

#include "decoders/ambisonic/ambisonic_reorder.h"
#include "dsp/constants.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/layout/listener_position.h"

namespace program {

namespace {

unsigned int OrderOf(unsigned int numChannels) {
    for (unsigned int order = 1; order <= 7; ++order)
        if (Lume::NumAmbisonicChannels(order, true) == numChannels) return order;
    throw UsageError("the recording has " + std::to_string(numChannels) +
                     " channels; sound fields have 4, 9, 16, 25, 36, 49 or 64, for the orders 1 to 7");
}

std::vector<Lume::AmbisonicChannel> ChannelsOf(DecodeOptions const& options, unsigned int order) {
    if (options.fuma) {
        if (order > 3)
            throw UsageError("--fuma: has channels up to the order 3, the recording has the order " +
                             std::to_string(order));
        return Lume::FumaChannels(order);
    }
    const std::string convention = options.convention.value_or("SN3D");
    if (!convention.ends_with("3D")) throw UsageError("--convention: SN3D or N3D, not " + convention);
    return Lume::AmbisonicChannels(
        order, convention == "N3D" ? Lume::FullyNormalized3D : Lume::SchmidtSeminormalized3D,
        Lume::GetSphericalHarmonicsSorting(options.sorting.value_or("IncreasingDegrees").c_str()));
}

}  // namespace

SoundField::SoundField(DecodeOptions const& options, unsigned int numChannels)
    : order(OrderOf(numChannels)),
      // With x to the right the field lies a quarter of a turn to the left of AmbiX.
      yawOfAxes(options.ambix || options.fuma ? 0.0f : -90.0f),
      reorder(std::make_unique<Lume::AmbisonicReorder>(
          ChannelsOf(options, order),
          Lume::AmbisonicChannels(order, Lume::SchmidtSeminormalized3D, Lume::IncreasingDegrees))),
      rotation(std::make_unique<Lume::AmbisonicRotation>(order, true)) {
    if (options.scene) {
        scene.emplace(*options.scene);
        scene->Begin(Listener());  // complaints come before the work
        scene->Rehearse(Listener());
    }
    Turn(options.orientation.value_or(Lume::Orientation{}));
    if (scene) scene->Begin(Listener());
}

/// The head turns about the vertical axis first: the axes of the channels are a part of that.
void SoundField::Turn(Lume::Orientation const& orientation) {
    rotation->SetOrientation({orientation.yaw + yawOfAxes, orientation.pitch, orientation.roll});
}

Scene::Listener SoundField::Listener() {
    return [this](std::string_view message, std::filesystem::path const&) {
        const std::optional<Lume::Orientation> orientation = ParseOrientationMessage(message);
        if (!orientation)
            throw std::invalid_argument("a recorded sound field knows 'orientation YAW PITCH ROLL' alone, not '" +
                                        std::string(message.substr(0, message.find(' '))) + "'");
        Turn(*orientation);
        return std::vector<std::string>{};
    };
}

void SoundField::Start(int newSamplerate, unsigned int newVectorSize) {
    samplerate = newSamplerate;
    vectorSize = newVectorSize;
    rotation->Configure(static_cast<float>(samplerate), vectorSize, true);
    channels = std::make_unique<VectorChannels>(Lume::NumAmbisonicChannels(order, true), vectorSize);
}

std::vector<std::string> SoundField::Advance(std::uint64_t beforeFrame) {
    return scene ? scene->Play(Listener(), samplerate, beforeFrame) : std::vector<std::string>{};
}

float** SoundField::Process(float** inputs) {
    reorder->Process(channels->Pointers(), inputs, vectorSize, orvandsp::allActiveInputs);
    rotation->Process(channels->Pointers(), channels->Pointers(), vectorSize, orvandsp::allActiveInputs);
    return channels->Pointers();
}

}  // namespace program
