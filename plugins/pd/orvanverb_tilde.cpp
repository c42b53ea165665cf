/// The external orvanverb~ for Pd: its class and what Pd calls of it. No exception leaves it.

#include <cstddef>
#include <exception>
#include <memory>
#include <span>

#include "patcher/host.h"
#include "pd/pd_api.h"
#include "pd/pd_room.h"

namespace {

/// The record of one box, zero-filled by Pd.
struct t_orvanverb_tilde {
    t_object object;
    t_float signal;    // of the first inlet while nothing is connected to it
    pd::PdRoom* room;  // owned; null until it is made
};

t_class* theClass = nullptr;

template <class Function>
bool Guarded(t_orvanverb_tilde* x, Function function) {
    try {
        function();
        return true;
    } catch (std::exception const& exception) {
        pd_error(x, "orvanverb~: %s", exception.what());
        return false;
    }
}

std::span<t_atom const> Atoms(int count, t_atom const* atoms) {
    return {atoms, static_cast<std::size_t>(count)};
}

void* New(t_symbol*, int count, t_atom* atoms) {
    auto* const x = reinterpret_cast<t_orvanverb_tilde*>(pd_new(theClass));
    Guarded(x, [&] { x->room = new pd::PdRoom(&x->object, Atoms(count, atoms)); });
    if (x->room != nullptr && x->room->IsMade()) return x;
    pd_free(&x->object.ob_pd);
    return nullptr;
}

void Free(t_orvanverb_tilde* x) {
    delete x->room;
}

void Message(t_orvanverb_tilde* x, t_symbol* selector, int count, t_atom* atoms) {
    Guarded(x, [&] { x->room->Message(selector, Atoms(count, atoms)); });
}

void Dsp(t_orvanverb_tilde* x, t_signal** signals) {
    Guarded(x, [&] { x->room->Dsp(signals); });
}

void Save(t_gobj* x, t_binbuf* file) {
    auto* const box = reinterpret_cast<t_orvanverb_tilde*>(x);
    Guarded(box, [&] { box->room->Save(file); });
}

/// Pd stores functions of all shapes as one, and knows their shapes.
template <class Function>
t_method Method(Function* function) {
    return reinterpret_cast<t_method>(function);
}

/// Lines that no box takes.
void Post(max::ConsoleLevel level, std::string const& text) {
    post("orvanverb~: %s: %s", max::ConsoleLevelName(level), text.c_str());
}

}  // namespace

/// What Pd calls when it loads the file.
extern "C" __attribute__((visibility("default"))) void orvanverb_tilde_setup() {
    max::Host::Get().SetConsole(Post);
    theClass = class_new(gensym("orvanverb~"), reinterpret_cast<t_newmethod>(Method(New)), Method(Free),
                         sizeof(t_orvanverb_tilde),
                         pd::FindSetChannels() != nullptr ? pd::classMultichannel : CLASS_DEFAULT, A_GIMME, A_NULL);
    class_domainsignalin(theClass, offsetof(t_orvanverb_tilde, signal));
    class_addmethod(theClass, Method(Dsp), gensym("dsp"), A_CANT, A_NULL);
    class_addanything(theClass, Method(Message));
    class_setsavefn(theClass, Save);
}
