// The ears of a binaural engine, and how they are exchanged while it runs.

#include <algorithm>
#include <fstream>
#include <string>

#include "dsp/constants.h"
#include "dsp/orvan_dsp_exception.h"
#include "engine/orvan_verb.h"
#include "hrtf/coll_file.h"
#include "hrtf/hrtf.h"
#include "pan/binaural/binaural_panning_direct.h"

namespace Lume {

using orvandsp::allActiveInputs;

namespace {

constexpr float earsFadeMs = 30.0f;

BinauralPanningDirect* Ears(Pan* pan) {
    return dynamic_cast<BinauralPanningDirect*>(pan);
}

bool TakeSet(BinauralPanningDirect& ears, std::unique_ptr<Hrtf> set) {
    if (!ears.SetHrtf(std::move(set))) return false;
    ears.SetFIRFiltersImplementationMethod(orvandsp::Filter::fftconvolution);
    return true;
}

}  // namespace

bool OrvanVerb::LoadHrtf(char const* path) {
    // A set reads a name that is no file's as that of the built-in one; a mistyped name must not pass for it.
    const std::string name = path;
    if (!name.empty() && name != "kemar" && name != "KEMAR" &&
        (!std::ifstream(name) || !(CheckFileExtension(name, ".hrtf") || CheckFileExtension(name, ".coll"))))
        throw orvandsp::OrvanDspException("can't open the file " + name, __FILE__, __LINE__);
    return Ears(directPan.get()) != nullptr && SetHrtf(std::make_unique<Hrtf>(path));
}

bool OrvanVerb::SetHrtf(std::unique_ptr<Hrtf> set) {
    BinauralPanningDirect* const ears = Ears(directPan.get());
    return ears != nullptr && TakeSet(*ears, std::move(set));
}

HrtfHeaderInfos const* OrvanVerb::GetHrtfHeaderInfos() const {
    BinauralPanningDirect const* const ears = Ears(directPan.get());
    return ears != nullptr ? ears->GetHrtfHeaderInfos() : nullptr;
}

std::unique_ptr<BinauralPanning> OrvanVerb::MakeEars(std::unique_ptr<Hrtf> set) const {
    if (!IsBinaural()) return nullptr;
    auto ears = std::make_unique<BinauralPanningDirect>(numInputs, numOutputs);
    if (!TakeSet(*ears, std::move(set))) return nullptr;
    ears->Configure(samplerate, buffersize, true);
    return ears;
}

bool OrvanVerb::ExchangeEars(std::unique_ptr<BinauralPanning>& ears) {
    if (earsFaded < earsFadeTime) return false;
    for (unsigned int i = 0; i < sourcePositions.size(); ++i) {
        // Delays jump with the flag, filters wait for the call without it. Nothing is heard of these ears yet.
        ears->SetSourcePosition(i, sourcePositions[i], true);
        ears->SetSourcePosition(i, sourcePositions[i], false);
    }
    auto* const unused = static_cast<BinauralPanning*>(formerPan.release());
    formerPan = std::move(directPan);
    directPan = std::move(ears);
    ears.reset(unused);
    earsFaded = 0;
    earsFadeTime = static_cast<unsigned long>(samplerate * earsFadeMs * 0.001f);
    return true;
}

/// The direct sound while one pair of ears goes over into another: both hear it, and their outputs fade.
void OrvanVerb::CrossfadeEars(float** outputs, unsigned long numSamples) {
    const float step = 1.0f / static_cast<float>(earsFadeTime);
    for (Pan* const ears : {formerPan.get(), directPan.get()}) {
        // The bus of the early layer is free until that comes.
        for (unsigned int c = 0; c < 2; ++c) std::fill_n(earlyMixBus->GetChannel(c), numSamples, 0.0f);
        ears->ProcessAdding(earlyMixBus->GetChannels(), sourceBus->GetChannels(), numSamples, allActiveInputs);
        for (unsigned int c = 0; c < 2; ++c) {
            float const* const heard = earlyMixBus->GetChannel(c);
            for (unsigned long i = 0; i < numSamples; ++i) {
                const float fresh = std::min(static_cast<float>(earsFaded + i) * step, 1.0f);
                outputs[c][i] += heard[i] * (ears == directPan.get() ? fresh : 1.0f - fresh);
            }
        }
    }
    earsFaded += numSamples;
}

void OrvanVerb::EndEarsCrossfade() {
    earsFadeTime = 0;
    formerPan.reset();
}

}  // namespace Lume
