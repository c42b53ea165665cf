#include "engine/orvan_verb.h"

#include <algorithm>
#include <cmath>

#include "dsp/constants.h"
#include "dsp/orvan_dsp_exception.h"
#include "geometry/reach.h"
#include "geometry/speakers.h"
#include "kernels/kernels.h"

namespace Lume {

using orvandsp::allActiveInputs;
using orvandsp::AudioBuffer;
using Defaults = LumeDefaultParameters;

namespace {

constexpr unsigned int StructuralChannels = 6;  // sources and loudspeakers of an engine without a configuration
constexpr unsigned int StructuralBlockSize = 512;
constexpr unsigned int MaxNumInternals = 16;
constexpr unsigned int MinNumInternals = 2;
constexpr float DistanceRampTime = 30.0f;  // [ms]
constexpr float HalfDegreeToRadians = 0.008726646f;

Pan::Type TypeFor(unsigned int numSpeakers) {
    return numSpeakers == 2 ? Pan::binaural : Pan::vbap2d;
}

std::unique_ptr<AudioBuffer> MakeBus(unsigned int numChannels) {
    auto bus = std::make_unique<AudioBuffer>(numChannels, StructuralBlockSize);
    bus->Clear();
    return bus;
}

/// Numbers that suit every format; what its panners want of the loudspeakers comes on top.
bool SupportsNumbers(unsigned int numSources, unsigned int numSpeakers, unsigned int numInternals) {
    return numSources >= 1 && numSources <= orvandsp::MaxNumChannels && numSpeakers >= 1 &&
           numSpeakers <= orvandsp::MaxNumChannels && numInternals >= MinNumInternals &&
           numInternals <= MaxNumInternals;
}

/// The samples of a bus that a block of that length has.
AudioBuffer BlockOf(AudioBuffer& bus, unsigned long numSamples) {
    return {bus.GetChannels(), bus.GetNumChannels(), static_cast<unsigned int>(numSamples), 0};
}

/// Turns a position about the vertical axis, counter-clockwise seen from above.
CartesianVector Turned(CartesianVector const& p, float radians) {
    const float c = std::cos(radians);
    const float s = std::sin(radians);
    return {c * p.x - s * p.y, s * p.x + c * p.y, p.z};
}

bool IsNumber(CartesianVector const& p) {
    return !std::isnan(p.x) && !std::isnan(p.y) && !std::isnan(p.z);
}

/// Ends at the target itself: what is switched off is silent.
float AdvanceLevel(orvandsp::Ramp& ramp, unsigned long numSamples) {
    const float level = ramp.Advance(numSamples);
    if (ramp.remaining <= 0) ramp.current = ramp.target;
    return level;
}

/// Beyond it sums of sources and gains may become infinite.
constexpr float LoudestSample = 1e15f;

}  // namespace

OrvanVerb::OrvanVerb(unsigned int newNumInternals)
    : numInternals(newNumInternals),
      early(std::make_unique<Early>(numInternals, 1, DefaultSampleRate)),
      cluster(std::make_unique<Cluster>(numInternals, DefaultSampleRate)),
      reverb(Reverb::Create(numInternals, DefaultSampleRate)),
      directLayer(StructuralChannels),
      roomLayer(1, Layer::gainInShelf),
      earlyLayer(2),
      clusterLayer(numInternals),
      sourceBus(MakeBus(StructuralChannels)),
      roomBus(MakeBus(1)),
      earlyMixBus(MakeBus(2)),
      lateMixBus(MakeBus(numInternals)),
      earlyBus(MakeBus(numInternals)),
      clusterBus(MakeBus(numInternals)),
      reverbBus(MakeBus(numInternals)),
      earlyDelgen(numInternals, Delgen::DefaultMinimum, Delgen::DefaultMaximum, Delgen::DefaultDistribution),
      clusterDelgen(numInternals, Delgen::DefaultMinimum, Delgen::DefaultMaximum, Delgen::DefaultDistribution),
      spareDelgen(numInternals, Delgen::DefaultMinimum, Delgen::DefaultMaximum, Delgen::DefaultDistribution),
      directDistanceRamps(StructuralChannels),
      roomSendRamps(StructuralChannels),
      sourcePositions(StructuralChannels),
      speakerPositions(StructuralChannels),
      earlyGains(numInternals, 1.0f) {
    if (!reverb)
        throw orvandsp::OrvanDspException(
            "OrvanVerb: the number of internal channels must be from 2 to 16, not " + std::to_string(newNumInternals),
            __FILE__, __LINE__);
    numInputs = StructuralChannels;
    numOutputs = StructuralChannels;
    reverb->UseAirAbsorption(Defaults::DefaultReverbAirAbsorption);
}

OrvanVerb::~OrvanVerb() {
    early.reset();
    cluster.reset();
    reverb.reset();
    directPan.reset();
    earlyPan.reset();
    diffusePan.reset();
    sourceBus.reset();
    roomBus.reset();
    earlyMixBus.reset();
    lateMixBus.reset();
    earlyBus.reset();
    clusterBus.reset();
    reverbBus.reset();
}

bool OrvanVerb::SupportsConfiguration(unsigned int numSources, unsigned int numSpeakers, unsigned int numInternals) {
    return SupportsNumbers(numSources, numSpeakers, numInternals) &&
           Pan::SupportsConfiguration(TypeFor(numSpeakers), numSpeakers);
}

bool OrvanVerb::SupportsConfiguration(RoomFormat const& format, unsigned int numSources, unsigned int numSpeakers,
                                      unsigned int numInternals) {
    return SupportsNumbers(numSources, numSpeakers, numInternals) && format.supports(numSpeakers);
}

void OrvanVerb::SetFormat(RoomFormat const& newFormat) {
    if (!initialized) format = &newFormat;
}

void OrvanVerb::Configure(float newSamplerate, unsigned int maxBlockSize, unsigned int numSources,
                          unsigned int numSpeakers) {
    if (!initialized) {
        numInputs = numSources;
        numOutputs = numSpeakers;
        sourcePositions.resize(numSources);
        speakerPositions.resize(numSpeakers);
        directDistanceRamps.resize(numSources);
        roomSendRamps.resize(numSources);
        doorInputs.resize(numSources);
        earlyGains.resize(numInternals, 1.0f);
        if (!CreatePanners(numSources, numSpeakers)) return;

        std::vector<CartesianVector> positions;
        Speakers::GetDefaultForChannels(positions, numSources);
        for (unsigned int i = 0; i < numSources; ++i) SetSourcePosition(i, positions[i]);
        if (!IsBinaural()) {
            Speakers::GetDefaultForChannels(positions, numSpeakers);
            SetSpeakersPositions(positions.data());
        }
        directLayer.shelf.SetNumChannels(numSources);
        roomLayer.shelf.SetNumChannels(1);
        earlyLayer.shelf.SetNumChannels(2);
        clusterLayer.shelf.SetNumChannels(numInternals);
        UpdateEarlyGains();
        initialized = true;
    }
    SetSamplerate(newSamplerate);
    SetMaxBlockSize(maxBlockSize);
    Clear();
}

bool OrvanVerb::CreatePanners(unsigned int numSources, unsigned int numSpeakers) {
    directPan = MakePan(numSources, numSpeakers, Pan::direct);
    earlyPan = MakePan(2, numSpeakers, Pan::early);
    diffusePan = MakePan(numInternals, numSpeakers, Pan::diffuse);
    if (directPan && earlyPan && diffusePan) return true;
    directPan.reset();
    earlyPan.reset();
    diffusePan.reset();
    return false;
}

std::unique_ptr<Pan> OrvanVerb::MakePan(unsigned int numPanInputs, unsigned int numSpeakers, Pan::SubType role) const {
    if (format != nullptr) return format->MakePan(numPanInputs, numSpeakers, role);
    return std::unique_ptr<Pan>(Pan::factory(numPanInputs, numSpeakers, TypeFor(numSpeakers), role));
}

bool OrvanVerb::IsBinaural() const noexcept {
    return format != nullptr ? format->outputs == RoomFormat::Outputs::ears : TypeFor(numOutputs) == Pan::binaural;
}

void OrvanVerb::Process(float** outputs, float** inputs, unsigned long numSamples, short const* /*activeInputs*/) {
    const float internalScale = std::sqrt(1.0f / static_cast<float>(numInternals));
    const float sourceScale = std::sqrt(static_cast<float>(numInputs));
    // The gains are constant within a block and step from block to block along their ramps.
    const float directGain = directLayer.gainRamp.Advance(numSamples);
    const float earlyGain = earlyLayer.gainRamp.Advance(numSamples);
    const float clusterGain = clusterLayer.gainRamp.Advance(numSamples);
    const float reverbLayerGain = reverbGainRamp.Advance(numSamples);
    const float ofDirect = AdvanceLevel(directLevelRamp, numSamples);
    const float ofRoom = AdvanceLevel(roomLevelRamp, numSamples);

    directLayer.shelf.Process(sourceBus->GetChannels(), AtTheDoor(inputs, numSamples), numSamples, allActiveInputs);
    SendToRoom(numSamples);
    // Early reflections that nothing of this block is in don't wait for the room's shelf, which then runs with theirs.
    const bool roomWaits = early->ReadsOnlyThePast(numSamples);
    float* reflections[orvandsp::MaxNumChannels];
    std::copy_n(earlyBus->GetChannels(), numInternals, reflections);
    if (roomWaits) {
        early->FindBlock(reflections, numSamples);
    } else {
        roomLayer.shelf.Process(roomBus->GetChannels(), roomBus->GetChannels(), numSamples, allActiveInputs);
        early->Process(reflections, roomBus->GetChannels(), numSamples, allActiveInputs);
    }
    MixLateLayer(reflections, numSamples, clusterGain * internalScale * ofRoom,
                 reverbLayerGain * internalScale * ofRoom);

    AudioBuffer(outputs, numOutputs, static_cast<unsigned int>(numSamples), 0).Clear();
    AddDirectLayer(outputs, numSamples, sourceScale * internalScale * directGain * ofDirect);
    AddEarlyLayer(outputs, reflections, numSamples, earlyGain * internalScale * ofRoom, roomWaits);
    diffusePan->ProcessAdding(outputs, lateMixBus->GetChannels(), numSamples, allActiveInputs);
}

/// The inputs, but for channels with samples that aren't finite: of these, copies where such samples are 0. A single
/// one inside would stay in the room for good.
float** OrvanVerb::AtTheDoor(float** inputs, unsigned long numSamples) {
    const auto stayWithin = [=](float** some, unsigned int number) {
        return orvandsp::kernels::Get().staysWithin(some, number, LoudestSample, numSamples);
    };
    if (stayWithin(inputs, numInputs)) return inputs;
    for (unsigned int i = 0; i < numInputs; ++i) {
        float const* const in = inputs[i];
        doorInputs[i] = inputs[i];
        if (stayWithin(inputs + i, 1)) continue;
        // The shelf works in place.
        doorInputs[i] = sourceBus->GetChannel(i);
        std::transform(in, in + numSamples, doorInputs[i],
                       [](float x) { return std::abs(x) <= LoudestSample ? x : 0.0f; });
    }
    return doorInputs.data();
}

/// Fills the room bus from the filtered sources. The three room blocks that it feeds stand in series, each on the raw
/// output of the one before: gains and shelves of the layers come behind all of them.
void OrvanVerb::SendToRoom(unsigned long numSamples) {
    orvandsp::kernels::MixTerm sends[orvandsp::MaxNumChannels];
    for (unsigned int i = 0; i < numInputs; ++i)
        sends[i] = {i, orvandsp::kernels::MixTerm::steady, roomSendRamps[i].Advance(numSamples)};
    BlockOf(*roomBus, numSamples).Clear();
    const std::size_t end = numInputs;
    orvandsp::kernels::Get().mix(roomBus->GetChannels(), 0, 1, {sourceBus->GetChannels(), 0, nullptr}, sends, 0, &end,
                                 numSamples, false);
}

void OrvanVerb::AddDirectLayer(float** outputs, unsigned long numSamples, float gain) {
    float gains[orvandsp::MaxNumChannels];
    for (unsigned int i = 0; i < numInputs; ++i) gains[i] = directDistanceRamps[i].Advance(numSamples) * gain;
    BlockOf(*sourceBus, numSamples).ApplyGains(gains);
    if (earsFaded < earsFadeTime)
        CrossfadeEars(outputs, numSamples);
    else
        directPan->ProcessAdding(outputs, sourceBus->GetChannels(), numSamples, allActiveInputs);
}

/// @param roomWaits  the room's shelf, and with it the input of the early reflections, is still to be computed
void OrvanVerb::AddEarlyLayer(float** outputs, float** reflections, unsigned long numSamples, float gain,
                              bool roomWaits) {
    // Even taps to the first virtual source, odd ones to the second.
    orvandsp::kernels::MixTerm shares[orvandsp::MaxNumChannels];
    const std::size_t ends[] = {(numInternals + 1) / 2, numInternals};
    for (unsigned int c = 0; c < numInternals; ++c) {
        shares[c % 2 * ends[0] + c / 2] = {c, orvandsp::kernels::MixTerm::steady, gain};
        // A gain of 0 silences, without a sign: zeros of its own sign, which the product loses.
        if (earlyGains[c] != 0.0f) continue;
        reflections[c] = earlyBus->GetChannel(c);
        std::fill_n(reflections[c], numSamples, earlyGains[c]);
    }
    orvandsp::kernels::Get().mix(earlyMixBus->GetChannels(), 0, 2, {reflections, 0, nullptr, earlyGains.data()}, shares,
                                 0, ends, numSamples, true);
    if (roomWaits) {
        MultiFadedHLShelf::ProcessBoth(roomLayer.shelf, roomBus->GetChannels(), earlyLayer.shelf,
                                       earlyMixBus->GetChannels(), numSamples);
        early->WriteBlock(roomBus->GetChannels(), numSamples);
    } else {
        earlyLayer.shelf.Process(earlyMixBus->GetChannels(), earlyMixBus->GetChannels(), numSamples, allActiveInputs);
    }
    earlyPan->ProcessAdding(outputs, earlyMixBus->GetChannels(), numSamples, allActiveInputs);
}

/// The late field is added behind the cluster's shelf: its only shelf is that of the room.
void OrvanVerb::MixLateLayer(float** reflections, unsigned long numSamples, float clusterScale, float reverbScale) {
    if (MixLateLayerAtOnce(reflections, numSamples, clusterScale, reverbScale)) return;
    cluster->Process(clusterBus->GetChannels(), reflections, numSamples, allActiveInputs);
    reverb->Process(reverbBus->GetChannels(), clusterBus->GetChannels(), numSamples, allActiveInputs);
    AudioBuffer mixed = BlockOf(*lateMixBus, numSamples);
    mixed.CopyFrom(*clusterBus, clusterScale);
    clusterLayer.shelf.Process(lateMixBus->GetChannels(), lateMixBus->GetChannels(), numSamples, allActiveInputs);
    mixed.AddFrom(*reverbBus, reverbScale);
}

/// The same bits in one pass, in which the processor works on one filter while another one waits for what it made last.
/// @return false, and nothing has happened, while delays glide or the shelf fades
bool OrvanVerb::MixLateLayerAtOnce(float** reflections, unsigned long numSamples, float clusterScale,
                                   float reverbScale) {
    orvandsp::kernels::AllpassHead heads[orvandsp::MaxNumChannels];
    orvandsp::kernels::Shelf shelves[orvandsp::MaxNumChannels];
    if (!reverb->StandsStill() || !cluster->FindHeads(heads, numSamples) || !clusterLayer.shelf.FindFilters(shelves))
        return false;
    cluster->WriteBlock(reflections, numSamples);
    reverb->ProcessMixed(lateMixBus->GetChannels(), {heads, shelves, clusterScale, reverbScale}, numSamples);
    cluster->FinishBlock(numSamples);
    return true;
}

void OrvanVerb::SetSamplerate(float newSamplerate) {
    EndEarsCrossfade();
    samplerate = newSamplerate;
    for (std::size_t i = 0; i < roomSendRamps.size(); ++i) {
        roomSendRamps[i].SetSamplerate(newSamplerate);
        directDistanceRamps[i].SetSamplerate(newSamplerate);
    }
    for (orvandsp::Ramp* ramp : {&directLayer.gainRamp, &earlyLayer.gainRamp, &clusterLayer.gainRamp, &reverbGainRamp,
                                 &directLevelRamp, &roomLevelRamp})
        ramp->SetSamplerate(newSamplerate);
    early->SetSamplerate(newSamplerate);
    cluster->SetSamplerate(newSamplerate);
    reverb->SetSamplerate(newSamplerate);
    for (MultiFadedHLShelf* shelf : {&directLayer.shelf, &earlyLayer.shelf, &clusterLayer.shelf, &roomLayer.shelf})
        shelf->SetSamplerate(newSamplerate);
    for (Pan* pan : {directPan.get(), earlyPan.get(), diffusePan.get()}) pan->SetSamplerate(newSamplerate);
    MakeRoom();
}

void OrvanVerb::SetMaxBlockSize(unsigned int blockSize) {
    EndEarsCrossfade();
    buffersize = blockSize;
    early->SetMaxBlockSize(blockSize);
    cluster->SetMaxBlockSize(blockSize);
    reverb->SetMaxBlockSize(blockSize);
    for (Pan* pan : {directPan.get(), earlyPan.get(), diffusePan.get()}) pan->SetMaxBlockSize(blockSize);
    MakeRoom();
    earlyBus->Resize(numInternals, blockSize);
    clusterBus->Resize(numInternals, blockSize);
    reverbBus->Resize(numInternals, blockSize);
    sourceBus->Resize(numInputs, blockSize);
    roomBus->Resize(1, blockSize);
    earlyMixBus->Resize(2, blockSize);
    lateMixBus->Resize(numInternals, blockSize);
    // Whole-bus operations read beyond the samples of a short block: nobody uses what is there, but it must be defined.
    for (AudioBuffer* bus : {earlyBus.get(), clusterBus.get(), reverbBus.get(), sourceBus.get(), roomBus.get(),
                             earlyMixBus.get(), lateMixBus.get()})
        bus->Clear();
}

void OrvanVerb::Clear() {
    early->Clear();
    cluster->Clear();
    reverb->Clear();
    directPan->Clear();
    if (formerPan) formerPan->Clear();
    earlyPan->Clear();
    diffusePan->Clear();
    directLayer.shelf.Clear();
    earlyLayer.shelf.Clear();
    clusterLayer.shelf.Clear();
    roomLayer.shelf.Clear();
}

void OrvanVerb::Silence() {
    Clear();
    reverb->ClearAirFilters();
}

void OrvanVerb::SetSourcePosition(unsigned int source, CartesianVector const& position) {
    if (source >= sourcePositions.size()) return;
    if (!IsNumber(position)) return;
    // A copy: the argument may be an entry of the vector.
    const CartesianVector p = WithinReach(position);
    sourcePositions[source] = p;
    PlaceInPanner(source);
    PlaceReflections(source);
    const float distance = std::min(std::max(Defaults::minSourceDistance, p.radius()), Defaults::maxSourceDistance);
    directDistanceRamps[source].Start(1.0f / (distance * distance), DistanceRampTime);
    roomSendRamps[source].Start(1.0f / distance, DistanceRampTime);
}

void OrvanVerb::PlaceInPanner(unsigned int source) {
    if (directPan) directPan->SetSourcePosition(source, ToPanner(sourcePositions[source]), false);
}

void OrvanVerb::PlaceReflections(unsigned int source) {
    lastPlaced = source;
    if (!earlyPan) return;
    const CartesianVector inPanner = ToPanner(sourcePositions[source]);
    const float halfWidth = HalfDegreeToRadians * earlyWidth;
    earlyPan->SetSourcePosition(0, halfWidth != 0.0f ? Turned(inPanner, halfWidth) : inPanner, false);
    earlyPan->SetSourcePosition(1, halfWidth != 0.0f ? Turned(inPanner, -halfWidth) : inPanner, false);
}

/// From the room's axes to the head's, and to those of the format.
CartesianVector OrvanVerb::ToPanner(CartesianVector const& position) const {
    const CartesianVector heard = roomToHead ? Rotated(*roomToHead, position) : position;
    return format != nullptr ? format->ToPanner(heard) : heard;
}

void OrvanVerb::SetOrientation(Orientation const& newOrientation) {
    if (!std::isfinite(newOrientation.yaw) || !std::isfinite(newOrientation.pitch) ||
        !std::isfinite(newOrientation.roll))
        return;
    orientation = newOrientation;
    Orientation heard = orientation;
    if (format != nullptr ? !format->inSpace : !IsBinaural()) heard.pitch = heard.roll = 0.0f;
    roomToHead.reset();
    if (heard.yaw != 0.0f || heard.pitch != 0.0f || heard.roll != 0.0f) roomToHead = RoomToHead(heard);
    for (unsigned int i = 0; i < sourcePositions.size(); ++i) PlaceInPanner(i);
    if (lastPlaced < sourcePositions.size()) PlaceReflections(lastPlaced);
}

void OrvanVerb::SetSpeakersPositions(CartesianVector const* positions) {
    for (std::size_t i = 0; i < speakerPositions.size(); ++i)
        if (IsNumber(positions[i])) speakerPositions[i] = WithinReach(positions[i]);
    // Of the diffuse fields that of one format alone takes account of where the loudspeakers stand.
    if (diffusePan) diffusePan->SetLoudspeakerPositions(speakerPositions.data());
    if (directPan) directPan->SetLoudspeakerPositions(speakerPositions.data());
    if (earlyPan) earlyPan->SetLoudspeakerPositions(speakerPositions.data());
}

}  // namespace Lume
