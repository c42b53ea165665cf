#include "object/orvanverb_class.h"

#include <string>
#include <utility>

#include "object/attribute_actions.h"
#include "object/class_attribute.h"
#include "object/jpatcher_syms.h"
#include "object/lume_common_symbols.h"
#include "object/object_state.h"
#include "object/orvanmax_common_symbols.h"
#include "object/orvanverb.h"
#include "object/orvanverb_attributes.h"
#include "object/orvanverb_messages.h"
#include "object/version.h"
#include "object/xml_reference.h"
#include "parameters/lume_default_parameters.h"

t_class* orvanverb_class = nullptr;

namespace {

using P = Lume::LumeDefaultParameters;
using orvanmax::ClassAttribute;

template <class Function>
method Method(Function* function) {
    return reinterpret_cast<method>(function);
}

/// Opaque to the user for setting and reading.
constexpr long readOnly = 0x300;

/// Sizes of the object.
constexpr long defaultNumSources = 6, defaultNumSpeakers = 6, defaultNumInternals = 8;
constexpr float minInternals = 2.0f, maxInternals = 16.0f;

/// Flat, with the crossovers of a scene and not those of a single shelf.
constexpr char const* defaultShelf = "0. 0. 0. 0. 177. 5657.";

void AddMessages(t_class* c) {
    class_addmethod(c, Method(orvanmax::generatexml), "generatexml", 0);
    class_addmethod(c, Method(orvanmax::postversion), "version", 0);
    class_addmethod(c, Method(orvanmax::postattributes), "postattributes", A_GIMME, 0);
    class_addmethod(c, Method(orvanmax::orvanmax_getvalueof), "getvalueof", A_CANT, 0);
    class_addmethod(c, Method(orvanmax::orvanmax_setvalueof), "setvalueof", A_CANT, 0);
    class_addmethod(c, Method(orvanmax::orvanmax_preset), "preset", 0);
    class_addmethod(c, Method(orvanmax::orvanmax_recallpreset), "recallpreset", A_GIMME, 0);
    class_addmethod(c, Method(orvanmax::dump), "dump", A_GIMME, 0);
    class_addmethod(c, Method(orvanmax::reset), "reset", A_GIMME, 0);
    class_addmethod(c, Method(orvanmax::postdspstatus), "postdspstatus", 0);
    class_addmethod(c, Method(orvanverb_dsp), "dsp", A_CANT, 0);
    class_addmethod(c, Method(orvanverb_assist), "assist", A_CANT, 0);
    class_addmethod(c, Method(orvanverb_clear), "clear", 0);
    class_addmethod(c, Method(orvanverb_reverb), "reverb", A_GIMME, 0);
    class_addmethod(c, Method(orvanverb_source), "source", A_GIMME, 0);
    class_addmethod(c, Method(orvanverb_loudspeakers), "loudspeakers", A_GIMME, 0);
    class_addmethod(c, Method(orvanverb_loudspeakers), "speakers", A_GIMME, 0);
    class_addmethod(c, Method(orvanverb_loudspeaker), "speaker", A_GIMME, 0);
    class_addmethod(c, Method(orvanverb_loudspeaker), "loudspeaker", A_GIMME, 0);
}

/// The texts of these two are their labels; the fields stay empty.
void AddDocumentation(t_class* c) {
    t_symbol* const symbol = common_symbols_init()->s_symbol;
    ClassAttribute(c, "classdescription", symbol, calcoffset(orvanverb_t, classdescription), nullptr, readOnly)
        .Label("Room reverberator")
        .Category("documentation")
        .Invisible();
    ClassAttribute(c, "externalversion", symbol, calcoffset(orvanverb_t, externalversion), nullptr, readOnly)
        .Label(orvanverb_version().c_str())
        .Category("documentation")
        .Invisible();
}

/// The host's own setter writes these: the audio callback reads the fields.
void AddSwitches(t_class* c) {
    t_symbol* const type = common_symbols_init()->s_long;
    ClassAttribute(c, "mute", type, calcoffset(orvanverb_t, mute), nullptr)
        .Default(0L)
        .Range(0.0f, 1.0f)
        .Style("onoff")
        .Label("mute dsp")
        .Category("options")
        .Description("enables/disables signal processing. ensures zero signals out when muted");
    ClassAttribute(c, "bypass", type, calcoffset(orvanverb_t, bypass), nullptr)
        .Default(0L)
        .Range(0.0f, 1.0f)
        .Style("onoff")
        .Label("bypass dsp")
        .Category("options")
        .Description("bypasses signal processing. behavior depends on the number of inlets/outlets");
}

void AddSizes(t_class* c) {
    t_symbol* const type = common_symbols_init()->s_long;
    method const setter = Method(orvanverb_set_attr);
    ClassAttribute(c, "numsources", type, calcoffset(orvanverb_t, numsources), setter)
        .Default(defaultNumSources)
        .Range(1.0f, orvanverb_t::MaxPositions)
        .Label("number of sources")
        .DontReset();
    ClassAttribute(c, "numspeakers", type, calcoffset(orvanverb_t, numspeakers), setter)
        .Default(defaultNumSpeakers)
        .Range(1.0f, orvanverb_t::MaxPositions)
        .Label("number of speakers")
        .DontReset();
    ClassAttribute(c, "numinternals", type, calcoffset(orvanverb_t, numinternals), setter)
        .Default(defaultNumInternals)
        .Range(minInternals, maxInternals)
        .Label("number of internal channels")
        .DontReset();
}

void AddPositions(t_class* c) {
    ClassAttribute(c, "sourcespositions", 3 * orvanverb_t::MaxPositions,
                   calcoffset(orvanverb_t, sourcespositions_count), calcoffset(orvanverb_t, sourcespositions),
                   Method(orvanverb_set_attr))
        .Units("xyz")
        .Label("sources positions");
    ClassAttribute(c, "speakerspositions", 3 * orvanverb_t::MaxPositions,
                   calcoffset(orvanverb_t, speakerspositions_count), calcoffset(orvanverb_t, speakerspositions),
                   Method(orvanverb_set_attr))
        .Units("xyz")
        .Label("speakers positions");
}

ClassAttribute AddFloat(t_class* c, char const* name, long offset) {
    return {c, name, common_symbols_init()->s_float32, offset, Method(orvanverb_set_attr)};
}

ClassAttribute AddReverbSwitch(t_class* c, char const* name, long offset) {
    return ClassAttribute(c, name, common_symbols_init()->s_long, offset, Method(orvanverb_set_attr))
        .Default(0L)
        .Range(0.0f, 1.0f)
        .Style("onoff")
        .Category("reverb");
}

void AddLateField(t_class* c) {
    AddFloat(c, "gain", calcoffset(orvanverb_t, gain))
        .Default(P::DefaultReverbGain)
        .Range(P::MinHLShelfGaindB, P::MaxHLShelfGaindB)
        .Units("dB")
        .Label("late reverberation gain")
        .Category("reverb");
    AddFloat(c, "modaldensity", calcoffset(orvanverb_t, modaldensity))
        .Default(P::DefaultReverbModalDensity)
        .Range(P::MinReverbModalDensity, P::MaxReverbModalDensity)
        .Label("modal density")
        .Category("reverb");
    AddFloat(c, "tr0", calcoffset(orvanverb_t, tr0))
        .Default(P::DefaultDecayTime)
        .Range(P::MinDecayTime, P::MaxDecayTime)
        .Units("sec")
        .Label("global decay time")
        .Category("reverb");
    AddFloat(c, "trl", calcoffset(orvanverb_t, trl))
        .Default(P::DefaultRelativeDecayLow)
        .Range(P::MinDecayTimeLow, P::MaxDecayTimeLow)
        .Label("relative decay time at low freq")
        .Category("reverb");
    AddFloat(c, "trm", calcoffset(orvanverb_t, trm))
        .Default(P::DefaultRelativeDecayMedium)
        .Range(P::MinDecayTimeMed, P::MaxDecayTimeMed)
        .Label("relative decay time at med freq")
        .Category("reverb");
    AddFloat(c, "trh", calcoffset(orvanverb_t, trh))
        .Default(P::DefaultRelativeDecayHigh)
        .Range(P::MinDecayTimeHigh, P::MaxDecayTimeHigh)  // highs never outlast the rest
        .Label("relative decay time at high freq")
        .Category("reverb");
    AddFloat(c, "fl", calcoffset(orvanverb_t, fl))
        .Default(P::DefaultReverbCrossoverFrequencyLow)
        .Range(P::MinHLShelfFrequency, P::MaxHLShelfFrequency)
        .Units("Hz")
        .Label("low/med crossover frequency")
        .Category("reverb");
    AddFloat(c, "fh", calcoffset(orvanverb_t, fh))
        .Default(P::DefaultReverbCrossoverFrequencyHigh)
        .Range(P::MinHLShelfFrequency, P::MaxHLShelfFrequency)
        .Units("Hz")
        .Label("med/high crossover frequency")
        .Category("reverb");
    AddReverbSwitch(c, "air", calcoffset(orvanverb_t, air)).Label("air absorption");
    AddFloat(c, "airfreq", calcoffset(orvanverb_t, airfreq))
        .Default(P::DefaultAirRolloffFrequency)
        .Range(P::MinHLShelfFrequency, P::MaxHLShelfFrequency)
        .Units("Hz")
        .Label("air rolloff frequency")
        .Category("reverb");
    AddReverbSwitch(c, "infinite", calcoffset(orvanverb_t, infinite)).Label("infinite reverb");
    ClassAttribute(c, "delays", orvanverb_t::MaxDelays, calcoffset(orvanverb_t, numinternals),
                   calcoffset(orvanverb_t, delays), Method(orvanverb_set_attr))
        .Units("msec")
        .Label("delays")
        .Category("reverb");
}

/// Four lists without a filter of the host: their setter clips, and knows words.
void AddShelves(t_class* c) {
    const auto add = [c](char const* name, long offset, char const* label) {
        ClassAttribute(c, name, orvanverb_t::NumShelfValues, 0, offset, Method(orvanverb_set_attr))
            .DefaultText(defaultShelf)
            .Label(label)
            .Category("filters");
    };
    add("direct", calcoffset(orvanverb_t, direct), "direct filter parameters");
    add("room", calcoffset(orvanverb_t, room), "room filter parameters");
    add("early", calcoffset(orvanverb_t, early), "early filter parameters");
    add("cluster", calcoffset(orvanverb_t, cluster), "cluster filter parameters");
}

void AddTimeStructure(t_class* c) {
    AddFloat(c, "early_start", calcoffset(orvanverb_t, early_start))
        .Default(P::DefaultEarlyStart)
        .Range(P::MinEarlyStart, P::MaxEarlyStart)
        .Units("msec")
        .Label("early start")
        .Category("structure");
    AddFloat(c, "early_end", calcoffset(orvanverb_t, early_end))
        .Default(P::DefaultEarlyEnd)
        .Range(P::MinEarlyStart, P::MaxEarlyEnd)  // from the smallest start on, on purpose: an end may lie on a start
        .Units("msec")
        .Label("early end")
        .Category("structure");
    AddFloat(c, "early_distr", calcoffset(orvanverb_t, early_distr))
        .Default(P::DefaultEarlyDistr)
        .Range(P::MinDistribution, P::MaxDistribution)
        .Label("early distribution centroid")
        .Category("structure");
    AddFloat(c, "early_width", calcoffset(orvanverb_t, early_width))
        .Default(P::DefaultEarlyWidth)
        .Clip(P::MinEarlyWidth, P::MaxEarlyWidth)  // width and shape are clipped, but tell no range
        .Units("deg")
        .Label("early width")
        .Category("structure");
    AddFloat(c, "early_shape", calcoffset(orvanverb_t, early_shape))
        .Default(P::DefaultEarlyShape)
        .Clip(P::MinEarlyShape, P::MaxEarlyShape)
        .Label("early shape")
        .Category("structure");
    AddFloat(c, "cluster_start", calcoffset(orvanverb_t, cluster_start))
        .Default(P::DefaultClusterStart)
        .Range(P::MinClusterStart, P::MaxClusterStart)
        .Units("msec")
        .Label("cluster start")
        .Category("structure");
    AddFloat(c, "cluster_end", calcoffset(orvanverb_t, cluster_end))
        .Default(P::DefaultClusterEnd)
        .Range(P::MinClusterEnd, P::MaxClusterEnd)
        .Units("msec")
        .Label("cluster end")
        .Category("structure");
    AddFloat(c, "cluster_distr", calcoffset(orvanverb_t, cluster_distr))
        .Default(P::DefaultClusterDistr)
        .Range(P::MinDistribution, P::MaxDistribution)
        .Label("cluster distribution centroid")
        .Category("structure");
    AddFloat(c, "reverb_start", calcoffset(orvanverb_t, reverb_start))
        .Default(P::DefaultReverbStart)
        .Range(P::MinReverbStart, P::MaxReverbStart)
        .Units("msec")
        .Label("reverb start")
        .Category("structure");
}

/// The order in which an inspector shows the attributes.
void SetInspectorOrder(t_class* c) {
    constexpr std::pair<char const*, int> orders[] = {
        {"numsources", 1},
        {"numspeakers", 2},
        {"numinternals", 3},
        {"sourcespositions", 4},
        {"speakerspositions", 5},
        {"tr0", 6},
        {"trl", 7},
        {"trm", 8},
        {"trh", 9},
        {"fl", 10},
        {"fh", 11},
        {"air", 12},
        {"airfreq", 13},
        {"infinite", 14},
        {"gain", 15},
        {"delays", 16},
        {"direct", 17},
        {"room", 18},
        {"early", 19},
        {"cluster", 20},
        {"early_start", 21},
        {"early_end", 22},
        {"early_distr", 23},
        {"early_width", 24},
        {"early_shape", 25},
        {"cluster_start", 26},
        {"cluster_end", 27},
        {"cluster_distr", 28},
        {"reverb_distr", 29},  // no attribute bears this name, so that the place stays free
    };
    for (auto const& [name, order] : orders)
        class_attr_addattr_parse(c, name, "order", common_symbols_init()->s_long, 0, std::to_string(order).c_str());
}

}  // namespace

void orvanverb_main() {
    if (orvanverb_class != nullptr) return;
    lume_common_symbols_init();
    orvanmax_common_symbols_init();
    jpatcher_syms_init();

    t_class* const c = class_new("orvanverb~", Method(orvanverb_new), Method(orvanverb_free), sizeof(orvanverb_t),
                                 nullptr, A_GIMME, 0);
    c->c_flags |= CLASS_FLAG_NEWDICTIONARY;
    AddMessages(c);
    AddDocumentation(c);
    AddSwitches(c);
    AddSizes(c);
    AddPositions(c);
    AddLateField(c);
    AddShelves(c);
    AddTimeStructure(c);
    SetInspectorOrder(c);
    class_dspinit(c);
    class_register(common_symbols_init()->s_box, c);
    orvanverb_class = c;
}
