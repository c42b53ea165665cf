#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "decoders/ambisonic/ambisonic_rotation.h"
#include "orvanverb/audio/vector_channels.h"
#include "orvanverb/decode/decode_options.h"
#include "orvanverb/room/scene.h"

namespace program {

/// An ambisonic recording as the listener's head has it: brought to the order of ACN, SN3D weights and the axes of
/// AmbiX, and turned with the head, which a scene can move.
class SoundField {
public:
    /// @throws ProgramError that names the option or file
    SoundField(DecodeOptions const& options, unsigned int numChannels);

    /// Whether the options ask for what decoders of loudspeakers don't do by themselves.
    static bool IsNeeded(DecodeOptions const& options) { return options.fuma || options.orientation || options.scene; }

    unsigned int Order() const { return order; }

    /// @param newVectorSize  samples of each call of Process
    void Start(int newSamplerate, unsigned int newVectorSize);

    /// What a scene has before a frame, counted from the recording's first.
    /// @return lines to be shown
    std::vector<std::string> Advance(std::uint64_t beforeFrame);

    /// What to say of a scene that goes on behind the end; empty if it doesn't.
    std::string PendingRemark() const { return scene ? scene->PendingRemark() : std::string(); }

    /// @return one vector for each channel, valid until the next call
    float** Process(float** inputs);

private:
    void Turn(Lume::Orientation const& orientation);
    Scene::Listener Listener();

    unsigned int order;
    float yawOfAxes = 0.0f;  // [degrees]
    std::unique_ptr<Lume::Decoder> reorder;
    std::unique_ptr<Lume::AmbisonicRotation> rotation;
    std::optional<Scene> scene;
    int samplerate = 0;  // [Hz]
    unsigned int vectorSize = 0;
    std::unique_ptr<VectorChannels> channels;
};

}  // namespace program
