#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "patcher/outlet.h"
#include "patcher/types.h"

namespace max {

/// What the host keeps about one object.
struct ObjectState {
    Box* box = nullptr;  ///< the box in which the object stands, or null
    long numInlets = 0;  ///< signal inlets
    std::vector<std::unique_ptr<t_outlet>> outlets;
    std::vector<std::pair<t_symbol*, void*>> extras;  ///< what the object stored under a name
};

/// Allocates a zero-filled record of the class. Null when there is no memory.
void* object_alloc(t_class* c);
/// Frees an object: its class's free function first, then the record.
t_max_err object_free(void* x);

t_class* object_class(void* x);
t_symbol* object_classname(void* x);

/// Sends a notification to an object; the boxes of this host are told, other objects don't listen.
t_max_err object_notify(void* x, t_symbol* what, void* data);

/// A place for extras of an object, such as its dump outlet. Looking up a name that isn't stored is an error.
t_max_err object_obex_store(void* x, t_symbol* key, t_object* value);
t_max_err object_obex_lookup(void* x, t_symbol* key, t_object** value);

/// Releases the record of an object that its constructor did not return, without its class's free function.
void DiscardObject(t_object* x);

}  // namespace max
