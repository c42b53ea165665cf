#pragma once

#include <cstddef>
#include <string_view>

#include "engine/room_controls.h"
#include "object/orvanverb.h"

/// The attributes of orvanverb~ that a user sets, in the order of their registration: which field of the record holds
/// each, and what follows when it changes. What a control is called, may be and starts with stands in the table of
/// controls; here stands how the class says it.
namespace orvanverb {

/// What happens with a new value.
enum class Setting : unsigned char {
    size,      ///< stored until the engine stands, then fixed
    sources,   ///< positions: all sources are placed
    speakers,  ///< positions: all loudspeakers, then all sources are placed
    late,      ///< stored; the engine gets the whole late field
    delays,    ///< stored; the engine makes its own
    shelf,     ///< six values or, for early and cluster, the word of a time
    time       ///< stored; the engine gets the whole time structure
};

struct Attribute {
    char const* name;
    long offset;  ///< of the field in the record [bytes]
    Setting setting;
    char const* category;
    char const* units;            ///< empty: it says none
    int order;                    ///< place in an inspector; 0: none
    bool saysRange;               ///< whether an inspector shows the range by which values are clipped
    char const* label = nullptr;  ///< null: that of the control
    void (Lume::OrvanVerb::*setShelf)(Lume::HLShelfParameters const&) = nullptr;
};

// clang-format off
#define FIELD(field) #field, calcoffset(orvanverb_t, field)
inline constexpr Attribute attributes[] = {
    {FIELD(numsources),       Setting::size,     "",          "",      1, true, "number of sources"},
    {FIELD(numspeakers),      Setting::size,     "",          "",      2, true, "number of speakers"},
    {FIELD(numinternals),     Setting::size,     "",          "",      3, true, "number of internal channels"},
    {FIELD(sourcespositions), Setting::sources,  "",          "xyz",   4, false, "sources positions"},
    {FIELD(speakerspositions),Setting::speakers, "",          "xyz",   5, false, "speakers positions"},
    {FIELD(gain),             Setting::late,     "reverb",    "dB",   15, true},
    {FIELD(modaldensity),     Setting::late,     "reverb",    "",      0, true},
    {FIELD(tr0),              Setting::late,     "reverb",    "sec",   6, true},
    {FIELD(trl),              Setting::late,     "reverb",    "",      7, true},
    {FIELD(trm),              Setting::late,     "reverb",    "",      8, true},
    {FIELD(trh),              Setting::late,     "reverb",    "",      9, true},
    {FIELD(fl),               Setting::late,     "reverb",    "Hz",   10, true},
    {FIELD(fh),               Setting::late,     "reverb",    "Hz",   11, true},
    {FIELD(air),              Setting::late,     "reverb",    "",     12, true},
    {FIELD(airfreq),          Setting::late,     "reverb",    "Hz",   13, true},
    {FIELD(infinite),         Setting::late,     "reverb",    "",     14, true},
    {FIELD(delays),           Setting::delays,   "reverb",    "msec", 16, false, "delays"},
    {FIELD(direct),           Setting::shelf,    "filters",   "",     17, false, "direct filter parameters",
     &Lume::OrvanVerb::SetDirectParameters},
    {FIELD(room),             Setting::shelf,    "filters",   "",     18, false, "room filter parameters",
     &Lume::OrvanVerb::SetRoomParameters},
    {FIELD(early),            Setting::shelf,    "filters",   "",     19, false, "early filter parameters",
     &Lume::OrvanVerb::SetEarlyParameters},
    {FIELD(cluster),          Setting::shelf,    "filters",   "",     20, false, "cluster filter parameters",
     &Lume::OrvanVerb::SetClusterParameters},
    {FIELD(early_start),      Setting::time,     "structure", "msec", 21, true},
    {FIELD(early_end),        Setting::time,     "structure", "msec", 22, true},
    {FIELD(early_distr),      Setting::time,     "structure", "",     23, true},
    {FIELD(early_width),      Setting::time,     "structure", "deg",  24, false},
    {FIELD(early_shape),      Setting::time,     "structure", "",     25, false},
    {FIELD(cluster_start),    Setting::time,     "structure", "msec", 26, true},
    {FIELD(cluster_end),      Setting::time,     "structure", "msec", 27, true},
    {FIELD(cluster_distr),    Setting::time,     "structure", "",     28, true},
    {FIELD(reverb_start),     Setting::time,     "structure", "msec",  0, true},
};
#undef FIELD
// clang-format on

/// The attribute of that name, null if there is none.
constexpr Attribute const* FindAttribute(std::string_view name) {
    for (Attribute const& attribute : attributes)
        if (name == attribute.name) return &attribute;
    return nullptr;
}

/// The first of the controls that an attribute holds: six for a shelf, one otherwise. Null for sizes, positions and
/// delays.
constexpr Lume::RoomControl const* ControlsOf(Attribute const& attribute) {
    for (Lume::RoomControl const& control : Lume::roomControls)
        if (control.attribute != nullptr && std::string_view(control.attribute) == attribute.name) return &control;
    return nullptr;
}

/// The field of an attribute in a record.
template <class T>
T* Field(orvanverb_t* x, Attribute const& attribute) {
    return reinterpret_cast<T*>(reinterpret_cast<char*>(x) + attribute.offset);
}

}  // namespace orvanverb
