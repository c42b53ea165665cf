#include "object/orvanverb_attributes.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "object/atom_format.h"
#include "object/console_lines.h"
#include "object/lume_common_symbols.h"
#include "object/orvanmax_common_symbols.h"
#include "object/parameters_from_atoms.h"

namespace {

/// What became of an attribute's value.
enum class Outcome : int {
    done,     ///< stored; the box is to be told
    stopped,  ///< refused with a line; nothing else happens
    failed,   ///< refused as an error
    unknown   ///< no attribute of that group
};

/// A value that was fixed when the engine was built.
void SetSize(orvanverb_t* x, std::uint32_t& size, std::uint32_t* positionsCount, t_atom const* atoms,
             char const* what) {
    const long value = atom_getlong(atoms);
    if (x->initialized == 0) {
        size = static_cast<std::uint32_t>(value);
        if (positionsCount != nullptr) *positionsCount = 3 * size;
    } else if (value != static_cast<long>(size)) {
        object_error(orvanverb_object(x), "could not dynamically change number of %s", what);
    }
}

Outcome SetSizes(orvanverb_t* x, t_symbol const* name, t_atom const* atoms) {
    if (name == lume_common_symbols.s_numsources) {
        SetSize(x, x->numsources, &x->sourcespositions_count, atoms, "sources");
    } else if (name == lume_common_symbols.s_numspeakers) {
        SetSize(x, x->numspeakers, &x->speakerspositions_count, atoms, "speakers");
    } else if (name == lume_common_symbols.s_numinternals) {
        SetSize(x, x->numinternals, nullptr, atoms, "internal channels");
    } else {
        return Outcome::unknown;
    }
    return Outcome::done;
}

/// Reads positions; a list that is too short, or holds an infinity, changes nothing: a source without a place would
/// fill the outputs with values that aren't numbers.
bool ReadPositions(orvanverb_t* x, t_symbol const* name, float* positions, std::uint32_t expected, long count,
                   t_atom const* atoms) {
    if (count < static_cast<long>(expected)) {
        object_error(orvanverb_object(x), "%s: %u coordinates are expected, not %ld", name->s_name, expected, count);
        return false;
    }
    if (!std::all_of(atoms, atoms + expected, [](t_atom const& atom) { return std::isfinite(atom_getfloat(&atom)); })) {
        object_error(orvanverb_object(x), "%s: coordinates must be finite", name->s_name);
        return false;
    }
    for (std::uint32_t i = 0; i < expected; ++i) positions[i] = atom_getfloat(&atoms[i]);
    return true;
}

Outcome SetPositions(orvanverb_t* x, t_symbol const* name, long count, t_atom const* atoms) {
    if (name == lume_common_symbols.s_sourcespositions) {
        if (!ReadPositions(x, name, x->sourcespositions, x->sourcespositions_count, count, atoms))
            return Outcome::failed;
        orvanverb_update_sourcespositions(x);
        orvanverb_notify(x);
        return Outcome::done;
    }
    if (name == lume_common_symbols.s_speakerspositions) {
        if (!ReadPositions(x, name, x->speakerspositions, x->speakerspositions_count, count, atoms))
            return Outcome::failed;
        orvanverb_update_speakerspositions(x);
        return Outcome::done;
    }
    return Outcome::unknown;
}

Outcome SetReverb(orvanverb_t* x, t_symbol const* name, t_atom const* atoms) {
    LumeCommonSymbols const& s = lume_common_symbols;
    const struct {
        t_symbol* name;
        float* field;
    } floats[] = {{s.s_gain, &x->gain}, {s.s_tr0, &x->tr0},         {s.s_trl, &x->trl},
                  {s.s_trm, &x->trm},   {s.s_trh, &x->trh},         {s.s_fl, &x->fl},
                  {s.s_fh, &x->fh},     {s.s_airfreq, &x->airfreq}, {s.s_modaldensity, &x->modaldensity}};
    bool found = false;
    for (auto const& candidate : floats) {
        if (candidate.name != name) continue;
        *candidate.field = atom_getfloat(atoms);
        found = true;
    }
    if (name == s.s_air || name == s.s_infinite) {
        (name == s.s_air ? x->air : x->infinite) = atom_getlong(atoms) != 0 ? 1 : 0;
        found = true;
    }
    if (!found) return Outcome::unknown;
    orvanverb_update_reverb(x);
    return Outcome::done;
}

/// The delays stop in the record: the engine makes its own.
Outcome SetDelays(orvanverb_t* x, long count, t_atom const* atoms) {
    if (x->engine == nullptr) {
        object_error(orvanverb_object(x),
                     "couldnt set delays because reverb is not yet initialized. numchannels should be the first "
                     "attribute");
        return Outcome::stopped;
    }
    if (count != static_cast<long>(x->numinternals)) {
        object_error(orvanverb_object(x), "Wrong number of delays");
        return Outcome::stopped;
    }
    for (long i = 0; i < count; ++i) {
        const float delay = atom_getfloat(&atoms[i]);
        x->delays[i] = delay > 0.0f ? delay : 0.0f;
    }
    orvanverb_notify(x);
    return Outcome::done;
}

/// Six numbers into a shelf's field; what is no number gets the default of its place.
Lume::HLShelfParameters ReadShelf(float* field, t_atom const* atoms) {
    Lume::HLShelfParameters parameters;
    float* const members[] = {&parameters.gain,     &parameters.gainLow, &parameters.gainMed,
                              &parameters.gainHigh, &parameters.freqLow, &parameters.freqHigh};
    for (unsigned int i = 0; i < orvanverb_t::NumShelfValues; ++i)
        *members[i] = orvanmax::atom_getnumber(&atoms[i], *members[i]);
    ClipHLShelfParameters(parameters);
    for (unsigned int i = 0; i < orvanverb_t::NumShelfValues; ++i) field[i] = *members[i];
    return parameters;
}

/// The time that a word of early or cluster means, or null.
float* TimeField(orvanverb_t* x, bool early, t_symbol const* word) {
    if (word == orvanmax_common_symbols.s_start) return early ? &x->early_start : &x->cluster_start;
    if (word == orvanmax_common_symbols.s_end) return early ? &x->early_end : &x->cluster_end;
    if (word == lume_common_symbols.s_distr) return early ? &x->early_distr : &x->cluster_distr;
    if (early && word == lume_common_symbols.s_width) return &x->early_width;
    if (early && word == lume_common_symbols.s_shape) return &x->early_shape;
    return nullptr;
}

/// "early start 500": goes past the filter of early_start and is stored as it comes, as long as it is finite.
bool SetTimeByWord(orvanverb_t* x, bool early, t_atom const* atoms) {
    if (atom_gettype(atoms) != A_SYM) return false;
    float* const field = TimeField(x, early, atom_getsym(atoms));
    if (field == nullptr) return false;
    const float value = orvanmax::atom_getnumber(&atoms[1], 0.0f);
    if (!std::isfinite(value)) return false;
    *field = value;
    orvanverb_update_time_structure(x);
    return true;
}

Outcome SetShelves(orvanverb_t* x, t_symbol const* name, long count, t_atom const* atoms) {
    LumeCommonSymbols const& s = lume_common_symbols;
    const struct {
        t_symbol* name;
        float* field;
        void (Lume::OrvanVerb::*set)(Lume::HLShelfParameters const&);
        bool hasTimes;
    } shelves[] = {{s.s_direct, x->direct, &Lume::OrvanVerb::SetDirectParameters, false},
                   {s.s_room, x->room, &Lume::OrvanVerb::SetRoomParameters, false},
                   {s.s_early, x->early, &Lume::OrvanVerb::SetEarlyParameters, true},
                   {s.s_cluster, x->cluster, &Lume::OrvanVerb::SetClusterParameters, true}};
    for (auto const& shelf : shelves) {
        if (shelf.name != name) continue;
        if (count == orvanverb_t::NumShelfValues) {
            const Lume::HLShelfParameters parameters = ReadShelf(shelf.field, atoms);
            if (x->engine != nullptr) (x->engine->*shelf.set)(parameters);
            return Outcome::done;
        }
        if (shelf.hasTimes && count == 2 && SetTimeByWord(x, name == s.s_early, atoms)) return Outcome::done;
        const std::string line = std::string("invalid ") + name->s_name + " parameters";
        orvanmax::post_error_message(orvanverb_object(x), count, atoms, line.c_str());
        return Outcome::failed;
    }
    return Outcome::unknown;
}

Outcome SetTime(orvanverb_t* x, t_symbol const* name, t_atom const* atoms) {
    LumeCommonSymbols const& s = lume_common_symbols;
    const struct {
        t_symbol* name;
        float* field;
    } times[] = {{s.s_early_start, &x->early_start},  {s.s_early_end, &x->early_end},
                 {s.s_early_distr, &x->early_distr},  {s.s_early_width, &x->early_width},
                 {s.s_early_shape, &x->early_shape},  {s.s_cluster_start, &x->cluster_start},
                 {s.s_cluster_end, &x->cluster_end},  {s.s_cluster_distr, &x->cluster_distr},
                 {s.s_reverb_start, &x->reverb_start}};
    for (auto const& time : times) {
        if (time.name != name) continue;
        *time.field = atom_getfloat(atoms);
        orvanverb_update_time_structure(x);
        return Outcome::done;
    }
    return Outcome::unknown;
}

Outcome Set(orvanverb_t* x, t_symbol const* name, long count, t_atom const* atoms) {
    if (name == lume_common_symbols.s_delays) return SetDelays(x, count, atoms);
    Outcome outcome = SetSizes(x, name, atoms);
    if (outcome == Outcome::unknown) outcome = SetPositions(x, name, count, atoms);
    if (outcome == Outcome::unknown) outcome = SetReverb(x, name, atoms);
    if (outcome == Outcome::unknown) outcome = SetShelves(x, name, count, atoms);
    if (outcome == Outcome::unknown) outcome = SetTime(x, name, atoms);
    return outcome;
}

}  // namespace

t_max_err orvanverb_set_attr(orvanverb_t* x, t_attr* attribute, long count, t_atom* atoms) {
    if (count <= 0 || atoms == nullptr) return MAX_ERR_NONE;
    switch (Set(x, attribute->name, count, atoms)) {
        case Outcome::done:
            orvanverb_notify(x);
            return MAX_ERR_NONE;
        case Outcome::stopped:
            return MAX_ERR_NONE;
        case Outcome::failed:
            return MAX_ERR_GENERIC;
        case Outcome::unknown:
            break;
    }
    object_error(orvanverb_object(x), "unknown attribute %s", attribute->name->s_name);
    return MAX_ERR_GENERIC;
}
