#include "object/orvanverb.h"

#include <cstddef>
#include <cstdio>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "geometry/speakers.h"
#include "object/attribute_actions.h"
#include "object/lume_common_symbols.h"
#include "object/orvan_msp_object.h"
#include "object/orvanverb_class.h"

static_assert(offsetof(orvanverb_t, box) == offsetof(orvanmax::_OrvanMspObject, box));
static_assert(offsetof(orvanverb_t, mute) == offsetof(orvanmax::_OrvanMspObject, mute));
static_assert(offsetof(orvanverb_t, bypass) == offsetof(orvanmax::_OrvanMspObject, bypass));

namespace {

/// Vector size of the configuration before audio is known [samples].
constexpr unsigned int provisionalBlockSize = 64;

/// Of the engines of new objects; none: they draw from the process's rand().
std::optional<std::uint32_t> randomSeed;

/// Of the engines of new objects; null: that of the class.
Lume::RoomFormat const* roomFormat = nullptr;

Lume::CartesianVector Position(float const* positions, unsigned int index) {
    return {positions[3 * index], positions[3 * index + 1], positions[3 * index + 2]};
}

void SetPositions(orvanverb_t* x, t_symbol* attribute, unsigned int number) {
    std::vector<Lume::CartesianVector> layout;
    Lume::Speakers::GetDefaultForChannels(layout, number);
    std::vector<t_atom> atoms;
    for (Lume::CartesianVector const& position : layout)
        for (const float value : {position.x, position.y, position.z})
            atom_setfloat(&atoms.emplace_back(), static_cast<double>(value));
    object_attr_setvalueof(x, attribute, static_cast<long>(atoms.size()), atoms.data());
}

}  // namespace

void* orvanverb_new(t_symbol*, short count, t_atom* atoms) {
    auto* const x = static_cast<orvanverb_t*>(object_alloc(orvanverb_class));
    if (x == nullptr) return nullptr;
    x->box = gensym("#B")->s_thing;
    x->holder = nullptr;
    x->engine = nullptr;
    x->initialized = 0;

    t_dictionary* const attributes = object_dictionaryarg(count, atoms);
    if (attributes == nullptr) {
        object_error(orvanverb_object(x), "couldnt process dictionnary");
        return nullptr;
    }
    attr_dictionary_process(x, attributes);
    orvanverb_initialize(x);
    if (x->engine == nullptr) {
        object_error(orvanverb_object(x), "couldnt create object");
        return nullptr;
    }
    orvanmax::reset_attributes(orvanverb_object(x));
    attr_dictionary_process(x, attributes);

    z_dsp_setup(&x->ob, x->numsources);
    for (unsigned int i = 0; i < x->numspeakers; ++i) outlet_new(x, "signal");
    x->ob.z_misc = 1;  // inputs and outputs must not share memory
    return x;
}

void orvanverb_seed(std::uint32_t seed) {
    randomSeed = seed;
}

void orvanverb_format(Lume::RoomFormat const* format) {
    roomFormat = format;
}

Lume::OrvanVerb* orvanverb_initialize(orvanverb_t* x) {
    if (x->initialized != 0) return x->engine;
    if (!(roomFormat != nullptr
              ? Lume::OrvanVerb::SupportsConfiguration(*roomFormat, x->numsources, x->numspeakers, x->numinternals)
              : Lume::OrvanVerb::SupportsConfiguration(x->numsources, x->numspeakers, x->numinternals))) {
        object_error(orvanverb_object(x), "Configuration not supported");
        return nullptr;
    }
    try {
        auto engine = std::make_unique<Lume::OrvanVerb>(x->numinternals);
        if (randomSeed) engine->SetRandomSeed(*randomSeed);
        if (roomFormat != nullptr) engine->SetFormat(*roomFormat);
        engine->Configure(orvandsp::SignalProcessing::DefaultSampleRate, provisionalBlockSize, x->numsources,
                          x->numspeakers);
        x->holder = new Lume::Room(std::move(engine));
        x->engine = &x->holder->Engine();
    } catch (std::exception const& exception) {
        object_error(orvanverb_object(x), "%s", exception.what());
        return nullptr;
    } catch (...) {
        object_error(orvanverb_object(x), "exception");
        return nullptr;
    }
    if (!x->engine->IsInitialized()) {
        // The engine stays and creation goes on; the sizes are not frozen.
        object_error(orvanverb_object(x), "object not properly initialized");
        return nullptr;
    }
    x->initialized = 1;
    return x->engine;
}

void orvanverb_free(orvanverb_t* x) {
    if (x == nullptr) return;
    z_dsp_free(&x->ob);  // the callback leaves the chain before its engine goes
    x->engine = nullptr;
    delete x->holder;
    x->holder = nullptr;
}

