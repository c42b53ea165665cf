#pragma once

#include "object/host_api.h"

/// The class orvanverb~: its messages and attributes. The attributes are the object's user interface.

/// The class, null until it is registered.
extern t_class* orvanverb_class;

/// Entry point: registers the class orvanverb~ with the host. A second call does nothing.
void orvanverb_main();
