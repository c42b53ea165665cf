#include "object/orvanverb_messages.h"

#include <vector>

#include "object/atom_format.h"
#include "object/console_lines.h"
#include "object/coordinates_from_atoms.h"
#include "object/lume_common_symbols.h"
#include "object/orvanmax_common_symbols.h"
#include "object/orvanverb_table.h"

using Lume::CartesianVector;

namespace {

CartesianVector Load(float const* positions, unsigned int index) {
    return {positions[3 * index], positions[3 * index + 1], positions[3 * index + 2]};
}

void Store(float* positions, unsigned int index, CartesianVector const& position) {
    positions[3 * index] = position.x;
    positions[3 * index + 1] = position.y;
    positions[3 * index + 2] = position.z;
}

}  // namespace

void orvanverb_source(orvanverb_t* x, t_symbol*, long count, t_atom* atoms) {
    const long number = count > 0 ? atom_getlong(atoms) : 0;
    if (number < 1 || number > static_cast<long>(x->numsources)) {
        object_error(orvanverb_object(x), "invalid source index %ld", number);
        return;
    }
    const auto index = static_cast<unsigned int>(number - 1);
    CartesianVector position = Load(x->sourcespositions, index);
    unsigned int readIndex = 0;  // the same, unless the list begins with a float; the one tested here counts
    if (!get_source_coordinates_from_atoms(orvanverb_object(x), x->numsources, count, atoms, readIndex, position))
        return;
    Store(x->sourcespositions, index, position);
    if (x->engine != nullptr) x->engine->SetSourcePosition(index, position);
    orvanverb_notify(x);
}

void orvanverb_loudspeaker(orvanverb_t* x, t_symbol*, long count, t_atom* atoms) {
    if (x->numspeakers == 0) return;
    if (!orvanmax::CheckAtomsFormat("l", atoms, count)) {
        // Without an index there is no telling which one is meant.
        object_error(orvanverb_object(x), "invalid speaker message");
        return;
    }
    CartesianVector position{};
    unsigned int index = 0;
    if (!get_speaker_coordinates_from_atoms(orvanverb_object(x), x->numspeakers, count, atoms, position, index)) return;
    Store(x->speakerspositions, index, position);
    orvanverb_update_speakerspositions(x);
}

void orvanverb_loudspeakers(orvanverb_t* x, t_symbol*, long count, t_atom* atoms) {
    if (x->numspeakers == 0) return;
    std::vector<CartesianVector> positions(x->numspeakers);
    for (unsigned int i = 0; i < x->numspeakers; ++i) positions[i] = Load(x->speakerspositions, i);
    if (!get_speakers_coordinates_from_atoms(orvanverb_object(x), x->numspeakers, count, atoms, positions.data()))
        return;
    for (unsigned int i = 0; i < x->numspeakers; ++i) Store(x->speakerspositions, i, positions[i]);
    orvanverb_update_speakerspositions(x);
}

void orvanverb_reverb(orvanverb_t* x, t_symbol*, long count, t_atom* atoms) {
    using orvanverb::Setting;
    if (orvanmax::CheckAtomsFormat("sn", atoms, count)) {
        t_symbol* const word = atom_getsym(atoms);
        orvanverb::Attribute const* const attribute = orvanverb::FindAttribute(word->s_name);
        if (word == orvanmax_common_symbols.s_start) {
            object_attr_setfloat(x, lume_common_symbols.s_reverb_start, atom_getfloat(&atoms[1]));
            return;
        }
        if (attribute != nullptr && attribute->setting == Setting::late) {
            if (orvanverb::ControlsOf(*attribute)->scale == Lume::Scale::onOff)
                object_attr_setlong(x, word, atom_getlong(&atoms[1]));
            else
                object_attr_setfloat(x, word, atom_getfloat(&atoms[1]));
            return;
        }
    }
    orvanmax::post_error_message(orvanverb_object(x), count, atoms, "unknwon reverb parameters");
}
