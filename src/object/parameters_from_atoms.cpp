#include "object/parameters_from_atoms.h"

#include <algorithm>
#include <cmath>

#include "object/atom_format.h"
#include "object/console_lines.h"
#include "object/lume_common_symbols.h"
#include "object/orvanmax_common_symbols.h"

using orvanmax::CheckAtomsFormat;

namespace {

using P = Lume::LumeDefaultParameters;

/// Written with max first, in an order that turns what isn't a number into the minimum.
float Clip(float value, float minimum, float maximum) {
    return std::min(std::max(minimum, value), maximum);
}

float ClipGlobalGain(float gainDb) {
    return Clip(gainDb, P::MinHLShelfGlobalGaindB, P::MaxHLShelfGlobalGaindB);
}

float ClipGain(float gainDb) {
    return Clip(gainDb, P::MinHLShelfGaindB, P::MaxHLShelfGaindB);
}

float ClipFrequency(float frequencyHz) {
    return Clip(frequencyHz, P::MinHLShelfFrequency, P::MaxHLShelfFrequency);
}

/// One member of a shelf by its word.
bool ReadMember(Lume::HLShelfParameters& p, t_symbol const* word, float value) {
    LumeCommonSymbols const& s = lume_common_symbols;
    const bool linear = word == s.s_g0 || word == s.s_gl || word == s.s_gm || word == s.s_gh;
    if (linear) {
        if (!(value > 0.0f)) return false;
        value = 10.0f * std::log10(value);
    }
    if (word == s.s_G0 || word == s.s_g0) {
        p.gain = ClipGlobalGain(value);
    } else if (word == s.s_Gl || word == s.s_gl) {
        p.gainLow = ClipGain(value);
    } else if (word == s.s_Gm || word == s.s_gm) {
        p.gainMed = ClipGain(value);
    } else if (word == s.s_Gh || word == s.s_gh) {
        p.gainHigh = ClipGain(value);
    } else if (word == s.s_fl) {
        p.freqLow = ClipFrequency(value);
    } else if (word == s.s_fh) {
        p.freqHigh = ClipFrequency(value);
    } else {
        return false;
    }
    return true;
}

void ReadGains(Lume::HLShelfParameters& p, t_atom const* atoms) {
    p.gain = ClipGlobalGain(atom_getfloat(&atoms[0]));
    p.gainLow = ClipGain(atom_getfloat(&atoms[1]));
    p.gainMed = ClipGain(atom_getfloat(&atoms[2]));
    p.gainHigh = ClipGain(atom_getfloat(&atoms[3]));
}

void ReadFrequencies(Lume::HLShelfParameters& p, t_atom const* atoms) {
    p.freqLow = ClipFrequency(atom_getfloat(&atoms[0]));
    p.freqHigh = ClipFrequency(atom_getfloat(&atoms[1]));
}

}  // namespace

void ClipHLShelfParameters(Lume::HLShelfParameters& p) {
    p.gain = ClipGlobalGain(p.gain);
    p.gainLow = ClipGain(p.gainLow);
    p.gainMed = ClipGain(p.gainMed);
    p.gainHigh = ClipGain(p.gainHigh);
    p.freqLow = ClipFrequency(p.freqLow);
    p.freqHigh = ClipFrequency(p.freqHigh);
}

bool atoms2hlshelf(float& G0, float& Gl, float& Gm, float& Gh, float& fl, float& fh, long count, t_atom const* atoms) {
    Lume::HLShelfParameters p{G0, Gl, Gm, Gh, fl, fh};
    const bool worded = CheckAtomsFormat("s", atoms, count);
    t_symbol const* const word = worded ? atom_getsym(atoms) : nullptr;
    LumeCommonSymbols const& s = lume_common_symbols;
    if (CheckAtomsFormat("snnnnnn", atoms, count) && (word == s.s_hlshelf || word == s.s_params)) {
        ReadGains(p, &atoms[1]);
        ReadFrequencies(p, &atoms[5]);
    } else if (CheckAtomsFormat("nnnnnn", atoms, count)) {
        ReadGains(p, atoms);
        ReadFrequencies(p, &atoms[4]);
    } else if (CheckAtomsFormat("snnnn", atoms, count) && word == orvanmax_common_symbols.s_gains) {
        ReadGains(p, &atoms[1]);
    } else if (CheckAtomsFormat("snn", atoms, count) && word == s.s_freqs) {
        ReadFrequencies(p, &atoms[1]);
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
