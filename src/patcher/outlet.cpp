#include "patcher/outlet.h"

#include <cstring>

#include "patcher/box.h"
#include "patcher/object.h"
#include "patcher/symbol.h"

namespace max {

void* outlet_new(void* x, char const* type) {
    ObjectState& state = *static_cast<t_object*>(x)->o_state;
    const bool signal = type != nullptr && std::strcmp(type, "signal") == 0;
    state.outlets.push_back(
        std::make_unique<t_outlet>(t_outlet{state.box, static_cast<long>(state.outlets.size()), signal}));
    return state.outlets.back().get();
}

void* outlet_list(void* outlet, t_symbol* selector, short count, t_atom* atoms) {
    return outlet_anything(outlet, selector != nullptr ? selector : gensym("list"), count, atoms);
}

void* outlet_anything(void* outlet, t_symbol* selector, short count, t_atom* atoms) {
    auto const* const from = static_cast<t_outlet*>(outlet);
    if (from == nullptr) return nullptr;
    if (from->box != nullptr) from->box->Sent(from->index, selector, {atoms, atoms + count});
    return outlet;
}

}  // namespace max
