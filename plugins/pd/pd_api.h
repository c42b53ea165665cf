#pragma once

/// The API of Pd. Its header makes macros of some names of types, which other namespaces use too: here they become
/// types.

#include <m_pd.h>

#undef t_class
#undef t_outlet
#undef t_inlet
#undef t_binbuf
#undef t_clock
#undef t_glist
#undef t_canvas
using t_class = struct _class;
using t_outlet = struct _outlet;
using t_inlet = struct _inlet;
using t_binbuf = struct _binbuf;
using t_clock = struct _clock;
using t_glist = struct _glist;
using t_canvas = struct _glist;

/// Since 0.54 a cord may hold several channels. One binary serves Pd before and after, so what is newer than Debian's
/// header is looked up when Pd loads the file.
namespace pd {

/// A class with this flag takes and makes such cords.
constexpr int classMultichannel = 0x10;

/// Gives an outlet of such a class its channels, for every outlet at each dsp message.
using SetChannels = void (*)(t_signal** signal, int numChannels);

/// Null in Pd before 0.54.
SetChannels FindSetChannels();

/// How many channels a signal holds, one behind the other; 1 in Pd before 0.54.
int NumChannels(t_signal const& signal);

}  // namespace pd
