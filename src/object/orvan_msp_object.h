#pragma once

#include <cstdint>

#include "object/host_api.h"

namespace orvanmax {

/// The head that the records of all signal objects have in common, so that services can read mute and bypass of any of
/// them. A class that wants these services starts its record with these fields, in this order.
struct _OrvanMspObject {  // NOLINT(bugprone-reserved-identifier): kept, quirks.md 32
    t_pxobject ob;
    void* box;                   ///< the patcher's box in which the object stands
    t_symbol* classdescription;  ///< never written (kept: quirks.md 33)
    t_symbol* externalversion;   ///< never written, likewise
    std::int32_t mute;           ///< 0 or 1
    std::int32_t bypass;         ///< 0 or 1
};

}  // namespace orvanmax
