#include "object/orvanverb_class.h"

#include <string>

#include "object/attribute_actions.h"
#include "object/class_attribute.h"
#include "object/jpatcher_syms.h"
#include "object/lume_common_symbols.h"
#include "object/object_state.h"
#include "object/orvanmax_common_symbols.h"
#include "object/orvanverb.h"
#include "object/orvanverb_attributes.h"
#include "object/orvanverb_messages.h"
#include "object/orvanverb_table.h"
#include "object/version.h"
#include "object/xml_reference.h"

t_class* orvanverb_class = nullptr;

namespace {

using orvanmax::ClassAttribute;
using orvanverb::Attribute;
using orvanverb::Setting;

template <class Function>
method Method(Function* function) {
    return reinterpret_cast<method>(function);
}

/// Opaque to the user for setting and reading.
constexpr long readOnly = 0x300;

/// Sizes of the object; positions are those of sources or of loudspeakers.
constexpr long defaultNumPositions = 6, defaultNumInternals = 8;
constexpr float minInternals = 2.0f, maxInternals = 16.0f;

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

ClassAttribute MakeValue(t_class* c, Attribute const& a, t_symbol* type) {
    return {c, a.name, type, a.offset, Method(orvanverb_set_attr)};
}

/// A list whose length stands in the record, or is always all that it has room for (0).
ClassAttribute MakeList(t_class* c, Attribute const& a, long size, long offsetCount) {
    return {c, a.name, size, offsetCount, a.offset, Method(orvanverb_set_attr)};
}

ClassAttribute MakeSize(t_class* c, Attribute const& a) {
    const bool internals = a.offset == calcoffset(orvanverb_t, numinternals);
    return MakeValue(c, a, common_symbols_init()->s_long)
        .Default(internals ? defaultNumInternals : defaultNumPositions)
        .Range(internals ? minInternals : 1.0f, internals ? maxInternals : orvanverb_t::MaxPositions)
        .DontReset();
}

/// Without a filter of the host: its setter clips, and knows words.
ClassAttribute MakeShelf(t_class* c, Attribute const& a) {
    Lume::RoomControl const* const controls = orvanverb::ControlsOf(a);
    std::string standard;
    for (unsigned int i = 0; i < orvanverb_t::NumShelfValues; ++i)
        standard.append(std::to_string(controls[i].standard)).append(" ");
    return MakeList(c, a, orvanverb_t::NumShelfValues, 0).DefaultText(standard.c_str());
}

ClassAttribute MakeNumber(t_class* c, Attribute const& a) {
    Lume::RoomControl const& control = *orvanverb::ControlsOf(a);
    if (control.scale == Lume::Scale::onOff)
        return MakeValue(c, a, common_symbols_init()->s_long)
            .Default(static_cast<long>(control.standard))
            .Range(control.least, control.greatest)
            .Style("onoff");
    ClassAttribute attribute = MakeValue(c, a, common_symbols_init()->s_float32);
    attribute.Default(control.standard);
    return a.saysRange ? attribute.Range(control.least, control.greatest)
                       : attribute.Clip(control.least, control.greatest);
}

ClassAttribute Make(t_class* c, Attribute const& a) {
    switch (a.setting) {
        case Setting::size:
            return MakeSize(c, a);
        case Setting::sources:
            return MakeList(c, a, 3 * orvanverb_t::MaxPositions, calcoffset(orvanverb_t, sourcespositions_count));
        case Setting::speakers:
            return MakeList(c, a, 3 * orvanverb_t::MaxPositions, calcoffset(orvanverb_t, speakerspositions_count));
        case Setting::delays:
            return MakeList(c, a, orvanverb_t::MaxDelays, calcoffset(orvanverb_t, numinternals));
        case Setting::shelf:
            return MakeShelf(c, a);
        case Setting::late:
        case Setting::time:
            break;
    }
    return MakeNumber(c, a);
}

void AddAttributes(t_class* c) {
    for (Attribute const& a : orvanverb::attributes) {
        ClassAttribute attribute = Make(c, a);
        attribute.Label(a.label != nullptr ? a.label : orvanverb::ControlsOf(a)->label);
        if (*a.units != '\0') attribute.Units(a.units);
        if (*a.category != '\0') attribute.Category(a.category);
    }
    for (Attribute const& a : orvanverb::attributes)
        if (a.order != 0)
            class_attr_addattr_parse(c, a.name, "order", common_symbols_init()->s_long, 0,
                                     std::to_string(a.order).c_str());
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
    AddAttributes(c);
    class_dspinit(c);
    class_register(common_symbols_init()->s_box, c);
    orvanverb_class = c;
}
