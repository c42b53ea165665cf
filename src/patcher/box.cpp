#include "patcher/box.h"

#include <algorithm>

#include "patcher/atom.h"
#include "patcher/attribute.h"
#include "patcher/binbuf.h"
#include "patcher/call.h"
#include "patcher/class.h"
#include "patcher/dictionary.h"
#include "patcher/host.h"
#include "patcher/memory.h"
#include "patcher/object.h"
#include "patcher/symbol.h"

namespace max {

/// While one stands, the box is the one at work.
class Box::Work {
public:
    explicit Work(Box* box) : before(Host::Get().SetActiveBox(box)) {}
    ~Work() { Host::Get().SetActiveBox(before); }
    Work(Work const&) = delete;
    Work& operator=(Work const&) = delete;

private:
    Box* before;
};

Box::Box(std::string_view text, BoxListener boxListener) : Box(ParseAtoms(text), std::move(boxListener)) {}

Box::Box(std::vector<t_atom> words, BoxListener boxListener)
    : listener(std::move(boxListener)), boxObject{nullptr, new ObjectState} {
    boxObject.o_state->box = this;
    const Work work(this);
    Create(std::move(words));
}

void Box::Create(std::vector<t_atom> atoms) {
    t_symbol* const name = atoms.empty() ? gensym("") : atom_getsym(&atoms.front());
    t_class const* const c = class_findbyname(common_symbols_init()->s_box, name);
    if (c == nullptr) {
        Host::Get().Console(ConsoleLevel::error, std::string(name->s_name) + ": no such object", this);
        return;
    }
    atoms.erase(atoms.begin());
    t_dictionary dictionary;
    if ((c->c_flags & CLASS_FLAG_NEWDICTIONARY) != 0) {
        MoveAttributes(atoms, dictionary);
        atom_setobj(&atoms.emplace_back(), &dictionary);
    }
    t_symbol* const place = gensym("#B");
    void* const outer = std::exchange(place->s_thing, &boxObject);
    object = static_cast<t_object*>(Call<void*>(c->c_new, name, static_cast<long>(atoms.size()), atoms.data()));
    place->s_thing = outer;
    if (object == nullptr && allocated != nullptr) DiscardObject(allocated);
    allocated = nullptr;
}

Box::~Box() {
    const Work work(this);
    if (object != nullptr) object_free(object);
    delete boxObject.o_state;
}

long Box::NumSignalInlets() const {
    return object != nullptr ? object->o_state->numInlets : 0;
}

long Box::NumSignalOutlets() const {
    if (object == nullptr) return 0;
    auto const& outlets = object->o_state->outlets;
    return std::count_if(outlets.begin(), outlets.end(), [](auto const& outlet) { return outlet->signal; });
}

bool Box::Send(std::string_view text) {
    std::vector<t_atom> atoms = ParseAtoms(text);
    if (atoms.empty()) return true;
    if (atoms.front().a_type == A_SYM) {
        t_symbol* const selector = atoms.front().a_w.w_sym;
        atoms.erase(atoms.begin());
        return Send(selector, std::move(atoms));
    }
    char const* const selector = atoms.size() > 1 ? "list" : atoms.front().a_type == A_LONG ? "int" : "float";
    return Send(gensym(selector), std::move(atoms));
}

bool Box::Send(t_symbol* selector, std::vector<t_atom> atoms) {
    if (object == nullptr) return false;
    const Work work(this);
    auto const& messages = object->o_class->c_messages;
    const auto message = std::find_if(messages.begin(), messages.end(), [selector](auto const& candidate) {
        return candidate.m_sym == selector && (candidate.m_type.empty() || candidate.m_type.front() != A_CANT);
    });
    if (message != messages.end()) {
        if (message->m_type.empty()) {
            Call<void>(message->m_fun, static_cast<void*>(object));
        } else {
            Call<void>(message->m_fun, static_cast<void*>(object), selector, static_cast<long>(atoms.size()),
                       atoms.data());
        }
        return true;
    }
    auto const* const attribute = static_cast<t_attr*>(object_attr_get(object, selector));
    if (attribute != nullptr && (attribute->flags & (ATTR_SET_OPAQUE_USER | ATTR_SET_OPAQUE)) == 0) {
        object_attr_setvalueof(object, selector, static_cast<long>(atoms.size()), atoms.data());
        return true;
    }
    object_error(object, "%s: doesn't understand \"%s\"", object->o_class->c_sym->s_name, selector->s_name);
    return false;
}

std::optional<std::vector<t_atom>> Box::GetAttribute(char const* name) {
    if (object == nullptr) return std::nullopt;
    const Work work(this);
    long count = 0;
    t_atom* atoms = nullptr;
    if (object_attr_getvalueof(object, gensym(name), &count, &atoms) != MAX_ERR_NONE) return std::nullopt;
    std::vector<t_atom> value(atoms, atoms + count);
    sysmem_freeptr(atoms);
    return value;
}

/// The function of a message that only the host sends, or null.
method Box::HostMessage(char const* name) const {
    if (object == nullptr) return nullptr;
    auto const& messages = object->o_class->c_messages;
    const auto found = std::find_if(messages.begin(), messages.end(),
                                    [symbol = gensym(name)](auto const& message) { return message.m_sym == symbol; });
    return found != messages.end() ? found->m_fun : nullptr;
}

std::string Box::Assist(long direction, unsigned long index) {
    const Work work(this);
    char text[512] = "";  // as large as the API's is
    if (method const assist = HostMessage("assist"))
        Call<void>(assist, static_cast<void*>(object), static_cast<void*>(&boxObject), direction, index,
                   static_cast<char*>(text));
    return text;
}

std::vector<t_atom> Box::GetState() {
    const Work work(this);
    long count = 0;
    t_atom* atoms = nullptr;
    if (method const getvalueof = HostMessage("getvalueof"))
        Call<t_max_err>(getvalueof, static_cast<void*>(object), &count, &atoms);
    std::vector<t_atom> state(atoms, atoms + count);
    sysmem_freeptr(atoms);
    return state;
}

t_max_err Box::SetState(std::vector<t_atom> atoms) {
    const Work work(this);
    method const setvalueof = HostMessage("setvalueof");
    if (setvalueof == nullptr) return MAX_ERR_GENERIC;
    return Call<t_max_err>(setvalueof, static_cast<void*>(object), static_cast<long>(atoms.size()), atoms.data());
}

std::vector<t_atom> Box::StorePreset() {
    t_binbuf store;
    t_symbol* const place = gensym("_preset");
    void* const outer = std::exchange(place->s_thing, &store);
    Send(gensym("preset"), {});
    place->s_thing = outer;
    return store.records.empty() ? std::vector<t_atom>() : store.records.front();
}

bool Box::RecallPreset(std::vector<t_atom> const& record) {
    if (record.size() < 3 || atom_getobj(record.data()) != object || record[2].a_type != A_SYM) {
        Host::Get().Console(ConsoleLevel::error, "no preset of this object", this);
        return false;
    }
    return Send(record[2].a_w.w_sym, {record.begin() + 3, record.end()});
}

void Box::StartAudio(float sampleRate, long newVectorSize) {
    StopAudio();
    method const dsp = HostMessage("dsp");
    if (dsp == nullptr || newVectorSize < 1) return;
    const Work work(this);
    vectorSize = newVectorSize;
    const auto numSignals = static_cast<std::size_t>(NumSignalInlets() + NumSignalOutlets());
    const auto length = static_cast<std::size_t>(vectorSize);
    // Every signal has memory of its own, so that objects that can't work in place never have to.
    samples.assign(numSignals * length, 0.0f);
    signals.clear();
    std::vector<t_signal*> pointers;
    for (std::size_t i = 0; i < numSignals; ++i) signals.push_back({vectorSize, &samples[i * length], sampleRate});
    std::transform(signals.begin(), signals.end(), std::back_inserter(pointers), [](t_signal& s) { return &s; });
    std::vector<short> connected(numSignals, 1);
    Call<void>(dsp, static_cast<void*>(object), pointers.data(), connected.data());
    chain.push_back(0);
}

void Box::StopAudio() {
    chain.clear();
    vectorSize = 0;
}

void Box::Process(float const* const* inputs, float* const* outputs) {
    if (chain.empty()) return;
    const auto numInlets = static_cast<std::size_t>(object->o_state->numInlets);
    for (std::size_t i = 0; i < numInlets; ++i) std::copy_n(inputs[i], vectorSize, signals[i].s_vec);
    for (t_int* word = chain.data(); *word != 0;)
        word = reinterpret_cast<t_perfroutine>(*word)(word);  // NOLINT(performance-no-int-to-ptr): words are pointers
    for (std::size_t i = numInlets; i < signals.size(); ++i)
        std::copy_n(signals[i].s_vec, vectorSize, outputs[i - numInlets]);
}

void Box::Enable(bool enable) {
    if (object != nullptr && object->o_class->c_dsp) reinterpret_cast<t_pxobject*>(object)->z_disabled = enable ? 0 : 1;
}

bool Box::Console(ConsoleLevel level, std::string const& text) const {
    if (listener.console) listener.console(level, text);
    return static_cast<bool>(listener.console);
}

void Box::Notified(t_symbol* what) const {
    if (listener.notification) listener.notification(what);
}

void Box::Sent(long outlet, t_symbol* selector, std::vector<t_atom> const& atoms) const {
    if (listener.output) listener.output(outlet, selector, atoms);
}

}  // namespace max
