#include "room/room.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "dsp/constants.h"
#include "dsp/denormals.h"
#include "dsp/floating_point_mode.h"
#include "geometry/keep_azimuth.h"
#include "geometry/named_layout.h"
#include "geometry/speakers.h"
#include "room/control_range.h"

namespace Lume {

using orvandsp::FloatingPointMode;

namespace {

// Glides after a change of sample rate last 50 ms, layer gains 100 ms; the panners begin a cycle of 30 ms only when the
// one before it has ended.
constexpr double settleSeconds = 0.25;
constexpr unsigned int provisionalBlockSize = 64;
constexpr std::uint32_t randomSeed = 1;  // with the process's own numbers no two rooms of many internals would be alike

void RequireShape(unsigned int numSources, unsigned int numSpeakers, unsigned int numInternals,
                  RoomFormat const* format) {
    if (format != nullptr && !format->supports(numSpeakers))
        throw std::invalid_argument("the format " + std::string(format->name) + " has no " +
                                    std::to_string(numSpeakers) + " outputs");
    // One loudspeaker is no ring and no headphones.
    if (numSpeakers < 2 ||
        !(format != nullptr ? OrvanVerb::SupportsConfiguration(*format, numSources, numSpeakers, numInternals)
                            : OrvanVerb::SupportsConfiguration(numSources, numSpeakers, numInternals)))
        throw std::invalid_argument(
            "a room has 1 to 64 sources, 2 to 64 loudspeakers and 2 to 16 internal channels, not " +
            std::to_string(numSources) + ", " + std::to_string(numSpeakers) + " and " + std::to_string(numInternals));
}

std::unique_ptr<OrvanVerb> MakeEngine(unsigned int numSources, unsigned int numSpeakers, unsigned int numInternals,
                                      RoomFormat const* format) {
    const FloatingPointMode unchanged;
    RequireShape(numSources, numSpeakers, numInternals, format);
    auto engine = std::make_unique<OrvanVerb>(numInternals);
    engine->SetRandomSeed(randomSeed);
    engine->SilenceAirOnRestart(true);
    if (format != nullptr) engine->SetFormat(*format);
    engine->Configure(orvandsp::SignalProcessing::DefaultSampleRate, provisionalBlockSize, numSources, numSpeakers);
    return engine;
}

/// In these ranges everything in the engine was tried; a rate of 0 would divide by it.
void RequireAudio(float samplerate, std::size_t blockSize, std::size_t vectorSize) {
    const auto text = [](auto value) { return std::to_string(value); };
    if (!(samplerate >= Room::minSamplerate && samplerate <= Room::maxSamplerate))
        throw std::invalid_argument("a room runs at 1000 to 768000 Hz, not " + text(samplerate));
    if (blockSize < 1 || blockSize > Room::maxBlockSize)
        throw std::invalid_argument("blocks have 1 to 1048576 samples, not " + text(blockSize));
    if (vectorSize != 0 && !(std::has_single_bit(vectorSize) && vectorSize >= SteadyVectors::minVectorSize &&
                             vectorSize <= Room::maxVectorSize))
        throw std::invalid_argument("a vector has a power of two from 16 to 8192 samples, not " + text(vectorSize));
}

std::unique_ptr<OrvanVerb> RequireRoom(std::unique_ptr<OrvanVerb> engine) {
    if (engine == nullptr || !engine->IsInitialized()) throw std::invalid_argument("the engine wasn't configured");
    RequireShape(engine->GetNumInputs(), engine->GetNumOutputs(), engine->GetNumInternals(), engine->GetFormat());
    return engine;
}

bool HasNumbers(CartesianVector const& p) {
    return !std::isnan(p.x) && !std::isnan(p.y) && !std::isnan(p.z);
}

/// Minus infinity is one, not a number isn't.
bool IsLevel(float gainDb) {
    return gainDb <= std::numeric_limits<float>::max();
}

}  // namespace

Room::Room(unsigned int numSources, unsigned int numSpeakers, unsigned int numInternals, RoomFormat const* format)
    : Room(MakeEngine(numSources, numSpeakers, numInternals, format)) {
    for (RoomControl const& control : roomControls) control.set(*engine, control.standard);
    PlaceBuiltInSpeakers();
}

Room::Room(unsigned int numSources, std::span<CartesianVector const> speakers, unsigned int numInternals,
           RoomFormat const* format)
    : Room(numSources, static_cast<unsigned int>(speakers.size()), numInternals, format) {
    if (!PlaceSpeakers(speakers)) throw std::invalid_argument("the position of a loudspeaker is not a number");
}

Room::Room(std::unique_ptr<OrvanVerb> configured) : engine(RequireRoom(std::move(configured))) {
    vectors.Configure(NumSources(), NumSpeakers(), engine->GetBuffersize(), SteadyVectors::Blocks::Steady,
                      engine->GetBuffersize());
    guard.Configure(NumSources(), VectorSize());
    outputGuard.Configure(Samplerate());
    gains.Configure(NumSources(), Samplerate(), VectorSize());
    strips.resize(NumSources());
    bypassCopies.resize(NumSources() * VectorSize());
}

Room::~Room() = default;

void Room::Configure(float samplerate, std::size_t blockSize, std::size_t vectorSize, SteadyVectors::Blocks blocks) {
    RequireAudio(samplerate, blockSize, vectorSize);
    const FloatingPointMode unchanged;
    vectors.Configure(NumSources(), NumSpeakers(), blockSize, blocks, vectorSize);
    guard.Configure(NumSources(), VectorSize());
    bypassCopies.resize(NumSources() * VectorSize());
    outputGuard.Configure(samplerate);
    gains.Configure(NumSources(), samplerate, VectorSize());
    engine->Configure(samplerate, static_cast<unsigned int>(VectorSize()), NumSources(), NumSpeakers());
    MatchBuiltinEars();
    if (earsWait) nextEars->Configure(samplerate, static_cast<unsigned int>(VectorSize()), true);
}

void Room::Settle() {
    const FloatingPointMode unchanged;
    std::vector<float> silence(VectorSize(), 0.0f), discarded(VectorSize());
    std::vector<float const*> inputs(NumSources());
    const std::vector<float*> outputs(NumSpeakers(), discarded.data());
    const double step = static_cast<double>(VectorSize()) / static_cast<double>(Samplerate());
    for (double seconds = 0.0; seconds < settleSeconds; seconds += step) {
        std::fill(inputs.begin(), inputs.end(), silence.data());
        ProcessVector(outputs.data(), inputs.data());
    }
}

void Room::Process(float* const* outputs, float const* const* inputs, std::size_t numSamples) {
    const FloatingPointMode unchanged;
    orvandsp::FlushDenormals();
    vectors.Process(outputs, inputs, numSamples,
                    [this](float* const* out, float const** in) { ProcessVector(out, in); });
}

void Room::ProcessVector(float* const* outputs, float const** inputs) {
    runs = true;
    if (earsWait && engine->ExchangeEars(nextEars)) earsWait = false;
    guard.Check(inputs);
    gains.Apply(inputs);
    const auto out = const_cast<float**>(outputs);  // the engine changes no pointer
    if (muted) {
        engine->Mute(out, VectorSize());
    } else if (bypassed) {
        Bypass(outputs, inputs);
    } else {
        // It changes no input either, unless an output stands on it.
        engine->Process(out, const_cast<float**>(inputs), VectorSize(), orvandsp::allActiveInputs);
        if (outputGuard.Check(outputs, NumSpeakers(), VectorSize())) engine->Silence();
    }
}

/// By way of copies: an output may stand on any of the inputs.
void Room::Bypass(float* const* outputs, float const** inputs) {
    for (unsigned int i = 0; i < NumSources(); ++i)
        std::copy_n(inputs[i], VectorSize(), &bypassCopies[i * VectorSize()]);
    for (unsigned int i = 0; i < NumSpeakers(); ++i) {
        if (i < NumSources())
            std::copy_n(&bypassCopies[i * VectorSize()], VectorSize(), outputs[i]);
        else
            std::fill_n(outputs[i], VectorSize(), 0.0f);
    }
}

void Room::Clear() {
    const FloatingPointMode unchanged;
    engine->Silence();
    vectors.Clear();
}

bool Room::Set(std::size_t control, float value) {
    if (control >= roomControls.size() || std::isnan(value)) return false;
    const FloatingPointMode unchanged;
    RoomControl const& row = roomControls[control];
    row.set(*engine, BroughtIntoRange(row, value));
    return true;
}

bool Room::SetDirectLevel(float gainDb) {
    if (!IsLevel(gainDb)) return false;
    const FloatingPointMode unchanged;
    engine->SetDirectLevel(gainDb);
    return true;
}

bool Room::SetRoomLevel(float gainDb) {
    if (!IsLevel(gainDb)) return false;
    const FloatingPointMode unchanged;
    engine->SetRoomLevel(gainDb);
    return true;
}

namespace {

/// Whether a decay time comes out within 5 %: the sound must pass through the room's lines often enough meanwhile, the
/// more often the longer each pass is. docs/engine.md has it measured.
bool DecaysAsAsked(unsigned int numInternals, float decaySeconds, float delaySum, float leastDelay) {
    constexpr unsigned int tooFewToMix = 2;
    const float pass = std::max(delaySum / static_cast<float>(numInternals), leastDelay);  // of the mean line
    const float passesNeeded = numInternals < 4 || pass > 0.3f ? 9.0f : 4.0f;
    // Many lines that are all pressed against the least delay are too alike.
    const bool alike = numInternals > 8 && leastDelay * static_cast<float>(numInternals) > delaySum;
    return numInternals > tooFewToMix && !alike && decaySeconds >= passesNeeded * pass;
}

}  // namespace

std::string Room::InternalsRemark() const {
    if (engine->IsInfinite()) return {};
    const float decay = engine->GetReverbParameters().decayTime, sum = engine->GetReverbModalDensity();
    const float least = 0.001f * std::max(0.0f, engine->GetReverbStart() - engine->GetClusterStart());
    const auto keepsIt = [&](unsigned int count) { return DecaysAsAsked(count, decay, sum, least); };
    if (keepsIt(NumInternals())) return {};
    constexpr unsigned int greatest = 16;
    unsigned int enough = NumInternals() + 1;
    while (enough <= greatest && !keepsIt(enough)) ++enough;
    return "a room of " + std::to_string(NumInternals()) + " internal channels may miss tr0 " + NumberText(decay) +
           " s by more than 5 % at modaldensity " + NumberText(sum) + "; " +
           (enough <= greatest ? std::to_string(enough) + " keep it" : "another one keeps it");
}

CartesianVector Room::Limited(CartesianVector const& p) noexcept {
    return {std::clamp(p.x, -maxCoordinate, maxCoordinate), std::clamp(p.y, -maxCoordinate, maxCoordinate),
            std::clamp(p.z, -maxCoordinate, maxCoordinate)};
}

bool Room::PlaceSource(unsigned int source, CartesianVector const& position) {
    if (source >= NumSources() || !HasNumbers(position)) return false;
    const FloatingPointMode unchanged;
    engine->SetSourcePosition(source, KeepAzimuth(Limited(position), SourcePosition(source)));
    return true;
}

bool Room::SetSourceGain(unsigned int source, float gainDb) noexcept {
    if (source >= NumSources() || std::isnan(gainDb)) return false;
    strips[source].gainDb = std::clamp(gainDb, SourceStrip::silentDb, SourceStrip::greatestDb);
    AimGain(source);
    return true;
}

bool Room::SetSourceMuted(unsigned int source, bool newMuted) noexcept {
    if (source >= NumSources()) return false;
    strips[source].muted = newMuted;
    AimGain(source);
    return true;
}

void Room::AimGain(unsigned int source) noexcept {
    if (runs)
        gains.Set(source, strips[source].Gain());
    else
        gains.Jump(source, strips[source].Gain());
}

bool Room::SetSourceName(unsigned int source, std::string_view name) {
    if (source >= NumSources()) return false;
    strips[source].name = LimitedName(name);
    return true;
}

bool Room::SetOrientation(Orientation const& orientation) {
    if (!std::isfinite(orientation.yaw) || !std::isfinite(orientation.pitch) || !std::isfinite(orientation.roll))
        return false;
    const FloatingPointMode unchanged;
    engine->SetOrientation(orientation);
    return true;
}

/// In space where heights are heard: a ring has no triplets.
void Room::PlaceBuiltInSpeakers() {
    std::vector<CartesianVector> positions;
    if (Format() != nullptr && Format()->inSpace && Format()->outputs == RoomFormat::Outputs::loudspeakers)
        positions = UsualLayoutInSpace(NumSpeakers());
    else
        Speakers::GetDefaultForChannels(positions, NumSpeakers());
    PlaceSpeakers(positions);
}

bool Room::PlaceSpeaker(unsigned int speaker, CartesianVector const& position) {
    std::array<CartesianVector, orvandsp::MaxNumChannels> positions;
    if (speaker >= NumSpeakers()) return false;
    std::copy_n(SpeakerPositions().begin(), NumSpeakers(), positions.begin());
    positions[speaker] = position;
    return PlaceSpeakers({positions.data(), NumSpeakers()});
}

bool Room::PlaceSpeakers(std::span<CartesianVector const> positions) {
    if (positions.size() != NumSpeakers() || !std::all_of(positions.begin(), positions.end(), HasNumbers)) return false;
    std::array<CartesianVector, orvandsp::MaxNumChannels> limited;
    std::transform(positions.begin(), positions.end(), limited.begin(), Limited);
    const FloatingPointMode unchanged;
    engine->SetSpeakersPositions(limited.data());
    return true;
}

}  // namespace Lume
