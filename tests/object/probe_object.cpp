#include "object/probe_object.h"

#include "object/attribute_actions.h"
#include "object/console_lines.h"
#include "object/jpatcher_syms.h"
#include "object/object_state.h"
#include "object/orvanmax_common_symbols.h"
#include "object/xml_reference.h"
#include "patcher/host.h"

namespace {

t_class* probeClass;

void* NewProbe(t_symbol*, short count, t_atom* atoms) {
    auto* const x = static_cast<Probe*>(object_alloc(probeClass));
    attr_dictionary_process(x, object_dictionaryarg(count, atoms));
    x->outlet = outlet_new(x, nullptr);
    max::object_obex_store(x, gensym("dumpout"), static_cast<t_object*>(x->outlet));
    return x;
}

t_max_err SetLogged(Probe* x, t_attr* attribute, long count, t_atom* atoms) {
    std::string text;
    orvanmax::atomarray2string(count, atoms, text);
    probeJournal += std::string(attribute->name->s_name) + " " + text;
    if (attribute->name == gensym("level")) {
        x->level = atom_getfloat(atoms);
    } else {
        for (long i = 0; i < 2 && i < count; ++i) x->gains[i] = atom_getfloat(&atoms[i]);
    }
    return MAX_ERR_NONE;
}

template <class Function>
method Method(Function* function) {
    return reinterpret_cast<method>(function);
}

void Nothing(Probe*) {}

}  // namespace

void RegisterProbe() {
    if (probeClass != nullptr) return;
    orvanmax_common_symbols_init();
    jpatcher_syms_init();
    auto const& type = *common_symbols_init();
    t_class* const c = class_new("probe~", Method(NewProbe), nullptr, sizeof(Probe), nullptr, A_GIMME, 0);
    c->c_flags |= CLASS_FLAG_NEWDICTIONARY;
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
    class_addmethod(c, Method(Nothing), "dblclick", 0);
    class_addmethod(c, Method(Nothing), "(bang)", 0);
    class_addmethod(c, Method(Nothing), "clear", 0);
    c->c_messages.push_back({nullptr, Method(Nothing), {}});

    const auto scalar = [c](char const* name, t_symbol* t, long flags, long offset, method set = nullptr) {
        class_addattr(c, attr_offset_new(name, t, flags, nullptr, set, offset));
    };
    const auto say = [c, &type](char const* name, char const* word, char const* text, bool isSymbol = false) {
        class_attr_addattr_parse(c, name, word, isSymbol ? type.s_symbol : type.s_atom, 0, text);
    };
    scalar("classdescription", type.s_symbol, 0x300, calcoffset(Probe, classdescription));
    say("classdescription", "label", "A probe", true);
    say("classdescription", "invisible", "1");
    scalar("externalversion", type.s_symbol, 0x300, calcoffset(Probe, externalversion));
    say("externalversion", "label", "1.2.3", true);
    say("externalversion", "invisible", "1");
    scalar("mute", type.s_long, 0, calcoffset(Probe, mute));
    scalar("bypass", type.s_long, 0, calcoffset(Probe, bypass));
    scalar("level", type.s_float32, 0, calcoffset(Probe, level), Method(SetLogged));
    attr_addfilter_clip(max::class_attr_get(c, gensym("level")), -6.0, 6.0, 1, 1);
    say("level", "default", "1.5");
    say("level", "minvalue", "-6.000000");
    say("level", "maxvalue", "6");
    say("level", "units", "dB", true);
    say("level", "label", "how loud", true);
    say("level", "category", "sound", true);
    say("level", "description", "turns it up", true);
    class_addattr(c, attr_offset_array_new("gains", type.s_float32, 2, 0, nullptr, Method(SetLogged), 0,
                                           calcoffset(Probe, gains)));
    say("gains", "default", "0.25 -2.");
    scalar("mode", type.s_symbol, 0, calcoffset(Probe, mode));
    say("mode", "default", "soft", true);
    say("mode", "enumvals", "soft hard 3");
    class_addattr(c, attr_offset_array_new("table", type.s_float32, 4, 0, nullptr, nullptr,
                                           calcoffset(Probe, tableCount), calcoffset(Probe, table)));
    class_addattr(c, attr_offset_array_new("void", type.s_float32, 2, 0, nullptr, nullptr, calcoffset(Probe, voidCount),
                                           calcoffset(Probe, nothing)));
    scalar("seed", type.s_long, 0, calcoffset(Probe, seed));
    say("seed", "default", "6");
    say("seed", "dontreset", "1");
    scalar("invisible", type.s_float32, 0, calcoffset(Probe, other));
    say("invisible", "invisible", "1");
    scalar("hush", type.s_float32, 0, calcoffset(Probe, other));
    say("hush", "invisible", "1.");
    say("hush", "dontreset", "word");
    say("hush", "default", "3");
    scalar("varname", type.s_float32, 0, calcoffset(Probe, other));
    for (const long flag : {1L, 2L, 0x100L, 0x200L})
        scalar(("opaque" + std::to_string(flag)).c_str(), type.s_float32, flag, calcoffset(Probe, other));
    class_register(type.s_box, c);
    max::Host::Get().SetConsole(nullptr);  // lines that belong to no box
    probeClass = c;
}
