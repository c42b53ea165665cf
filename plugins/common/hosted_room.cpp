#include "common/hosted_room.h"

#include <algorithm>
#include <cstring>

#include "dsp/floating_point_mode.h"
#include "object/orvanverb.h"
#include "object/orvanverb_class.h"

namespace plugin {

using orvandsp::FloatingPointMode;

namespace {

std::vector<max::t_atom> BoxWords(std::vector<max::t_atom> words) {
    orvanverb_main();
    max::t_atom name{};
    max::atom_setsym(&name, max::gensym("orvanverb~"));
    words.insert(words.begin(), name);
    return words;
}

bool Contains(std::vector<max::t_atom> const& words, char const* word) {
    return std::any_of(words.begin(), words.end(), [word](max::t_atom const& atom) {
        return std::strcmp(max::atom_getsym(&atom)->s_name, word) == 0;
    });
}

}  // namespace

HostedRoom::HostedRoom(std::vector<max::t_atom> words, max::BoxListener listener) {
    const FloatingPointMode unchanged;
    const bool sources = !Contains(words, "@sourcespositions"), speakers = !Contains(words, "@speakerspositions");
    box = std::make_unique<max::Box>(BoxWords(std::move(words)), std::move(listener));
    if (IsMade()) orvanverb_place_defaults(reinterpret_cast<orvanverb_t*>(box->Object()), sources, speakers);
}

bool HostedRoom::Send(char const* selector, std::vector<max::t_atom> atoms) {
    const FloatingPointMode unchanged;
    return box->Send(max::gensym(selector), std::move(atoms));
}

std::vector<max::t_atom> HostedRoom::State() {
    return box->GetState();
}

void HostedRoom::Restore(std::vector<max::t_atom> state) {
    const FloatingPointMode unchanged;
    box->SetState(std::move(state));
}

void HostedRoom::Start(float newSampleRate, std::size_t blockSize) {
    const FloatingPointMode unchanged;
    sampleRate = newSampleRate;
    vectors.Configure(NumInputs(), NumOutputs(), blockSize);
    guard.Configure(NumInputs(), vectors.VectorSize());
    box->StartAudio(sampleRate, static_cast<long>(vectors.VectorSize()));
}

void HostedRoom::Process(float const* const* inputs, float* const* outputs) {
    const FloatingPointMode unchanged;
    vectors.Process(outputs, inputs, vectors.BlockSize(), [this](float* const* out, float const** in) {
        guard.Check(in);
        box->Process(in, out);
    });
}

}  // namespace plugin