void orvanverb_dsp(orvanverb_t* x, t_signal** signals, short*) {
    const long vectorSize = signals[0]->s_n;
    if (x->engine != nullptr)
        x->engine->Configure(signals[0]->s_sr, static_cast<unsigned int>(vectorSize), x->numsources, x->numspeakers);
    for (unsigned int i = 0; i < x->numsources; ++i) x->inputs[i] = signals[i]->s_vec;
    for (unsigned int j = 0; j < x->numspeakers; ++j) x->outputs[j] = signals[x->numsources + j]->s_vec;
    dsp_add(orvanverb_perform, 2, reinterpret_cast<t_int>(x), static_cast<t_int>(vectorSize));
}

t_int* orvanverb_perform(t_int* w) {
    auto* const x = reinterpret_cast<orvanverb_t*>(w[1]);  // NOLINT(performance-no-int-to-ptr): words are pointers
    const auto numSamples = static_cast<unsigned long>(w[2]);
    if (x->engine == nullptr) return w + 3;
    // Mute wins over bypass. Both are read anew at each vector; the engine doesn't know of them.
    if (x->mute == 1 || x->ob.z_disabled != 0) {
        x->engine->Mute(x->outputs, numSamples);
    } else if (x->bypass == 1) {
        x->engine->Bypass(x->outputs, x->inputs, numSamples);
    } else {
        x->engine->Process(x->outputs, x->inputs, numSamples, x->connected);
    }
    return w + 3;
}

void orvanverb_assist(orvanverb_t* x, void*, long direction, unsigned long index, char* text) {
    constexpr std::size_t longest = 32;  // far below the host's buffer
    if (direction == 1 && index < x->numsources) {
        std::snprintf(text, longest, "source %d", static_cast<int>(index) + 1);
    } else if (direction == 2 && index < x->numspeakers) {
        std::snprintf(text, longest, "speaker %d", static_cast<int>(index) + 1);
    }
}

void orvanverb_clear(orvanverb_t* x) {
    if (x->engine != nullptr) x->engine->Clear();
}

void orvanverb_update_time_structure(orvanverb_t* x) {
    if (x->engine != nullptr) {
        x->engine->SetEarlyStart(x->early_start);
        x->engine->SetEarlyEnd(x->early_end);
        x->engine->SetEarlyDistribution(x->early_distr);
        x->engine->SetClusterStart(x->cluster_start);
        x->engine->SetClusterEnd(x->cluster_end);
        x->engine->SetClusterDistribution(x->cluster_distr);
        x->engine->SetReverbStart(x->reverb_start);
        x->engine->SetEarlyWidth(x->early_width);
        x->engine->SetEarlyShape(x->early_shape);
    }
    orvanverb_notify(x);
}

void orvanverb_update_reverb(orvanverb_t* x) {
    if (x->engine == nullptr) return;
    const Lume::ReverbDspParameters parameters{x->gain, x->tr0, x->trl, x->trm, x->trh, x->fl, x->fh};
    x->engine->SetReverbParameters(parameters);
    x->engine->SetReverbModalDensity(x->modaldensity);
    x->engine->UseAirAbsorption(x->air != 0);
    x->engine->SetAirAbsorptionRolloffFrequency(x->airfreq);
    x->engine->SetInfinite(x->infinite != 0);
}

void orvanverb_update_speakerspositions(orvanverb_t* x) {
    if (x->engine != nullptr) {
        if (x->numspeakers == 0) return;
        std::vector<Lume::CartesianVector> positions(x->numspeakers);
        for (unsigned int i = 0; i < x->numspeakers; ++i) positions[i] = Position(x->speakerspositions, i);
        x->engine->SetSpeakersPositions(positions.data());
    }
    orvanverb_update_sourcespositions(x);
    orvanverb_notify(x);
    orvanverb_notify(x);
}

void orvanverb_update_sourcespositions(orvanverb_t* x) {
    if (x->engine == nullptr) return;
    for (unsigned int i = 0; i < x->numsources; ++i) x->engine->SetSourcePosition(i, Position(x->sourcespositions, i));
}

void orvanverb_notify(orvanverb_t* x) {
    object_notify(x->box, common_symbols_init()->s_modified, nullptr);
}

void orvanverb_place_defaults(orvanverb_t* x, bool sources, bool speakers) {
    if (speakers) SetPositions(x, lume_common_symbols.s_speakerspositions, x->numspeakers);
    if (sources) SetPositions(x, lume_common_symbols.s_sourcespositions, x->numsources);
}

orvanverb_t* orvanverb_record(t_object* object) {
    if (object == nullptr || object_class(object) != orvanverb_class) return nullptr;
    return reinterpret_cast<orvanverb_t*>(object);  // the record begins with it
}

Lume::Room& orvanverb_room(orvanverb_t* x) {
    x->holder->SetMuted(x->mute == 1 || x->ob.z_disabled != 0);
    x->holder->SetBypassed(x->bypass == 1);
    return *x->holder;
}
