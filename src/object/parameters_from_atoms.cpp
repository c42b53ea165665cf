#include "object/parameters_from_atoms.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "engine/room_controls.h"
#include "object/atom_format.h"
#include "object/console_lines.h"
#include "object/lume_common_symbols.h"
#include "object/orvanmax_common_symbols.h"

using orvanmax::CheckAtomsFormat;

namespace {

using Lume::HLShelfParameters;

constexpr std::size_t numGains = 4, numMembers = 6;
/// The ranges of the six are those of any layer's.
constexpr std::size_t firstControl = Lume::ControlIndex("direct_gain");

/// Written with max first, in an order that turns what isn't a number into the minimum.
void Store(HLShelfParameters& p, std::size_t member, float value) {
    Lume::RoomControl const& control = Lume::roomControls[firstControl + member];
    p.*shelfMembers[member] = std::min(std::max(control.least, value), control.greatest);
}

void Read(HLShelfParameters& p, std::size_t first, std::size_t end, t_atom const* atoms) {
    for (std::size_t i = first; i < end; ++i) Store(p, i, atom_getfloat(&atoms[i - first]));
}

/// One member of a shelf by its word.
bool ReadMember(HLShelfParameters& p, t_symbol const* word, float value) {
    LumeCommonSymbols const& s = lume_common_symbols;
    t_symbol const* const words[] = {s.s_G0, s.s_Gl, s.s_Gm, s.s_Gh, s.s_fl, s.s_fh};
    t_symbol const* const powers[] = {s.s_g0, s.s_gl, s.s_gm, s.s_gh};
    for (std::size_t i = 0; i < numMembers; ++i) {
        const bool power = i < numGains && word == powers[i];
        if (power && !(value > 0.0f)) return false;
        if (!power && word != words[i]) continue;
        Store(p, i, power ? 10.0f * std::log10(value) : value);
        return true;
    }
    return false;
}

}  // namespace

void ClipHLShelfParameters(HLShelfParameters& p) {
    for (std::size_t i = 0; i < numMembers; ++i) Store(p, i, p.*shelfMembers[i]);
}

bool atoms2hlshelf(float& G0, float& Gl, float& Gm, float& Gh, float& fl, float& fh, long count, t_atom const* atoms) {
    Lume::HLShelfParameters p{G0, Gl, Gm, Gh, fl, fh};
    const bool worded = CheckAtomsFormat("s", atoms, count);
    t_symbol const* const word = worded ? atom_getsym(atoms) : nullptr;
    LumeCommonSymbols const& s = lume_common_symbols;
    if (CheckAtomsFormat("snnnnnn", atoms, count) && (word == s.s_hlshelf || word == s.s_params)) {
        Read(p, 0, numMembers, &atoms[1]);
    } else if (CheckAtomsFormat("nnnnnn", atoms, count)) {
        Read(p, 0, numMembers, atoms);
    } else if (CheckAtomsFormat("snnnn", atoms, count) && word == orvanmax_common_symbols.s_gains) {
        Read(p, 0, numGains, &atoms[1]);
    } else if (CheckAtomsFormat("snn", atoms, count) && word == s.s_freqs) {
        Read(p, numGains, numMembers, &atoms[1]);
    } else if (!CheckAtomsFormat("sn", atoms, count) || !ReadMember(p, word, atom_getfloat(&atoms[1]))) {
        return false;
    }
    G0 = p.gain;
    Gl = p.gainLow;
    Gm = p.gainMed;
    Gh = p.gainHigh;
    fl = p.freqLow;
    fh = p.freqHigh;
    return true;
}

bool atoms2hlshelf(Lume::HLShelfParameters& parameters, long count, t_atom const* atoms) {
    return atoms2hlshelf(parameters.gain, parameters.gainLow, parameters.gainMed, parameters.gainHigh,
                         parameters.freqLow, parameters.freqHigh, count, atoms);
}

bool atoms2reverb(Lume::ReverbDspParameters& parameters, long count, t_atom const* atoms) {
    if (CheckAtomsFormat("snnnn", atoms, count)) {
        if (atom_getsym(atoms) != lume_common_symbols.s_times) return false;
        parameters.decayTime = atom_getfloat(&atoms[1]);
        parameters.relativeDecayLow = atom_getfloat(&atoms[2]);
        parameters.relativeDecayMedium = atom_getfloat(&atoms[3]);
        parameters.relativeDecayHigh = atom_getfloat(&atoms[4]);
        return true;
    }
    if (CheckAtomsFormat("snn", atoms, count)) {
        if (atom_getsym(atoms) != lume_common_symbols.s_freqs) return false;
        parameters.crossoverFrequencyLow = atom_getfloat(&atoms[1]);
        parameters.crossoverFrequencyHigh = atom_getfloat(&atoms[2]);
        return true;
    }
    if (!CheckAtomsFormat("sn", atoms, count) || atom_getsym(atoms) != lume_common_symbols.s_gain) return false;
    parameters.gain = atom_getfloat(&atoms[1]);
    return true;
}

void post_hlshelf_parameters(t_object* x, Lume::HLShelfParameters const& parameters, char const* prefix) {
    const float values[] = {parameters.gain,     parameters.gainLow, parameters.gainMed,
                            parameters.gainHigh, parameters.freqLow, parameters.freqHigh};
    orvanmax::post_float_array(x, values, 6, prefix);
}
