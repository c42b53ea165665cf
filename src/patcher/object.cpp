#include "patcher/object.h"

#include <algorithm>

#include "patcher/box.h"
#include "patcher/call.h"
#include "patcher/class.h"
#include "patcher/host.h"
#include "patcher/memory.h"

namespace max {

void* object_alloc(t_class* c) {
    auto* const x = static_cast<t_object*>(sysmem_newptrclear(c->c_size));
    if (x == nullptr) return nullptr;
    x->o_class = c;
    x->o_state = new ObjectState;
    x->o_state->box = Host::Get().ActiveBox();
    if (x->o_state->box != nullptr) x->o_state->box->Allocated(x);
    return x;
}

t_max_err object_free(void* x) {
    if (x == nullptr) return MAX_ERR_INVALID_PTR;
    auto* const object = static_cast<t_object*>(x);
    if (object->o_class->c_free != nullptr) Call<void>(object->o_class->c_free, x);
    DiscardObject(object);
    return MAX_ERR_NONE;
}

void DiscardObject(t_object* x) {
    delete x->o_state;
    sysmem_freeptr(x);
}

t_class* object_class(void* x) {
    return x != nullptr ? static_cast<t_object*>(x)->o_class : nullptr;
}

t_symbol* object_classname(void* x) {
    t_class* const c = object_class(x);
    return c != nullptr ? c->c_sym : nullptr;
}

t_max_err object_notify(void* x, t_symbol* what, void*) {
    if (x == nullptr) return MAX_ERR_INVALID_PTR;
    auto* const object = static_cast<t_object*>(x);
    if (object->o_class == nullptr && object->o_state != nullptr) object->o_state->box->Notified(what);
    return MAX_ERR_NONE;
}

t_max_err object_obex_store(void* x, t_symbol* key, t_object* value) {
    if (x == nullptr) return MAX_ERR_INVALID_PTR;
    static_cast<t_object*>(x)->o_state->extras.emplace_back(key, value);
    return MAX_ERR_NONE;
}

t_max_err object_obex_lookup(void* x, t_symbol* key, t_object** value) {
    if (x == nullptr || value == nullptr) return MAX_ERR_INVALID_PTR;
    auto const& extras = static_cast<t_object*>(x)->o_state->extras;
    const auto found =
        std::find_if(extras.begin(), extras.end(), [key](auto const& extra) { return extra.first == key; });
    if (found == extras.end()) return MAX_ERR_GENERIC;
    *value = static_cast<t_object*>(found->second);
    return MAX_ERR_NONE;
}

}  // namespace max
