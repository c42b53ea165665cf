#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "orvanverb/layout/speaker_layout.h"
#include "orvanverb/pan/pan_methods.h"
#include "orvanverb/pan/pan_options.h"

namespace program {

/// A panner as the options ask for it, and what its channels are.
class PanSetup {
public:
    /// @param positions    where the sources are at first, one each
    /// @param orientation  where the listener looks at first
    /// @param samplerate   of the rendering [Hz], for which ears are fitted
    /// @throws ProgramError that names option or file, and says what is wrong
    PanSetup(PanOptions const& options, std::vector<Lume::CartesianVector> const& positions,
             Lume::Orientation const& orientation, int samplerate);

    /// Brings a position into the axes of the listener's head, and those of the panner: AmbiX files have x ahead and y
    /// to the left.
    Lume::CartesianVector ToPanner(Lume::CartesianVector const& position) const;

    /// Turns the listener before the sources are placed; a method without heights follows the yaw alone.
    void Turn(Lume::Orientation const& orientation);

    /// Sets sources. What has not moved stays as it is.
    void Place(std::vector<Lume::CartesianVector> const& positions);

    /// Announces the rate and runs over silence until gains, delays and filters have come to where they belong.
    void Start(int samplerate, unsigned int vectorSize);

    unsigned int NumOutputs() const { return layout.NumOutputs(); }

    /// The panner as what it is beyond a Pan, null if it isn't.
    template <typename Class>
    Class* As(Class* (*Lume::PanClass::*view)(Lume::Pan&)) const {
        auto* const as = Lume::PanClassOf(method.type, subType).*view;
        return as != nullptr ? as(*panner) : nullptr;
    }

    /// Whether the output goes on when the input has ended.
    bool HasTail() const { return method.hasTail || subType == Lume::Pan::diffuse; }

    Lume::PanKind const& method;
    SpeakerLayout layout;  // positions only if the outputs are loudspeakers
    std::unique_ptr<Lume::Pan> panner;
    std::vector<std::string> channels;  // in words, in the order of the file
    std::vector<std::string> warnings;

private:
    void ChooseOutputs(PanOptions const& options);
    void SetUpHarmonics(PanOptions const& options);
    void LoadFiles(PanOptions const& options, int samplerate);

    Lume::Pan::SubType subType;
    bool ambixAxes;
    bool ownEars = false;                        // of the user, from a file
    std::optional<Lume::RotationMatrix> toHead;  // none for a listener who looks ahead
    std::vector<Lume::CartesianVector> placed;   // in the panner's axes
};

}  // namespace program
