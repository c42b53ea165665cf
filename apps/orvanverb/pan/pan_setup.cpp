#include "orvanverb/pan/pan_setup.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <numeric>

#include "dsp/constants.h"
#include "geometry/speakers.h"
#include "geometry/vector_algebra.h"
#include "hrtf/hrtf_header_infos.h"
#include "orvanverb/audio/channel_mask.h"
#include "orvanverb/audio/vector_channels.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/hrtf/ears_options.h"
#include "orvanverb/hrtf/engine_loading.h"
#include "orvanverb/layout/channel_words.h"
#include "pan/ambisonic/hoa2d_panning.h"
#include "pan/ambisonic/hoa3d_panning.h"
#include "pan/binaural/binaural_panning_direct.h"
#include "pan/binaural/binaural_panning_nearfield.h"
#include "room/layout_check.h"

namespace program {

namespace {

using Pan = Lume::Pan;
using Outputs = Lume::PanKind::Outputs;

// Two cycles of 30 ms for gains, glides of 50 ms after a change of rate, and the length of the filters.
constexpr double settleSeconds = 0.25;

/// A layout by its name, but that the matrix format's four are others than those of a ring.
SpeakerLayout ParseLayout(Lume::PanKind const& method, std::string const& text) {
    return SpeakerLayout::Parse(text == "4" && method.type == Pan::surround ? "lcrs" : text);
}

std::vector<std::string> TwoWords(Pan::Type type) {
    if (type == Pan::ms) return MidSideWords();
    return type == Pan::binaural ? EarWords() : PairWords();
}

}  // namespace

PanSetup::PanSetup(PanOptions const& options, std::vector<Lume::CartesianVector> const& positions,
                   Lume::Orientation const& orientation, int samplerate)
    : method(FindPanMethod(options.method)), subType(FindPanSubType(method, options.model)), ambixAxes(options.ambix) {
    ChooseOutputs(options);
    const auto numSources = static_cast<unsigned int>(positions.size());
    panner = Lume::MakePanner(method.type, subType, numSources, NumOutputs());
    if (!panner)
        throw UsageError("--model " + options.model + ": can't be made for " + std::to_string(numSources) +
                         (numSources == 1 ? " source" : " sources") + ", it takes two or more");
    if (method.outputs == Outputs::loudspeakers) {
        panner->SetLoudspeakerPositions(layout.positions.data());
        channels = LoudspeakerWords(layout);
        warnings = Lume::CheckLayout(method, layout.positions);
    } else if (method.outputs == Outputs::two) {
        channels = TwoWords(method.type);
    } else {
        SetUpHarmonics(options);
    }
    // Filters are loaded for sources that have their places: those for near sources stay with a source that leaves
    // their range, and must not come from where it never was.
    Turn(orientation);
    Place(positions);
    LoadFiles(options, samplerate);
    if (subType == Pan::sphericalharmonics)
        warnings.push_back("there are no data in harmonics yet: the output is silent");
}

void PanSetup::ChooseOutputs(PanOptions const& options) {
    const std::string name = method.names[0];
    const std::vector<unsigned int> counts = OutputCounts(method.type);
    if (options.outputs && method.outputs != Outputs::harmonics)
        throw UsageError("--outputs: is for ambisonic methods; " + name + " has " +
                         (method.outputs == Outputs::two ? "2" : "one for each of the --speakers"));
    if (options.order && (method.outputs != Outputs::harmonics || options.outputs))
        throw UsageError("--order: is for ambisonic methods, in place of --outputs");
    if (options.speakers && method.outputs != Outputs::loudspeakers)
        throw UsageError("--speakers: " + name + " has none; its channels are not loudspeakers");
    if (method.outputs == Outputs::loudspeakers)
        layout = ParseLayout(method,
                             options.speakers.value_or(method.inSpace ? "cube" : std::to_string(method.usualOutputs)));
    else if (method.outputs == Outputs::two)
        layout = SpeakerLayout::Channels(2, method.type == Pan::ms ? 0 : frontLeft | frontRight);
    else
        layout = SpeakerLayout::Channels(options.order ? Lume::NumAmbisonicChannels(*options.order, method.inSpace)
                                                       : options.outputs.value_or(method.usualOutputs),
                                         0);
    if (std::find(counts.begin(), counts.end(), NumOutputs()) == counts.end())
        throw UsageError((method.outputs == Outputs::loudspeakers ? "--speakers: " : "--outputs: ") + name +
                         " has no panner for " + std::to_string(NumOutputs()) + " outputs; it takes " +
                         CountsText(counts));
}

void PanSetup::SetUpHarmonics(PanOptions const& options) {
    auto* const harmonics = As(&Lume::PanClass::asHarmonics);
    if (options.ambix && method.type != Pan::hoa3d) throw UsageError("--ambix: is for the method hoa3d");
    if (harmonics == nullptr) {
        if (options.convention || options.sorting)
            throw UsageError("--convention, --sorting: " + std::string(method.names[0]) + " has its own");
        channels = {"W: from everywhere", "X: to the right", "Y: ahead"};
        if (NumOutputs() == 4) channels.emplace_back("Z: up");
        return;
    }
    if (options.convention) {
        const auto convention = Lume::HOAPanning::GetHOAPannerConvention(options.convention->c_str());
        harmonics->SetEncodingConvention(convention);
        if (harmonics->GetEncodingConvention() != convention)
            throw UsageError("--convention: " + std::string(method.names[0]) + " has no " + *options.convention +
                             "; it has " + (method.type == Pan::hoa3d ? "SN3D and N3D" : "SN2D and N2D"));
    }
    if (options.sorting) harmonics->SetSphericalHarmonicsSorting(options.sorting->c_str());
    Lume::HOAPanning::HOAPannerInfos infos;
    harmonics->GetPannerInfos(infos);
    channels = HarmonicWords(method.type == Pan::hoa3d ? Lume::SortedSphericalHarmonics(infos.order, infos.sorting)
                                                       : Lume::SortedCylindricalHarmonics(infos.order, infos.sorting),
                             Lume::HOAPanning::GetHOAPannerConventionName(infos.encodingConvention), ambixAxes);
}

void PanSetup::LoadFiles(PanOptions const& options, int samplerate) {
    auto* const nearfield = As(&Lume::PanClass::asNearfield);
    if (options.hrtf) {
        if (nearfield == nullptr && As(&Lume::PanClass::asDirect) == nullptr)
            throw UsageError("--hrtf: is for --method binaural with --model direct or nearfield");
        EarsCache ears(samplerate, FittingOf(options));
        const std::string path = ears.Playable(*options.hrtf).string();
        RequireSetFile(path, ".hrtf or .coll");
        bool taken = false;
        auto& binaural = *As(&Lume::PanClass::asBinaural);
        LoadQuietly(path, [&](std::string const& name) { taken = binaural.LoadFromFile(name.c_str()); });
        if (!taken) throw WorkError(path + ": is no set of biquads or impulse responses for two ears");
        // Impulse responses come out as the set has them, many times faster. The vectors are powers of two.
        binaural.SetFIRFiltersImplementationMethod("fftconvolution");
        ownEars = true;
    }
    if (options.nearfield) {
        if (nearfield == nullptr) throw UsageError("--near: is for --method binaural --model nearfield");
        std::string const& path = *options.nearfield;
        RequireSetFile(path, ".near");
        bool taken = false;
        LoadQuietly(path, [&](std::string const& name) { taken = nearfield->LoadCompensationFilters(name.c_str()); });
        if (!taken) throw WorkError(path + ": is no set of near-field compensation filters for two ears");
    }
}

Lume::CartesianVector PanSetup::ToPanner(Lume::CartesianVector const& position) const {
    const Lume::CartesianVector heard = toHead ? Lume::Rotated(*toHead, position) : position;
    return ambixAxes ? ToAmbixAxes(heard) : heard;
}

void PanSetup::Turn(Lume::Orientation const& orientation) {
    toHead.reset();
    if (orientation != Lume::Orientation{})
        toHead = Lume::RoomToHead(method.inSpace ? orientation : Lume::Orientation{orientation.yaw, 0.0f, 0.0f});
}

void PanSetup::Place(std::vector<Lume::CartesianVector> const& positions) {
    placed.resize(positions.size(), {NAN, NAN, NAN});
    for (unsigned int i = 0; i < positions.size(); ++i) {
        const Lume::CartesianVector here = ToPanner(positions[i]);
        if (placed[i] == here) continue;
        panner->SetSourcePosition(i, here, false);
        placed[i] = here;
    }
}

void PanSetup::Start(int samplerate, unsigned int vectorSize) {
    if (!ownEars) {
        auto builtin = std::make_unique<Lume::Hrtf>(Lume::Hrtf::Builtin(static_cast<float>(samplerate)));
        if (auto* const direct = As(&Lume::PanClass::asDirect))
            direct->SetHrtf(std::move(builtin));
        else if (auto* const nearfield = As(&Lume::PanClass::asNearfield))
            nearfield->SetHrtf(std::move(builtin));
    }
    panner->Configure(static_cast<float>(samplerate), vectorSize, true);
    VectorChannels silence(std::max(placed.size(), std::size_t{1}), vectorSize);
    VectorChannels discarded(NumOutputs(), vectorSize);
    for (double seconds = 0.0; seconds < settleSeconds; seconds += static_cast<double>(vectorSize) / samplerate)
        panner->Process(discarded.Pointers(), silence.Pointers(), vectorSize, orvandsp::allActiveInputs);
}

}  // namespace program
