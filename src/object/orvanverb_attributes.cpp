#include "object/orvanverb_attributes.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "object/atom_format.h"
#include "object/console_lines.h"
#include "object/orvanverb_table.h"
#include "object/parameters_from_atoms.h"

namespace {

using orvanverb::Attribute;
using orvanverb::Field;
using orvanverb::Setting;

/// What became of an attribute's value.
enum class Outcome : int {
    done,     ///< stored; the box is to be told
    stopped,  ///< refused with a line; nothing else happens
    failed    ///< refused as an error
};

/// A value that was fixed when the engine was built.
Outcome SetSize(orvanverb_t* x, Attribute const& attribute, t_atom const* atoms) {
    auto* const size = Field<std::uint32_t>(x, attribute);
    const long value = atom_getlong(atoms);
    if (x->initialized == 0) {
        *size = static_cast<std::uint32_t>(value);
        x->sourcespositions_count = 3 * x->numsources;
        x->speakerspositions_count = 3 * x->numspeakers;
    } else if (value != static_cast<long>(*size)) {
        object_error(orvanverb_object(x), "could not dynamically change %s", attribute.label);
    }
    return Outcome::done;
}

/// Reads positions; a list that is too short, or holds an infinity, changes nothing: a source without a place would
/// fill the outputs with values that aren't numbers.
bool ReadPositions(orvanverb_t* x, Attribute const& attribute, std::uint32_t expected, long count,
                   t_atom const* atoms) {
    if (count < static_cast<long>(expected)) {
        object_error(orvanverb_object(x), "%s: %u coordinates are expected, not %ld", attribute.name, expected, count);
        return false;
    }
    if (!std::all_of(atoms, atoms + expected, [](t_atom const& atom) { return std::isfinite(atom_getfloat(&atom)); })) {
        object_error(orvanverb_object(x), "%s: coordinates must be finite", attribute.name);
        return false;
    }
    std::transform(atoms, atoms + expected, Field<float>(x, attribute),
                   [](t_atom const& atom) { return atom_getfloat(&atom); });
    return true;
}

Outcome SetSources(orvanverb_t* x, Attribute const& attribute, long count, t_atom const* atoms) {
    if (!ReadPositions(x, attribute, x->sourcespositions_count, count, atoms)) return Outcome::failed;
    orvanverb_update_sourcespositions(x);
    orvanverb_notify(x);
    return Outcome::done;
}

Outcome SetSpeakers(orvanverb_t* x, Attribute const& attribute, long count, t_atom const* atoms) {
    if (!ReadPositions(x, attribute, x->speakerspositions_count, count, atoms)) return Outcome::failed;
    orvanverb_update_speakerspositions(x);
    return Outcome::done;
}

Outcome SetLate(orvanverb_t* x, Attribute const& attribute, t_atom const* atoms) {
    if (orvanverb::ControlsOf(attribute)->scale == Lume::Scale::onOff)
        *Field<std::int32_t>(x, attribute) = atom_getlong(atoms) != 0 ? 1 : 0;
    else
        *Field<float>(x, attribute) = atom_getfloat(atoms);
    orvanverb_update_reverb(x);
    return Outcome::done;
}

/// The delays stop in the record: the engine makes its own.
Outcome SetDelays(orvanverb_t* x, Attribute const& attribute, long count, t_atom const* atoms) {
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
        Field<float>(x, attribute)[i] = delay > 0.0f ? delay : 0.0f;
    }
    orvanverb_notify(x);
    return Outcome::done;
}

Outcome SetTime(orvanverb_t* x, Attribute const& attribute, float value) {
    *Field<float>(x, attribute) = value;
    orvanverb_update_time_structure(x);
    return Outcome::done;
}

/// "early start 500": goes past the filter of early_start and is stored as it comes, as long as it is finite.
Outcome SetTimeByWord(orvanverb_t* x, Attribute const& shelf, t_atom const* atoms) {
    if (atom_gettype(atoms) != A_SYM) return Outcome::failed;
    Attribute const* const time =
        orvanverb::FindAttribute(std::string(shelf.name).append("_").append(atom_getsym(atoms)->s_name));
    if (time == nullptr) return Outcome::failed;
    const float value = orvanmax::atom_getnumber(&atoms[1], 0.0f);
    return std::isfinite(value) ? SetTime(x, *time, value) : Outcome::failed;
}

/// Six numbers into a shelf's field; what is no number gets the default of its place.
void SetShelf(orvanverb_t* x, Attribute const& attribute, t_atom const* atoms) {
    Lume::HLShelfParameters parameters;
    for (unsigned int i = 0; i < orvanverb_t::NumShelfValues; ++i) {
        float& member = parameters.*shelfMembers[i];
        member = orvanmax::atom_getnumber(&atoms[i], member);
    }
    ClipHLShelfParameters(parameters);
    for (unsigned int i = 0; i < orvanverb_t::NumShelfValues; ++i)
        Field<float>(x, attribute)[i] = parameters.*shelfMembers[i];
    if (x->engine != nullptr) (x->engine->*attribute.setShelf)(parameters);
}

Outcome SetShelfOrTime(orvanverb_t* x, Attribute const& attribute, long count, t_atom const* atoms) {
    if (count == orvanverb_t::NumShelfValues) {
        SetShelf(x, attribute, atoms);
        return Outcome::done;
    }
    if (count == 2 && SetTimeByWord(x, attribute, atoms) == Outcome::done) return Outcome::done;
    const std::string line = std::string("invalid ").append(attribute.name).append(" parameters");
    orvanmax::post_error_message(orvanverb_object(x), count, atoms, line.c_str());
    return Outcome::failed;
}

Outcome Set(orvanverb_t* x, Attribute const& attribute, long count, t_atom const* atoms) {
    switch (attribute.setting) {
        case Setting::size:
            return SetSize(x, attribute, atoms);
        case Setting::sources:
            return SetSources(x, attribute, count, atoms);
        case Setting::speakers:
            return SetSpeakers(x, attribute, count, atoms);
        case Setting::late:
            return SetLate(x, attribute, atoms);
        case Setting::delays:
            return SetDelays(x, attribute, count, atoms);
        case Setting::shelf:
            return SetShelfOrTime(x, attribute, count, atoms);
        case Setting::time:
            return SetTime(x, attribute, atom_getfloat(atoms));
    }
    return Outcome::failed;
}

}  // namespace

t_max_err orvanverb_set_attr(orvanverb_t* x, t_attr* attribute, long count, t_atom* atoms) {
    if (count <= 0 || atoms == nullptr) return MAX_ERR_NONE;
    Attribute const* const known = orvanverb::FindAttribute(attribute->name->s_name);
    if (known == nullptr) {
        object_error(orvanverb_object(x), "unknown attribute %s", attribute->name->s_name);
        return MAX_ERR_GENERIC;
    }
    const Outcome outcome = Set(x, *known, count, atoms);
    if (outcome == Outcome::done) orvanverb_notify(x);
    return outcome == Outcome::failed ? MAX_ERR_GENERIC : MAX_ERR_NONE;
}
